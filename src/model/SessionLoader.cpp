// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/SessionLoader.h"

#include "model/Discovery.h"
#include "model/Files.h"
#include "model/Parallel.h"
#include "model/SessionParser.h"

#include <QThread>

#include <algorithm>
#include <iterator>
#include <limits>
#include <string>

namespace {

/// One log to read, and then what it held.
struct Log {
    std::string file;
    qsizetype project = 0; // index in the project list
    bool isLarge = false;
    std::optional<Session> session;
};

constexpr qint64 large = 16 << 20; // bytes; sharing less among the cores gains nothing
constexpr qint64 toTheEnd = std::numeric_limits<qint64>::max();

/// All logs of the projects, in the order of the projects and of the logs' names.
std::vector<Log> listLogs(const QList<Project> &projects, const std::stop_token &stop)
{
    std::vector<std::vector<Log>> ofProject(size_t(projects.size()));
    onAllCores(ofProject.size(), stop, [&] {
        return [&](size_t i) {
            const std::optional<QString> &folder = projects[qsizetype(i)].claudeDir;
            if (!folder)
                return;
            for (std::string &file : Discovery::logsIn(folder->toStdString()))
                ofProject[i].push_back({std::move(file), qsizetype(i), false, std::nullopt});
        };
    });
    std::vector<Log> logs;
    for (std::vector<Log> &some : ofProject)
        std::move(some.begin(), some.end(), std::back_inserter(logs));
    return logs;
}

/// A session is named after its log: the file's name without its extension.
QString idOf(const Log &log)
{
    const QString name = lastPathComponent(QString::fromStdString(log.file)).toString();
    return name.left(name.lastIndexOf(u'.'));
}

/// Reads a log, unless it is large and there are other cores to share it with.
void readUnlessLarge(Log &log, SessionReader &reader, TimePoint now, const std::stop_token &stop)
{
    const FileDescriptor file = openSeenFile(log.file.c_str());
    log.isLarge = QThread::idealThreadCount() > 1 && sizeOf(file) >= large;
    if (log.isLarge)
        return;
    if (auto session = reader.readPart(file, 0, toTheEnd, now, stop))
        log.session = session->finish(idOf(log));
}

/// Reads a log in parts on all cores. So many parts that no core is without work for long.
void readTogether(Log &log, TimePoint now, const std::stop_token &stop)
{
    const FileDescriptor file = openSeenFile(log.file.c_str());
    std::vector<std::optional<SessionBuilder>> parts(size_t(16 * QThread::idealThreadCount()));
    const qint64 size = sizeOf(file) / qint64(parts.size());
    onAllCores(parts.size(), stop, [&] {
        return [&, reader = SessionReader()](size_t i) mutable {
            const qint64 begin = qint64(i) * size;
            // The last part also has what is written to the log from now on.
            const qint64 end = i + 1 == parts.size() ? toTheEnd : begin + size;
            parts[i] = reader.readPart(file, begin, end, now, stop);
        };
    });
    if (std::all_of(parts.cbegin(), parts.cend(), [](const auto &part) { return bool(part); })) {
        for (size_t i = 1; i < parts.size(); ++i)
            parts.front()->append(std::move(*parts[i]));
        log.session = parts.front()->finish(idOf(log));
    }
}

/// Reads all logs. Every core writes to its own log's place only, so that no two share anything.
void readLogs(std::vector<Log> &logs, const std::stop_token &stop, ReloadProgress &progress)
{
    const TimePoint now = currentTime();
    onAllCores(logs.size(), stop, [&] {
        return [&, reader = SessionReader()](size_t i) mutable {
            readUnlessLarge(logs[i], reader, now, stop);
            progress.logsRead += logs[i].isLarge ? 0 : 1;
        };
    });
    for (Log &log : logs) {
        if (log.isLarge && !stop.stop_requested()) {
            readTogether(log, now, stop);
            ++progress.logsRead;
        }
    }
}

void sortNewestFirst(QList<Session> &sessions)
{
    std::stable_sort(sessions.begin(), sessions.end(),
                     [](const Session &a, const Session &b) { return a.start > b.start; });
}

} // namespace

namespace SessionLoader {

LoadedProjects load(const QStringList &added, const QString &claudeProjectsRoot,
                    const std::stop_token &stop, ReloadProgress *progress)
{
    LoadedProjects loaded;
    loaded.projects = Discovery::projects(added, claudeProjectsRoot, stop);
    loaded.sessions = loadSessions(loaded.projects, stop, progress);
    return loaded;
}

SessionMap loadSessions(const QList<Project> &projects, const std::stop_token &stop,
                        ReloadProgress *progress)
{
    ReloadProgress unseen;
    ReloadProgress &told = progress ? *progress : unseen;
    std::vector<Log> logs = listLogs(projects, stop);
    told.logsFound = qsizetype(logs.size());
    readLogs(logs, stop, told);
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
