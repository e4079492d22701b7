// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/Discovery.h"

#include "model/Files.h"
#include "model/Parallel.h"
#include "model/SessionParser.h"

#include <QDir>
#include <QHash>
#include <QTextBoundaryFinder>

#include <algorithm>
#include <dirent.h>
#include <filesystem>
#include <memory>
#include <optional>
#include <string_view>

namespace {

using ProjectMap = QHash<QString, Project>;

/// The names of what a folder holds and `wanted(entry)` accepts, sorted, so that the same disk
/// gives the same result on every run. (Without std::filesystem, whose paths take longer to make
/// than small logs to read.)
template <typename Wanted>
std::vector<std::string> namesIn(const std::string &folder, Wanted wanted)
{
    std::vector<std::string> names;
    const std::unique_ptr<DIR, int (*)(DIR *)> open(::opendir(folder.c_str()), ::closedir);
    while (const dirent *entry = open ? ::readdir(open.get()) : nullptr) {
        if (wanted(*entry))
            names.emplace_back(entry->d_name);
    }
    std::sort(names.begin(), names.end());
    return names;
}

bool isLogName(std::string_view name)
{
    constexpr std::string_view suffix = ".jsonl";
    return name.size() > suffix.size() && name.ends_with(suffix);
}

qsizetype firstCharacterLength(QStringView text)
{
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text.data(), text.size());
    return std::max<qsizetype>(0, finder.toNextBoundary());
}

/// A guess for a log folder without usable logs: "-" may stand for any character of the real path.
QString decodedPath(const QString &folderName)
{
    QString rest = folderName.mid(firstCharacterLength(folderName));
    return u'/' + rest.replace(u'-', u'/');
}

QString projectPathOf(const std::string &logFolder, const QString &name,
                      const std::stop_token &stop)
{
    for (const std::string &log : Discovery::logsIn(logFolder)) {
        if (stop.stop_requested())
            break;
        if (const auto folder = SessionParser::cwd(log))
            return *folder;
    }
    return decodedPath(name);
}

void insertDiscovered(ProjectMap &projects, const QString &root, const std::stop_token &stop)
{
    const std::string parent = root.toStdString() + '/';
    const std::vector<std::string> names = namesIn(parent, [](const dirent &entry) {
        const std::string_view name(entry.d_name);
        return name != "." && name != "..";
    });
    std::vector<std::optional<Project>> found(names.size());
    onAllCores(names.size(), stop, [&] {
        return [&](size_t i) {
            std::error_code error;
            if (!std::filesystem::is_directory(parent + names[i], error))
                return;
            const QString name = QString::fromStdString(names[i]);
            found[i] = Project{projectPathOf(parent + names[i], name, stop),
                               QString(root + u'/' + name), false};
        };
    });
    for (const std::optional<Project> &project : found) {
        if (project)
            projects.insert(project->path, *project);
    }
}

void insertAdded(ProjectMap &projects, const QStringList &added, const QString &root)
{
    for (const QString &path : added) {
        Project &project = projects[path];
        project.path = path;
        project.added = true;
        const QString logs = root + u'/' + Discovery::encodeClaudeDir(path);
        std::error_code error;
        if (!project.claudeDir && std::filesystem::exists(logs.toStdString(), error))
            project.claudeDir = logs;
    }
}

bool byName(const Project &a, const Project &b)
{
    const int order = a.name().toLower().compare(b.name().toLower());
    return order != 0 ? order < 0 : a.path < b.path;
}

} // namespace

namespace Discovery {

const QString &claudeProjectsRoot()
{
    static const QString root = QDir::homePath() + QStringLiteral("/.claude/projects");
    return root;
}

QString encodeClaudeDir(const QString &path)
{
    QString name;
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, path);
    qsizetype begin = 0;
    while (begin < path.size()) {
        const qsizetype end = finder.toNextBoundary();
        if (end <= begin)
            break;
        const QStringView character = QStringView(path).sliced(begin, end - begin);
        const bool pair =
            character.size() > 1 && character[0].isHighSurrogate() && character[1].isLowSurrogate();
        const char32_t first =
            pair ? QChar::surrogateToUcs4(character[0], character[1]) : character[0].unicode();
        // Some scripts write letters that take in the sign behind them, which may be a slash.
        if (QChar::isLetterOrNumber(first) && !character.contains(u'/'))
            name += character;
        else
            name += u'-';
        begin = end;
    }
    return name;
}

std::vector<std::string> logsIn(const std::string &folder)
{
    const std::string inFolder = folder + '/';
    std::vector<std::string> logs = namesIn(inFolder, [&](const dirent &entry) {
        if (!isLogName(entry.d_name))
            return false;
        // Not every file system tells the type while listing.
        const bool askFurther = entry.d_type == DT_LNK || entry.d_type == DT_UNKNOWN;
        return askFurther ? isRegularFile((inFolder + entry.d_name).c_str())
                          : entry.d_type == DT_REG;
    });
    for (std::string &log : logs)
        log.insert(0, inFolder);
    return logs;
}

QList<Project> projects(const QStringList &added, const QString &root, const std::stop_token &stop)
{
    ProjectMap found;
    insertDiscovered(found, root, stop);
    insertAdded(found, added, root);
    QList<Project> sorted = found.values();
    std::sort(sorted.begin(), sorted.end(), byName);
    return sorted;
}

} // namespace Discovery
