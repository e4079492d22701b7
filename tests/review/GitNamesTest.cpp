// SPDX-License-Identifier: GPL-3.0-or-later

// Whatever a changed file is called and wherever the project's folder lies: what is approved,
// rejected or shown is this file and no other. All names of the list lie in one work tree and are
// changed together, so that each has every other one to be confused with.

#include "app/Environment.h"
#include "review/DiffLoader.h"
#include "review/GitActions.h"
#include "review/GitStatus.h"
#include "review/Repository.h"
#include "support/TestMain.h"

#include <QTemporaryDir>

#include <algorithm>
#include <memory>

namespace {

/// Where the project's folder lies.
enum class Place { Top, SubFolder, LinkedWorktree, SubFolderOfLinkedWorktree };

/// What is done to every file before one of them is acted on.
enum class Change {
    Untracked,
    Modified,
    Staged,
    StagedAndModified,
    Deleted,
    Added,
    AddedAndModified
};

QStringList names()
{
    return {// taken for patterns, and what they would match
            QStringLiteral("*"), QStringLiteral("*.md"), QStringLiteral("a.md"),
            QStringLiteral("?"), QStringLiteral("q"), QStringLiteral("[id].tsx"),
            QStringLiteral("i.tsx"), QStringLiteral("d.tsx"), QStringLiteral("pages/[id]/x"),
            QStringLiteral("pages/i/x"), QStringLiteral("back\\slash"), QStringLiteral("backslash"),
            QStringLiteral("b\\[ack"), QStringLiteral("\\*"), QStringLiteral("[!a]"),
            QStringLiteral("**/x"), QStringLiteral("{a,b}"),
            // taken for the magic of pathspecs
            QStringLiteral(":odd"), QStringLiteral("odd"), QStringLiteral(":(top)x"),
            QStringLiteral("x"), QStringLiteral(":/x"), QStringLiteral(":!x"),
            QStringLiteral(":^x"), QStringLiteral(":(icase)X"), QStringLiteral("X"),
            QStringLiteral(":(top,literal)x"), QStringLiteral(":(exclude)x"),
            // taken for options, revisions and files of the system
            QStringLiteral("-dash"), QStringLiteral("--"), QStringLiteral("-"),
            QStringLiteral("-f"), QStringLiteral("--all"), QStringLiteral("HEAD"),
            QStringLiteral("main"), QStringLiteral("@"), QStringLiteral("null"),
            QStringLiteral("dev/null"),
            // twins in a folder of the same name as the project's
            QStringLiteral("f"), QStringLiteral("sub/f"), QStringLiteral("sub/sub/f"),
            // blanks, quotes, controls
            QStringLiteral("with blank"), QStringLiteral(" leading"), QStringLiteral("trailing "),
            QStringLiteral("quote\"d"), QStringLiteral("single'd"), QStringLiteral("tab\there"),
            QStringLiteral("line\nfeed"), QStringLiteral("\nfirst"), QStringLiteral("last\n"),
            QStringLiteral("return\r"), QStringLiteral("control\x01"), QStringLiteral("old -> new"),
            QStringLiteral("$HOME"), QStringLiteral("`true`"), QStringLiteral("#hash"),
            QStringLiteral("~tilde"), QStringLiteral("%41"), QStringLiteral("A  x"),
            // beyond ASCII
            QStringLiteral("\u00e9.txt"), QStringLiteral("e\u0301.txt"),
            QStringLiteral("\u0301combining"), QStringLiteral("combining"),
            QStringLiteral("\U0001F469\u200D\U0001F469\u200D\U0001F467.txt"),
            QStringLiteral("\u65e5\u672c\u8a9e"), QStringLiteral("\u202Ertl"),
            QStringLiteral("\uFEFFmark"), QStringLiteral("\uFFFD")};
}

bool inSubFolder(Place place)
{
    return place == Place::SubFolder || place == Place::SubFolderOfLinkedWorktree;
}

/// Beside and below a project in a folder there are twins of what is in it.
QStringList paths(Place place)
{
    if (!inSubFolder(place))
        return names();
    QStringList all;
    for (const QString &name : names())
        all.append(QStringLiteral("sub/") + name);
    for (const char *twin : {"*", "[id].tsx", "i.tsx", ":odd", ":(top)x", "x", "-dash", "-", "f"}) {
        const QString name = QString::fromLatin1(twin);
        all.append({name, QStringLiteral("sub/sub/") + name});
    }
    all.removeDuplicates();
    return all;
}

QByteArray oldContent(const QString &path)
{
    return "old " + path.toUtf8().toHex() + '\n';
}

QByteArray newContent(const QString &path)
{
    return "new " + path.toUtf8().toHex() + '\n';
}

void writeAll(const Repository &repository, const QStringList &all,
              QByteArray (*content)(const QString &))
{
    for (const QString &path : all)
        repository.write(path, content(path));
}

void stageAll(const Repository &repository)
{
    repository.git({QStringLiteral("add"), QStringLiteral("-A")});
}

void change(const Repository &repository, const QStringList &all, Change how)
{
    switch (how) {
    case Change::Untracked:
        writeAll(repository, all, newContent);
        return;
    case Change::Added:
    case Change::AddedAndModified:
        writeAll(repository, all, how == Change::Added ? newContent : oldContent);
        stageAll(repository);
        if (how == Change::AddedAndModified)
            writeAll(repository, all, newContent);
        return;
    default:
        writeAll(repository, all, oldContent);
        repository.commitAll();
    }
    if (how == Change::Deleted) {
        for (const QString &path : all)
            repository.remove(path);
        return;
    }
    writeAll(repository, all, newContent);
    if (how != Change::Modified)
        stageAll(repository);
    if (how == Change::StagedAndModified) {
        for (const QString &path : all)
            repository.write(path, newContent(path) + "more\n");
    }
}

/// The text of one side, when all of the file is in the diff.
QByteArray sideOf(const LoadedDiff &diff, DiffSide side)
{
    QByteArray text;
    for (const DiffRow &row : diff.rows) {
        const auto *line = std::get_if<DiffLine>(&row.content);
        if (line && (*line)[side].num)
            text += (*line)[side].text.toUtf8() + '\n';
    }
    return text;
}

/// A work tree with a project in it.
struct Fixture {
    explicit Fixture(Place place, bool hasHead)
    {
        const Repository main(folder.filePath(QStringLiteral("main")));
        if (hasHead)
            main.commitAll();
        QString top = main.path();
        if (place == Place::LinkedWorktree || place == Place::SubFolderOfLinkedWorktree) {
            top = folder.filePath(QStringLiteral("linked"));
            main.git(
                {QStringLiteral("worktree"), QStringLiteral("add"), QStringLiteral("-q"), top});
        }
        repository = std::make_unique<Repository>(top);
        project = inSubFolder(place) ? top + QStringLiteral("/sub") : top;
    }

    QTemporaryDir folder;
    std::unique_ptr<Repository> repository;
    QString project;
};

void addRow(Place place, Change how, bool hasHead = true, bool backwards = false)
{
    static const char *const placeNames[] = {"top", "sub-folder", "linked worktree",
                                             "sub-folder of a linked worktree"};
    static const char *const changeNames[] = {"untracked",           "modified", "staged",
                                              "staged and modified", "deleted",  "added",
                                              "added and modified"};
    QTest::addRow("%s, %s%s%s", changeNames[static_cast<int>(how)],
                  placeNames[static_cast<int>(place)], hasHead ? "" : ", no commit",
                  backwards ? ", backwards" : "")
        << place << how << hasHead << backwards;
}

/// Every change at the top, and of each kind of command one everywhere else.
void addRows(const QList<Change> &changes)
{
    QTest::addColumn<Place>("place");
    QTest::addColumn<Change>("how");
    QTest::addColumn<bool>("hasHead");
    QTest::addColumn<bool>("backwards");
    for (const Change how : changes)
        addRow(Place::Top, how);
    for (const Change how : {Change::Untracked, Change::Modified, Change::AddedAndModified})
        addRow(Place::SubFolder, how);
    addRow(Place::LinkedWorktree, Change::Modified);
    addRow(Place::SubFolderOfLinkedWorktree, Change::Modified);
    for (const Change how : {Change::Untracked, Change::AddedAndModified})
        addRow(Place::Top, how, false);
    addRow(Place::SubFolder, Change::AddedAndModified, false);
}

/// The first of the list with all the others, and the last alone, are at stake in turns.
void addBackwardsRows()
{
    for (const Change how : {Change::Untracked, Change::Modified})
        addRow(Place::Top, how, true, true);
}

/// Everything is looked at after each file; the status, which follows from the rest, in the end.
/// Acts on one file after the other and looks at everything else after each.
template <typename Act, typename Check, typename CheckStatus>
void forEachFile(const Fixture &fixture, QStringList all, bool backwards, Act act, Check check,
                 CheckStatus checkStatus)
{
    if (backwards)
        std::reverse(all.begin(), all.end());
    const GitSnapshot listed = gitStatusSnapshot(fixture.project);
    QCOMPARE(listed.files.size(), all.size());
    const RepositoryState begin = fixture.repository->state();
    RepositoryState before = begin;
    before.status.clear();
    for (const QString &path : all) {
        const GitFile file = find(listed.files, path);
        QVERIFY2(file.path == path, qPrintable(QStringLiteral("not listed: ") + path));
        act(file, listed.hasHead);
        const RepositoryState after = fixture.repository->stateWithoutStatus();
        const QByteArray name = path.toUtf8();
        QCOMPARE(after.without(name).differenceFrom(before.without(name)), QString());
        check(file, name, before, after);
        if (QTest::currentTestFailed())
            return;
        before = after;
    }
    checkStatus(fixture.repository->state().status, begin.status);
}

} // namespace

Q_DECLARE_METATYPE(Place)
Q_DECLARE_METATYPE(Change)

class GitNamesTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void approveStagesThisFileOnly_data();
    void approveStagesThisFileOnly();
    void rejectThrowsThisFileAwayOnly_data();
    void rejectThrowsThisFileAwayOnly();
    void diffShowsThisFileOnly_data();
    void diffShowsThisFileOnly();
};

void GitNamesTest::initTestCase()
{
    prepareEnvironment();
    writeGitIdentity();
}

void GitNamesTest::approveStagesThisFileOnly_data()
{
    addRows({Change::Untracked, Change::Modified, Change::StagedAndModified, Change::Deleted,
             Change::AddedAndModified});
    addBackwardsRows();
}

void GitNamesTest::approveStagesThisFileOnly()
{
    QFETCH(const Place, place);
    QFETCH(const Change, how);
    QFETCH(const bool, hasHead);
    QFETCH(const bool, backwards);
    const Fixture fixture(place, hasHead);
    const QStringList all = paths(place);
    change(*fixture.repository, all, how);
    QDir().mkpath(fixture.project);
    forEachFile(
        fixture, all, backwards,
        [&](const GitFile &file, bool) {
            const ShellResult result = approve(fixture.project, file);
            QCOMPARE(result.err, QString());
            QCOMPARE(result.status, 0);
        },
        [&](const GitFile &, const QByteArray &, const RepositoryState &before,
            const RepositoryState &after) { QCOMPARE(after.disk, before.disk); },
        [&](const QMap<QByteArray, QByteArray> &status,
            const QMap<QByteArray, QByteArray> &before) {
            const bool isNew = how == Change::Untracked || how == Change::AddedAndModified;
            const QByteArray wanted = isNew ? "A " : how == Change::Deleted ? "D " : "M ";
            QCOMPARE(status.keys(), before.keys());
            QCOMPARE(status.values(), QByteArrayList(before.size(), wanted));
        });
}

void GitNamesTest::rejectThrowsThisFileAwayOnly_data()
{
    addRows({Change::Untracked, Change::Modified, Change::Staged, Change::StagedAndModified,
             Change::Deleted, Change::Added, Change::AddedAndModified});
    addBackwardsRows();
}

void GitNamesTest::rejectThrowsThisFileAwayOnly()
{
    QFETCH(const Place, place);
    QFETCH(const Change, how);
    QFETCH(const bool, hasHead);
    QFETCH(const bool, backwards);
    const Fixture fixture(place, hasHead);
    const QStringList all = paths(place);
    change(*fixture.repository, all, how);
    // Files that are not listed are at stake as well.
    const QString ignoring = fixture.folder.filePath(QStringLiteral("ignoring"));
    writeFile(ignoring, "*.ignored\n");
    fixture.repository->git(
        {QStringLiteral("config"), QStringLiteral("core.excludesFile"), ignoring});
    fixture.repository->write(QStringLiteral("sub/kept.ignored"), "ignored");
    fixture.repository->write(QStringLiteral("pages/i/kept.ignored"), "ignored");
    QDir().mkpath(fixture.project);
    const bool isNew =
        how == Change::Untracked || how == Change::Added || how == Change::AddedAndModified;
    forEachFile(
        fixture, all, backwards,
        [&](const GitFile &file, bool head) {
            const ShellResult result = reject(fixture.project, file, head);
            QVERIFY2(result.status == 0, qPrintable(result.err));
        },
        [&](const GitFile &file, const QByteArray &name, const RepositoryState &,
            const RepositoryState &after) {
            QCOMPARE(after.disk.contains(name), !isNew);
            QCOMPARE(after.index.contains(name), !isNew);
            if (!isNew)
                QCOMPARE(after.disk.value(name), "100644 " + oldContent(file.path));
        },
        [](const QMap<QByteArray, QByteArray> &status, const QMap<QByteArray, QByteArray> &) {
            QCOMPARE(status, (QMap<QByteArray, QByteArray>()));
        });
}

void GitNamesTest::diffShowsThisFileOnly_data()
{
    addRows({Change::Untracked, Change::Modified, Change::Staged, Change::StagedAndModified,
             Change::Deleted, Change::Added, Change::AddedAndModified});
}

void GitNamesTest::diffShowsThisFileOnly()
{
    QFETCH(const Place, place);
    QFETCH(const Change, how);
    QFETCH(const bool, hasHead);
    const Fixture fixture(place, hasHead);
    const QStringList all = paths(place);
    change(*fixture.repository, all, how);
    QDir().mkpath(fixture.project);
    const GitSnapshot listed = gitStatusSnapshot(fixture.project);
    QCOMPARE(listed.files.size(), all.size());
    const bool isNew =
        how == Change::Untracked || how == Change::Added || how == Change::AddedAndModified;
    const RepositoryState before = fixture.repository->state();
    for (const GitFile &file : listed.files) {
        const LoadedDiff diff = loadDiff(fixture.project, file, listed.hasHead);
        QCOMPARE(sideOf(diff, OldSide), isNew ? QByteArray() : oldContent(file.path));
        QByteArray expected = newContent(file.path);
        if (how == Change::Deleted)
            expected.clear();
        else if (how == Change::StagedAndModified)
            expected += "more\n";
        else if (how == Change::AddedAndModified && !hasHead) // only what is staged shows
            expected = oldContent(file.path);
        QCOMPARE(sideOf(diff, NewSide), expected);
    }
    QCOMPARE(fixture.repository->state().differenceFrom(before), QString());
}

PLINTHAR_TEST_MAIN(GitNamesTest)
#include "GitNamesTest.moc"
