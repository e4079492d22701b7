// SPDX-License-Identifier: GPL-3.0-or-later
#include "review/GitStatus.h"

#include "review/GitCommand.h"

#include <QTextBoundaryFinder>

#include <algorithm>
#include <array>
#include <optional>

namespace {

constexpr qsizetype columns = 3; // X, Y and a blank

/// Where the characters that a reader sees begin, for the first few of a text and, after these, its
/// end if it has no more.
std::array<qsizetype, columns + 1> characterStarts(QStringView text)
{
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text.data(), text.size());
    std::array<qsizetype, columns + 1> starts = {};
    for (size_t i = 1; i < starts.size(); ++i) {
        const qsizetype next = finder.toNextBoundary();
        starts[i] = next < 0 ? text.size() : next;
    }
    return starts;
}

QChar column(QStringView character)
{
    return character.size() == 1 ? character.front() : QChar(QChar::ReplacementCharacter);
}

/// The columns as git prints them are ASCII. Characters are counted from behind them, so that a
/// path that begins with a combining character stays whole, which the blank before would take away.
bool hasPlainColumns(QStringView entry)
{
    return std::all_of(entry.begin(), entry.begin() + columns,
                       [](QChar unit) { return unit.unicode() < 0x80 && unit != u'\r'; });
}

std::optional<GitFile> fileOf(QStringView entry)
{
    if (entry.size() <= columns)
        return std::nullopt;
    if (hasPlainColumns(entry))
        return GitFile{entry.mid(columns).toString(), entry[0], entry[1]};
    const auto starts = characterStarts(entry);
    if (starts[columns] >= entry.size())
        return std::nullopt;
    return GitFile{entry.mid(starts[columns]).toString(), column(entry.first(starts[1])),
                   column(entry.mid(starts[1], starts[2] - starts[1]))};
}

/// Whether the next entry is the path that this one comes from. After `git add -N` a rename stands
/// in the column of the work tree.
bool hasSource(const GitFile &file)
{
    const auto moved = [](QChar status) { return status == u'R' || status == u'C'; };
    return moved(file.x) || moved(file.y);
}

} // namespace

QList<GitFile> parseStatus(const QString &text)
{
    QList<GitFile> files;
    const QStringView all(text);
    qsizetype begin = 0;
    bool isSource = false;
    while (begin < all.size()) {
        qsizetype end = all.indexOf(QChar::Null, begin);
        if (end < 0)
            end = all.size();
        const QStringView entry = all.mid(begin, end - begin);
        begin = end + 1;
        if (std::exchange(isSource, false))
            continue;
        if (std::optional<GitFile> file = fileOf(entry)) {
            isSource = hasSource(*file);
            files.append(*std::move(file));
        }
    }
    return files;
}

GitSnapshot gitStatusSnapshot(const QString &projectPath, const std::stop_token &stop)
{
    const auto git = [&](const QStringList &arguments) {
        return runGit(projectPath, arguments, stop);
    };
    GitSnapshot snapshot;
    const ShellResult workTree =
        git({QStringLiteral("rev-parse"), QStringLiteral("--is-inside-work-tree")});
    snapshot.isRepo = workTree.status == 0;
    if (!snapshot.isRepo)
        return snapshot;
    const ShellResult head =
        git({QStringLiteral("rev-parse"), QStringLiteral("--verify"), QStringLiteral("HEAD")});
    snapshot.hasHead = head.status == 0;
    ShellResult status = git({QStringLiteral("status"), QStringLiteral("--porcelain=v1"),
                              QStringLiteral("-z"), QStringLiteral("-uall")});
    if (status.isCut) // in the middle of a name, which could be that of another file
        status.out.truncate(status.out.lastIndexOf(QChar::Null) + 1);
    snapshot.isCut = status.isCut;
    snapshot.files = parseStatus(status.out);
    return snapshot;
}
