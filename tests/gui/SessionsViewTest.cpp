// SPDX-License-Identifier: GPL-3.0-or-later
#include "usage/SessionsView.h"

#include "app/ContentView.h"
#include "model/PriceStore.h"
#include "support/HeldBackground.h"
#include "support/Input.h"
#include "support/Sessions.h"
#include "support/ToolTipText.h"
#include "support/Window.h"
#include "support/WindowTestMain.h"
#include "ui/Spinner.h"
#include "usage/SessionsModel.h"

#include <QClipboard>
#include <QDateTime>
#include <QDir>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QSplitter>

#include <filesystem>

namespace {

using Column = SessionsModel::Column;

const QString project = u"/w/a"_qs;

/// A moment on the day of the tests.
QString at(const QString &time)
{
    return u"2026-03-05T%1.000Z"_qs.arg(time);
}

QString at(int second)
{
    return QDateTime(QDate(2026, 3, 5), QTime(0, 0), Qt::UTC)
        .addSecs(second)
        .toString(u"yyyy-MM-dd'T'hh:mm:ss'.000Z'"_qs);
}

QByteArray answer(const LogLines::Tokens &tokens, const QString &model = u"claude-opus-4"_qs,
                  const QString &time = at(u"10:00:01"_qs))
{
    static int count = 0;
    return LogLines::assistant(time, model, tokens, QString::number(++count));
}

/// A table with one row, in which a million input tokens cost that much.
QList<PriceRow> priceOf(double dollars)
{
    return {{.key = u"default"_qs, .input = dollars}};
}

/// What happens to a model from now on.
struct ModelSpy {
    explicit ModelSpy(const QAbstractItemModel *model)
        : inserted(model, &QAbstractItemModel::rowsInserted)
        , removed(model, &QAbstractItemModel::rowsRemoved)
        , changed(model, &QAbstractItemModel::dataChanged)
        , reset(model, &QAbstractItemModel::modelReset)
        , moved(model, &QAbstractItemModel::layoutChanged)
    {
    }

    qsizetype count() const
    {
        return inserted.size() + removed.size() + changed.size() + reset.size() + moved.size();
    }

    QSignalSpy inserted;
    QSignalSpy removed;
    QSignalSpy changed;
    QSignalSpy reset;
    QSignalSpy moved;
};

/// While it lives, the computer is in another time zone.
class Journey {
public:
    explicit Journey(const char *zone) { qputenv("TZ", zone); }
    ~Journey() { qputenv("TZ", m_home); }
    Q_DISABLE_COPY_MOVE(Journey)

private:
    const QByteArray m_home = qgetenv("TZ");
};

} // namespace

class SessionsViewTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_home = std::make_unique<PrivateHome>();
        m_window = std::make_unique<Window>(*m_home);
    }

    void cleanup()
    {
        m_window.reset();
        m_home.reset();
    }

    // The summary

    void oneSessionWithoutRecordsKeepsThePlural()
    {
        write({.id = u"s"_qs});
        m_window->load();
        QCOMPARE(m_window->summary(), u"1 sessions \u00b7 $0.00 estimated"_qs);
    }

    void theSummaryIsTheSumOfUnroundedCosts()
    {
        for (int i = 0; i < 3; ++i)
            write({.id = QString::number(i), .answers = {answer({.input = 1500}, u"sonnet"_qs)}});
        m_window->load();
        for (int row = 0; row < 3; ++row)
            QCOMPARE(text(row, Column::Cost), u"$0.00"_qs); // each is 0.0045
        QCOMPARE(m_window->summary(), u"3 sessions \u00b7 $0.01 estimated"_qs);
    }

    void roundsAsTheCLibraryDoes()
    {
        write({.id = u"s"_qs, .answers = {answer({.input = 1'000'000})}});
        m_window->load();
        m_window->store().setPrices(priceOf(8.125));
        QCOMPARE(m_window->summary(), u"1 sessions \u00b7 $8.12 estimated"_qs);
        QCOMPARE(text(0, Column::Cost), u"$8.12"_qs);
    }

    void noSessionIsZeroSessions()
    {
        addByHand(*m_home, {u"new"_qs});
        restart();
        QCOMPARE(m_window->summary(), u"0 sessions \u00b7 $0.00 estimated"_qs);
    }

    // The table

    void hasItsColumnsInOrder()
    {
        write({.id = u"s"_qs});
        m_window->load();
        const QAbstractItemModel *model = m_window->sessions()->model();
        QStringList titles;
        for (int column = 0; column < model->columnCount(); ++column)
            titles.append(model->headerData(column, Qt::Horizontal).toString());
        QCOMPARE(titles,
                 (QStringList{u"Started"_qs, u"Duration"_qs, u"First prompt"_qs, u"Turns"_qs,
                              u"Input"_qs, u"Output"_qs, u"Cache"_qs, u"Est. cost"_qs}));
    }

    void theColumnsHaveTheirWidths()
    {
        write({.id = u"s"_qs});
        m_window->load();
        for (const int width : {1000, 1600}) {
            m_window->view().resize(width, 700);
            const QHeaderView *header = m_window->sessions()->horizontalHeader();
            for (const Column column :
                 {Column::Duration, Column::Input, Column::Output, Column::Cache, Column::Cost})
                QCOMPARE(header->sectionSize(column), 70);
            QCOMPARE(header->sectionSize(Column::Turns), 50);
            QVERIFY(header->sectionSize(Column::Started) >= 140);
            QVERIFY(header->sectionSize(Column::FirstPrompt) >= 180);
            QCOMPARE(header->length(), m_window->sessions()->viewport()->width());
        }
        QVERIFY(m_window->sessions()->horizontalHeader()->sectionSize(Column::FirstPrompt) > 320);
    }

    void theFirstPromptKeeps180BesideAWideSidebar()
    {
        write({.id = u"s"_qs});
        m_window->load();
        auto *handle = find<QSplitter>(&m_window->view())->handle(1);
        Input::drag(handle, handle->rect().center(), handle->rect().center() + QPoint(300, 0));
        QVERIFY(m_window->sessions()->horizontalHeader()->sectionSize(Column::FirstPrompt) >= 180);
    }

    void theStartCanBeWidenedButNotBelow120()
    {
        write({.id = u"s"_qs});
        m_window->load();
        QHeaderView *header = m_window->sessions()->horizontalHeader();
        const int before = header->sectionSize(Column::Started);
        dragSectionEnd(Column::Started, 30);
        QCOMPARE(header->sectionSize(Column::Started), before + 30);
        dragSectionEnd(Column::Started, -150);
        QVERIFY(header->sectionSize(Column::Started) >= 120);
    }

    void theOtherColumnsAreFixed()
    {
        write({.id = u"s"_qs});
        m_window->load();
        dragSectionEnd(Column::Duration, 40);
        dragSectionEnd(Column::Output, 40);
        const QHeaderView *header = m_window->sessions()->horizontalHeader();
        QCOMPARE(header->sectionSize(Column::Duration), 70);
        QCOMPARE(header->sectionSize(Column::Output), 70);
    }

    void numbersStandAtTheRight()
    {
        write({.id = u"s"_qs});
        m_window->load();
        const QAbstractItemModel *model = m_window->sessions()->model();
        for (int column = 0; column < Column::ColumnCount; ++column) {
            const int edge = column < Column::Turns ? Qt::AlignLeft : Qt::AlignRight;
            const int cell = model->index(0, column).data(Qt::TextAlignmentRole).toInt();
            QCOMPARE(cell & Qt::AlignHorizontal_Mask, edge);
            const QVariant header =
                model->headerData(column, Qt::Horizontal, Qt::TextAlignmentRole);
            const int title = header.isValid() ? header.toInt() : int(Qt::AlignLeft);
            QCOMPARE(title & Qt::AlignHorizontal_Mask, edge);
        }
    }

    void digitsAreEquallyWide()
    {
        write({.id = u"s"_qs});
        m_window->load();
        const QFontMetrics metrics = m_window->sessions()->fontMetrics();
        for (const QChar digit : u"0123456789"_qs)
            QCOMPARE(metrics.horizontalAdvance(digit), metrics.horizontalAdvance(u'0'));
    }

    void aRowShowsItsSession()
    {
        write(
            {.id = u"s"_qs,
             .start = at(u"09:05:00"_qs),
             .prompt = u"Build it"_qs,
             .answers = {
                 answer(
                     {.input = 12'345, .output = 1'234'567, .cacheWrite = 1'000, .cacheRead = 234}),
                 LogLines::user(at(u"10:00:00"_qs), u"Go on"_qs),
                 answer({.input = 0, .output = 0}, u"haiku"_qs, at(u"10:07:05"_qs))}});
        m_window->load();
        QCOMPARE(texts(0),
                 (QStringList{u"Mar 5, 2026, 9:05 AM"_qs, u"1h 2m"_qs, u"Build it"_qs, u"2"_qs,
                              u"12.3k"_qs, u"1.23M"_qs, u"1,234"_qs, u"$92.80"_qs}));
    }

    void theNewestComesFirst()
    {
        write({.id = u"b"_qs, .start = at(u"09:00:00"_qs), .prompt = u"nine"_qs});
        write({.id = u"a"_qs, .start = at(u"08:00:00"_qs), .prompt = u"eight"_qs});
        write({.id = u"c"_qs, .start = at(u"10:00:00"_qs), .prompt = u"ten"_qs});
        m_window->load();
        QCOMPARE(prompts(), (QStringList{u"ten"_qs, u"nine"_qs, u"eight"_qs}));
    }

    void noColumnSorts()
    {
        write({.id = u"a"_qs, .start = at(u"08:00:00"_qs), .prompt = u"eight"_qs});
        write({.id = u"c"_qs, .start = at(u"10:00:00"_qs), .prompt = u"ten"_qs});
        m_window->load();
        QHeaderView *header = m_window->sessions()->horizontalHeader();
        for (int column = 0; column < Column::ColumnCount; ++column) {
            Input::clickAt(header->viewport(), QPoint(header->sectionViewportPosition(column) +
                                                          header->sectionSize(column) / 2,
                                                      header->height() / 2));
            QCOMPARE(prompts(), (QStringList{u"ten"_qs, u"eight"_qs}));
        }
    }

    void anEmptyPromptIsADash()
    {
        writeFile(m_home->claude(u"-w-a/s.jsonl"_qs), LogLines::log({answer({.input = 1})}));
        m_window->load();
        QCOMPARE(text(0, Column::FirstPrompt), u"\u2014"_qs);
        QCOMPARE(text(0, Column::Turns), u"0"_qs);
        QCOMPARE(toolTip(0, Column::FirstPrompt), QString());
    }

    void promptsFromAnywhereShowAsTheyAre_data()
    {
        QTest::addColumn<QString>("prompt");
        QTest::addColumn<QString>("seen"); // where it differs: what has no look has its name
        QTest::newRow("markup") << u"<b>bold</b> <img src=x> <!-- -->"_qs << QString();
        QTest::newRow("entities") << u"a &amp; b && c"_qs << QString();
        QTest::newRow("lines") << u"one\ntwo\n\n\nfive"_qs << QString();
        QTest::newRow("tabs and blanks") << u"a\tb     c"_qs << QString();
        QTest::newRow("right to left") << u"\u05e9\u05dc\u05d5\u05dd abc \u202e def"_qs
                                       << u"\u05e9\u05dc\u05d5\u05dd abc [RLO] def"_qs;
        QTest::newRow("no blanks") << u"x"_qs.repeated(3000) << QString();
        QTest::newRow("emoji") << u"\U0001f600 \U0001f468\u200d\U0001f469\u200d\U0001f467"_qs
                               << QString();
        QTest::newRow("null character") << u"a"_qs + QChar(0) + u"b"_qs << u"a[NUL]b"_qs;
    }

    void promptsFromAnywhereShowAsTheyAre()
    {
        QFETCH(QString, prompt);
        QFETCH(QString, seen);
        write({.id = u"s"_qs, .prompt = prompt});
        m_window->load();
        QCOMPARE(text(0, Column::FirstPrompt), prompt);
        QVERIFY(!m_window->sessions()->grab().isNull());
        QCOMPARE(toolTip(0, Column::FirstPrompt), seen.isEmpty() ? prompt : seen);
    }

    void aPromptOfAMegabyteIsShownInTwoLines()
    {
        const QString prompt = u"lorem ipsum "_qs.repeated(90'000).trimmed();
        write({.id = u"a"_qs, .prompt = prompt});
        write({.id = u"b"_qs, .prompt = u"short"_qs});
        m_window->load();
        QCOMPARE(text(0, Column::FirstPrompt), prompt);
        const QTableView *table = m_window->sessions();
        QCOMPARE(table->rowHeight(0), table->rowHeight(1));
        QVERIFY(!m_window->sessions()->grab().isNull());
        const QString shown = toolTip(0, Column::FirstPrompt);
        QVERIFY(shown.size() > 1000 && shown.size() < 10'000);
        QVERIFY(prompt.startsWith(shown.chopped(1)));
        QVERIFY(shown.endsWith(u'\u2026'));
    }

    /// Prompts that differ only beyond their second line look the same.
    void aPromptTakesAtMostTwoLines()
    {
        const QString twoLines = u"some words "_qs.repeated(60);
        write({.id = u"a"_qs, .start = at(u"10:00:00"_qs), .prompt = twoLines + u"ends so"_qs});
        write({.id = u"b"_qs, .start = at(u"09:00:00"_qs), .prompt = twoLines + u"ends thus"_qs});
        write({.id = u"c"_qs,
               .start = at(u"08:00:00"_qs),
               .prompt = u"some words "_qs.repeated(4) + u"and others"_qs});
        write({.id = u"d"_qs, .start = at(u"07:00:00"_qs), .prompt = u"some words"_qs});
        m_window->load();
        m_window->sessions()->selectionModel()->clear();
        m_window->projects()->setFocus();
        QCOMPARE(pictureOf(0, Column::FirstPrompt), pictureOf(1, Column::FirstPrompt));
        QVERIFY(pictureOf(0, Column::FirstPrompt) != pictureOf(2, Column::FirstPrompt));
        QVERIFY(pictureOf(2, Column::FirstPrompt) != pictureOf(3, Column::FirstPrompt));
        const QTableView *table = m_window->sessions();
        QVERIFY(table->rowHeight(0) >= 2 * table->fontMetrics().height());
        QVERIFY(table->rowHeight(0) < 3 * table->fontMetrics().height());
    }

    void onlyACutCellHasATooltip()
    {
        write({.id = u"s"_qs, .answers = {answer({.input = 1'000'000})}});
        m_window->store().setPrices(priceOf(1));
        m_window->load();
        QCOMPARE(toolTip(0, Column::Started), QString());
        QCOMPARE(toolTip(0, Column::Cost), QString());
        m_window->store().setPrices(priceOf(123'456'789));
        QCOMPARE(toolTip(0, Column::Cost), u"$123456789.00"_qs);
    }

    void aStartThatHasNoRoomTakesTwoLines()
    {
        write({.id = u"s"_qs});
        m_window->load();
        m_window->view().resize(1600, 700);
        const QImage oneLine = pictureOf(0, Column::Started);
        dragSectionEnd(Column::Started, -200); // down to its minimum
        QCOMPARE(sessionsHeader()->sectionSize(Column::Started), 120);
        QCOMPARE(toolTip(0, Column::Started), QString());
        const auto inkHeight = [](const QImage &picture) {
            int top = -1;
            int bottom = -1;
            for (int y = 0; y < picture.height() - 2; ++y) { // without the hairline
                for (int x = 12; x < picture.width(); ++x) {
                    if (qGray(picture.pixel(x, y)) > 128)
                        continue;
                    top = top < 0 ? y : top;
                    bottom = y;
                }
            }
            return bottom - top + 1;
        };
        QVERIFY(inkHeight(oneLine) > 4);
        QVERIFY(inkHeight(pictureOf(0, Column::Started)) > 1.8 * inkHeight(oneLine));
    }

    // Keys and clipboard

    void copiesTheSelectedRows()
    {
        write({.id = u"a"_qs, .start = at(u"10:00:00"_qs), .prompt = u"first\tline\nsecond"_qs});
        write({.id = u"b"_qs, .start = at(u"09:00:00"_qs)});
        write({.id = u"c"_qs, .start = at(u"08:00:00"_qs), .prompt = u"third"_qs});
        m_window->load();
        Input::clickCell(m_window->sessions(), 2, Column::Cost);
        Input::clickCell(m_window->sessions(), 0, Column::Started,
                         {.modifiers = Qt::ControlModifier});
        Input::key(Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QGuiApplication::clipboard()->text(),
                 u"Mar 5, 2026, 10:00 AM\t0s\tfirst line second\t1\t0\t0\t0\t$0.00\n"
                 "Mar 5, 2026, 8:00 AM\t0s\tthird\t1\t0\t0\t0\t$0.00\n"_qs);
    }

    void copyingNothingLeavesTheClipboard()
    {
        write({.id = u"a"_qs});
        m_window->load();
        m_window->sessions()->setFocus();
        m_window->sessions()->clearSelection();
        QGuiApplication::clipboard()->setText(u"before"_qs);
        Input::key(Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QGuiApplication::clipboard()->text(), u"before"_qs);
    }

    void theKeysWalkTheRows()
    {
        for (int i = 0; i < 5; ++i)
            write({.id = QString::number(i), .start = at(i)});
        m_window->load();
        m_window->sessions()->setFocus();
        QVERIFY(m_window->sessions()->currentIndex().isValid());
        Input::key(Qt::Key_Down);
        Input::key(Qt::Key_Down);
        QCOMPARE(selectedRows(), QList<int>{2});
        Input::key(Qt::Key_Down, Qt::ShiftModifier);
        QCOMPARE(selectedRows(), (QList<int>{2, 3}));
        Input::key(Qt::Key_A, Qt::ControlModifier);
        QCOMPARE(selectedRows().size(), 5);
        Input::key(Qt::Key_Tab);
        QVERIFY(!m_window->sessions()->hasFocus());
    }

    // Reloading

    void theReloadButtonReloads()
    {
        write({.id = u"a"_qs});
        m_window->load();
        auto *button = buttonOf(m_window->detail(), u"Reload"_qs);
        QCOMPARE(button->icon().name(), u"arrow.clockwise"_qs);
        write({.id = u"b"_qs});
        Input::click(button);
        QTRY_COMPARE(m_window->summary(), u"2 sessions \u00b7 $0.00 estimated"_qs);
        write({.id = u"c"_qs});
        Input::key(Qt::Key_F5);
        QTRY_COMPARE(m_window->summary(), u"3 sessions \u00b7 $0.00 estimated"_qs);
    }

    void loadingWithAnEmptyListSaysSo()
    {
        addByHand(*m_home, {u"new"_qs});
        restart();
        const HeldBackground held;
        m_window->store().reload();
        QVERIFY(labelWith(m_window->detail(), u"Reading sessions\u2026"_qs));
        QVERIFY(find<Spinner>(m_window->detail())->isVisible());
        QVERIFY(!m_window->sessions()->isVisible());
        QVERIFY(!find<EmptyState>(m_window->detail())->isVisible());
    }

    void theBusySignGoesWithTheReload()
    {
        addByHand(*m_home, {u"new"_qs});
        restart();
        {
            const HeldBackground held;
            m_window->store().reload();
        }
        QTRY_VERIFY(find<EmptyState>(m_window->detail())->isVisible());
        QVERIFY(!find<Spinner>(m_window->detail())->isVisible());
    }

    void loadingWithAListKeepsTheTable()
    {
        write({.id = u"a"_qs});
        m_window->load();
        const HeldBackground held;
        m_window->store().reload();
        QVERIFY(m_window->sessions()->isVisible());
        QCOMPARE(m_window->sessions()->model()->rowCount(), 1);
        QVERIFY(!find<Spinner>(m_window->detail())->isVisible());
    }

    void aProjectWithoutLogFolderAsksToRunClaude()
    {
        const QString path = addByHand(*m_home, {u"new"_qs}).constFirst();
        restart();
        const auto *state = find<EmptyState>(m_window->detail());
        QVERIFY(state->isVisible());
        QCOMPARE(state->icon(), u"tray"_qs);
        QCOMPARE(state->title(), u"No sessions found"_qs);
        QCOMPARE(state->message(),
                 u"Claude Code has no session history for this folder yet. Run `claude` in %1 and "
                 "sessions will appear here."_qs.arg(path));
    }

    void aLogFolderWithoutReadableLogsIsNamed()
    {
        const QString folder = m_home->claude(u"-w-a"_qs);
        writeFile(folder + u"/broken.jsonl"_qs, "not JSON\n");
        writeFile(folder + u"/notes.txt"_qs, "text");
        m_window->load();
        const auto *state = find<EmptyState>(m_window->detail());
        QVERIFY(state->isVisible());
        QCOMPARE(state->title(), u"No sessions found"_qs);
        QCOMPARE(state->message(), u"No readable .jsonl session files in %1."_qs.arg(folder));
    }

    void theMessageFollowsANewLogFolder()
    {
        const QString path = addByHand(*m_home, {u"new"_qs}).constFirst();
        restart();
        const QString folder = m_home->claude(Discovery::encodeClaudeDir(path));
        QDir().mkpath(folder);
        m_window->reload();
        QCOMPARE(find<EmptyState>(m_window->detail())->message(),
                 u"No readable .jsonl session files in %1."_qs.arg(folder));
        writeSession(*m_home, {.project = path});
        m_window->reload();
        QVERIFY(m_window->sessions()->isVisible());
        QVERIFY(!find<EmptyState>(m_window->detail())->isVisible());
    }

    void theLastSessionGoneShowsTheMessage()
    {
        write({.id = u"a"_qs});
        m_window->load();
        removeSession(*m_home, project, u"a"_qs);
        m_window->reload();
        QVERIFY(find<EmptyState>(m_window->detail())->isVisible());
        QCOMPARE(m_window->summary(), u"0 sessions \u00b7 $0.00 estimated"_qs);
    }

    void aChangeOfPricesShowsAtOnce()
    {
        write({.id = u"a"_qs, .answers = {answer({.input = 1'000'000})}});
        m_window->load();
        QCOMPARE(m_window->summary(), u"1 sessions \u00b7 $15.00 estimated"_qs);
        m_window->store().setPrices(priceOf(1.5));
        QCOMPARE(m_window->summary(), u"1 sessions \u00b7 $1.50 estimated"_qs);
        QCOMPARE(text(0, Column::Cost), u"$1.50"_qs);
    }

    void aReloadKeepsSelectionCurrentRowAndPlace()
    {
        for (int i = 100; i < 400; ++i)
            write({.id = QString::number(i), .start = at(i), .prompt = promptOf(i)});
        m_window->load();
        QTableView *table = m_window->sessions();
        QCOMPARE(prompts().constFirst(), promptOf(399));
        table->verticalScrollBar()->setValue(120);
        Input::clickCell(table, 125);
        Input::clickCell(table, 123, 0, {.modifiers = Qt::ControlModifier});
        const QStringList selected = selectedPrompts();
        const QString current =
            table->currentIndex().siblingAtColumn(Column::FirstPrompt).data().toString();
        const QString top = promptAtTheTop();
        ModelSpy spy(table->model());
        for (int i = 400; i < 403; ++i) // newer ones above
            write({.id = QString::number(i), .start = at(i), .prompt = promptOf(i)});
        for (const int gone : {398, 390, 150, 100})
            removeSession(*m_home, project, QString::number(gone));
        m_window->reload();
        QCOMPARE(table->model()->rowCount(), 299);
        QCOMPARE(spy.reset.size(), 0);
        QCOMPARE(selectedPrompts(), selected);
        QCOMPARE(table->currentIndex().siblingAtColumn(Column::FirstPrompt).data().toString(),
                 current);
        QCOMPARE(promptAtTheTop(), top);
    }

    void atTheTopNewSessionsComeIntoView()
    {
        for (int i = 100; i < 200; ++i)
            write({.id = QString::number(i), .start = at(i), .prompt = promptOf(i)});
        m_window->load();
        write({.id = u"new"_qs, .start = at(500), .prompt = u"new"_qs});
        m_window->reload();
        QCOMPARE(promptAtTheTop(), u"new"_qs);
    }

    // Many sessions

    void manyRecordsAreCountedInTheBackground()
    {
        write({.id = u"small"_qs, .start = at(1)});
        writeSession(*m_home, {.project = u"/w/big"_qs, .id = u"big"_qs, .answers = many(21'000)});
        m_window->load();
        {
            const HeldBackground held;
            Input::clickCell(m_window->projects(), 1);
            QVERIFY(labelWith(m_window->detail(), u"Reading sessions\u2026"_qs));
            QVERIFY(!find<EmptyState>(m_window->detail())->isVisible());
        }
        QTRY_COMPARE(m_window->summary(), u"1 sessions \u00b7 $0.63 estimated"_qs);
        QVERIFY(m_window->sessions()->isVisible());
        QCOMPARE(text(0, Column::Input), u"42.0k"_qs);
        m_window->store().setPrices(priceOf(1'000'000));
        m_window->store().setPrices(priceOf(1));
        QTRY_COMPARE(m_window->summary(), u"1 sessions \u00b7 $0.04 estimated"_qs);
    }

    void onlyTheNewestPricesArrive()
    {
        write({.id = u"big"_qs, .answers = many(21'000)});
        m_window->load();
        QTRY_COMPARE(m_window->summary(), u"1 sessions \u00b7 $0.63 estimated"_qs);
        QLabel *summary = find<QLabel>(m_window->detail(), u"summary"_qs);
        ModelSpy spy(m_window->sessions()->model());
        {
            const HeldBackground held;
            for (int price = 1; price <= 10; ++price)
                m_window->store().setPrices(priceOf(price));
            QCOMPARE(summary->text(), u"1 sessions \u00b7 $0.63 estimated"_qs);
            QVERIFY(m_window->sessions()->isVisible());
        }
        QTRY_COMPARE(summary->text(), u"1 sessions \u00b7 $0.42 estimated"_qs);
        Background::pool().waitForDone();
        QTest::qWait(50);
        QCOMPARE(spy.changed.size(), 1);
        QCOMPARE(spy.count(), 1);
    }

    void fiftyThousandRowsAreMadeOncePerChange()
    {
        constexpr int count = 50'000;
        constexpr int patience = 60'000; // milliseconds
        write({.id = u"small"_qs});
        const QString log = writeSession(*m_home, {.project = u"/w/many"_qs});
        for (int i = 1; i < count; ++i) // every name is a session, and links are quickly made
            std::filesystem::create_hard_link(
                log.toStdString(), u"%1.%2.jsonl"_qs.arg(log.chopped(6)).arg(i).toStdString());
        m_window->load();
        std::unique_ptr<ModelSpy> spy;
        {
            const HeldBackground held;
            Input::clickCell(m_window->projects(), 1);
            spy = std::make_unique<ModelSpy>(m_window->sessions()->model());
            QCOMPARE(m_window->sessions()->model()->rowCount(), 0);
        }
        QTRY_COMPARE_WITH_TIMEOUT(m_window->summary(), u"50000 sessions \u00b7 $0.00 estimated"_qs,
                                  patience);
        QCOMPARE(spy->inserted.size() + spy->reset.size(), 1);
        QVERIFY(spy->changed.size() <= 1);

        qsizetype before = spy->count();
        scrollThrough(m_window->sessions());
        QCOMPARE(m_window->sessions()->rowAt(0), 0);
        QCOMPARE(spy->count(), before);

        spy->changed.clear();
        before = spy->count();
        m_window->store().setPrices(priceOf(1));
        QTRY_COMPARE_WITH_TIMEOUT(spy->changed.size(), 1, patience);
        QCOMPARE(spy->count(), before + 1);
        QCOMPARE(spy->changed[0][0].toModelIndex(), m_window->sessions()->model()->index(0, 0));
        QCOMPARE(spy->changed[0][1].toModelIndex(),
                 m_window->sessions()->model()->index(count - 1, Column::Cost));
    }

    void startsFollowTheTimeZone()
    {
        write({.id = u"s"_qs, .start = u"2026-03-05T10:00:00.000Z"_qs});
        m_window->load();
        // A clock that is about to strike midnight, when it is seen that the zone is another.
        const auto day = std::chrono::ceil<std::chrono::days>(currentTime());
        const auto offset = day - std::chrono::milliseconds(300) - currentTime();
        const Clock clock{.now = [offset] { return currentTime() + offset; },
                          .zone = [] { return QTimeZone::systemTimeZone(); }};
        Store &store = m_window->store();
        SessionsView view(store.projects().constFirst(), store, clock);
        view.resize(1000, 600);
        view.setVisible(true);
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        const auto *table = find<QTableView>(&view, u"sessionsTable"_qs);
        const QModelIndex start = table->model()->index(0, Column::Started);
        QVERIFY(start.data().toString().contains(u"10:00"_qs));
        QSignalSpy changes(table->model(), &QAbstractItemModel::dataChanged);
        const Journey journey("Asia/Tokyo");
        QTRY_COMPARE(changes.count(), 1);
        QVERIFY(changes.constFirst().at(0).toModelIndex() == start);
    }

    void startsAreThoseOfTheTimeZoneNow()
    {
        write({.id = u"s"_qs, .start = u"2026-03-05T10:00:00.000Z"_qs});
        m_window->load();
        QVERIFY(text(0, Column::Started).contains(u"10:00"_qs));
        const Journey journey("Asia/Tokyo");
        const QString there = text(0, Column::Started);
        QVERIFY2(there.contains(u"7:00"_qs), qPrintable(there));
    }

private:
    /// Writes a session of the project that the tests are about.
    void write(LoggedSession session)
    {
        session.project = project;
        writeSession(*m_home, session);
    }

    void restart()
    {
        m_window = std::make_unique<Window>(*m_home);
        m_window->load();
    }

    static QString promptOf(int number) { return u"prompt %1"_qs.arg(number); }

    static QList<QByteArray> many(int count)
    {
        QList<QByteArray> lines;
        for (int i = 0; i < count; ++i)
            lines.append(answer({.input = 2}));
        return lines;
    }

    QString text(int row, int column) const
    {
        return m_window->sessions()->model()->index(row, column).data().toString();
    }

    QStringList texts(int row) const
    {
        QStringList texts;
        for (int column = 0; column < Column::ColumnCount; ++column)
            texts.append(text(row, column));
        return texts;
    }

    QStringList prompts() const
    {
        QStringList texts;
        for (int row = 0; row < m_window->sessions()->model()->rowCount(); ++row)
            texts.append(text(row, Column::FirstPrompt));
        return texts;
    }

    QList<int> selectedRows() const
    {
        QList<int> rows;
        for (const QModelIndex &index : m_window->sessions()->selectionModel()->selectedRows())
            rows.append(index.row());
        std::sort(rows.begin(), rows.end());
        return rows;
    }

    QStringList selectedPrompts() const
    {
        QStringList texts;
        for (const int row : selectedRows())
            texts.append(text(row, Column::FirstPrompt));
        return texts;
    }

    QString promptAtTheTop() const
    {
        return text(m_window->sessions()->rowAt(0), Column::FirstPrompt);
    }

    /// The text that the tooltip of a cell shows.
    QString toolTip(int row, int column) const
    {
        const QTableView *table = m_window->sessions();
        const QPoint place = table->visualRect(table->model()->index(row, column)).center();
        return shownText(Input::toolTipAt(table->viewport(), place));
    }

    QImage pictureOf(int row, int column) const
    {
        const QTableView *table = m_window->sessions();
        return table->viewport()
            ->grab(table->visualRect(table->model()->index(row, column)))
            .toImage();
    }

    QHeaderView *sessionsHeader() const { return m_window->sessions()->horizontalHeader(); }

    /// Drags the right edge of a column's title.
    void dragSectionEnd(int column, int distance)
    {
        QHeaderView *header = m_window->sessions()->horizontalHeader();
        const QPoint edge(header->sectionViewportPosition(column) + header->sectionSize(column) - 1,
                          header->height() / 2);
        Input::drag(header->viewport(), edge, edge + QPoint(distance, 0));
    }

    static void scrollThrough(QTableView *table)
    {
        table->setFocus();
        for (int i = 0; i < 20; ++i)
            Input::key(Qt::Key_PageDown);
        Input::key(Qt::Key_End);
        for (int i = 0; i < 20; ++i)
            Input::key(Qt::Key_PageUp);
        for (int value = 0; value < table->verticalScrollBar()->maximum(); value += 997) {
            table->verticalScrollBar()->setValue(value);
            table->viewport()->repaint();
        }
        Input::key(Qt::Key_Home, Qt::ControlModifier);
    }

    std::unique_ptr<PrivateHome> m_home;
    std::unique_ptr<Window> m_window;
};

PLINTHAR_WINDOW_TEST_MAIN(SessionsViewTest)
#include "SessionsViewTest.moc"
