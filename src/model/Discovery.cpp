// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/Discovery.h"

#include "model/SessionParser.h"

#include <QDir>
#include <QHash>
#include <QTextBoundaryFinder>

#include <algorithm>

namespace {

namespace fs = std::filesystem;

using ProjectMap = QHash<QString, Project>;

fs::path toFsPath(const QString &path)
{
    return path.toStdString();
}

QString toQString(const fs::path &path)
{
    return QString::fromStdString(path.string());
}

/// What a folder holds, by name, so that the same disk gives the same result on every run.
std::vector<fs::path> entriesOf(const fs::path &folder)
{
    std::vector<fs::path> entries;
    std::error_code error;
    for (fs::directory_iterator it(folder, error), end; !error && it != end; it.increment(error))
        entries.push_back(it->path());
    std::sort(entries.begin(), entries.end());
    return entries;
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

QString projectPathOf(const fs::path &logFolder, const std::stop_token &stop)
{
    for (const fs::path &log : Discovery::logsIn(logFolder)) {
        if (stop.stop_requested())
            break;
        if (const auto folder = SessionParser::cwd(log))
            return *folder;
    }
    return decodedPath(toQString(logFolder.filename()));
}

void insertDiscovered(ProjectMap &projects, const QString &root, const std::stop_token &stop)
{
    for (const fs::path &entry : entriesOf(toFsPath(root))) {
        std::error_code error;
        if (stop.stop_requested() || !fs::is_directory(entry, error))
            continue;
        const QString path = projectPathOf(entry, stop);
        projects.insert(path, Project{path, toQString(entry), false});
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
        if (!project.claudeDir && fs::exists(toFsPath(logs), error))
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
        const bool pair = character.size() > 1 && character[0].isHighSurrogate();
        const char32_t first =
            pair ? QChar::surrogateToUcs4(character[0], character[1]) : character[0].unicode();
        if (QChar::isLetterOrNumber(first))
            name += character;
        else
            name += u'-';
        begin = end;
    }
    return name;
}

std::vector<fs::path> logsIn(const fs::path &folder)
{
    std::vector<fs::path> logs = entriesOf(folder);
    std::erase_if(logs, [](const fs::path &path) { return path.extension() != ".jsonl"; });
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
