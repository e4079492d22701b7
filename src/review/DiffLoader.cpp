// SPDX-License-Identifier: GPL-3.0-or-later
#include "review/DiffLoader.h"

#include "review/DiffParser.h"
#include "review/GitCommand.h"
#include "review/GitPath.h"
#include "review/GitTarget.h"

#include <QFileInfo>
#include <QTemporaryDir>

#include <algorithm>

namespace {

bool isBinaryNote(const QString &text)
{
    return text.contains(u"Binary files") || text.contains(u"GIT binary patch");
}

/// Whether a line of the text begins like this.
bool hasLine(const QString &text, QStringView start)
{
    return text.startsWith(start) || text.contains(u'\n' + start.toString());
}

/// Whether this is a diff in git's own form. The user's configuration can put another program's
/// output in its place, or a log of the submodule's commits; colour every line, which then begins
/// with an escape code; or leave out the blank of an empty line of context. In git's own form no
/// line is empty.
bool isPlainDiff(const QString &text)
{
    return hasLine(text, u"@@") && !hasLine(text, u"\x1b") && !text.contains(u"\n\n");
}

/// Whether it is about more than one file. When a file has become something else (a link, say) it
/// has two headers, which are the same. A submodule's may be shown as those of the files in it.
bool isAboutOtherFiles(const QString &text)
{
    if (!text.startsWith(u"diff --git "))
        return false;
    const QString mark = QStringLiteral("\ndiff --git ");
    const QStringView header = QStringView(text).left(text.indexOf(u'\n') + 1);
    for (qsizetype next = text.indexOf(mark); next >= 0; next = text.indexOf(mark, next + 1)) {
        if (!QStringView(text).mid(next + 1).startsWith(header))
            return true;
    }
    return false;
}

/// The text without the file headers behind the first hunk: a file that has become something else
/// has two, and the lines of the second would pass for lines of the hunk before.
QString withoutLaterHeaders(const QString &text)
{
    const QString header = QStringLiteral("\ndiff --git ");
    const QString hunk = QStringLiteral("\n@@");
    qsizetype cut = text.indexOf(header, std::max<qsizetype>(text.indexOf(hunk), 0));
    if (cut < 0 || !hasLine(text, u"@@"))
        return text;
    QString rest;
    qsizetype kept = 0;
    while (cut >= 0) {
        rest += QStringView(text).mid(kept, cut - kept);
        const qsizetype next = text.indexOf(hunk, cut + 1);
        kept = next < 0 ? text.size() : next;
        cut = text.indexOf(header, kept);
    }
    rest += QStringView(text).mid(kept);
    return rest;
}

/// A diff as git makes it of these arguments. Configured as the user likes it; only when that
/// cannot be read, without any of it.
ShellResult readableDiff(const QString &projectPath, const QStringList &arguments,
                         const std::stop_token &stop)
{
    ShellResult diff = runGit(projectPath, QStringList{QStringLiteral("diff")} + arguments, stop);
    if (diff.out.isEmpty() || diff.isCut || isBinaryNote(diff.out) || isPlainDiff(diff.out))
        return diff;
    const QStringList plain{QStringLiteral("-c"),
                            QStringLiteral("diff.suppressBlankEmpty=false"),
                            QStringLiteral("diff"),
                            QStringLiteral("--no-color"),
                            QStringLiteral("--no-ext-diff"),
                            QStringLiteral("--no-textconv"),
                            QStringLiteral("--submodule=short")};
    return runGit(projectPath, plain + arguments, stop);
}

ShellResult untrackedDiff(const QString &projectPath, const GitTarget &target, const QString &path,
                          const std::stop_token &stop)
{
    const QString there = target.top + path;
    if (path.endsWith(u'/') || isRealFolder(there))
        return {}; // git would compare with a file in it that is called null
    const QString file = GitPath::fromProject(path, target.prefix);
    const auto diff = [&](const QString &nothing) {
        return readableDiff(
            projectPath, {QStringLiteral("--no-index"), QStringLiteral("--"), nothing, file}, stop);
    };
    if (!QFileInfo(there).isDir())
        return diff(QStringLiteral("/dev/null"));
    // A link to a folder, where git would do the same, unless the other side is a folder, too.
    const QTemporaryDir empty;
    return diff(empty.path());
}

ShellResult trackedDiff(const QString &projectPath, const GitTarget &target, const QString &path,
                        bool hasHead, const std::stop_token &stop)
{
    QStringList arguments{hasHead ? QStringLiteral("HEAD") : QStringLiteral("--cached"),
                          QStringLiteral("--"), target.pathspec};
    if (!path.startsWith(target.prefix)) // with diff.relative there would be nothing to see
        arguments.prepend(QStringLiteral("--no-relative"));
    ShellResult diff = readableDiff(projectPath, arguments, stop);
    if (!isAboutOtherFiles(diff.out))
        return diff;
    return readableDiff(projectPath, arguments + QStringList{GitPath::nothingBelow(path)}, stop);
}

ShellResult diffOf(const QString &projectPath, const GitFile &file, bool hasHead,
                   const std::stop_token &stop)
{
    const GitTarget target = findTarget(projectPath, file.path, stop);
    if (!target.error.isEmpty())
        return {};
    if (file.isUntracked())
        return untrackedDiff(projectPath, target, file.path, stop);
    return trackedDiff(projectPath, target, file.path, hasHead, stop);
}

} // namespace

QString diffText(const QString &projectPath, const GitFile &file, bool hasHead,
                 const std::stop_token &stop)
{
    return diffOf(projectPath, file, hasHead, stop).out;
}

LoadedDiff readDiff(const QString &text)
{
    if (isBinaryNote(text))
        return {{}, QStringLiteral("Binary file")};
    return {DiffParser::parse(withoutLaterHeaders(text)), std::nullopt};
}

LoadedDiff loadDiff(const QString &projectPath, const std::optional<GitFile> &file, bool hasHead,
                    const std::stop_token &stop)
{
    if (!file)
        return {};
    const ShellResult diff = diffOf(projectPath, *file, hasHead, stop);
    if (stop.stop_requested())
        return {};
    if (diff.isCut)
        return {{}, QStringLiteral("This diff is larger than 64 MB")};
    return readDiff(diff.out);
}
