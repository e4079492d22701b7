// SPDX-License-Identifier: GPL-3.0-or-later

// What the user does in the Live tab.

#include "Finding.h"
#include "Patience.h"
#include "User.h"
#include "gui/LiveScreen.h"
#include "support/Input.h"

void User::requireAgents() const
{
    for (const Agent &agent : m_agents)
        require(agent.process->isRunning(), QStringLiteral("an agent ended that nobody stopped"));
}

/// Starts what is missing of three agents.
void User::startAgents()
{
    const QStringList names{QStringLiteral("claude"), QStringLiteral("codex"),
                            QStringLiteral("gemini")};
    const QByteArray temporary = qgetenv("TMPDIR");
    qputenv("TMPDIR", m_scratch.neighbourFolder().toUtf8()); // they need files of their own
    for (int i = 0; i < 3; ++i) {
        const QString name = names.at(below(3));
        const QString folder = m_scratch.projects().at(below(int(m_scratch.projects().size())));
        if (int(m_agents.size()) <= i)
            m_agents.push_back({std::make_unique<AgentDouble>(name, folder), folder});
    }
    qputenv("TMPDIR", temporary);
}

void User::stopAgent()
{
    startAgents();
    openTab(1);
    const LiveScreen::Parts live(find<LiveView>(detail()));
    if (live.onlyProject->isChecked())
        Input::clickAt(live.onlyProject, QPoint(8, 8));
    Input::key(Qt::Key_F5);
    const auto chosen = m_agents.begin() + below(int(m_agents.size()));
    AgentDouble &agent = *chosen->process;
    require(QTest::qWaitFor([&] { return live.shows(agent.pid()); }, patience),
            QStringLiteral("an agent is not shown"));
    require(live.askToStop(agent), QStringLiteral("no question, or about another process"));
    auto *question = openDialog<QMessageBox>();
    requireAgents();
    if (below(3) == 0) {
        tell(QStringLiteral("no"));
        Input::key(Qt::Key_Escape);
        return awaitNoDialog();
    }
    tell(QStringLiteral("yes"));
    QPushButton *yes = live.confirmButton(agent.pid());
    require(yes && yes->window() == question,
            QStringLiteral("the question is about another process"));
    Input::click(yes);
    require(QTest::qWaitFor([&] { return !agent.isRunning(); }, patience),
            QStringLiteral("an agent does not stop"));
    require(!live.message->isVisible(),
            QStringLiteral("an agent could not be stopped: ") + live.message->text());
    m_agents.erase(chosen);
}

void User::showOnlyProject()
{
    startAgents();
    openTab(1);
    const LiveScreen::Parts live(find<LiveView>(detail()));
    Input::clickAt(live.onlyProject, QPoint(8, 8));
    Input::key(Qt::Key_F5);
    const bool onlyOne = live.onlyProject->isChecked();
    const QString shown = m_window->store().selection().value_or(QString());
    const auto isRight = [&](const Agent &agent) {
        return live.shows(agent.process->pid()) == (!onlyOne || agent.folder == shown);
    };
    const auto areRight = [&] { return std::all_of(m_agents.begin(), m_agents.end(), isRight); };
    require(QTest::qWaitFor(areRight, patience),
            QStringLiteral("not the agents of the project are shown"));
}
