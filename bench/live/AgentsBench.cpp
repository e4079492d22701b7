// SPDX-License-Identifier: GPL-3.0-or-later

// The Live tab with very many agents that really run, in the real window: the longest time that the
// interface thread is away from its event loop while the list is brought up to date.

#include "interface/OpenWindow.h"
#include "support/BenchOptions.h"
#include "support/ScratchHome.h"

#include <QAbstractItemView>
#include <QDir>
#include <QFile>

#include <csignal>
#include <cstdio>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

/// Processes that look like agents and sleep, until their owner is gone.
class SleepingAgents {
public:
    SleepingAgents(int count, const QString &folder)
    {
        const QString link = folder + QStringLiteral("/claude");
        QFile::link(QStringLiteral("/usr/bin/sleep"), link);
        QByteArray program = QFile::encodeName(link);
        QByteArray seconds = "900";
        char *arguments[] = {program.data(), seconds.data(), nullptr};
        for (int i = 0; i < count; ++i) {
            pid_t pid = 0;
            if (::posix_spawn(&pid, program, nullptr, nullptr, arguments, environ) == 0)
                m_pids.push_back(pid);
        }
    }
    ~SleepingAgents()
    {
        for (const pid_t pid : m_pids)
            ::kill(pid, SIGKILL);
        for (const pid_t pid : m_pids)
            ::waitpid(pid, nullptr, 0);
    }
    SleepingAgents(const SleepingAgents &) = delete;
    SleepingAgents &operator=(const SleepingAgents &) = delete;

    int count() const { return static_cast<int>(m_pids.size()); }

private:
    std::vector<pid_t> m_pids;
};

int shownAgents(const OpenWindow &open)
{
    const auto *table = open.shown<QAbstractItemView>(QStringLiteral("agents"));
    return table ? table->model()->rowCount() : 0;
}

/// The longest stretches of some refreshes, which follow one another by themselves.
std::vector<BusyProbe::Stretch> measureRefreshes(const OpenWindow &open, int rounds)
{
    const auto *table = open.shown<QAbstractItemView>(QStringLiteral("agents"));
    int changes = 0;
    const auto connection = QObject::connect(table->model(), &QAbstractItemModel::dataChanged,
                                             table, [&changes] { ++changes; });
    std::vector<BusyProbe::Stretch> longest;
    for (int round = 0; round < rounds; ++round) {
        changes = 0;
        longest.push_back(longestBusy([] {}, [&changes] { return changes > 0; }));
    }
    QObject::disconnect(connection);
    return longest;
}

} // namespace

int main(int argc, char **argv)
{
    const ScratchHome home;
    home.enter();
    BusyProbe::prepare();
    const QApplication application(argc, argv);
    BenchOptions options(QStringLiteral("Measures the Live tab with very many agents that run."));
    options.addNumber(QStringLiteral("agents"), QStringLiteral("Agents."), 1000);
    options.addNumber(QStringLiteral("rounds"), QStringLiteral("Refreshes."), 5);
    options.process(application);
    const SleepingAgents agents(int(options.number(QStringLiteral("agents"))), QDir::homePath());
    if (!BusyProbe::works() || agents.count() == 0) {
        std::fprintf(stderr, "the probe or the agents do not work\n");
        return 1;
    }
    Store(home.claudeProjects()).addProject(QDir::homePath());
    OpenWindow open(home.claudeProjects());
    const BusyProbe::Stretch opening = longestBusy(
        [&] { open.show(Tab::Live); }, [&] { return shownAgents(open) >= agents.count(); });
    const auto refreshes = measureRefreshes(open, int(options.number(QStringLiteral("rounds"))));
    Report report(QStringLiteral("Live tab with %1 agents that run, %2")
                      .arg(agents.count())
                      .arg(QGuiApplication::platformName()));
    addLongestBusy(report, QStringLiteral("opening the tab"), {opening});
    addLongestBusy(report, QStringLiteral("refresh of all rows"), refreshes);
    return options.finish(report);
}
