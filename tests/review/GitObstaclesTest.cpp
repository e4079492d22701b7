// SPDX-License-Identifier: GPL-3.0-or-later

// Places where git, told of one file, would take, overwrite or delete others: a folder stands where
// a file was, a file or a link where a folder was, or a name is not what it seems.

#include "app/Environment.h"
#include "review/DiffLoader.h"
#include "review/GitActions.h"
#include "review/GitStatus.h"
#include "review/Repository.h"
#include "support/TestMain.h"

#include <QFile>
#include <QTemporaryDir>

#include <memory>

namespace {

void writeRaw(const QByteArray &path, const QByteArray &bytes)
{
    FILE *const file = std::fopen(path.constData(), "wb");
    if (!file || std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), file) !=
                     static_cast<size_t>(bytes.size()))
        qFatal("cannot write %s", path.constData());
    std::fclose(file);
}

/// Every line of a diff's rows with its sign.
QStringList lines(const LoadedDiff &diff)
{
    QStringList all;
    for (const DiffRow &row : diff.rows) {
        const auto *line = std::get_if<DiffLine>(&row.content);
        for (const DiffSide side : {OldSide, NewSide}) {
            if (line && (*line)[side].kind == DiffKind::Removed)
                all.append(u'-' + (*line)[side].text.toString());
            if (line && (*line)[side].kind == DiffKind::Added)
                all.append(u'+' + (*line)[side].text.toString());
        }
    }
    return all;
}

} // namespace

class GitObstaclesTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void folderInPlaceOfAFileIsNotStagedWithIt();
    void folderInPlaceOfAFileIsNotOverwritten();
    void emptyFolderInPlaceOfAFileIsNoObstacle();
    void repositoryInPlaceOfAFileIsNotOverwritten();
    void fileInPlaceOfAFolderIsNotOverwritten();
    void linkInPlaceOfAFolderIsNotOverwritten();
    void stagedFolderInPlaceOfAFileIsNotUnstaged();
    void stagedFileInPlaceOfAFolderIsNotUnstaged();
    void fileMovedToItsFoldersPlace();
    void addedFileBehindALinkIsOnlyUnstaged();
    void addedFileWithAFolderInItsPlace();
    void untrackedFileThatBecameAFolder();
    void nestedRepositoryThatBecameAFolder();
    void diffOfAFileThatBecameAFolder();
    void diffOfAFileThatBecameALink();
    void namesThatAreNoText_data();
    void namesThatAreNoText();
    void nameWithTheReplacementCharacter();
    void folderThatIsNoWorkTree();

private:
    GitFile listed(const char *path) const
    {
        return find(gitStatusSnapshot(m_repository->path()).files, QString::fromUtf8(path));
    }
    void checkUntouchedBy(const ShellResult &result, const RepositoryState &before) const
    {
        QVERIFY(result.status != 0);
        QVERIFY(!result.err.isEmpty());
        QCOMPARE(m_repository->state().differenceFrom(before), QString());
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<Repository> m_repository;
};

void GitObstaclesTest::initTestCase()
{
    prepareEnvironment();
    writeGitIdentity();
}

void GitObstaclesTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_repository = std::make_unique<Repository>(m_folder->filePath(QStringLiteral("repository")));
    m_repository->write(QStringLiteral("f"), "file\n");
    m_repository->write(QStringLiteral("d/x"), "x in d\n");
    m_repository->write(QStringLiteral("d/y"), "y in d\n");
    m_repository->commitAll();
}

void GitObstaclesTest::cleanup()
{
    // The temporary folder cannot remove a name that is no text.
    std::remove((QFile::encodeName(m_repository->path()) + "/bad\xff").constData());
    m_repository.reset();
    m_folder.reset();
}

void GitObstaclesTest::folderInPlaceOfAFileIsNotStagedWithIt()
{
    m_repository->remove(QStringLiteral("f"));
    m_repository->write(QStringLiteral("f/new"), "new\n");
    const RepositoryState before = m_repository->state();
    const ShellResult result = approve(m_repository->path(), listed("f"));
    QCOMPARE(result.status, 0);
    const RepositoryState after = m_repository->state();
    QCOMPARE(after.without("f").differenceFrom(before.without("f")), QString());
    QCOMPARE(after.status.value("f"), "D ");
    QCOMPARE(after.status.value("f/new"), "??");
}

void GitObstaclesTest::folderInPlaceOfAFileIsNotOverwritten()
{
    m_repository->remove(QStringLiteral("f"));
    m_repository->write(QStringLiteral("f/new"), "new\n");
    const RepositoryState before = m_repository->state();
    const ShellResult result = reject(m_repository->path(), listed("f"), true);
    checkUntouchedBy(result, before);
    QVERIFY(result.err.contains(QStringLiteral("“f/”")));
}

void GitObstaclesTest::emptyFolderInPlaceOfAFileIsNoObstacle()
{
    m_repository->remove(QStringLiteral("f"));
    QDir().mkpath(m_repository->path(QStringLiteral("f")));
    QCOMPARE(reject(m_repository->path(), listed("f"), true).status, 0);
    QCOMPARE(readFile(m_repository->path(QStringLiteral("f"))), "file\n");
}

void GitObstaclesTest::repositoryInPlaceOfAFileIsNotOverwritten()
{
    m_repository->remove(QStringLiteral("f"));
    const Repository nested(m_repository->path(QStringLiteral("f")));
    nested.write(QStringLiteral("work"), "work\n");
    nested.commitAll();
    const RepositoryState before = m_repository->state();
    const GitFile file = listed("f");
    QCOMPARE(file.y, u'T');
    checkUntouchedBy(reject(m_repository->path(), file, true), before);
}

void GitObstaclesTest::fileInPlaceOfAFolderIsNotOverwritten()
{
    m_repository->remove(QStringLiteral("d"));
    m_repository->write(QStringLiteral("d"), "precious\n");
    const RepositoryState before = m_repository->state();
    checkUntouchedBy(reject(m_repository->path(), listed("d/x"), true), before);
}

void GitObstaclesTest::linkInPlaceOfAFolderIsNotOverwritten()
{
    m_repository->remove(QStringLiteral("d"));
    m_repository->write(QStringLiteral("elsewhere/x"), "precious\n");
    m_repository->link(QStringLiteral("d"), "elsewhere");
    const RepositoryState before = m_repository->state();
    checkUntouchedBy(reject(m_repository->path(), listed("d/x"), true), before);
    checkUntouchedBy(approve(m_repository->path(), listed("d/x")), before);
}

void GitObstaclesTest::stagedFolderInPlaceOfAFileIsNotUnstaged()
{
    m_repository->remove(QStringLiteral("f"));
    m_repository->write(QStringLiteral("f/new"), "only in the index\n");
    m_repository->git({QStringLiteral("add"), QStringLiteral("-A")});
    m_repository->remove(QStringLiteral("f"));
    const RepositoryState before = m_repository->state();
    const GitFile file = listed("f");
    QCOMPARE(file.x, u'D');
    checkUntouchedBy(reject(m_repository->path(), file, true), before);
}

void GitObstaclesTest::stagedFileInPlaceOfAFolderIsNotUnstaged()
{
    m_repository->remove(QStringLiteral("d"));
    m_repository->write(QStringLiteral("d"), "only in the index\n");
    m_repository->git({QStringLiteral("add"), QStringLiteral("-A")});
    m_repository->remove(QStringLiteral("d"));
    const RepositoryState before = m_repository->state();
    checkUntouchedBy(reject(m_repository->path(), listed("d/x"), true), before);
}

void GitObstaclesTest::fileMovedToItsFoldersPlace()
{
    m_repository->write(QStringLiteral("moved"),
                        readFile(m_repository->path(QStringLiteral("d/x"))));
    m_repository->remove(QStringLiteral("d"));
    QFile::rename(m_repository->path(QStringLiteral("moved")),
                  m_repository->path(QStringLiteral("d")));
    m_repository->git({QStringLiteral("add"), QStringLiteral("-A")});
    const RepositoryState before = m_repository->state();
    const GitFile file = listed("d");
    QCOMPARE(file.x, u'R');
    const LoadedDiff diff = loadDiff(m_repository->path(), file, true);
    QCOMPARE(lines(diff), QStringList{QStringLiteral("+x in d")});
    checkUntouchedBy(reject(m_repository->path(), file, true), before);
}

void GitObstaclesTest::addedFileBehindALinkIsOnlyUnstaged()
{
    m_repository->write(QStringLiteral("n/x"), "added\n");
    m_repository->git({QStringLiteral("add"), QStringLiteral("n/x")});
    m_repository->remove(QStringLiteral("n"));
    m_repository->write(QStringLiteral("elsewhere/x"), "precious\n");
    m_repository->link(QStringLiteral("n"), "elsewhere");
    const RepositoryState before = m_repository->state();
    const GitFile file = listed("n/x");
    QCOMPARE(file.x, u'A');
    QCOMPARE(reject(m_repository->path(), file, true).status, 0);
    const RepositoryState after = m_repository->state();
    QCOMPARE(after.without("n/x").differenceFrom(before.without("n/x")), QString());
    QVERIFY(!after.index.contains("n/x"));
}

void GitObstaclesTest::addedFileWithAFolderInItsPlace()
{
    m_repository->write(QStringLiteral("n"), "added\n");
    m_repository->git({QStringLiteral("add"), QStringLiteral("n")});
    m_repository->remove(QStringLiteral("n"));
    m_repository->write(QStringLiteral("n/x"), "precious\n");
    const RepositoryState before = m_repository->state();
    checkUntouchedBy(reject(m_repository->path(), listed("n"), true), before);
}

void GitObstaclesTest::untrackedFileThatBecameAFolder()
{
    m_repository->write(QStringLiteral("new"), "new\n");
    const GitFile file = listed("new");
    m_repository->remove(QStringLiteral("new"));
    m_repository->write(QStringLiteral("new/one"), "one\n");
    m_repository->write(QStringLiteral("new/null"), "null\n");
    const RepositoryState before = m_repository->state();
    checkUntouchedBy(reject(m_repository->path(), file, true), before);
    QCOMPARE(loadDiff(m_repository->path(), file, true), LoadedDiff());
    (void)approve(m_repository->path(), file); // may fail or have nothing to do
    QCOMPARE(m_repository->state().differenceFrom(before), QString());
}

void GitObstaclesTest::nestedRepositoryThatBecameAFolder()
{
    const Repository nested(m_repository->path(QStringLiteral("nested")));
    nested.write(QStringLiteral("null"), "null\n");
    nested.commitAll();
    const GitFile file = listed("nested/");
    QVERIFY(file.isUntracked());
    QCOMPARE(loadDiff(m_repository->path(), file, true), LoadedDiff());
    nested.remove(QStringLiteral(".git"));
    const RepositoryState before = m_repository->state();
    checkUntouchedBy(reject(m_repository->path(), file, true), before);
    checkUntouchedBy(approve(m_repository->path(), file), before);
}

void GitObstaclesTest::diffOfAFileThatBecameAFolder()
{
    m_repository->remove(QStringLiteral("f"));
    m_repository->write(QStringLiteral("f/other"), "other\n");
    QCOMPARE(lines(loadDiff(m_repository->path(), listed("f"), true)),
             QStringList{QStringLiteral("-file")});
    m_repository->git({QStringLiteral("add"), QStringLiteral("-A")});
    QCOMPARE(lines(loadDiff(m_repository->path(), listed("f"), true)),
             QStringList{QStringLiteral("-file")});
    QCOMPARE(lines(loadDiff(m_repository->path(), listed("f/other"), true)),
             QStringList{QStringLiteral("+other")});
}

void GitObstaclesTest::diffOfAFileThatBecameALink()
{
    m_repository->remove(QStringLiteral("f"));
    m_repository->link(QStringLiteral("f"), "d");
    QCOMPARE(lines(loadDiff(m_repository->path(), listed("f"), true)),
             (QStringList{QStringLiteral("-file"), QStringLiteral("+d")}));
}

void GitObstaclesTest::namesThatAreNoText_data()
{
    QTest::addColumn<QString>("twin");
    QTest::addColumn<bool>("staged");
    QTest::newRow("alone") << QString() << false;
    QTest::newRow("staged") << QString() << true;
    QTest::newRow("beside a changed twin") << QStringLiteral("changed") << false;
    QTest::newRow("staged beside a changed twin") << QStringLiteral("changed") << true;
    QTest::newRow("beside an unchanged twin") << QStringLiteral("unchanged") << false;
    QTest::newRow("staged beside an unchanged twin") << QStringLiteral("unchanged") << true;
}

/// What is shown of such a name is the name that another file can really have.
void GitObstaclesTest::namesThatAreNoText()
{
    QFETCH(const QString, twin);
    QFETCH(const bool, staged);
    const QString shown = QStringLiteral("bad\uFFFD");
    if (!twin.isEmpty()) {
        m_repository->write(shown, "twin\n");
        m_repository->commitAll();
    }
    if (twin == u"changed")
        m_repository->write(shown, "twin, changed\n");
    writeRaw(QFile::encodeName(m_repository->path()) + "/bad\xff", "no text\n");
    if (staged)
        m_repository->git({QStringLiteral("add"), QStringLiteral("-A")});
    const RepositoryState before = m_repository->state();
    const QList<GitFile> files = gitStatusSnapshot(m_repository->path()).files;
    QVERIFY(!files.isEmpty());
    for (const GitFile &file : files) {
        QCOMPARE(file.path, shown);
        checkUntouchedBy(approve(m_repository->path(), file), before);
        checkUntouchedBy(reject(m_repository->path(), file, true), before);
        QCOMPARE(loadDiff(m_repository->path(), file, true), LoadedDiff());
    }
}

void GitObstaclesTest::nameWithTheReplacementCharacter()
{
    const QString name = QStringLiteral("real \uFFFD \"quoted\"\t\u00e9");
    m_repository->write(name, "text\n");
    const GitFile file = listed(name.toUtf8().constData());
    QCOMPARE(file.path, name);
    QCOMPARE(lines(loadDiff(m_repository->path(), file, true)),
             QStringList{QStringLiteral("+text")});
    QCOMPARE(approve(m_repository->path(), file).status, 0);
    QCOMPARE(listed(name.toUtf8().constData()).x, u'A');
    QCOMPARE(reject(m_repository->path(), listed(name.toUtf8().constData()), true).status, 0);
    QVERIFY(!QFile::exists(m_repository->path(name)));
}

void GitObstaclesTest::folderThatIsNoWorkTree()
{
    const QString bare = m_folder->filePath(QStringLiteral("bare"));
    ::git(m_folder->path(),
          {QStringLiteral("init"), QStringLiteral("-q"), QStringLiteral("--bare"), bare});
    const QString plain = m_folder->filePath(QStringLiteral("plain"));
    writeFile(plain + QStringLiteral("/f"), "f\n");
    const GitFile file{QStringLiteral("f"), u'?', u'?'};
    for (const QString &folder : {bare, plain, m_folder->filePath(QStringLiteral("missing"))}) {
        for (const ShellResult &result : {approve(folder, file), reject(folder, file, true)}) {
            QVERIFY(result.status != 0);
            QVERIFY(!result.err.isEmpty());
        }
        QCOMPARE(loadDiff(folder, file, true), LoadedDiff());
    }
    QCOMPARE(readFile(plain + QStringLiteral("/f")), "f\n");
}

PLINTHAR_TEST_MAIN(GitObstaclesTest)
#include "GitObstaclesTest.moc"
