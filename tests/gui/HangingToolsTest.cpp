// SPDX-License-Identifier: GPL-3.0-or-later

// A tool that does not answer holds up its own tab and nothing else.

#include "support/Input.h"
#include "support/ReviewPage.h"
#include "support/Sessions.h"
#include "support/ToolDoubles.h"
#include "support/WindowTestMain.h"

#include <QLabel>

class HangingToolsTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup();

    void git_data();
    void git();
    void psOrLsof_data();
    void psOrLsof();

private:
    void verifyOtherTabsWork(Qt::Key back);

    std::unique_ptr<PrivateHome> m_home;
    std::unique_ptr<ToolDoubles> m_tools;
    std::unique_ptr<ReviewPage> m_page;
};

void HangingToolsTest::init()
{
    m_home = std::make_unique<PrivateHome>();
    m_tools = std::make_unique<ToolDoubles>();
    m_page = std::make_unique<ReviewPage>(*m_home);
    Repository(m_page->folder()).write(u"new.txt"_qs, "new\n");
    writeFile(m_page->folder() + u"/CLAUDE.md"_qs, "text");
    writeSession(*m_home, {.project = m_page->folder()});
    m_page->window().load();
    Input::clickCell(m_page->window().projects(), 0);
}

void HangingToolsTest::cleanup()
{
    m_page.reset();
    const QString left = m_tools->left();
    m_tools.reset();
    m_home.reset();
    QCOMPARE(left, QString());
}

/// Reads all logs again, opens a file, and goes back to the tab whose tool hung.
void HangingToolsTest::verifyOtherTabsWork(Qt::Key back)
{
    Input::key(Qt::Key_1, Qt::ControlModifier);
    m_page->window().reload();
    QCOMPARE(m_page->window().sessions()->model()->rowCount(), 1);
    Input::key(Qt::Key_5, Qt::ControlModifier);
    QTRY_COMPARE(find<QLabel>(m_page->window().detail(), u"fileLabel"_qs)->text(),
                 m_page->folder() + u"/CLAUDE.md"_qs);
    QTRY_COMPARE(m_tools->left(), QString()); // nobody waits for it any more
    Input::key(back, Qt::ControlModifier);
}

void HangingToolsTest::git_data()
{
    QTest::addColumn<QString>("command");
    QTest::newRow("from the start") << u"rev-parse"_qs;
    QTest::newRow("status") << u"status"_qs;
    QTest::newRow("diff") << u"diff"_qs;
}

void HangingToolsTest::git()
{
    QFETCH(const QString, command);
    m_tools->playGit(command, u"exec sleep 600"_qs);
    Input::key(Qt::Key_3, Qt::ControlModifier);
    QTRY_VERIFY(m_tools->begun(u"git"_qs).join(u' ').contains(command));
    verifyOtherTabsWork(Qt::Key_3);
    Input::key(Qt::Key_1, Qt::ControlModifier);
    m_tools->giveBack(u"git"_qs);
    Input::key(Qt::Key_3, Qt::ControlModifier);
    m_page->settle();
    QCOMPARE(m_page->files(), (QStringList{u"U CLAUDE.md"_qs, u"U new.txt"_qs}));
    QVERIFY(m_page->diff()->isVisible());
}

void HangingToolsTest::psOrLsof_data()
{
    QTest::addColumn<QString>("tool");
    QTest::newRow("ps") << u"ps"_qs;
    QTest::newRow("lsof") << u"lsof"_qs;
}

void HangingToolsTest::psOrLsof()
{
    QFETCH(const QString, tool);
    const QString agent = u"echo '4711 1.0 01:00 claude'"_qs;
    m_tools->play(u"ps"_qs, agent);
    m_tools->play(tool, u"exec sleep 600"_qs);
    Input::key(Qt::Key_2, Qt::ControlModifier);
    QTRY_VERIFY(!m_tools->begun(tool).isEmpty());
    QVERIFY(labelWith(m_page->window().detail(), u"Scanning\u2026"_qs));
    verifyOtherTabsWork(Qt::Key_2);
    Input::key(Qt::Key_1, Qt::ControlModifier);
    m_tools->play(u"ps"_qs, agent);
    m_tools->play(u"lsof"_qs, u"exit 1"_qs);
    Input::key(Qt::Key_2, Qt::ControlModifier);
    const auto *table = find<QTableView>(m_page->window().detail(), u"agents"_qs);
    QTRY_COMPARE(table->model()->rowCount(), 1);
}

PLINTHAR_WINDOW_TEST_MAIN(HangingToolsTest)
#include "HangingToolsTest.moc"
