// SPDX-License-Identifier: GPL-3.0-or-later
#include "review/GitTarget.h"

#include "review/GitCommand.h"
#include "review/GitPath.h"
#include "review/GitStatus.h"

#include <QFileInfo>

#include <algorithm>

namespace {

/// A path as git prints it between quotation marks when core.quotePath is on: one byte after the
/// other, so that it tells names apart that are the same as text.
QString quoted(const QString &path)
{
    static constexpr QStringView named = u"abtnvfr"; // from 7 on
    QString text;
    for (const char c : path.toUtf8()) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte == '"' || byte == '\\')
            text += QStringLiteral("\\") + QLatin1Char(c);
        else if (byte >= 7 && byte <= 13)
            text += QStringLiteral("\\") + named[byte - 7];
        else if (byte < 0x20 || byte >= 0x7f)
            text += QStringLiteral("\\%1").arg(byte, 3, 8, QLatin1Char('0'));
        else
            text += QLatin1Char(c);
    }
    return u'"' + text + u'"';
}

/// Bytes that are not UTF-8 have become U+FFFD in a path, which is a character that a name can
/// hold, too: then it would be another file. Whether the path is that of just one changed file, of
/// exactly this name.
bool meansOneFile(const QString &projectPath, const QString &path, const std::stop_token &stop)
{
    const QList<GitFile> files = gitStatusSnapshot(projectPath, stop).files;
    const auto sameText = std::count_if(files.begin(), files.end(),
                                        [&](const GitFile &file) { return file.path == path; });
    const ShellResult listing =
        runGit(projectPath,
               {QStringLiteral("-c"), QStringLiteral("core.quotePath=true"), QStringLiteral("-c"),
                QStringLiteral("status.relativePaths=false"), QStringLiteral("status"),
                QStringLiteral("--porcelain=v1"), QStringLiteral("-uall")},
               stop);
    const QString name = u' ' + quoted(path);
    const QStringList lines = listing.out.split(u'\n');
    const auto sameBytes = std::count_if(lines.begin(), lines.end(),
                                         [&](const QString &line) { return line.endsWith(name); });
    return sameText == 1 && sameBytes == 1;
}

GitTarget noTarget(const QString &error)
{
    GitTarget target;
    target.error = error;
    return target;
}

} // namespace

GitTarget findTarget(const QString &projectPath, const QString &path, const std::stop_token &stop)
{
    const ShellResult place =
        runGit(projectPath,
               {QStringLiteral("rev-parse"), QStringLiteral("--is-inside-work-tree"),
                QStringLiteral("--show-prefix")},
               stop);
    const QString inside = QStringLiteral("true\n");
    if (place.status != 0)
        return noTarget(place.err);
    if (!place.out.startsWith(inside))
        return noTarget(QStringLiteral("“%1” is not in a work tree.").arg(projectPath));
    if (path.contains(QChar::ReplacementCharacter) && !meansOneFile(projectPath, path, stop)) {
        return noTarget(
            QStringLiteral("The name of “%1” is not UTF-8. Git cannot be told which file is meant.")
                .arg(path));
    }
    GitTarget target;
    target.prefix = place.out.mid(inside.size()).chopped(1);
    target.top = projectPath + u'/' + QStringLiteral("../").repeated(target.prefix.count(u'/'));
    target.pathspec = GitPath::pathspec(path, target.prefix);
    return target;
}

bool isRealFolder(const QString &path)
{
    const QFileInfo info(path);
    return info.isDir() && !info.isSymLink();
}
