// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/SessionLoader.h"

#include "model/Discovery.h"
#include "model/SessionParser.h"

#include <QThread>

#include <algorithm>
#include <atomic>
#include <numeric>
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

/// Reads all logs. Each worker takes the next log that nobody has taken and writes only to that
/// log's place, so that no two of them ever share anything.
void readLogs(std::vector<Log> &logs, const std::stop_token &stop)
{
    std::vector<size_t> largestFirst(logs.size());
    std::iota(largestFirst.begin(), largestFirst.end(), size_t(0));
    std::stable_sort(largestFirst.begin(), largestFirst.end(),
                     [&logs](size_t a, size_t b) { return logs[a].size > logs[b].size; });
    std::atomic<size_t> taken = 0;
    const TimePoint now = currentTime();
    const auto work = [&logs, &largestFirst, &taken, &stop, now] {
        SessionReader reader;
        for (size_t i = taken++; i < largestFirst.size() && !stop.stop_requested(); i = taken++) {
            Log &log = logs[largestFirst[i]];
            log.session = reader.read(log.file, now, stop);
        }
    };
    const auto workers = std::min<size_t>(logs.size(), size_t(QThread::idealThreadCount()));
    std::vector<std::jthread> helpers;
    for (size_t i = 1; i < workers; ++i)
        helpers.emplace_back(work);
    work();
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
