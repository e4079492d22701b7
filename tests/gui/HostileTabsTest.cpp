// SPDX-License-Identifier: GPL-3.0-or-later

// What others have written is shown as what it is on the tabs Review, Live and Context, too: names
// of files, their content, what git says, folders of processes.

#include "HostileTexts.h"
#include "LiveScreen.h"
#include "context/ContextEditor.h"
#include "support/Input.h"
#include "support/ReviewPage.h"
#include "support/ToolDoubles.h"
#include "support/ToolTipText.h"
#include "support/WindowTestMain.h"

#include <QAbstractButton>
#include <QImage>
#include <QLabel>
#include <QMessageBox>

namespace {

using HostileTexts::asName;

/// Shows that nothing on the tab can take text for markup.
void verifyPlain(const QWidget *in)
{
    const QList<QLabel *> labels = in->findChildren<QLabel *>();
    QVERIFY(!labels.isEmpty());
    for (const QLabel *label : labels)
        QVERIFY2(label->text().isEmpty() || label->textFormat() == Qt::PlainText,
                 qPrintable(label->text()));
}

/// The Review tab of a repository with one new file.
class ReviewOf {
public:
    ReviewOf(const QString &name, const QByteArray &content) : m_page(m_home)
    {
        Repository(m_page.folder()).write(name, content);
        m_page.open();
        m_page.list()->setFocus();
    }
    ReviewPage &page() { return m_page; }
    /// The name in the list and above the diff.
    QList<QImage> names()
    {
        return {m_page.list()->grab().toImage(),
                find<QLabel>(m_page.window().detail(), u"selectedPath"_qs)->grab().toImage()};
    }
    QImage diff() { return m_page.diff()->grab().toImage(); }

private:
    PrivateHome m_home;
    ReviewPage m_page;
};

QList<QImage> reviewNames(const QString &name)
{
    return ReviewOf(name, "x\n").names();
}

QImage reviewDiff(const QByteArray &content)
{
    return ReviewOf(u"file"_qs, content).diff();
}

/// The entry of the Context tab for a rule with that name.
QImage contextEntry(const QString &name)
{
    ReviewOf review(u"file"_qs, "x\n");
    // So long that nothing is seen of the folder, which is another one every time.
    writeFile(review.page().folder() + u"/.cursor/rules/"_qs + name + u"-rule"_qs.repeated(8), "x");
    Input::key(Qt::Key_5, Qt::ControlModifier);
    review.page().settle();
    const auto *files = find<QListView>(review.page().window().detail(), u"contextFiles"_qs);
    const QModelIndex rule = files->currentIndex();
    if (!shownText(rule.data(Qt::ToolTipRole).toString()).endsWith(u"-rule"_qs))
        qFatal("another file is selected");
    return files->viewport()->grab(files->visualRect(rule)).toImage();
}

/// The Live table with an agent whose folder and uptime are these.
QImage liveTable(const QString &text)
{
    LiveScreen::Screen screen(
        {{LiveScreen::nobodysPid, u"claude"_qs, u'/' + text, 1.0, asName(text)}});
    return screen.shown().table->grab().toImage();
}

} // namespace

class HostileTabsTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void theUnseenIsNamed_data() { HostileTexts::addUnseen(); }
    void theUnseenIsNamed();
    void markupIsText_data() { HostileTexts::addMarkup(); }
    void markupIsText();
    void theRejectQuestionShowsTheNameAsItIs_data();
    void theRejectQuestionShowsTheNameAsItIs();
    void whatGitSaysIsText_data();
    void whatGitSaysIsText();
    void aListThatIsCutOffSaysSo();
    void whatAHookSaysIsText_data() { whatGitSaysIsText_data(); }
    void whatAHookSaysIsText();
    void aMegabyteInOneLineOfADiff();
    void aMegabyteForAFolder();
    void aMegabyteInOneLineOfAText();
    void theLongestName();

private:
    /// One of the two places at which git's words are shown.
    static void verifyError(const QPlainTextEdit *error);
};

void HostileTabsTest::theUnseenIsNamed()
{
    QFETCH(const QString, text);
    QFETCH(const QString, seen);
    QCOMPARE(reviewNames(text), reviewNames(seen));
    QCOMPARE(contextEntry(text), contextEntry(seen));
    QVERIFY(contextEntry(seen) != contextEntry(u"harmless"_qs));
    QCOMPARE(liveTable(text), liveTable(seen));
}

void HostileTabsTest::markupIsText()
{
    QFETCH(const QString, text);
    QFETCH(const QString, taken);
    const QList<QImage> names = reviewNames(asName(text));
    const QList<QImage> takenNames = reviewNames(asName(taken));
    for (int i = 0; i < names.size(); ++i)
        QVERIFY2(names[i] != takenNames[i], QByteArray::number(i));
    QVERIFY(reviewDiff(text.toUtf8()) != reviewDiff(taken.toUtf8()));
    QVERIFY(liveTable(text) != liveTable(taken));

    LiveScreen::Screen live({{LiveScreen::nobodysPid, u"claude"_qs, text, 1.0, u"01:00"_qs}});
    const LiveScreen::Parts parts = live.shown();
    const QModelIndex folder = parts.table->model()->index(0, LiveModel::Folder);
    QCOMPARE(shownText(folder.data(Qt::ToolTipRole).toString()), text);
    verifyPlain(live.view.get());

    ReviewOf review(asName(text), text.toUtf8());
    writeFile(review.page().folder() + u"/.cursor/rules/"_qs + asName(text), text.toUtf8());
    verifyPlain(review.page().window().detail());
    QVERIFY(review.page().rows().constLast().endsWith(text));
    Input::key(Qt::Key_5, Qt::ControlModifier);
    review.page().settle();
    auto *detail = review.page().window().detail();
    const QString path = review.page().folder() + u"/.cursor/rules/"_qs + asName(text);
    QCOMPARE(find<QLabel>(detail, u"fileLabel"_qs)->text(), path);
    QCOMPARE(find<ContextEditor>(detail)->toPlainText(), text);
    const auto *files = find<QListView>(detail, u"contextFiles"_qs);
    QCOMPARE(shownText(files->currentIndex().data(Qt::ToolTipRole).toString()), path);
    verifyPlain(detail);
}

void HostileTabsTest::theRejectQuestionShowsTheNameAsItIs_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("seen");
    QTest::newRow("markup") << u"a <b>b"_qs << u"a <b>b"_qs;
    QTest::newRow("entity") << u"&amp;"_qs << u"&amp;"_qs;
    QTest::newRow("override") << u"a\u202eb"_qs << u"a[RLO]b"_qs;
    QTest::newRow("line feeds") << u"a\n\nAll is well."_qs << u"a[LF][LF]All is well."_qs;
    QTest::newRow("the longest") << u"x"_qs.repeated(255) << QString();
}

void HostileTabsTest::theRejectQuestionShowsTheNameAsItIs()
{
    QFETCH(const QString, name);
    QFETCH(const QString, seen);
    ReviewOf review(name, "x\n");
    QMessageBox *box = review.page().askReject();
    QVERIFY2(box->width() < 900, QByteArray::number(box->width()));
    QCOMPARE(box->textFormat(), Qt::PlainText);
    if (!seen.isEmpty()) {
        const QLabel *question = labelWith(box, u"Reject changes to %1?"_qs.arg(seen));
        QVERIFY2(question, qPrintable(box->text()));
        QCOMPARE(question->textFormat(), Qt::PlainText);
    }
    Input::key(Qt::Key_Escape);
}

void HostileTabsTest::whatGitSaysIsText_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<QString>("seen");
    const auto says = [](const QString &text) {
        return u"printf '%b' '%1' >&2; exit 1"_qs.arg(text);
    };
    QTest::newRow("markup") << says(u"a <b>b</b> &amp; c"_qs) << u"a <b>b</b> &amp; c"_qs;
    QTest::newRow("image") << says(u"<img src=file:///etc/hostname>"_qs)
                           << u"<img src=file:///etc/hostname>"_qs;
    QTest::newRow("override") << says(u"a\u202eb"_qs) << u"a[RLO]b"_qs;
    QTest::newRow("colour") << says(u"\\033[31ma\\033[0mb"_qs) << u"ab"_qs;
    QTest::newRow("a megabyte") << u"head -c 1000000 /dev/zero | tr '\\0' x >&2; exit 1"_qs
                                << QString();
    QTest::newRow("a hundred thousand lines")
        << u"yes line | head -n 100000 >&2; exit 1"_qs << QString();
}

void HostileTabsTest::verifyError(const QPlainTextEdit *error)
{
    QFETCH(const QString, seen);
    QVERIFY(error->isVisible());
    QVERIFY2(error->height() < 300, QByteArray::number(error->height()));
    QVERIFY(error->document()->characterCount() < 60'000);
    if (!seen.isEmpty())
        QCOMPARE(error->toPlainText(), seen);
}

void HostileTabsTest::whatGitSaysIsText()
{
    QFETCH(const QString, script);
    ToolDoubles tools;
    ReviewOf review(u"file"_qs, "x\n");
    const QSize smallest = review.page().window().view().minimumSizeHint();
    tools.playGit(u"add"_qs, script);
    Input::click(review.page().button(u"Approve"_qs));
    review.page().settle();
    verifyError(find<QPlainTextEdit>(review.page().window().detail(), u"error"_qs));
    QCOMPARE(review.page().window().view().minimumSizeHint().width(), smallest.width());
}

void HostileTabsTest::aListThatIsCutOffSaysSo()
{
    ToolDoubles tools;
    ReviewOf review(u"file"_qs, "x\n");
    const auto *note = find<QLabel>(review.page().window().detail(), u"cutNote"_qs);
    QVERIFY(!note->isVisible());
    tools.playGit(u"status"_qs, u"name=$(head -c 60000 /dev/zero | tr '\\0' x); "
                                "for i in $(seq 1500); do printf '?? %s\\0' $i$name; done"_qs);
    Input::key(Qt::Key_F5);
    review.page().settle();
    QVERIFY(review.page().list()->model()->rowCount() > 1000);
    QVERIFY(note->isVisible());
    tools.giveBack(u"git"_qs);
    Input::key(Qt::Key_F5);
    review.page().settle();
    QCOMPARE(review.page().files().size(), 1);
    QVERIFY(!note->isVisible());
}

void HostileTabsTest::whatAHookSaysIsText()
{
    QFETCH(const QString, script);
    ReviewOf review(u"file"_qs, "x\n");
    const Repository repository(review.page().folder());
    repository.write(u".git/hooks/pre-commit"_qs, "#!/bin/sh\n" + script.toUtf8());
    repository.makeExecutable(u".git/hooks/pre-commit"_qs);
    Input::click(review.page().button(u"Approve"_qs));
    review.page().settle();
    QDialog *sheet = review.page().openCommit();
    const int width = sheet->width();
    Input::type(u"message"_qs);
    Input::key(Qt::Key_Return, Qt::ControlModifier);
    review.page().settle();
    verifyError(find<QPlainTextEdit>(sheet, u"error"_qs));
    QCOMPARE(sheet->width(), width);
    verifyPlain(sheet);
    Input::key(Qt::Key_Escape);
}

void HostileTabsTest::aMegabyteInOneLineOfADiff()
{
    for (const QByteArray &part :
         {QByteArray("<b>x"), QByteArray("\u202e"), QByteArray("a\u0301")}) {
        ReviewOf review(u"file"_qs, part.repeated(1'000'000 / int(part.size())));
        QCOMPARE(review.page().rows().size(), 2);
        // Were all of it laid out for every painting, this would take for ever.
        for (int i = 0; i < 10; ++i)
            QVERIFY(!review.diff().isNull());
    }
}

void HostileTabsTest::aMegabyteForAFolder()
{
    const QString folder = u"/<b>\u202e"_qs.repeated(200'000);
    LiveScreen::Screen screen({{LiveScreen::nobodysPid, u"claude"_qs, folder, 1.0, folder}});
    LiveScreen::Screen harmless({LiveScreen::agent(0)});
    const LiveScreen::Parts parts = screen.shown();
    for (int i = 0; i < 10; ++i)
        QVERIFY(!parts.table->grab().isNull());
    harmless.shown();
    QCOMPARE(screen.view->minimumSizeHint(), harmless.view->minimumSizeHint());
    const QModelIndex cell = parts.table->model()->index(0, LiveModel::Folder);
    QVERIFY(shownText(cell.data(Qt::ToolTipRole).toString()).size() < 50'000);
}

void HostileTabsTest::aMegabyteInOneLineOfAText()
{
    ReviewOf review(u"file"_qs, "x\n");
    const QString text = u"<b>\u202e \u2029"_qs.repeated(150'000);
    writeFile(review.page().folder() + u"/CLAUDE.md"_qs, text.toUtf8());
    Input::key(Qt::Key_5, Qt::ControlModifier);
    review.page().settle();
    auto *editor = find<ContextEditor>(review.page().window().detail());
    QTRY_COMPARE(editor->fileText().text, text);
    for (int i = 0; i < 3; ++i)
        QVERIFY(!editor->grab().isNull());
}

void HostileTabsTest::theLongestName()
{
    const QString name = u"<b>"_qs + u"x"_qs.repeated(252);
    ReviewOf review(name, "x\n");
    ReviewOf harmless(u"x"_qs, "x\n");
    QCOMPARE(review.page().selected(), name);
    QCOMPARE(review.page().window().view().minimumSizeHint(),
             harmless.page().window().view().minimumSizeHint());
    Input::clickCell(review.page().list(), 0);
    const QRect row = review.page().list()->visualRect(review.page().list()->currentIndex());
    QCOMPARE(shownText(Input::toolTipAt(review.page().list()->viewport(), row.center())), name);
}

PLINTHAR_WINDOW_TEST_MAIN(HostileTabsTest)
#include "HostileTabsTest.moc"
