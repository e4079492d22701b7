// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ProjectDetail.h"

#include "context/ContextView.h"
#include "live/LiveView.h"
#include "review/ReviewView.h"
#include "support/Input.h"
#include "support/Sessions.h"
#include "support/Window.h"
#include "support/WindowTestMain.h"
#include "usage/SessionsView.h"
#include "usage/UsageView.h"

#include <QLabel>
#include <QLayout>
#include <QPointer>
#include <QSignalSpy>
#include <QTabBar>

namespace {

/// What stands in the page of a tab; nothing while the tab's screen has not been made.
QWidget *screenOf(const QTabWidget *tabs, int tab)
{
    const QLayoutItem *item = tabs->widget(tab)->layout()->itemAt(0);
    return item ? item->widget() : nullptr;
}

} // namespace

class ProjectDetailTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_home = std::make_unique<PrivateHome>();
        writeSession(*m_home, {.project = u"/w/a"_qs});
        m_window = std::make_unique<Window>(*m_home);
        m_window->load();
    }

    void cleanup()
    {
        m_window.reset();
        m_home.reset();
    }

    void hasItsFiveTabsInOrder()
    {
        const QTabWidget *tabs = m_window->tabs();
        QCOMPARE(tabs->count(), 5);
        const QList<QPair<QString, QString>> expected{{u"Sessions"_qs, u"list.bullet.rectangle"_qs},
                                                      {u"Live"_qs, u"waveform.path.ecg"_qs},
                                                      {u"Review"_qs, u"checkmark.seal"_qs},
                                                      {u"Usage"_qs, u"chart.bar"_qs},
                                                      {u"Context"_qs, u"doc.text"_qs}};
        for (int i = 0; i < 5; ++i) {
            QCOMPARE(tabs->tabText(i), expected[i].first);
            QCOMPARE(tabs->tabIcon(i).name(), expected[i].second);
            QVERIFY(tabs->tabToolTip(i).contains(QString::number(i + 1)));
        }
    }

    void opensOnSessions()
    {
        QCOMPARE(m_window->tabs()->currentIndex(), 0);
        QVERIFY(qobject_cast<SessionsView *>(screenOf(m_window->tabs(), 0)));
    }

    void makesAScreenWhenItsTabIsShown()
    {
        QTabWidget *tabs = m_window->tabs();
        for (int tab = 1; tab < 5; ++tab)
            QVERIFY(!screenOf(tabs, tab));
        clickTab(3);
        QCOMPARE(tabs->currentIndex(), 3);
        QVERIFY(screenOf(tabs, 3) && screenOf(tabs, 3)->isVisible());
        for (const int tab : {1, 2, 4})
            QVERIFY(!screenOf(tabs, tab));
    }

    void keepsAScreenWhileTheProjectStays()
    {
        QTabWidget *tabs = m_window->tabs();
        const QPointer<QWidget> sessions = screenOf(tabs, 0);
        clickTab(1);
        const QPointer<QWidget> live = screenOf(tabs, 1);
        clickTab(0);
        clickTab(1);
        QVERIFY(sessions && live);
        QCOMPARE(screenOf(tabs, 0), sessions.data());
        QCOMPARE(screenOf(tabs, 1), live.data());
    }

    void controlAndADigitShowsATab()
    {
        const QTabWidget *tabs = m_window->tabs();
        for (const int tab : {4, 2, 0, 1, 3}) {
            Input::key(Qt::Key(Qt::Key_1 + tab), Qt::ControlModifier);
            QCOMPARE(tabs->currentIndex(), tab);
            QVERIFY(screenOf(tabs, tab)->isVisible());
        }
    }

    void theDigitsServeTheProjectThatIsShown()
    {
        writeSession(*m_home, {.project = u"/w/b"_qs});
        m_window->reload();
        Input::clickCell(m_window->projects(), 1);
        Input::key(Qt::Key_5, Qt::ControlModifier); // before the old detail has been deleted
        QCOMPARE(m_window->tabs()->currentIndex(), 4);
        QVERIFY(labelWith(m_window->detail(), u"/w/b"_qs));
    }

    void anotherProjectEndsTheScreensOfTheOneBefore()
    {
        writeSession(*m_home, {.project = u"/w/b"_qs});
        m_window->reload();
        clickTab(1);
        const QPointer<QWidget> live = screenOf(m_window->tabs(), 1);
        QVERIFY(live && live->isVisible());
        Input::clickCell(m_window->projects(), 1);
        QVERIFY(!live || !live->isVisible()); // so that nothing is looked for any more
        QTRY_VERIFY(!live);
        QCOMPARE(m_window->tabs()->currentIndex(), 0);
        QVERIFY(!screenOf(m_window->tabs(), 1));
    }

    void theArrowKeysWalkTheTabs()
    {
        QTabBar *bar = m_window->tabs()->tabBar();
        bar->setFocus();
        Input::key(Qt::Key_Right);
        QCOMPARE(m_window->tabs()->currentIndex(), 1);
        Input::key(Qt::Key_Left);
        QCOMPARE(m_window->tabs()->currentIndex(), 0);
    }

    void everyTabShowsItsOwnScreen()
    {
        const QTabWidget *tabs = m_window->tabs();
        for (int tab = 1; tab < 5; ++tab)
            clickTab(tab);
        QVERIFY(qobject_cast<SessionsView *>(screenOf(tabs, 0)));
        QVERIFY(qobject_cast<LiveView *>(screenOf(tabs, 1)));
        QVERIFY(qobject_cast<ReviewView *>(screenOf(tabs, 2)));
        QVERIFY(qobject_cast<UsageView *>(screenOf(tabs, 3)));
        QVERIFY(qobject_cast<ContextView *>(screenOf(tabs, 4)));
    }

    void f5ReloadsOnlyWhereSessionsAreShown()
    {
        QSignalSpy finished(&m_window->store(), &Store::reloadFinished);
        Input::key(Qt::Key_F5);
        QTRY_COMPARE(finished.size(), 1);
        clickTab(1);
        Input::key(Qt::Key_F5);
        QTest::qWait(50);
        QCOMPARE(finished.size(), 1);
        clickTab(0);
        Input::key(Qt::Key_F5);
        QTRY_COMPARE(finished.size(), 2);
    }

    void theSubtitleIsShownWholeWhereItIsCut()
    {
        QLabel *path = find<QLabel>(m_window->detail(), u"projectPath"_qs);
        QCOMPARE(path->text(), u"/w/a"_qs);
        QCOMPARE(Input::toolTipAt(path, QPoint(2, 2)), QString());
        const QString longPath = u"/w"_qs + u"/long"_qs.repeated(40);
        writeSession(*m_home, {.project = longPath});
        m_window->reload();
        m_window->store().setSelection(longPath);
        path = find<QLabel>(m_window->detail(), u"projectPath"_qs);
        QVERIFY(Input::toolTipAt(path, QPoint(2, 2)).contains(longPath));
    }

private:
    void clickTab(int tab)
    {
        QTabBar *bar = m_window->tabs()->tabBar();
        Input::clickAt(bar, bar->tabRect(tab).center());
    }

    std::unique_ptr<PrivateHome> m_home;
    std::unique_ptr<Window> m_window;
};

PLINTHAR_WINDOW_TEST_MAIN(ProjectDetailTest)
#include "ProjectDetailTest.moc"
