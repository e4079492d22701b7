// SPDX-License-Identifier: GPL-3.0-or-later
#include "review/GitActions.h"

#include "app/Environment.h"
#include "review/DiffLoader.h"
#include "review/GitStatus.h"
#include "review/Repository.h"
#include "support/TestMain.h"

#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>

#include <memory>

namespace {

/// Files of every kind that git knows, by their names.
const QStringList kinds{QStringLiteral("text"),           QStringLiteral("empty"),
                        QStringLiteral("no final feed"),  QStringLiteral("program"),
                        QStringLiteral("binary"),         QStringLiteral("link to file"),
                        QStringLiteral("dangling link"),  QStringLiteral("link to folder"),
                        QStringLiteral("absolute link"),  QStringLiteral("link to itself"),
                        QStringLiteral("return and feed")};

/// Makes one of each. What they contain or lead to depends on `version`.
void makeKinds(const Repository &repository, const QByteArray &version)
{
    for (const QString &kind : kinds) {
        if (QFileInfo(repository.path(kind)).isSymLink())
            repository.remove(kind);
    }
    repository.write(QStringLiteral("text"), version + "\n");
    repository.write(QStringLiteral("empty"), version == "new" ? QByteArray() : version);
    repository.write(QStringLiteral("no final feed"), version);
    repository.write(QStringLiteral("program"), "#!/bin/sh\n# " + version + "\n");
    repository.makeExecutable(QStringLiteral("program"));
    repository.write(QStringLiteral("binary"), QByteArray("\0\1\2", 3) + version);
    repository.write(QStringLiteral("return and feed"), version + "\r\n");
    repository.write(QStringLiteral("target/of-") + QString::fromLatin1(version), "target\n");
    repository.link(QStringLiteral("link to file"), "target/of-" + version);
    repository.link(QStringLiteral("dangling link"), "nowhere-" + version);
    repository.link(QStringLiteral("link to folder"),
                    version == "new" ? QByteArray("target") : QByteArray("target/../target"));
    repository.link(QStringLiteral("absolute link"), "/dev/" + version);
    repository.link(QStringLiteral("link to itself"), version == "new"
                                                          ? QByteArray("link to itself")
                                                          : QByteArray("./link to itself"));
}

/// What the diff shows of a new file of a kind.
QStringList shownOfNew(const QString &kind)
{
    static const QMap<QString, QStringList> shown{
        {QStringLiteral("text"), {QStringLiteral("new")}},
        {QStringLiteral("empty"), {}},
        {QStringLiteral("no final feed"), {QStringLiteral("new")}},
        {QStringLiteral("program"), {QStringLiteral("#!/bin/sh"), QStringLiteral("# new")}},
        {QStringLiteral("link to file"), {QStringLiteral("target/of-new")}},
        {QStringLiteral("dangling link"), {QStringLiteral("nowhere-new")}},
        {QStringLiteral("link to folder"), {QStringLiteral("target")}},
        {QStringLiteral("absolute link"), {QStringLiteral("/dev/new")}},
        {QStringLiteral("link to itself"), {QStringLiteral("link to itself")}},
        {QStringLiteral("return and feed"), {QStringLiteral("new\r")}}};
    return shown.value(kind);
}

QStringList added(const LoadedDiff &diff)
{
    QStringList lines;
    for (const DiffRow &row : diff.rows) {
        const auto *line = std::get_if<DiffLine>(&row.content);
        if (line && (*line)[NewSide].kind == DiffKind::Added)
            lines.append((*line)[NewSide].text.toString());
    }
    return lines;
}

/// Brings two branches with different versions of the files together.
void makeConflicts(const Repository &repository)
{
    const auto git = [&](const QStringList &arguments) { repository.git(arguments); };
    repository.write(QStringLiteral("both"), "base\n");
    repository.write(QStringLiteral("theirs gone"), "base\n");
    repository.write(QStringLiteral("ours gone"), "base\n");
    repository.commitAll();
    git({QStringLiteral("checkout"), QStringLiteral("-q"), QStringLiteral("-b"),
         QStringLiteral("other")});
    repository.write(QStringLiteral("both"), "theirs\n");
    repository.write(QStringLiteral("new"), "theirs\n");
    repository.write(QStringLiteral("ours gone"), "theirs\n");
    repository.remove(QStringLiteral("theirs gone"));
    repository.commitAll();
    git({QStringLiteral("checkout"), QStringLiteral("-q"), QStringLiteral("-")});
    repository.write(QStringLiteral("both"), "ours\n");
    repository.write(QStringLiteral("new"), "ours\n");
    repository.write(QStringLiteral("theirs gone"), "ours\n");
    repository.remove(QStringLiteral("ours gone"));
    repository.commitAll();
    QProcess merge;
    merge.start(QStringLiteral("/usr/bin/git"), {QStringLiteral("-C"), repository.path(),
                                                 QStringLiteral("merge"), QStringLiteral("other")});
    merge.waitForFinished(-1);
}

} // namespace

class GitActionsTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void approvedUntrackedFileIsAdded();
    void rejectedUntrackedFileIsDeleted();
    void rejectedRenameIsLookedForInHead();
    void rejectedModifiedFileWithoutHeadIsRemoved();
    void pathThatBeginsWithADash();
    void newFilesOfEveryKind();
    void changedFilesOfEveryKind();
    void addedFilesOfEveryKind();
    void changedPermissions();
    void fileInAnUntrackedFolderWithOthers();
    void renameAfterIntentToAdd();
    void copy();
    void conflicts_data();
    void conflicts();
    void submodule();
    void nestedRepository();
    void nestedRepositoryOfASubFolder();
    void missingProject();

private:
    const Repository &repository() const { return *m_repository; }
    QString project() const { return m_repository->path(); }
    GitFile listed(const QString &path) const
    {
        return find(gitStatusSnapshot(project()).files, path);
    }
    /// Compares everything but one file.
    void checkOnly(const QString &path, const RepositoryState &before) const
    {
        const QByteArray name = path.toUtf8();
        QCOMPARE(repository().state().without(name).differenceFrom(before.without(name)),
                 QString());
    }
    void checkNothing(const RepositoryState &before) const
    {
        QCOMPARE(repository().state().differenceFrom(before), QString());
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<Repository> m_repository;
};

void GitActionsTest::initTestCase()
{
    prepareEnvironment();
    writeGitIdentity();
}

void GitActionsTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_repository = std::make_unique<Repository>(m_folder->filePath(QStringLiteral("repository")));
}

void GitActionsTest::cleanup()
{
    m_repository.reset();
    m_folder.reset();
}

void GitActionsTest::approvedUntrackedFileIsAdded()
{
    repository().commitAll();
    repository().write(QStringLiteral("new"), "new\n");
    QCOMPARE(approve(project(), listed(QStringLiteral("new"))).status, 0);
    QCOMPARE(listed(QStringLiteral("new")).x, u'A');
}

void GitActionsTest::rejectedUntrackedFileIsDeleted()
{
    repository().commitAll();
    repository().write(QStringLiteral("new"), "new\n");
    QCOMPARE(reject(project(), listed(QStringLiteral("new")), true).status, 0);
    QVERIFY(!QFile::exists(repository().path(QStringLiteral("new"))));
    QCOMPARE(gitStatusSnapshot(project()).files.size(), 0);
}

void GitActionsTest::rejectedRenameIsLookedForInHead()
{
    repository().write(QStringLiteral("old"), "text to be moved\n");
    repository().commitAll();
    repository().git({QStringLiteral("mv"), QStringLiteral("old"), QStringLiteral("new")});
    const RepositoryState before = repository().state();
    const GitFile file = listed(QStringLiteral("new"));
    QCOMPARE(file.x, u'R');
    const ShellResult result = reject(project(), file, true);
    QCOMPARE(result.status, 1);
    QCOMPARE(result.err, QStringLiteral("error: pathspec 'new' did not match any file(s) known to "
                                        "git\n"));
    checkNothing(before);
}

void GitActionsTest::rejectedModifiedFileWithoutHeadIsRemoved()
{
    repository().write(QStringLiteral("file"), "1\n");
    repository().write(QStringLiteral("other"), "1\n");
    repository().git({QStringLiteral("add"), QStringLiteral("-A")});
    repository().write(QStringLiteral("file"), "2\n");
    const RepositoryState before = repository().state();
    // Whatever stands in the columns: without HEAD there is nothing to restore.
    const ShellResult result = reject(project(), {QStringLiteral("file"), u'M', u'M'}, false);
    QCOMPARE(result.status, 0);
    QCOMPARE(result.out, QStringLiteral("rm 'file'\n"));
    QVERIFY(!QFile::exists(repository().path(QStringLiteral("file"))));
    checkOnly(QStringLiteral("file"), before);
}

void GitActionsTest::pathThatBeginsWithADash()
{
    repository().write(QStringLiteral("-f"), "1\n");
    repository().write(QStringLiteral("--all"), "1\n");
    repository().commitAll();
    for (const QString &path : {QStringLiteral("-f"), QStringLiteral("--all")}) {
        repository().write(path, "2\n");
        QCOMPARE(approve(project(), listed(path)).status, 0);
        QCOMPARE(reject(project(), listed(path), true).status, 0);
        QCOMPARE(readFile(repository().path(path)), "1\n");
    }
}

void GitActionsTest::newFilesOfEveryKind()
{
    repository().commitAll();
    makeKinds(repository(), "new");
    for (const QString &kind : kinds) {
        RepositoryState before = repository().state();
        const GitFile file = listed(kind);
        QVERIFY2(file.isUntracked(), qPrintable(kind));
        const LoadedDiff diff = loadDiff(project(), file, true);
        QCOMPARE(added(diff), shownOfNew(kind));
        QCOMPARE(diff.note.has_value(), kind == u"binary");
        checkNothing(before);

        QCOMPARE(approve(project(), file).status, 0);
        QCOMPARE(listed(kind).badge(), QStringLiteral("A"));
        QCOMPARE(repository().state().disk, before.disk);
        checkOnly(kind, before);
        repository().git({QStringLiteral("rm"), QStringLiteral("-q"), QStringLiteral("--cached"),
                          QStringLiteral("--"), kind});
        QCOMPARE(reject(project(), listed(kind), true).status, 0);
        QVERIFY2(listed(kind).path.isEmpty(), qPrintable(kind));
        QVERIFY(!repository().state().disk.contains(kind.toUtf8()));
        checkOnly(kind, before);
    }
}

void GitActionsTest::changedFilesOfEveryKind()
{
    makeKinds(repository(), "old");
    repository().commitAll();
    const RepositoryState committed = repository().state();
    makeKinds(repository(), "new");
    for (const QString &kind : kinds) {
        const RepositoryState before = repository().state();
        const LoadedDiff diff = loadDiff(project(), listed(kind), true);
        QStringList shown = shownOfNew(kind);
        if (kind == u"program") // its first line is the same
            shown = QStringList{QStringLiteral("# new")};
        QCOMPARE(added(diff), shown);
        QCOMPARE(diff.note.has_value(), kind == u"binary");
        checkNothing(before);

        QCOMPARE(approve(project(), listed(kind)).status, 0);
        QCOMPARE(listed(kind).badge(), QStringLiteral("M"));
        QCOMPARE(repository().state().disk, before.disk);
        checkOnly(kind, before);
        QCOMPARE(reject(project(), listed(kind), true).status, 0);
        checkOnly(kind, before);
        const RepositoryState after = repository().state();
        QCOMPARE(after.disk.value(kind.toUtf8()), committed.disk.value(kind.toUtf8()));
        QCOMPARE(after.index.value(kind.toUtf8()), committed.index.value(kind.toUtf8()));
    }
}

void GitActionsTest::addedFilesOfEveryKind()
{
    for (const bool hasHead : {true, false}) {
        init();
        if (hasHead)
            repository().commitAll();
        makeKinds(repository(), "new");
        repository().git({QStringLiteral("add"), QStringLiteral("-A")});
        for (const QString &kind : kinds) {
            const RepositoryState before = repository().state();
            QCOMPARE(added(loadDiff(project(), listed(kind), hasHead)), shownOfNew(kind));
            QCOMPARE(reject(project(), listed(kind), hasHead).status, 0);
            QVERIFY(!repository().state().disk.contains(kind.toUtf8()));
            QVERIFY(!repository().state().index.contains(kind.toUtf8()));
            checkOnly(kind, before);
        }
    }
}

void GitActionsTest::changedPermissions()
{
    repository().write(QStringLiteral("script"), "text\n");
    repository().write(QStringLiteral("other"), "text\n");
    repository().commitAll();
    const RepositoryState committed = repository().state();
    repository().makeExecutable(QStringLiteral("script"));
    repository().makeExecutable(QStringLiteral("other"));
    const RepositoryState before = repository().state();
    const GitFile file = listed(QStringLiteral("script"));
    QCOMPARE(loadDiff(project(), file, true), LoadedDiff());
    QCOMPARE(approve(project(), file).status, 0);
    QCOMPARE(listed(file.path).badge(), QStringLiteral("M"));
    checkOnly(file.path, before);
    QCOMPARE(reject(project(), listed(file.path), true).status, 0);
    QCOMPARE(repository().state().disk.value("script"), committed.disk.value("script"));
    checkOnly(file.path, before);
}

void GitActionsTest::fileInAnUntrackedFolderWithOthers()
{
    repository().write(QStringLiteral(".gitignore"), "*.o\n");
    repository().commitAll();
    repository().write(QStringLiteral("folder/deep/one"), "1\n");
    repository().write(QStringLiteral("folder/deep/two"), "2\n");
    repository().write(QStringLiteral("folder/deep/ignored.o"), "3\n");
    const RepositoryState before = repository().state();
    const QString path = QStringLiteral("folder/deep/one");
    QCOMPARE(reject(project(), listed(path), true).status, 0);
    QVERIFY(!QFile::exists(repository().path(path)));
    checkOnly(path, before);
}

void GitActionsTest::renameAfterIntentToAdd()
{
    repository().write(QStringLiteral("old"), "text to be moved\n");
    repository().commitAll();
    QFile::rename(repository().path(QStringLiteral("old")),
                  repository().path(QStringLiteral("new")));
    repository().git({QStringLiteral("add"), QStringLiteral("-N"), QStringLiteral("new")});
    const QList<GitFile> files = gitStatusSnapshot(project()).files;
    QCOMPARE(files, (QList<GitFile>{{QStringLiteral("new"), u' ', u'R'}}));
    QCOMPARE(added(loadDiff(project(), files[0], true)),
             QStringList{QStringLiteral("text to be moved")});
    const RepositoryState before = repository().state();
    QVERIFY(reject(project(), files[0], true).status != 0); // HEAD has no such file
    checkNothing(before);
    QCOMPARE(approve(project(), files[0]).status, 0);
    checkOnly(QStringLiteral("new"), before);
}

void GitActionsTest::copy()
{
    repository().write(QStringLiteral("old"), "some text\nthat is copied\n");
    repository().commitAll();
    repository().git(
        {QStringLiteral("config"), QStringLiteral("status.renames"), QStringLiteral("copies")});
    repository().write(QStringLiteral("new"), "some text\nthat is copied\n");
    repository().write(QStringLiteral("old"), "some text\nthat is copied\nand changed\n");
    repository().git({QStringLiteral("add"), QStringLiteral("-A")});
    const RepositoryState before = repository().state();
    const GitFile file = listed(QStringLiteral("new"));
    QCOMPARE(file.x, u'C');
    QCOMPARE(added(loadDiff(project(), file, true)).size(), 2);
    QVERIFY(reject(project(), file, true).status != 0);
    checkNothing(before);
}

void GitActionsTest::conflicts_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("columns");
    QTest::newRow("both changed") << QStringLiteral("both") << QStringLiteral("UU");
    QTest::newRow("both added") << QStringLiteral("new") << QStringLiteral("AA");
    QTest::newRow("deleted by us") << QStringLiteral("ours gone") << QStringLiteral("DU");
    QTest::newRow("deleted by them") << QStringLiteral("theirs gone") << QStringLiteral("UD");
}

void GitActionsTest::conflicts()
{
    QFETCH(const QString, path);
    makeConflicts(repository());
    const RepositoryState before = repository().state();
    const GitFile file = listed(path);
    QTEST(QString(file.x) + file.y, "columns");
    (void)loadDiff(project(), file, true);
    checkNothing(before);
    const ShellResult rejected = reject(project(), file, true);
    checkOnly(path, before);
    if (file.x == u'D') // HEAD has none, so git refuses
        QVERIFY(rejected.status != 0);
    else
        QCOMPARE(rejected.status, 0);
    if (file.x == u'U') {
        QCOMPARE(readFile(repository().path(path)), "ours\n");
        QVERIFY(listed(path).path.isEmpty());
    }

    init();
    makeConflicts(repository());
    const RepositoryState again = repository().state();
    QCOMPARE(approve(project(), listed(path)).status, 0);
    QVERIFY(listed(path).y == u' ');
    checkOnly(path, again);
    QCOMPARE(repository().state().disk, again.disk);
}

void GitActionsTest::submodule()
{
    const Repository library(m_folder->filePath(QStringLiteral("library")));
    library.write(QStringLiteral("code"), "1\n");
    library.commitAll();
    repository().git({QStringLiteral("submodule"), QStringLiteral("--quiet"), QStringLiteral("add"),
                      library.path(), QStringLiteral("sub")});
    repository().commitAll();
    const QByteArray committed = repository().state().index.value("sub");
    const Repository checkout(repository().path(QStringLiteral("sub")));
    checkout.write(QStringLiteral("code"), "2\n");
    checkout.commitAll();
    checkout.write(QStringLiteral("code"), "3\n");
    checkout.write(QStringLiteral("precious"), "not in any repository\n");
    const RepositoryState before = repository().state();

    const GitFile file = listed(QStringLiteral("sub"));
    QCOMPARE(added(loadDiff(project(), file, true)).size(), 1);
    checkNothing(before);
    QCOMPARE(approve(project(), file).status, 0);
    checkOnly(QStringLiteral("sub"), before);
    QVERIFY(repository().state().index.value("sub") != committed);
    // What the submodule's own work tree has is not thrown away.
    QCOMPARE(reject(project(), listed(QStringLiteral("sub")), true).status, 0);
    QCOMPARE(repository().state().index.value("sub"), committed);
    checkOnly(QStringLiteral("sub"), before);
}

void GitActionsTest::nestedRepository()
{
    repository().commitAll();
    const Repository nested(repository().path(QStringLiteral("nested")));
    nested.write(QStringLiteral("work"), "1\n");
    nested.write(QStringLiteral("null"), "2\n");
    nested.commitAll();
    const RepositoryState before = repository().state();
    const GitFile file = listed(QStringLiteral("nested/"));
    QVERIFY(file.isUntracked());
    QCOMPARE(loadDiff(project(), file, true), LoadedDiff());
    (void)reject(project(), file, true); // git leaves repositories alone
    checkNothing(before);

    QCOMPARE(approve(project(), file).status, 0);
    const RepositoryState after = repository().state();
    QCOMPARE(after.disk, before.disk);
    QCOMPARE(after.index.keys(), QByteArrayList{"nested"});
    (void)reject(project(), listed(QStringLiteral("nested")), true);
    QCOMPARE(repository().state().disk, before.disk);
}

void GitActionsTest::nestedRepositoryOfASubFolder()
{
    repository().write(QStringLiteral("sub/file"), "1\n");
    repository().commitAll();
    for (const char *path : {"sub/nested", "sub/sub/nested", "nested"}) {
        const Repository nested(repository().path(QString::fromLatin1(path)));
        nested.write(QStringLiteral("work"), "1\n");
        nested.commitAll();
    }
    const QString sub = repository().path(QStringLiteral("sub"));
    const GitFile file = find(gitStatusSnapshot(sub).files, QStringLiteral("sub/nested/"));
    QVERIFY(file.isUntracked());
    QCOMPARE(approve(sub, file).status, 0);
    QCOMPARE(repository().state().index.keys(), (QByteArrayList{"sub/file", "sub/nested"}));
}

void GitActionsTest::missingProject()
{
    const QString missing = m_folder->filePath(QStringLiteral("missing"));
    const GitFile file{QStringLiteral("f"), u'?', u'?'};
    QVERIFY(approve(missing, file).status != 0);
    QVERIFY(!reject(missing, file, true).err.isEmpty());
}

PLINTHAR_TEST_MAIN(GitActionsTest)
#include "GitActionsTest.moc"
