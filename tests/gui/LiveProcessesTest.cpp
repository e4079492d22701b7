// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/LiveScreen.h"
#include "live/LiveView.h"
#include "model/Background.h"
#include "support/GuiTestMain.h"
#include "support/SpecialFiles.h"

#include <cerrno>
#include <cstring>
#include <unistd.h>

using namespace LiveScreen;

/// The screen in the program's window, with real processes. Whatever else runs on the machine is
/// listed too; only processes that the test has started are ever asked to stop.
class LiveProcessesTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void cleanup();

    void agentsAppearWithTheirFolders();
    void onlyThisProject();
    void stopEndsTheProcess();
    void stopThatIsIgnored();
    void stopOfAProcessThatHasExited();
    void stopThatIsNotAllowed();
    void saysNo_data();
    void saysNo();
};

void LiveProcessesTest::cleanup()
{
    QVERIFY(Background::finish(std::chrono::milliseconds(patience)));
}

void LiveProcessesTest::agentsAppearWithTheirFolders()
{
    Window window;
    const Parts live = window.live();
    QVERIFY(live.view && live.view->isVisible());
    const QString elsewhere = window.folder(QStringLiteral("a  b/gr\u00fcn"));
    const AgentDouble claude(QStringLiteral("claude"), window.projectFolder());
    const AgentDouble codex =
        AgentDouble::script(QStringLiteral("node"), QStringLiteral("codex"), elsewhere);
    const AgentDouble gemini(QStringLiteral("gemini"), elsewhere);
    const AgentDouble cursor(QStringLiteral("cursor-agent"), window.projectFolder());
    const AgentDouble stranger(QStringLiteral("claudette"), window.projectFolder());
    for (const AgentDouble *each : {&claude, &codex, &gemini, &cursor})
        QTRY_VERIFY_WITH_TIMEOUT(live.shows(each->pid()), patience);
    const auto describe = [&live](const AgentDouble &process) {
        return live.text(process.pid(), LiveModel::Agent) + u' ' +
               live.text(process.pid(), LiveModel::Folder);
    };
    QCOMPARE(describe(claude), QStringLiteral("claude ") + window.projectFolder());
    QCOMPARE(describe(codex), QStringLiteral("codex ") + elsewhere);
    QCOMPARE(describe(gemini), QStringLiteral("gemini ") + elsewhere);
    QCOMPARE(describe(cursor), QStringLiteral("cursor-agent ") + window.projectFolder());
    QVERIFY(!live.shows(stranger.pid()));
    QVERIFY(!live.shows(::getpid()));
    QVERIFY(live.summaryCounts());
    QVERIFY(!live.message->isVisible());
}

void LiveProcessesTest::onlyThisProject()
{
    Window window;
    const Parts live = window.live();
    const AgentDouble inside(QStringLiteral("claude"), window.projectFolder());
    const AgentDouble below(QStringLiteral("codex"), window.folder(QStringLiteral("my project/x")));
    const AgentDouble alike(QStringLiteral("gemini"), window.folder(QStringLiteral("my project2")));
    for (const AgentDouble *each : {&inside, &below, &alike})
        QTRY_VERIFY_WITH_TIMEOUT(live.shows(each->pid()), patience);
    QTest::mouseClick(live.onlyProject, Qt::LeftButton, {},
                      QPoint(8, live.onlyProject->height() / 2));
    QVERIFY(live.onlyProject->isChecked());
    // Of whatever else runs on this machine nothing works in the test's own folder.
    QCOMPARE(live.shownRows(), 2);
    QVERIFY(live.shows(inside.pid()));
    QVERIFY(live.shows(below.pid()));
    QVERIFY(live.summaryCounts());
}

void LiveProcessesTest::stopEndsTheProcess()
{
    Window window;
    const Parts live = window.live();
    const AgentDouble agent(QStringLiteral("claude"), window.projectFolder());
    const AgentDouble bystander(QStringLiteral("claude"), window.projectFolder());
    QTRY_VERIFY_WITH_TIMEOUT(live.shows(agent.pid()) && live.shows(bystander.pid()), patience);
    QVERIFY(live.askToStop(agent));
    QTest::qWait(50);
    QVERIFY(agent.isRunning()); // a question is no signal
    QVERIFY(live.confirm(agent));
    QTRY_VERIFY_WITH_TIMEOUT(!agent.isRunning(), patience);
    QTRY_VERIFY_WITH_TIMEOUT(!live.shows(agent.pid()), patience);
    QVERIFY(live.shows(bystander.pid()));
    QVERIFY(bystander.isRunning());
    QVERIFY(!live.message->isVisible());
    QVERIFY(!live.dialog());
}

void LiveProcessesTest::stopThatIsIgnored()
{
    Window window;
    const Parts live = window.live();
    const AgentDouble agent(QStringLiteral("codex"), window.projectFolder(),
                            {QStringLiteral("--ignore-term")});
    QTRY_VERIFY_WITH_TIMEOUT(live.shows(agent.pid()), patience);
    QVERIFY(live.askToStop(agent));
    QVERIFY(live.confirm(agent));
    QTest::qWait(5000); // two more scans, and no other signal
    QVERIFY(agent.isRunning());
    QVERIFY(live.shows(agent.pid()));
    QVERIFY(!live.message->isVisible()); // the signal was sent
    QVERIFY(live.askToStop(agent));      // and may be sent again
}

void LiveProcessesTest::stopOfAProcessThatHasExited()
{
    Window window;
    const Parts live = window.live();
    AgentDouble agent(QStringLiteral("gemini"), window.projectFolder());
    const AgentDouble other(QStringLiteral("claude"), window.projectFolder());
    QTRY_VERIFY_WITH_TIMEOUT(live.shows(agent.pid()) && live.shows(other.pid()), patience);
    QVERIFY(live.askToStop(agent));
    agent.end();
    QVERIFY(live.confirm(agent));
    const QString expected = QStringLiteral("Could not stop PID %1: %2")
                                 .arg(agent.pid())
                                 .arg(QString::fromLocal8Bit(std::strerror(ESRCH)));
    QCOMPARE(live.message->text(), expected);
    QVERIFY(live.message->isVisible());
    QVERIFY(!live.dialog());
    // It goes with a scan, and the message stays through scans ...
    QTRY_VERIFY_WITH_TIMEOUT(!live.shows(agent.pid()), patience);
    QTest::qWait(2500);
    QVERIFY(live.message->isVisible());
    // ... until a stop succeeds.
    QVERIFY(live.askToStop(other));
    QVERIFY(live.message->isVisible());
    QVERIFY(live.confirm(other));
    QVERIFY(!live.message->isVisible());
    QTRY_VERIFY_WITH_TIMEOUT(!other.isRunning(), patience);
}

void LiveProcessesTest::stopThatIsNotAllowed()
{
    if (::geteuid() != 0)
        QSKIP("only root can start a process of another user");
    Window window;
    const Parts live = window.live();
    const AgentDouble agent(QStringLiteral("claude"), window.projectFolder(),
                            {QStringLiteral("--user=12345")});
    QTRY_VERIFY_WITH_TIMEOUT(live.shows(agent.pid()), patience);
    QVERIFY(live.askToStop(agent));
    {
        const Unprivileged nobody;
        QVERIFY(live.confirm(agent));
    }
    QCOMPARE(live.message->text(), QStringLiteral("Could not stop PID %1: %2")
                                       .arg(agent.pid())
                                       .arg(QString::fromLocal8Bit(std::strerror(EPERM))));
    QVERIFY(agent.isRunning());
}

void LiveProcessesTest::saysNo_data()
{
    QTest::addColumn<QString>("how");
    for (const char *how : {"escape", "return", "space", "button", "close"})
        QTest::newRow(how) << QString::fromLatin1(how);
}

void LiveProcessesTest::saysNo()
{
    QFETCH(const QString, how);
    Window window;
    const Parts live = window.live();
    const AgentDouble agent(QStringLiteral("claude"), window.projectFolder());
    QTRY_VERIFY_WITH_TIMEOUT(live.shows(agent.pid()), patience);
    QVERIFY(live.askToStop(agent));
    QMessageBox *dialog = live.dialog();
    dialog->activateWindow();
    QTRY_COMPARE_WITH_TIMEOUT(QApplication::activeWindow(), dialog, patience);
    if (how == u"escape")
        QTest::keyClick(dialog, Qt::Key_Escape);
    else if (how == u"return") // the default button is the one that does nothing
        QTest::keyClick(dialog, Qt::Key_Return);
    else if (how == u"space")
        QTest::keyClick(dialog->focusWidget(), Qt::Key_Space);
    else if (how == u"button")
        QTest::mouseClick(dialog->button(QMessageBox::Cancel), Qt::LeftButton);
    else
        dialog->close();
    QTRY_VERIFY_WITH_TIMEOUT(!live.dialog(), patience);
    QTest::qWait(100);
    QVERIFY(agent.isRunning());
    QVERIFY(!live.message->isVisible());
    QVERIFY(live.askToStop(agent)); // one can be asked again
}

PLINTHAR_GUI_TEST_MAIN(LiveProcessesTest)
#include "LiveProcessesTest.moc"
