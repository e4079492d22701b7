// SPDX-License-Identifier: GPL-3.0-or-later
#include "context/ContextView.h"

#include "context/ContextListModel.h"
#include "support/HeldBackground.h"
#include "support/Input.h"
#include "support/SpecialFiles.h"
#include "support/ToolTipText.h"
#include "support/Window.h"
#include "support/WindowTestMain.h"
#include "ui/Colors.h"

#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSplitter>

#include <sys/stat.h>
#include <unistd.h>

namespace {

/// How far the pixel that is most like a colour is from it.
int distanceTo(const QColor &color, QWidget *widget)
{
    const QImage image = widget->grab().toImage();
    int least = 3 * 255;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor pixel = image.pixelColor(x, y);
            least =
                qMin(least, qAbs(pixel.red() - color.red()) + qAbs(pixel.green() - color.green()) +
                                qAbs(pixel.blue() - color.blue()));
        }
    }
    return least;
}

bool shows(const QColor &color, QWidget *widget)
{
    constexpr int antialiased = 60;
    return distanceTo(color, widget) < antialiased;
}

} // namespace

class ContextViewTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup();
    void startsWithTheFirstFileThatExists();
    void startsWithoutASelectionWhenNothingExists();
    void listsFilesUnderTheirScopes();
    void panesKeepTheirWidths();
    void countsWordsAndWarnsBeyondTwoThousand();
    void emptyAndBlankTextsHaveNoWords();
    void savingMakesANewFileWithItsFolders();
    void savesWithTheKeyboard();
    void typingAndDeletingBackLeavesSaveDisabled();
    void switchingLosesEditsAndTheStatus();
    void aFailedSaveKeepsTheEdits();
    void showingTheTabAgainStartsOver();
    void switchingTabsByKeyboardStartsOverToo();
    void editsDuringASaveAreKept();
    void readingWaitsForTheSave();
    void aFailedSaveComesBackToItsFile();
    void aSaveOutlivesTheWindow();
    void nothingCanBeTypedIntoAFileOnItsWayOut();
    void aChoiceDuringTheScanCounts();
    void slowReadingShowsThatItIsBusy();
    void whatIsNoTextIsNotWipedByAccident();
    void aFifoIsNotRead();
    void aFolderCannotBeSaved();
    void theSamePathInBothSections();
    void clickingBesideTheFilesKeepsTheSelection();
    void arrowKeysSkipTheScopes();
    void namesAreNoMarkup();
    void tellsAssistiveTechnologyEverything();
    void hasTheUsualContextMenu();
    void findsTextAndWrapsAround();
    void findsBackwards();
    void escapeClosesTheFindBar();
    void escapeInTheTextClosesTheFindBarToo();
    void anotherFileIsNotWhatWasSearched();
    void findingStartsWithTheSelection();
    void saysWhenNothingIsFound();
    void tenThousandRulesAreListed();

private:
    void open();
    QString project(const char *name = "") const
    {
        return m_home->path(u"work/app"_qs) + QString::fromUtf8(name);
    }
    QString home(const char *name = "") const { return m_home->path() + QString::fromUtf8(name); }

    QWidget *screen() const { return find<ContextView>(m_window->detail()); }
    QListView *list() const { return find<QListView>(screen(), u"contextFiles"_qs); }
    ContextEditor *editor() const { return find<ContextEditor>(screen()); }
    QLabel *label(const QString &name) const { return find<QLabel>(screen(), name); }
    QPushButton *saveButton() const { return find<QPushButton>(screen(), u"save"_qs); }
    QWidget *findBar() const { return find<QWidget>(screen(), u"findBar"_qs); }
    QString status() const
    {
        return label(u"status"_qs)->isVisible() ? label(u"status"_qs)->text() : QString();
    }
    QString text() const { return editor()->toPlainText(); }
    QString selectedRow() const
    {
        const QModelIndexList selected = list()->selectionModel()->selectedIndexes();
        return selected.isEmpty()
                   ? QString()
                   : selected.constFirst().data(ContextListModel::LabelRole).toString();
    }
    int rowOf(const QString &shown) const
    {
        const QAbstractItemModel *model = list()->model();
        for (int row = 0; row < model->rowCount(); ++row) {
            if (model->index(row, 0).data(ContextListModel::LabelRole) == shown)
                return row;
        }
        qFatal("no row %s", qPrintable(shown));
    }
    bool isNew(const QString &shown) const
    {
        return !list()->model()->index(rowOf(shown), 0).data(ContextListModel::ExistsRole).toBool();
    }
    void choose(const QString &shown) const { Input::clickCell(list(), rowOf(shown)); }
    /// Chooses a file and waits until it can be edited.
    void chooseAndWait(const QString &shown) const
    {
        choose(shown);
        QTRY_COMPARE(label(u"fileLabel"_qs)->text(), shown);
        QTRY_VERIFY(!editor()->isReadOnly());
    }
    void typeAtEnd(const QString &typed) const
    {
        Input::click(editor()->viewport());
        editor()->moveCursor(QTextCursor::End);
        Input::type(typed);
    }
    void save() const
    {
        Input::click(saveButton());
        QTRY_VERIFY(!status().isEmpty());
    }

    std::unique_ptr<PrivateHome> m_home;
    std::unique_ptr<Window> m_window;
};

void ContextViewTest::init()
{
    m_home = std::make_unique<PrivateHome>();
    QVERIFY(QDir().mkpath(project()));
    writeFile(m_home->support(u"projects.json"_qs), "[\"" + project().toUtf8() + "\"]");
}

void ContextViewTest::cleanup()
{
    m_window.reset();
    Background::savingPool().waitForDone();
    m_home.reset();
}

/// Opens the window and in it the tab.
void ContextViewTest::open()
{
    m_window = std::make_unique<Window>(*m_home);
    m_window->load();
    Input::key(Qt::Key_5, Qt::ControlModifier);
    QTRY_VERIFY(list()->model()->rowCount() > 0);
    QTRY_VERIFY(!editor()->isReadOnly() || find<EmptyState>(screen())->isVisible());
}

void ContextViewTest::startsWithTheFirstFileThatExists()
{
    writeFile(project("/GEMINI.md"), "the third one");
    writeFile(home("/.codex/AGENTS.md"), "a later one");
    open();
    QCOMPARE(selectedRow(), project("/GEMINI.md"));
    QCOMPARE(label(u"fileLabel"_qs)->text(), project("/GEMINI.md"));
    QCOMPARE(text(), u"the third one"_qs);
    QCOMPARE(label(u"wordCount"_qs)->text(), u"3 words"_qs);
    QVERIFY(!saveButton()->isEnabled());
    QCOMPARE(status(), QString());
}

void ContextViewTest::startsWithoutASelectionWhenNothingExists()
{
    open();
    QCOMPARE(selectedRow(), QString());
    const auto *empty = find<EmptyState>(screen());
    QVERIFY(empty->isVisible());
    QCOMPARE(empty->icon(), u"doc.text"_qs);
    QCOMPARE(empty->title(), u"No file selected"_qs);
    QCOMPARE(empty->message(), u"Choose a CLAUDE.md, AGENTS.md, GEMINI.md or Cursor rules file to "
                               "edit."_qs);
    QVERIFY(!editor()->isVisible());
}

void ContextViewTest::listsFilesUnderTheirScopes()
{
    writeFile(home("/.gemini/GEMINI.md"), "");
    open();
    QStringList rows;
    const QAbstractItemModel *model = list()->model();
    for (int row = 0; row < model->rowCount(); ++row) {
        const QModelIndex index = model->index(row, 0);
        rows.append(index.data().toString() + u'|' +
                    index.data(ContextListModel::LabelRole).toString());
    }
    QCOMPARE(rows,
             QStringList({u"Project|"_qs, u"CLAUDE.md|"_qs + project("/CLAUDE.md"),
                          u"AGENTS.md|"_qs + project("/AGENTS.md"),
                          u"GEMINI.md|"_qs + project("/GEMINI.md"), u"Home|"_qs,
                          u"CLAUDE.md|~/.claude/CLAUDE.md"_qs, u"AGENTS.md|~/.codex/AGENTS.md"_qs,
                          u"GEMINI.md|~/.gemini/GEMINI.md"_qs}));
    QVERIFY(isNew(project("/CLAUDE.md")));
    QVERIFY(!isNew(u"~/.gemini/GEMINI.md"_qs));
}

void ContextViewTest::panesKeepTheirWidths()
{
    writeFile(project("/CLAUDE.md"), "");
    open();
    m_window->view().resize(1400, 800);
    QTRY_COMPARE(list()->width(), 260);
    auto *splitter = qobject_cast<QSplitter *>(list()->parentWidget());
    QVERIFY(splitter);
    QWidget *handle = splitter->handle(1);
    Input::drag(handle, handle->rect().center(), handle->rect().center() + QPoint(500, 0));
    QCOMPARE(list()->width(), 360);
    Input::drag(handle, handle->rect().center(), handle->rect().center() - QPoint(500, 0));
    QCOMPARE(list()->width(), 220);
    m_window->view().resize(m_window->view().minimumSize());
    QVERIFY(splitter->widget(1)->width() >= 400);
}

void ContextViewTest::countsWordsAndWarnsBeyondTwoThousand()
{
    writeFile(project("/CLAUDE.md"), QByteArray("word ").repeated(1999) + "last");
    open();
    QLabel *count = label(u"wordCount"_qs);
    const QWidget *warning = find<QWidget>(screen(), u"warning"_qs);
    const QColor orange = Colors::hue(Colors::Hue::Orange, count->palette());
    const QColor secondary = Colors::secondaryText(count->palette());
    QCOMPARE(count->text(), u"2000 words"_qs);
    QVERIFY(shows(secondary, count) && !shows(orange, count));
    QVERIFY(!warning->isVisible());

    typeAtEnd(u" x"_qs);
    QCOMPARE(count->text(), u"2001 words"_qs);
    QVERIFY(shows(orange, count) && !shows(secondary, count));
    QVERIFY(warning->isVisible());
    const auto *message = find<QLabel>(warning);
    QCOMPARE(message->text(), u"Over 2,000 words \u2014 long context files use up tokens in every "
                              "session. Consider trimming."_qs);
    const QRgb ground =
        warning->window()->grab().toImage().pixel(warning->mapTo(warning->window(), QPoint(1, 1)));
    const auto mixed = [&](int of, int over) { return qRound(0.12 * of + 0.88 * over); };
    const QColor window = warning->palette().color(QPalette::Window);
    QVERIFY(qAbs(qRed(ground) - mixed(orange.red(), window.red())) < 3);
    QVERIFY(qAbs(qBlue(ground) - mixed(orange.blue(), window.blue())) < 3);

    Input::key(Qt::Key_Backspace);
    QCOMPARE(count->text(), u"2000 words"_qs);
    QVERIFY(shows(secondary, count) && !shows(orange, count));
    QVERIFY(!warning->isVisible());
}

void ContextViewTest::emptyAndBlankTextsHaveNoWords()
{
    writeFile(project("/CLAUDE.md"), "");
    writeFile(project("/AGENTS.md"), " \t\r\n\n  ");
    writeFile(project("/GEMINI.md"), "a\tb\nc  d");
    open();
    QCOMPARE(label(u"wordCount"_qs)->text(), u"0 words"_qs);
    chooseAndWait(project("/AGENTS.md"));
    QCOMPARE(label(u"wordCount"_qs)->text(), u"0 words"_qs);
    chooseAndWait(project("/GEMINI.md"));
    QCOMPARE(label(u"wordCount"_qs)->text(), u"4 words"_qs);
}

void ContextViewTest::savingMakesANewFileWithItsFolders()
{
    open();
    const QString shown = u"~/.claude/CLAUDE.md"_qs;
    chooseAndWait(shown);
    QVERIFY(isNew(shown));
    const QImage before =
        list()->viewport()->grab(list()->visualRect(list()->currentIndex())).toImage();
    typeAtEnd(u"no newline"_qs);
    QVERIFY(saveButton()->isEnabled());
    save();
    QCOMPARE(status(), u"Saved"_qs);
    QCOMPARE(readFile(home("/.claude/CLAUDE.md")), QByteArray("no newline"));
    QVERIFY(!isNew(shown));
    QVERIFY(list()->viewport()->grab(list()->visualRect(list()->currentIndex())).toImage() !=
            before);
    QVERIFY(!saveButton()->isEnabled());
    typeAtEnd(u"x"_qs);
    QVERIFY(saveButton()->isEnabled());
    QCOMPARE(status(), u"Saved"_qs); // until the next load
}

void ContextViewTest::savesWithTheKeyboard()
{
    writeFile(project("/CLAUDE.md"), "a\r\nb\r\n");
    open();
    Input::click(editor()->viewport());
    Input::key(Qt::Key_S, Qt::ControlModifier); // nothing to save yet
    QCOMPARE(status(), QString());
    typeAtEnd(u"c"_qs);
    Input::key(Qt::Key_Return);
    Input::key(Qt::Key_S, Qt::ControlModifier);
    QTRY_COMPARE(status(), u"Saved"_qs);
    QCOMPARE(readFile(project("/CLAUDE.md")), QByteArray("a\r\nb\r\nc\r\n"));
    QVERIFY(editor()->hasFocus());
}

void ContextViewTest::typingAndDeletingBackLeavesSaveDisabled()
{
    writeFile(project("/CLAUDE.md"), "a\r\nb\xc2\xa0\xe2\x80\xa8");
    open();
    typeAtEnd(u"x"_qs);
    QVERIFY(saveButton()->isEnabled());
    Input::key(Qt::Key_Backspace);
    QVERIFY(!saveButton()->isEnabled());
    Input::key(Qt::Key_Z, Qt::ControlModifier);
    QVERIFY(saveButton()->isEnabled());
    Input::key(Qt::Key_Z, Qt::ControlModifier);
    QVERIFY(!saveButton()->isEnabled());
}

void ContextViewTest::switchingLosesEditsAndTheStatus()
{
    writeFile(project("/CLAUDE.md"), "first");
    writeFile(project("/AGENTS.md"), "second");
    open();
    typeAtEnd(u" saved"_qs);
    save();
    typeAtEnd(u" lost"_qs);
    QCOMPARE(status(), u"Saved"_qs);
    choose(project("/AGENTS.md"));
    QCOMPARE(status(), QString());
    QTRY_COMPARE(text(), u"second"_qs);
    QVERIFY(!saveButton()->isEnabled());
    chooseAndWait(project("/CLAUDE.md"));
    QCOMPARE(text(), u"first saved"_qs);
    QCOMPARE(status(), QString());
    QCOMPARE(readFile(project("/CLAUDE.md")), QByteArray("first saved"));
}

void ContextViewTest::aFailedSaveKeepsTheEdits()
{
    writeFile(home("/.gemini"), "a file in place of the folder");
    open();
    const QString shown = u"~/.gemini/GEMINI.md"_qs;
    chooseAndWait(shown);
    typeAtEnd(u"text"_qs);
    save();
    QCOMPARE(status(), u"Save failed: File exists"_qs);
    QCOMPARE(text(), u"text"_qs);
    QVERIFY(saveButton()->isEnabled());
    QVERIFY(isNew(shown));
    QVERIFY(QFile::remove(home("/.gemini")));
    Input::click(saveButton());
    QTRY_COMPARE(status(), u"Saved"_qs);
    QCOMPARE(readFile(home("/.gemini/GEMINI.md")), QByteArray("text"));
}

void ContextViewTest::showingTheTabAgainStartsOver()
{
    writeFile(project("/AGENTS.md"), "old");
    writeFile(project("/GEMINI.md"), "other");
    open();
    chooseAndWait(project("/GEMINI.md"));
    typeAtEnd(u"lost"_qs);
    QTabBar *bar = m_window->tabs()->tabBar();
    Input::clickAt(bar, bar->tabRect(0).center());
    writeFile(project("/CLAUDE.md"), "made meanwhile");
    writeFile(project("/.cursor/rules/x.mdc"), "");
    Input::clickAt(bar, bar->tabRect(4).center());
    QTRY_COMPARE(text(), u"made meanwhile"_qs);
    QCOMPARE(selectedRow(), project("/CLAUDE.md"));
    QVERIFY(!isNew(project("/CLAUDE.md")));
    QVERIFY(!isNew(project("/.cursor/rules/x.mdc")));
    QVERIFY(!saveButton()->isEnabled());
}

void ContextViewTest::switchingTabsByKeyboardStartsOverToo()
{
    writeFile(project("/CLAUDE.md"), "first");
    open();
    typeAtEnd(u"lost"_qs);
    Input::key(Qt::Key_1, Qt::ControlModifier);
    QVERIFY(QFile::remove(project("/CLAUDE.md")));
    Input::key(Qt::Key_5, Qt::ControlModifier);
    QTRY_VERIFY(find<EmptyState>(screen())->isVisible());
    QCOMPARE(selectedRow(), QString());
    QVERIFY(isNew(project("/CLAUDE.md")));
}

void ContextViewTest::editsDuringASaveAreKept()
{
    writeFile(project("/CLAUDE.md"), "text");
    open();
    {
        const HeldBackground held(Background::savingPool());
        typeAtEnd(u" saved"_qs);
        Input::click(saveButton());
        QVERIFY(!saveButton()->isEnabled());
        typeAtEnd(u" later"_qs);
        QVERIFY(!saveButton()->isEnabled()); // until the first save is over
        Input::key(Qt::Key_S, Qt::ControlModifier);
    }
    QTRY_COMPARE(status(), u"Saved"_qs);
    QCOMPARE(readFile(project("/CLAUDE.md")), QByteArray("text saved"));
    QCOMPARE(text(), u"text saved later"_qs);
    QVERIFY(saveButton()->isEnabled());
    for (int i = 0; i < 6; ++i)
        Input::key(Qt::Key_Backspace);
    QVERIFY(!saveButton()->isEnabled());
}

void ContextViewTest::readingWaitsForTheSave()
{
    writeFile(project("/CLAUDE.md"), "first");
    writeFile(project("/AGENTS.md"), "second");
    open();
    {
        const HeldBackground held(Background::savingPool());
        typeAtEnd(u" saved"_qs);
        Input::click(saveButton());
        choose(project("/AGENTS.md"));
        QVERIFY(editor()->isReadOnly());
        choose(project("/CLAUDE.md")); // what is on the disk now is not yet what is saved
    }
    QTRY_VERIFY(!editor()->isReadOnly());
    QCOMPARE(text(), u"first saved"_qs);
    QCOMPARE(readFile(project("/CLAUDE.md")), QByteArray("first saved"));
    QCOMPARE(status(), QString());
    QVERIFY(!saveButton()->isEnabled());
}

void ContextViewTest::aFailedSaveComesBackToItsFile()
{
    writeFile(project("/CLAUDE.md"), "first");
    writeFile(project("/AGENTS.md"), "second");
    open();
    {
        const HeldBackground held(Background::savingPool());
        typeAtEnd(u" edits"_qs);
        Input::click(saveButton());
        QVERIFY(QFile::remove(project("/CLAUDE.md")));
        QVERIFY(QDir().mkpath(project("/CLAUDE.md")));
        choose(project("/AGENTS.md"));
    }
    QTRY_COMPARE(status(), u"Save failed: Is a directory"_qs);
    QCOMPARE(text(), u"first edits"_qs);
    QCOMPARE(selectedRow(), project("/CLAUDE.md"));
    QVERIFY(saveButton()->isEnabled());
    QVERIFY(!editor()->isReadOnly());
}

void ContextViewTest::aSaveOutlivesTheWindow()
{
    writeFile(project("/CLAUDE.md"), "text");
    open();
    {
        const HeldBackground held(Background::savingPool());
        typeAtEnd(u" saved"_qs);
        Input::click(saveButton());
        m_window->destroy();
        // As at the end of the program, whose other work is dropped.
        QVERIFY(!Background::finish(std::chrono::milliseconds(0)));
    }
    QVERIFY(Background::finish(std::chrono::minutes(1)));
    QCOMPARE(readFile(project("/CLAUDE.md")), QByteArray("text saved"));
    m_window.reset();
}

void ContextViewTest::nothingCanBeTypedIntoAFileOnItsWayOut()
{
    writeFile(project("/CLAUDE.md"), "first");
    writeFile(project("/AGENTS.md"), "second");
    open();
    Input::click(editor()->viewport());
    {
        const HeldBackground held;
        choose(project("/AGENTS.md"));
        editor()->setFocus();
        Input::type(u"x"_qs);
        QCOMPARE(text(), u"first"_qs);
        QVERIFY(!saveButton()->isEnabled());
    }
    QTRY_COMPARE(text(), u"second"_qs);
    QVERIFY(!editor()->isReadOnly());
}

void ContextViewTest::aChoiceDuringTheScanCounts()
{
    writeFile(project("/CLAUDE.md"), "first");
    writeFile(project("/AGENTS.md"), "second");
    open();
    Input::key(Qt::Key_1, Qt::ControlModifier);
    writeFile(project("/.cursorrules"), "");
    {
        const HeldBackground held;
        Input::key(Qt::Key_5, Qt::ControlModifier);
        choose(project("/AGENTS.md"));
    }
    QTRY_COMPARE(text(), u"second"_qs);
    QCOMPARE(selectedRow(), project("/AGENTS.md"));
    QVERIFY(!isNew(project("/.cursorrules")));
}

void ContextViewTest::slowReadingShowsThatItIsBusy()
{
    writeFile(project("/CLAUDE.md"), "first");
    writeFile(project("/AGENTS.md"), "second");
    open();
    {
        const HeldBackground held;
        choose(project("/AGENTS.md"));
        QVERIFY(editor()->isVisible());
        QTRY_VERIFY(find<QWidget>(screen(), u"busy"_qs)->isVisible());
        QVERIFY(!editor()->isVisible());
    }
    QTRY_VERIFY(editor()->isVisible());
    QCOMPARE(text(), u"second"_qs);
}

void ContextViewTest::whatIsNoTextIsNotWipedByAccident()
{
    const QByteArray bytes("caf\xe9 au lait\n");
    writeFile(project("/CLAUDE.md"), bytes);
    open();
    QCOMPARE(text(), QString());
    QVERIFY(!saveButton()->isEnabled());
    QVERIFY(shownText(editor()->toolTip()).contains(u"not valid UTF-8"_qs));
    QVERIFY(editor()->accessibleDescription().contains(u"not valid UTF-8"_qs));
    Input::click(editor()->viewport());
    Input::key(Qt::Key_S, Qt::ControlModifier);
    Input::key(Qt::Key_X);
    Input::key(Qt::Key_Backspace);
    QVERIFY(!saveButton()->isEnabled());
    QCOMPARE(status(), QString());
    QCOMPARE(readFile(project("/CLAUDE.md")), bytes);
    chooseAndWait(project("/AGENTS.md"));
    QCOMPARE(editor()->toolTip(), QString());
}

void ContextViewTest::aFifoIsNotRead()
{
    QVERIFY(::mkfifo(QFile::encodeName(project("/CLAUDE.md")).constData(), 0600) == 0);
    open();
    QCOMPARE(selectedRow(), project("/CLAUDE.md"));
    QCOMPARE(text(), QString());
    QVERIFY(shownText(editor()->toolTip()).contains(u"not a regular file"_qs));
    typeAtEnd(u"x"_qs);
    save();
    QCOMPARE(status(), u"Save failed: Illegal seek"_qs);
}

void ContextViewTest::aFolderCannotBeSaved()
{
    QVERIFY(QDir().mkpath(project("/CLAUDE.md")));
    open();
    QCOMPARE(selectedRow(), project("/CLAUDE.md"));
    QCOMPARE(text(), QString());
    typeAtEnd(u"x"_qs);
    save();
    QCOMPARE(status(), u"Save failed: Is a directory"_qs);
    QVERIFY(QFileInfo(project("/CLAUDE.md")).isDir());
}

void ContextViewTest::theSamePathInBothSections()
{
    writeFile(home("/CLAUDE.md"), "text");
    writeFile(m_home->support(u"projects.json"_qs), "[\"" + home().toUtf8() + "\"]");
    open();
    QCOMPARE(selectedRow(), home("/CLAUDE.md"));
    typeAtEnd(u" edited"_qs);
    choose(u"~/CLAUDE.md"_qs); // the same file, so nothing is lost
    QCOMPARE(text(), u"text edited"_qs);
    QVERIFY(!editor()->isReadOnly());
    save();
    QCOMPARE(readFile(home("/CLAUDE.md")), QByteArray("text edited"));
}

void ContextViewTest::clickingBesideTheFilesKeepsTheSelection()
{
    writeFile(project("/CLAUDE.md"), "text");
    open();
    typeAtEnd(u" edited"_qs);
    Input::clickAt(list()->viewport(), list()->viewport()->rect().bottomLeft() + QPoint(20, -5));
    QTRY_COMPARE(selectedRow(), project("/CLAUDE.md"));
    Input::clickCell(list(), 0); // the name of a scope
    QTRY_COMPARE(selectedRow(), project("/CLAUDE.md"));
    Input::clickCell(list(), 1, 0, {.modifiers = Qt::ControlModifier});
    QTRY_COMPARE(selectedRow(), project("/CLAUDE.md"));
    QCOMPARE(text(), u"text edited"_qs);
    QVERIFY(saveButton()->isEnabled());
}

void ContextViewTest::arrowKeysSkipTheScopes()
{
    writeFile(project("/GEMINI.md"), "text");
    open();
    Input::clickCell(list(), rowOf(project("/GEMINI.md")));
    Input::key(Qt::Key_Down);
    QTRY_COMPARE(label(u"fileLabel"_qs)->text(), u"~/.claude/CLAUDE.md"_qs);
    Input::key(Qt::Key_Up);
    QTRY_COMPARE(label(u"fileLabel"_qs)->text(), project("/GEMINI.md"));
    Input::key(Qt::Key_Home);
    QTRY_COMPARE(label(u"fileLabel"_qs)->text(), project("/CLAUDE.md"));
}

void ContextViewTest::namesAreNoMarkup()
{
    const QString name = u"a <b>b & c.mdc"_qs;
    writeFile(project("/.cursor/rules/") + name, "text");
    open();
    const QString path = project("/.cursor/rules/") + name;
    QCOMPARE(label(u"fileLabel"_qs)->text(), path);
    QCOMPARE(label(u"fileLabel"_qs)->textFormat(), Qt::PlainText);
    const QModelIndex index = list()->model()->index(rowOf(path), 0);
    QCOMPARE(shownText(index.data(Qt::ToolTipRole).toString()), path);
}

void ContextViewTest::tellsAssistiveTechnologyEverything()
{
    writeFile(project("/CLAUDE.md"), "text");
    open();
    QCOMPARE(list()->accessibleName(), u"Instruction files"_qs);
    QCOMPARE(editor()->accessibleName(), project("/CLAUDE.md"));
    const auto told = [this](const QString &shown) {
        return list()->model()->index(rowOf(shown), 0).data(Qt::AccessibleTextRole).toString();
    };
    QCOMPARE(told(project("/CLAUDE.md")), u"CLAUDE.md, "_qs + project("/CLAUDE.md"));
    QCOMPARE(told(u"~/.codex/AGENTS.md"_qs), u"AGENTS.md, ~/.codex/AGENTS.md, new"_qs);
    QVERIFY(!find<QLineEdit>(findBar(), u"findField"_qs)->accessibleName().isEmpty());
}

void ContextViewTest::hasTheUsualContextMenu()
{
    writeFile(project("/CLAUDE.md"), "text");
    open();
    Input::click(editor()->viewport());
    Input::menuKey();
    QMenu *menu = openMenu();
    QVERIFY(entriesOf(menu).join(u' ').contains(u"&Undo"_qs));
    QVERIFY(entriesOf(menu).join(u' ').contains(u"&Paste"_qs));
    menu->close();
}

void ContextViewTest::findsTextAndWrapsAround()
{
    writeFile(project("/CLAUDE.md"), "One two\r\nthree ONE\r\none");
    open();
    Input::click(editor()->viewport());
    editor()->moveCursor(QTextCursor::Start);
    QVERIFY(!findBar()->isVisible());
    Input::key(Qt::Key_F, Qt::ControlModifier);
    QVERIFY(findBar()->isVisible());
    const auto found = [this] {
        return QPair(editor()->textCursor().selectionStart(),
                     editor()->textCursor().selectedText());
    };
    Input::type(u"on"_qs);
    QCOMPARE(found(), QPair(0, u"On"_qs));
    Input::type(u"e"_qs);
    QCOMPARE(found(), QPair(0, u"One"_qs));
    Input::key(Qt::Key_Return);
    QCOMPARE(found(), QPair(14, u"ONE"_qs));
    Input::click(buttonOf(findBar(), u"Next"_qs));
    QCOMPARE(found(), QPair(18, u"one"_qs));
    QCOMPARE(label(u"findMessage"_qs)->text(), QString());
    Input::key(Qt::Key_F3);
    QCOMPARE(found(), QPair(0, u"One"_qs));
    QCOMPARE(label(u"findMessage"_qs)->text(), u"Continued at the top"_qs);
    QVERIFY(!saveButton()->isEnabled());
}

void ContextViewTest::findsBackwards()
{
    writeFile(project("/CLAUDE.md"), "x a x b x");
    open();
    Input::click(editor()->viewport());
    editor()->moveCursor(QTextCursor::Start);
    Input::key(Qt::Key_F, Qt::ControlModifier);
    Input::type(u"x"_qs);
    const auto position = [this] { return editor()->textCursor().selectionStart(); };
    QCOMPARE(position(), 0);
    Input::key(Qt::Key_Return, Qt::ShiftModifier);
    QCOMPARE(position(), 8);
    QCOMPARE(label(u"findMessage"_qs)->text(), u"Continued at the bottom"_qs);
    Input::click(buttonOf(findBar(), u"Previous"_qs));
    QCOMPARE(position(), 4);
    Input::key(Qt::Key_F3, Qt::ShiftModifier);
    QCOMPARE(position(), 0);
}

void ContextViewTest::escapeClosesTheFindBar()
{
    writeFile(project("/CLAUDE.md"), "some text");
    open();
    Input::click(editor()->viewport());
    Input::key(Qt::Key_F, Qt::ControlModifier);
    Input::type(u"text"_qs);
    Input::key(Qt::Key_Escape);
    QVERIFY(!findBar()->isVisible());
    QVERIFY(editor()->hasFocus());
    Input::type(u"X"_qs); // in the place of what was found
    QCOMPARE(text(), u"some X"_qs);
}

void ContextViewTest::escapeInTheTextClosesTheFindBarToo()
{
    writeFile(project("/CLAUDE.md"), "some text");
    open();
    Input::click(editor()->viewport());
    Input::key(Qt::Key_F, Qt::ControlModifier);
    Input::type(u"text"_qs);
    Input::click(editor()->viewport());
    QVERIFY(editor()->hasFocus());
    QVERIFY(findBar()->isVisible());
    Input::key(Qt::Key_Escape);
    QVERIFY(!findBar()->isVisible());
    QVERIFY(editor()->hasFocus());
    QCOMPARE(text(), u"some text"_qs);
}

void ContextViewTest::anotherFileIsNotWhatWasSearched()
{
    writeFile(project("/CLAUDE.md"), "first");
    writeFile(project("/AGENTS.md"), "second");
    open();
    Input::click(editor()->viewport());
    Input::key(Qt::Key_F, Qt::ControlModifier);
    Input::type(u"second"_qs);
    QCOMPARE(label(u"findMessage"_qs)->text(), u"No matches"_qs);
    chooseAndWait(project("/AGENTS.md"));
    QVERIFY(findBar()->isVisible());
    QCOMPARE(label(u"findMessage"_qs)->text(), QString());
    Input::key(Qt::Key_F3);
    QCOMPARE(editor()->textCursor().selectedText(), u"second"_qs);
}

void ContextViewTest::findingStartsWithTheSelection()
{
    writeFile(project("/CLAUDE.md"), "a b a");
    open();
    Input::click(editor()->viewport());
    editor()->moveCursor(QTextCursor::Start);
    Input::key(Qt::Key_Right, Qt::ShiftModifier);
    Input::key(Qt::Key_F, Qt::ControlModifier);
    QCOMPARE(find<QLineEdit>(findBar(), u"findField"_qs)->text(), u"a"_qs);
    Input::key(Qt::Key_Return);
    QCOMPARE(editor()->textCursor().selectionStart(), 4);
}

void ContextViewTest::saysWhenNothingIsFound()
{
    writeFile(project("/CLAUDE.md"), "text");
    open();
    Input::click(editor()->viewport());
    Input::key(Qt::Key_F, Qt::ControlModifier);
    Input::type(u"z"_qs);
    QCOMPARE(label(u"findMessage"_qs)->text(), u"No matches"_qs);
    QVERIFY(!editor()->textCursor().hasSelection());
    Input::key(Qt::Key_Backspace);
    QCOMPARE(label(u"findMessage"_qs)->text(), QString());
}

void ContextViewTest::tenThousandRulesAreListed()
{
    writeFile(project("/.cursor/rules/0"), "");
    for (int i = 1; i < 10'000; ++i) // further names are made faster than files
        QVERIFY(::link(QFile::encodeName(project("/.cursor/rules/0")).constData(),
                       QFile::encodeName(project("/.cursor/rules/") + QString::number(i))
                           .constData()) == 0);
    open();
    QCOMPARE(list()->model()->rowCount(), 10'000 + 8);
    Input::click(list()->viewport());
    Input::key(Qt::Key_End);
    QTRY_COMPARE(label(u"fileLabel"_qs)->text(), u"~/.gemini/GEMINI.md"_qs);
}

PLINTHAR_WINDOW_TEST_MAIN(ContextViewTest)
#include "ContextViewTest.moc"
