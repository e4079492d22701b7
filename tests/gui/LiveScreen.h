// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/ContentView.h"
#include "live/LiveModel.h"
#include "live/LiveView.h"
#include "model/Store.h"
#include "support/AgentDouble.h"
#include "support/PrivateHome.h"
#include "ui/EmptyState.h"
#include "ui/TableView.h"
#include "ui/TextLabel.h"

#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QFileInfo>
#include <QMessageBox>
#include <QMutex>
#include <QPushButton>
#include <QSemaphore>
#include <QTabWidget>
#include <QTest>

#include <atomic>
#include <memory>

/// The Live tab as a user and a test find it, with what really runs or with what a test states.
namespace LiveScreen {

constexpr int patience = 60'000;
constexpr qint32 nobodysPid = 2'000'000'000; // beyond what Linux gives to processes

/// What a test says is running, instead of what is.
class StatedAgents {
public:
    ScanLoop::Scanner scanner()
    {
        return [state = m_state](const std::stop_token &) {
            ++state->begun;
            if (state->held)
                state->gate.acquire();
            const QMutexLocker lock(&state->mutex);
            ++state->ended;
            return Scan{state->agents, bootTicks()};
        };
    }
    void state(const QList<AgentProcess> &agents)
    {
        const QMutexLocker lock(&m_state->mutex);
        m_state->agents = agents;
    }
    /// From now on every scan waits for letGo().
    void hold() { m_state->held = true; }
    void letGo() { m_state->gate.release(); }
    int begun() const { return m_state->begun; }
    int ended() const { return m_state->ended; }

private:
    struct State {
        QMutex mutex;
        QList<AgentProcess> agents;
        QSemaphore gate;
        std::atomic<bool> held = false;
        std::atomic<int> begun = 0;
        std::atomic<int> ended = 0;
    };
    std::shared_ptr<State> m_state = std::make_shared<State>();
};

inline AgentProcess agent(int number, const QString &folder = QStringLiteral("/src/app"))
{
    return {nobodysPid + number, QStringLiteral("claude"), folder, 1.0, QStringLiteral("00:01")};
}

inline QList<AgentProcess> agents(int count)
{
    QList<AgentProcess> list;
    for (int i = 0; i < count; ++i)
        list.append(agent(i));
    return list;
}

/// The screen, and what a user finds on it.
struct Parts {
    explicit Parts(QWidget *live)
        : view(live)
        , table(live->findChild<TableView *>(QStringLiteral("agents")))
        , summary(live->findChild<TextLabel *>(QStringLiteral("summary")))
        , message(live->findChild<TextLabel *>(QStringLiteral("message")))
        , onlyProject(live->findChild<QCheckBox *>())
    {
    }

    /// The row of a process; -1 without one.
    int row(qint32 pid) const
    {
        const QModelIndexList found =
            table->model()->match(table->model()->index(0, LiveModel::Pid), Qt::DisplayRole,
                                  QString::number(pid), 1, Qt::MatchExactly);
        return found.isEmpty() ? -1 : found.constFirst().row();
    }
    bool shows(qint32 pid) const { return table->isVisible() && row(pid) >= 0; }
    QString text(qint32 pid, int column) const
    {
        return table->model()->index(row(pid), column).data().toString();
    }
    int shownRows() const { return table->isVisible() ? table->model()->rowCount() : 0; }
    QString emptyTitle() const
    {
        const QList<EmptyState *> states = view->findChildren<EmptyState *>();
        for (const EmptyState *state : states)
            if (state->isVisible())
                return state->title();
        return {};
    }
    bool summaryCounts() const
    {
        return summary->text() ==
               QStringLiteral("%1 running \u00b7 refreshes every 2s").arg(shownRows());
    }
    QMessageBox *dialog() const
    {
        const QList<QMessageBox *> all =
            view->findChildren<QMessageBox *>(QStringLiteral("stopDialog"));
        for (QMessageBox *each : all)
            if (each->isVisible())
                return each;
        return nullptr;
    }

    void makeCurrent(qint32 pid, int column = LiveModel::Agent) const
    {
        table->setFocus();
        table->setCurrentIndex(table->model()->index(row(pid), column));
    }
    void click(qint32 pid, int column) const
    {
        const QModelIndex index = table->model()->index(row(pid), column);
        table->scrollTo(index);
        QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, table->visualRect(index).center());
    }
    /// Presses Stop in the row of a process that the test has started, and makes sure that the
    /// question is about that one.
    bool askToStop(const AgentDouble &process) const
    {
        if (!shows(process.pid()))
            return false;
        click(process.pid(), LiveModel::Stop);
        return confirmButton(process.pid()) != nullptr;
    }
    QPushButton *confirmButton(qint32 pid) const
    {
        QMessageBox *asking = dialog();
        auto *button =
            asking ? asking->findChild<QPushButton *>(QStringLiteral("sendSigterm")) : nullptr;
        const QString expected = QStringLiteral("Send SIGTERM to PID %1").arg(pid);
        return button && button->text() == expected ? button : nullptr;
    }
    bool confirm(const AgentDouble &process) const
    {
        QPushButton *button = confirmButton(process.pid());
        if (!button)
            return false;
        QTest::mouseClick(button, Qt::LeftButton);
        return true;
    }

    QWidget *view;
    TableView *table;
    TextLabel *summary;
    TextLabel *message;
    QCheckBox *onlyProject;
};

/// The program's window with one project, on its Live tab.
class Window {
public:
    Window() : m_projectFolder(folder(QStringLiteral("my project"))), m_view(m_store)
    {
        m_view.show();
        m_store.addProject(m_projectFolder);
        m_view.activateWindow();
        const auto isShown = [this] {
            const auto *view = m_view.findChild<LiveView *>();
            if (view && view->isVisible())
                return true;
            if (QApplication::activeWindow() == &m_view && m_view.findChild<QTabWidget *>())
                QTest::keyClick(&m_view, Qt::Key_2, Qt::ControlModifier);
            return false;
        };
        if (!QTest::qWaitFor(isShown, patience))
            qFatal("no window");
    }

    QString folder(const QString &name)
    {
        const QString path = QFileInfo(m_home.path()).canonicalFilePath() + u'/' + name;
        QDir().mkpath(path);
        return path;
    }
    const QString &projectFolder() const { return m_projectFolder; }
    Parts live() { return Parts(m_view.findChild<LiveView *>()); }

private:
    PrivateHome m_home;
    QString m_projectFolder;
    Store m_store;
    ContentView m_view;
};

/// The screen on its own, with what the test states.
class Screen {
public:
    explicit Screen(const QList<AgentProcess> &found = {})
    {
        stated.state(found);
        view = std::make_unique<LiveView>(Project{QStringLiteral("/src/app"), std::nullopt, false},
                                          stated.scanner());
        view->resize(900, 500);
    }
    /// Shows it and waits for the first result.
    Parts shown()
    {
        view->show();
        Parts parts(view.get());
        view->activateWindow();
        const auto isReady = [&] {
            return QApplication::activeWindow() == view.get() &&
                   parts.emptyTitle() != u"Scanning\u2026";
        };
        if (!QTest::qWaitFor(isReady, patience))
            qFatal("no result");
        return parts;
    }
    /// Lets the screen look again at once, and waits until it has.
    void refresh(const QList<AgentProcess> &found)
    {
        stated.state(found);
        const int before = stated.ended();
        Parts parts(view.get());
        // A mark that comes only with this result.
        parts.summary->setText(QString());
        QTest::keyClick(view.get(), Qt::Key_F5);
        if (!QTest::qWaitFor(
                [&] { return stated.ended() > before && !parts.summary->text().isEmpty(); },
                patience))
            qFatal("no new result");
    }

    StatedAgents stated;
    std::unique_ptr<LiveView> view;
};

} // namespace LiveScreen
