// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/SessionLoader.h"

#include "model/Discovery.h"
#include "model/SessionParser.h"

#include <QThread>

#include <algorithm>
#include <atomic>
#include <deque>
#include <limits>
#include <thread>

namespace {

namespace fs = std::filesystem;

/// One log to read, and then what it held.
struct Log {
    fs::path file;
    qsizetype project = 0; // index in the project list
    std::uintmax_t size = 0;
    std::optional<Session> session;
};

std::vector<Log> listLogs(const QList<Project> &projects, const std::stop_token &stop)
{
    std::vector<Log> logs;
    for (qsizetype i = 0; i < projects.size() && !stop.stop_requested(); ++i) {
        if (!projects[i].claudeDir)
            continue;
        for (fs::path &file : Discovery::logsIn(projects[i].claudeDir->toStdString())) {
            std::error_code error;
            const std::uintmax_t size = fs::file_size(file, error);
            logs.push_back({std::move(file), i, error ? 0 : size, std::nullopt});
        }
    }
    return logs;
}

/// A log so large that its parts are read on several cores.
struct SplitLog {
    Log *log;
    FileDescriptor file;
    std::vector<std::optional<SessionBuilder>> parts;

    void join()
    {
        const auto missing = [](const std::optional<SessionBuilder> &part) { return !part; };
        if (std::any_of(parts.cbegin(), parts.cend(), missing))
            return;
        for (size_t i = 1; i < parts.size(); ++i)
            parts.front()->append(std::move(*parts[i]));
        log->session = parts.front()->finish(QString::fromStdString(log->file.stem().string()));
    }
};

/// What one worker reads at a time: a log, or one part of a split one.
struct Task {
    Log *log;
    SplitLog *split = nullptr;
    size_t part = 0;
    std::uintmax_t begin = 0;
    std::uintmax_t size = 0;

    void run(SessionReader &reader, TimePoint now, const std::stop_token &stop) const
    {
        if (!split) {
            log->session = reader.read(log->file, now, stop);
            return;
        }
        // The last part also has what is written to the log from now on.
        const bool last = part + 1 == split->parts.size();
        const auto end = last ? std::numeric_limits<qint64>::max() : qint64(begin + size);
        split->parts[part] = reader.readPart(split->file, qint64(begin), end, now, stop);
    }
};

/// All work of one reload, in parts that differ so little that no core is left without work while
/// another one reads a huge log.
struct Plan {
    std::deque<SplitLog> splits; // which never move
    std::vector<Task> tasks;     // the largest first
};

Plan makePlan(std::vector<Log> &logs, size_t workers)
{
    constexpr std::uintmax_t smallestPart = 16 << 20; // bytes; below, splitting costs more
    std::uintmax_t total = 0;
    for (const Log &log : logs)
        total += log.size;
    const std::uintmax_t most = std::max(smallestPart, total / (4 * workers));
    Plan plan;
    for (Log &log : logs) {
        const size_t parts = size_t(log.size / most) + 1;
        if (parts == 1 || workers == 1) {
            plan.tasks.push_back({.log = &log, .size = log.size});
            continue;
        }
        SplitLog &split =
            plan.splits.emplace_back(SplitLog{&log, openRegularFile(log.file.c_str()), {}});
        if (!split.file.isOpen())
            continue;
        split.parts.resize(parts);
        const std::uintmax_t size = log.size / parts;
        for (size_t i = 0; i < parts; ++i)
            plan.tasks.push_back({&log, &split, i, i * size, size});
    }
    std::stable_sort(plan.tasks.begin(), plan.tasks.end(),
                     [](const Task &a, const Task &b) { return a.size > b.size; });
    return plan;
}

/// Reads all logs. Each worker takes the next task that nobody has taken and writes only to that
/// task's place, so that no two of them ever share anything.
void readLogs(std::vector<Log> &logs, const std::stop_token &stop)
{
    const auto cores = size_t(QThread::idealThreadCount());
    Plan plan = makePlan(logs, cores);
    std::atomic<size_t> taken = 0;
    const TimePoint now = currentTime();
    const auto work = [&plan, &taken, &stop, now] {
        SessionReader reader;
        for (size_t i = taken++; i < plan.tasks.size() && !stop.stop_requested(); i = taken++)
            plan.tasks[i].run(reader, now, stop);
    };
    {
        std::vector<std::jthread> helpers;
        for (size_t i = 1; i < std::min(plan.tasks.size(), cores); ++i)
            helpers.emplace_back(work);
        work();
    }
    for (SplitLog &split : plan.splits)
        split.join();
}

void sortNewestFirst(QList<Session> &sessions)
{
    std::stable_sort(sessions.begin(), sessions.end(),
                     [](const Session &a, const Session &b) { return a.start > b.start; });
}

} // namespace

namespace SessionLoader {

LoadedProjects load(const QStringList &added, const QString &claudeProjectsRoot,
                    const std::stop_token &stop)
{
    LoadedProjects loaded;
    loaded.projects = Discovery::projects(added, claudeProjectsRoot, stop);
    loaded.sessions = loadSessions(loaded.projects, stop);
    return loaded;
}

SessionMap loadSessions(const QList<Project> &projects, const std::stop_token &stop)
{
    std::vector<Log> logs = listLogs(projects, stop);
    readLogs(logs, stop);
    std::vector<QList<Session>> ofProject(size_t(projects.size()));
    for (Log &log : logs) {
        if (log.session)
            ofProject[size_t(log.project)].append(std::move(*log.session));
    }
    SessionMap sessions;
    for (qsizetype i = 0; i < projects.size(); ++i) {
        sortNewestFirst(ofProject[size_t(i)]);
        sessions[projects[i].path] = std::move(ofProject[size_t(i)]);
    }
    return sessions;
}

} // namespace SessionLoader
