// SPDX-License-Identifier: GPL-3.0-or-later
#include "live/LiveView.h"

#include "gui/LiveScreen.h"
#include "model/Background.h"
#include "support/GuiTestMain.h"

#include <QAccessible>
#include <QClipboard>
#include <QHeaderView>
#include <QLabel>
#include <QScrollBar>
#include <QSignalSpy>

#include <cerrno>
#include <cstring>

using namespace LiveScreen;

/// The screen on its own, with agents that the test states.
class LiveViewTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void cleanup();

    void dialogTexts();
    void dialogLeavesRoomForItsTexts();
    void dialogTakesNothingForMarkup();
    void scanningThenNothing();
    void filterRefiltersAtOnce();
    void unknownFolderIsNotInTheProject();
    void nothingIsScannedWhileHidden();
    void scanInFlightIsDroppedWhenHidden();
    void comingBackScansAgain();
    void refreshKey();
    void mayGoDuringAScan();
    void selectionAndScrollSurviveARefresh();
    void aRefreshDoesNotFlicker();
    void openDialogSurvivesARefresh();
    void keysAskToo_data();
    void keysAskToo();
    void clicksThatDoNotAsk();
    void cells();
    void columnWidths();
    void copy();
    void accessibility();
};

void LiveViewTest::cleanup()
{
    QVERIFY(Background::finish(std::chrono::milliseconds(patience)));
}

void LiveViewTest::dialogTexts()
{
    Screen screen({agent(7, QStringLiteral("/my projects/x"))});
    const Parts live = screen.shown();
    live.click(nobodysPid + 7, LiveModel::Stop);
    QMessageBox *dialog = live.dialog();
    QVERIFY(dialog);
    QCOMPARE(dialog->windowTitle(), QStringLiteral("Stop claude?"));
    QCOMPARE(dialog->text(), QStringLiteral("Stop claude?"));
    QCOMPARE(dialog->informativeText(),
             QStringLiteral("claude in /my projects/x will be asked to terminate."));
    QVERIFY(live.confirmButton(nobodysPid + 7));
    QCOMPARE(dialog->buttons().size(), 2);
    auto *cancel = qobject_cast<QPushButton *>(dialog->button(QMessageBox::Cancel));
    QVERIFY(cancel);
    QVERIFY(cancel->isDefault());
    QCOMPARE(dialog->defaultButton(), cancel);
    QCOMPARE(dialog->escapeButton(), static_cast<QAbstractButton *>(cancel));
}

void LiveViewTest::dialogLeavesRoomForItsTexts()
{
    const QString deep = QStringLiteral("/a folder").repeated(30);
    for (const QString &folder : {QStringLiteral("/src"), deep}) {
        Screen screen({agent(7, folder)});
        const Parts live = screen.shown();
        live.click(nobodysPid + 7, LiveModel::Stop);
        const QMessageBox *dialog = live.dialog();
        QVERIFY(dialog);
        const QPushButton *button = live.confirmButton(nobodysPid + 7);
        QVERIFY(button);
        QVERIFY(button->width() >=
                button->fontMetrics().horizontalAdvance(button->text()) + 2 * 10);
        QVERIFY(dialog->width() < 600); // a long folder makes it higher, not wider
        const QList<QLabel *> labels = dialog->findChildren<QLabel *>();
        for (const QLabel *label : labels)
            if (label->isVisible())
                QVERIFY(label->height() >= label->heightForWidth(label->width()));
    }
}

void LiveViewTest::dialogTakesNothingForMarkup()
{
    const QString folder = QStringLiteral("/tmp/<b>bold</b> &amp; <img src=x>");
    Screen screen({agent(7, folder)});
    const Parts live = screen.shown();
    live.click(nobodysPid + 7, LiveModel::Stop);
    QMessageBox *dialog = live.dialog();
    QVERIFY(dialog);
    const QList<QLabel *> labels = dialog->findChildren<QLabel *>();
    bool found = false;
    for (const QLabel *label : labels) {
        QCOMPARE(label->textFormat(), Qt::PlainText);
        found |= label->text().contains(folder);
    }
    QVERIFY(found);
    QVERIFY(live.table->model()
                ->index(0, LiveModel::Folder)
                .data(Qt::ToolTipRole)
                .toString()
                .contains(folder.toHtmlEscaped()));
}

void LiveViewTest::scanningThenNothing()
{
    Screen screen;
    screen.stated.hold();
    screen.view->show();
    const Parts live(screen.view.get());
    QTRY_COMPARE_WITH_TIMEOUT(screen.stated.begun(), 1, patience);
    QCOMPARE(live.emptyTitle(), QStringLiteral("Scanning\u2026"));
    QVERIFY(live.summaryCounts());
    screen.stated.letGo();
    QTRY_COMPARE_WITH_TIMEOUT(live.emptyTitle(), QStringLiteral("No agents running"), patience);
    for (const EmptyState *state : screen.view->findChildren<EmptyState *>()) {
        QCOMPARE(state->icon(), QStringLiteral("moon.zzz"));
        QCOMPARE(state->message(), QStringLiteral("Running claude, codex, gemini and cursor-agent "
                                                  "processes will show up here."));
    }
    screen.stated.letGo();
}

void LiveViewTest::filterRefiltersAtOnce()
{
    Screen screen({agent(1), agent(2, QStringLiteral("/src/app/below")),
                   agent(3, QStringLiteral("/src/app2"))});
    const Parts live = screen.shown();
    QCOMPARE(live.shownRows(), 3);
    QVERIFY(live.summaryCounts());
    const int scans = screen.stated.begun();
    live.onlyProject->setFocus();
    QTest::keyClick(live.onlyProject, Qt::Key_Space);
    QCOMPARE(live.shownRows(), 2);
    QVERIFY(live.summaryCounts());
    QTest::keyClick(live.onlyProject, Qt::Key_Space);
    QCOMPARE(live.shownRows(), 3);
    QVERIFY(screen.stated.begun() <= scans + 1); // that of the loop, if its time has come

    QTest::keyClick(live.onlyProject, Qt::Key_Space);
    screen.refresh({agent(3, QStringLiteral("/src/app2"))});
    QCOMPARE(live.emptyTitle(), QStringLiteral("No agents running"));
    QVERIFY(live.summaryCounts());
}

void LiveViewTest::unknownFolderIsNotInTheProject()
{
    Screen screen({agent(1, QStringLiteral("\u2014"))});
    const Parts live = screen.shown();
    QCOMPARE(live.text(nobodysPid + 1, LiveModel::Folder), QStringLiteral("\u2014"));
    QTest::keyClick(live.onlyProject, Qt::Key_Space);
    QCOMPARE(live.shownRows(), 0);
}

void LiveViewTest::nothingIsScannedWhileHidden()
{
    StatedAgents stated;
    QTabWidget tabs;
    auto *live = new LiveView(Project(), stated.scanner());
    tabs.addTab(new QWidget, QStringLiteral("other"));
    tabs.addTab(live, QStringLiteral("Live"));
    tabs.show();
    QTest::qWait(100);
    QCOMPARE(stated.begun(), 0); // made, and not yet shown

    tabs.setCurrentIndex(1);
    QTRY_COMPARE_WITH_TIMEOUT(stated.ended(), 1, patience);
    tabs.setCurrentIndex(0);
    QTest::qWait(2500);
    const int afterLeaving = stated.begun();
    QVERIFY(afterLeaving <= 1);

    tabs.setCurrentIndex(1);
    QTRY_COMPARE_WITH_TIMEOUT(stated.ended(), afterLeaving + 1, patience);
    tabs.close(); // with the tab in front
    QTest::qWait(2500);
    QCOMPARE(stated.begun(), afterLeaving + 1);
    tabs.show();
    QTRY_VERIFY_WITH_TIMEOUT(stated.ended() >= afterLeaving + 2, patience);
}

void LiveViewTest::scanInFlightIsDroppedWhenHidden()
{
    Screen screen(agents(3));
    screen.stated.hold();
    screen.view->show();
    const Parts live(screen.view.get());
    QTRY_COMPARE_WITH_TIMEOUT(screen.stated.begun(), 1, patience);
    screen.view->hide();
    screen.stated.letGo();
    QTRY_COMPARE_WITH_TIMEOUT(screen.stated.ended(), 1, patience);
    QTest::qWait(100);
    QCOMPARE(live.table->model()->rowCount(), 0);
    screen.view->show();
    QCOMPARE(live.emptyTitle(), QStringLiteral("Scanning\u2026"));
    screen.stated.letGo();
    QTRY_COMPARE_WITH_TIMEOUT(live.shownRows(), 3, patience);
}

void LiveViewTest::comingBackScansAgain()
{
    Screen screen(agents(2));
    const Parts live = screen.shown();
    QCOMPARE(live.shownRows(), 2);
    screen.view->hide();
    screen.stated.state({agent(9)});
    screen.view->show();
    QCOMPARE(live.shownRows(), 2); // what was known stands until the result is there
    QTRY_COMPARE_WITH_TIMEOUT(live.shownRows(), 1, patience);
    QVERIFY(live.shows(nobodysPid + 9));
}

void LiveViewTest::refreshKey()
{
    Screen screen(agents(1));
    const Parts live = screen.shown();
    for (int count = 2; count < 12; ++count) {
        screen.refresh(agents(count));
        QCOMPARE(live.shownRows(), count);
    }
}

void LiveViewTest::mayGoDuringAScan()
{
    Screen screen(agents(2));
    screen.stated.hold();
    screen.view->show();
    QTRY_COMPARE_WITH_TIMEOUT(screen.stated.begun(), 1, patience);
    screen.view.reset();
    screen.stated.letGo();
    QTRY_COMPARE_WITH_TIMEOUT(screen.stated.ended(), 1, patience);
    QTest::qWait(50);
}

void LiveViewTest::selectionAndScrollSurviveARefresh()
{
    QList<AgentProcess> list = agents(60);
    Screen screen(list);
    const Parts live = screen.shown();
    live.makeCurrent(nobodysPid + 30, LiveModel::Folder);
    live.table->selectRow(live.row(nobodysPid + 30));
    live.table->verticalScrollBar()->setValue(25);
    const int scrolled = live.table->verticalScrollBar()->value();
    QVERIFY(scrolled > 0);

    // Others come, go and change places, and the one that is selected changes.
    list.swapItemsAt(2, 50);
    list.removeAt(40);
    list.append(agent(100));
    list.swapItemsAt(30, 10);
    list[10].uptime = QStringLiteral("99:99");
    screen.refresh(list);
    QCOMPARE(live.shownRows(), 60);
    const QModelIndexList selected = live.table->selectionModel()->selectedRows(LiveModel::Pid);
    QCOMPARE(selected.size(), 1);
    QCOMPARE(selected.constFirst().data().toString(), QString::number(nobodysPid + 30));
    QCOMPARE(selected.constFirst().row(), 10);
    QCOMPARE(live.table->currentIndex().row(), 10);
    QCOMPARE(live.text(nobodysPid + 30, LiveModel::Uptime), QStringLiteral("99:99"));
    QCOMPARE(live.table->verticalScrollBar()->value(), scrolled);
}

void LiveViewTest::aRefreshDoesNotFlicker()
{
    // What a view would have to build anew, or show the user in between, does not happen.
    QList<AgentProcess> list = agents(30);
    Screen screen(list);
    const Parts live = screen.shown();
    const QSignalSpy resets(live.table->model(), &QAbstractItemModel::modelReset);
    const QSignalSpy removals(live.table->model(), &QAbstractItemModel::rowsRemoved);
    const QSignalSpy insertions(live.table->model(), &QAbstractItemModel::rowsInserted);
    const QSignalSpy pages(live.table->parentWidget(), SIGNAL(currentChanged(int)));
    for (AgentProcess &each : list)
        each.uptime = QStringLiteral("00:03");
    list[7].cpu = 99;
    list.move(7, 0);
    screen.refresh(list);
    QCOMPARE(live.text(nobodysPid + 7, LiveModel::Cpu), QStringLiteral("99.0%"));
    QCOMPARE(live.row(nobodysPid + 7), 0);
    QCOMPARE(live.text(nobodysPid + 29, LiveModel::Uptime), QStringLiteral("00:03"));
    QCOMPARE(resets.size() + removals.size() + insertions.size() + pages.size(), 0);
}

void LiveViewTest::openDialogSurvivesARefresh()
{
    Screen screen({agent(1), agent(2)});
    const Parts live = screen.shown();
    live.click(nobodysPid + 2, LiveModel::Stop);
    QMessageBox *dialog = live.dialog();
    QVERIFY(dialog);
    // The loop goes on below the dialog: order, folder and existence change.
    screen.stated.state({agent(5), agent(2, QStringLiteral("/moved")), agent(1)});
    QTRY_COMPARE_WITH_TIMEOUT(live.shownRows(), 3, patience);
    screen.stated.state({});
    QTRY_COMPARE_WITH_TIMEOUT(live.shownRows(), 0, patience);
    QCOMPARE(live.dialog(), dialog);
    QCOMPARE(dialog->informativeText(),
             QStringLiteral("claude in /src/app will be asked to terminate."));
    // Nobody has that number, so that the signal reaches nobody.
    QPushButton *button = live.confirmButton(nobodysPid + 2);
    QVERIFY(button);
    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(live.message->text(), QStringLiteral("Could not stop PID %1: %2")
                                       .arg(nobodysPid + 2)
                                       .arg(QString::fromLocal8Bit(std::strerror(ESRCH))));
    QCOMPARE(live.message->tone(), TextLabel::Tone::Error);
    QVERIFY(live.message->font().pointSizeF() < live.summary->font().pointSizeF());
}

void LiveViewTest::keysAskToo_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::addColumn<int>("column");
    QTest::newRow("delete") << Qt::Key_Delete << int(LiveModel::Agent);
    QTest::newRow("return") << Qt::Key_Return << int(LiveModel::Folder);
    QTest::newRow("enter") << Qt::Key_Enter << int(LiveModel::Agent);
    QTest::newRow("space on the button") << Qt::Key_Space << int(LiveModel::Stop);
}

void LiveViewTest::keysAskToo()
{
    QFETCH(const Qt::Key, key);
    QFETCH(const int, column);
    Screen screen(agents(3));
    const Parts live = screen.shown();
    live.makeCurrent(nobodysPid, column);
    QTest::keyClick(live.table, Qt::Key_Down);
    QTest::keyClick(live.table, key);
    QVERIFY(live.confirmButton(nobodysPid + 1));
    QTest::keyClick(live.dialog(), Qt::Key_Escape);
    QVERIFY(!live.dialog());
}

void LiveViewTest::clicksThatDoNotAsk()
{
    Screen screen(agents(3));
    const Parts live = screen.shown();
    for (const int column :
         {LiveModel::Agent, LiveModel::Pid, LiveModel::Folder, LiveModel::Uptime})
        live.click(nobodysPid + 1, column);
    const QModelIndex cell = live.table->model()->index(1, LiveModel::Folder);
    QTest::mouseDClick(live.table->viewport(), Qt::LeftButton, {},
                       live.table->visualRect(cell).center());
    QVERIFY(!live.dialog());
    const auto centre = [&live](int row) {
        return live.table->visualRect(live.table->model()->index(row, LiveModel::Stop)).center();
    };
    QTest::mouseClick(live.table->viewport(), Qt::RightButton, {}, centre(0));
    QVERIFY(!live.dialog());
    // Pressed on one button and let go on another.
    QTest::mousePress(live.table->viewport(), Qt::LeftButton, {}, centre(0));
    QTest::mouseMove(live.table->viewport(), centre(2));
    QTest::mouseRelease(live.table->viewport(), Qt::LeftButton, {}, centre(2));
    QVERIFY(!live.dialog());
    // Another row has come under the pointer meanwhile.
    QTest::mousePress(live.table->viewport(), Qt::LeftButton, {}, centre(0));
    screen.refresh({agent(2), agent(1), agent(0)});
    QTest::mouseRelease(live.table->viewport(), Qt::LeftButton, {}, centre(0));
    QVERIFY(!live.dialog());
    QTest::mouseClick(live.table->viewport(), Qt::LeftButton, {}, centre(0));
    QVERIFY(live.confirmButton(nobodysPid + 2));
}

void LiveViewTest::cells()
{
    const AgentProcess one{nobodysPid, QStringLiteral("cursor-agent"), QStringLiteral("/a b/c"),
                           12.34, QStringLiteral("1-02:03:04")};
    Screen screen({one});
    const Parts live = screen.shown();
    QStringList titles;
    QStringList texts;
    for (int column = 0; column < LiveModel::ColumnCount; ++column) {
        titles += live.table->model()->headerData(column, Qt::Horizontal).toString();
        texts += live.text(one.pid, column);
    }
    QCOMPARE(titles.join(u'|'), QStringLiteral("Agent|PID|Folder|CPU|Uptime|"));
    QCOMPARE(texts.join(u'|'), QStringLiteral("cursor-agent|2000000000|/a b/c|12.3%|1-02:03:04|"));
    const auto font = [&live](int column) {
        return live.table->model()->index(0, column).data(Qt::FontRole).value<QFont>();
    };
    QVERIFY(font(LiveModel::Agent).bold());
    for (const int column : {LiveModel::Pid, LiveModel::Cpu, LiveModel::Uptime}) {
        const QFontMetricsF metrics(font(column));
        for (const QChar digit : QStringLiteral("123456789"))
            QCOMPARE(metrics.horizontalAdvance(digit), metrics.horizontalAdvance(u'0'));
    }
}

void LiveViewTest::columnWidths()
{
    Screen screen(agents(1));
    const Parts live = screen.shown();
    const QHeaderView *header = live.table->horizontalHeader();
    const QList<int> least{100, 60, 0, 60, 90, 60};
    for (int column = 0; column < LiveModel::ColumnCount; ++column)
        QVERIFY(header->sectionSize(column) >= least[column]);
    // The folder takes what is left, and nothing lies beyond the window.
    const int fixed = header->length() - header->sectionSize(LiveModel::Folder);
    QCOMPARE(header->length(), live.table->viewport()->width());
    screen.view->resize(1200, 500);
    QTRY_COMPARE(header->length(), live.table->viewport()->width());
    QCOMPARE(header->length() - header->sectionSize(LiveModel::Folder), fixed);
}

void LiveViewTest::copy()
{
    Screen screen(agents(2));
    const Parts live = screen.shown();
    live.makeCurrent(nobodysPid + 1);
    QTest::keyClick(live.table, Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QGuiApplication::clipboard()->text(),
             QStringLiteral("claude\t2000000001\t/src/app\t1.0%\t00:01\n"));
}

void LiveViewTest::accessibility()
{
    Screen screen(agents(2));
    const Parts live = screen.shown();
    QAccessibleInterface *table = QAccessible::queryAccessibleInterface(live.table);
    QVERIFY(table);
    QCOMPARE(table->text(QAccessible::Name), QStringLiteral("Running agents"));
    QVERIFY(table->tableInterface());
    const auto name = [table](int row, int column) {
        return table->tableInterface()->cellAt(row, column)->text(QAccessible::Name);
    };
    QCOMPARE(name(1, LiveModel::Agent), QStringLiteral("claude"));
    QCOMPARE(name(1, LiveModel::Folder), QStringLiteral("/src/app"));
    QCOMPARE(name(1, LiveModel::Stop), QStringLiteral("Stop"));
    QCOMPARE(table->tableInterface()->columnDescription(LiveModel::Agent), QStringLiteral("Agent"));
    QVERIFY(live.table->currentIndex().isValid());
    const QVariant hint =
        live.table->model()->headerData(LiveModel::Cpu, Qt::Horizontal, Qt::ToolTipRole);
    QVERIFY(hint.toString().contains(QStringLiteral("Average")));
}

PLINTHAR_GUI_TEST_MAIN(LiveViewTest)
#include "LiveViewTest.moc"
