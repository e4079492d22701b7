// SPDX-License-Identifier: GPL-3.0-or-later
#include "review/GitStatus.h"

#include "app/Environment.h"
#include "review/Repository.h"
#include "support/TestMain.h"

#include <QProcess>
#include <QTemporaryDir>

#include <atomic>
#include <thread>

namespace {

QString describe(const QList<GitFile> &files)
{
    QStringList texts;
    for (const GitFile &file : files)
        texts.append(QString(file.x) + file.y + u'|' + file.path);
    return texts.join(u'\n');
}

/// Entries as git writes them, each ended by a NUL.
QString entries(const QStringList &all)
{
    QString text;
    for (const QString &entry : all)
        text += entry + QChar(QChar::Null);
    return text;
}

} // namespace

class GitStatusTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void parses_data();
    void parses();
    void parsesWhatIsCutOff();
    void listsEveryFileOfAnUntrackedFolder();
    void renameInEitherColumn();
    void copy();
    void folderWithoutRepository();
    void repositoryWithoutCommit();
    void bareRepository();
    void subFolderNamesFilesFromTheTop();
    void linkedWorktree();
    void cleanWorkTree();
    void stoppedBefore();
    void agentCommitsMeanwhile();

private:
    std::stop_source m_stop;
    QTemporaryDir m_folder;
    Repository fresh(const char *name) const
    {
        return Repository(m_folder.filePath(QString::fromLatin1(name)));
    }
};

void GitStatusTest::initTestCase()
{
    prepareEnvironment();
    writeGitIdentity();
}

void GitStatusTest::parses_data()
{
    QTest::addColumn<QStringList>("text");
    QTest::addColumn<QString>("files");
    const auto row = [](const char *name, const QStringList &text, const QString &files) {
        QTest::newRow(name) << text << files;
    };
    row("nothing", {}, {});
    row("blanks in the name", {QStringLiteral("?? new file.txt")},
        QStringLiteral("??|new file.txt"));
    row("rename", {QStringLiteral("R  new.txt"), QStringLiteral("old.txt")},
        QStringLiteral("R |new.txt"));
    row("copy", {QStringLiteral("C  new.txt"), QStringLiteral("old.txt"), QStringLiteral(" M x")},
        QStringLiteral("C |new.txt\n M|x"));
    row("rename in the work tree",
        {QStringLiteral(" R new.txt"), QStringLiteral("old.txt"), QStringLiteral("?? x")},
        QStringLiteral(" R|new.txt\n??|x"));
    row("copy in the work tree", {QStringLiteral(" C new.txt"), QStringLiteral("old.txt")},
        QStringLiteral(" C|new.txt"));
    row("source that looks like an entry", {QStringLiteral("RM new"), QStringLiteral("R  x")},
        QStringLiteral("RM|new"));
    row("too short",
        {QString(), QStringLiteral("M"), QStringLiteral("MM"), QStringLiteral("R  "),
         QStringLiteral(" M y")},
        QStringLiteral(" M|y"));
    row("git's order stays",
        {QStringLiteral(" M b"), QStringLiteral(" M a"), QStringLiteral("?? B")},
        QStringLiteral(" M|b\n M|a\n??|B"));
    row("line feeds, quotes and tabs", {QStringLiteral("?? a\nb\"c\td")},
        QStringLiteral("??|a\nb\"c\td"));
    row("one character of several code points",
        {QStringLiteral("?? \U0001F469\u200D\U0001F467"), QStringLiteral("?? e\u0301")},
        QStringLiteral("??|\U0001F469\u200D\U0001F467\n??|e\u0301"));
    row("name that begins with a combining character",
        {QStringLiteral("?? \u0301x"), QStringLiteral("?? \u0301")},
        QStringLiteral("??|\u0301x\n??|\u0301"));
    row("columns that git never prints",
        {QStringLiteral("e\u0301M path"), QStringLiteral("\u65e5M x"),
         QStringLiteral("e\u0301e\u0301x")},
        QStringLiteral("\uFFFDM|path\n\u65e5M|x"));
}

void GitStatusTest::parses()
{
    QFETCH(const QStringList, text);
    QTEST(describe(parseStatus(entries(text))), "files");
}

void GitStatusTest::parsesWhatIsCutOff()
{
    QCOMPARE(describe(parseStatus(QStringLiteral("?? file"))), QStringLiteral("??|file"));
    QCOMPARE(describe(parseStatus(QStringLiteral("R  new"))), QStringLiteral("R |new"));
    QCOMPARE(parseStatus(QString(5, QChar(QChar::Null))).size(), 0);
}

void GitStatusTest::listsEveryFileOfAnUntrackedFolder()
{
    const Repository repository = fresh("untracked");
    repository.write(QStringLiteral("new folder/a"), "a");
    repository.write(QStringLiteral("new folder/deeper/b"), "b");
    QCOMPARE(describe(gitStatusSnapshot(repository.path()).files),
             QStringLiteral("??|new folder/a\n??|new folder/deeper/b"));
}

void GitStatusTest::renameInEitherColumn()
{
    const Repository repository = fresh("renames");
    repository.write(QStringLiteral("old"), "some text that is moved\n");
    repository.write(QStringLiteral("older"), "some other text that is moved\n");
    repository.commitAll();
    repository.git({QStringLiteral("mv"), QStringLiteral("old"), QStringLiteral("new")});
    QFile::rename(repository.path(QStringLiteral("older")),
                  repository.path(QStringLiteral("newer")));
    repository.git({QStringLiteral("add"), QStringLiteral("-N"), QStringLiteral("newer")});
    QCOMPARE(describe(gitStatusSnapshot(repository.path()).files),
             QStringLiteral("R |new\n R|newer"));
}

void GitStatusTest::copy()
{
    const Repository repository = fresh("copies");
    repository.write(QStringLiteral("old"), "some text\nthat is copied\n");
    repository.commitAll();
    repository.git(
        {QStringLiteral("config"), QStringLiteral("status.renames"), QStringLiteral("copies")});
    repository.write(QStringLiteral("new"), "some text\nthat is copied\n");
    repository.write(QStringLiteral("old"), "some text\nthat is copied\nand changed\n");
    repository.git({QStringLiteral("add"), QStringLiteral("-A")});
    QCOMPARE(describe(gitStatusSnapshot(repository.path()).files),
             QStringLiteral("C |new\nM |old"));
}

void GitStatusTest::folderWithoutRepository()
{
    for (const QString &path : {m_folder.path(), m_folder.filePath(QStringLiteral("missing"))})
        QCOMPARE(gitStatusSnapshot(path), GitSnapshot());
}

void GitStatusTest::repositoryWithoutCommit()
{
    const Repository repository = fresh("unborn");
    repository.write(QStringLiteral("staged"), "1");
    repository.git({QStringLiteral("add"), QStringLiteral("-A")});
    repository.write(QStringLiteral("untracked"), "2");
    const GitSnapshot snapshot = gitStatusSnapshot(repository.path());
    QVERIFY(snapshot.isRepo);
    QVERIFY(!snapshot.hasHead);
    QCOMPARE(describe(snapshot.files), QStringLiteral("A |staged\n??|untracked"));
}

/// Git knows the repository, although there is nothing to review.
void GitStatusTest::bareRepository()
{
    const QString bare = m_folder.filePath(QStringLiteral("bare"));
    ::git(m_folder.path(),
          {QStringLiteral("init"), QStringLiteral("-q"), QStringLiteral("--bare"), bare});
    QCOMPARE(gitStatusSnapshot(bare), (GitSnapshot{true, {}, false}));
}

void GitStatusTest::subFolderNamesFilesFromTheTop()
{
    const Repository repository = fresh("with sub-folder");
    repository.write(QStringLiteral("sub/in"), "1");
    repository.write(QStringLiteral("out"), "2");
    QCOMPARE(describe(gitStatusSnapshot(repository.path(QStringLiteral("sub"))).files),
             QStringLiteral("??|out\n??|sub/in"));
}

void GitStatusTest::linkedWorktree()
{
    const Repository repository = fresh("main worktree");
    repository.commitAll();
    repository.write(QStringLiteral("here"), "1");
    const QString linked = m_folder.filePath(QStringLiteral("linked"));
    repository.git(
        {QStringLiteral("worktree"), QStringLiteral("add"), QStringLiteral("-q"), linked});
    writeFile(linked + QStringLiteral("/there"), "2");
    const GitSnapshot snapshot = gitStatusSnapshot(linked);
    QVERIFY(snapshot.hasHead);
    QCOMPARE(describe(snapshot.files), QStringLiteral("??|there"));
}

void GitStatusTest::cleanWorkTree()
{
    const Repository repository = fresh("clean");
    repository.commitAll();
    QCOMPARE(gitStatusSnapshot(repository.path()), (GitSnapshot{true, {}, true}));
}

void GitStatusTest::stoppedBefore()
{
    const Repository repository = fresh("stopped");
    m_stop.request_stop();
    QCOMPARE(gitStatusSnapshot(repository.path(), m_stop.get_token()), GitSnapshot());
}

/// The status of a screen takes no lock that an agent's commit would stumble over, and does not
/// stumble over the agent's.
void GitStatusTest::agentCommitsMeanwhile()
{
    const Repository repository = fresh("busy");
    for (int i = 0; i < 200; ++i)
        repository.write(QStringLiteral("file%1").arg(i), "text");
    repository.commitAll();
    repository.write(QStringLiteral("always"), "untracked");
    std::atomic<bool> over = false;
    int looked = 0;
    int missed = 0;
    std::thread screen([&] {
        while (!over) {
            const GitSnapshot snapshot = gitStatusSnapshot(repository.path());
            ++looked;
            if (!snapshot.isRepo || !snapshot.hasHead ||
                find(snapshot.files, QStringLiteral("always")).path.isEmpty())
                ++missed;
        }
    });
    QStringList failures;
    for (int i = 0; i < 60; ++i) {
        // Times that differ make a status want to write the index.
        for (int file = 0; file < 200; file += 10)
            repository.write(QStringLiteral("file%1").arg(file), "text");
        repository.write(QStringLiteral("file0"), QByteArray::number(i));
        QProcess agent;
        agent.start(QStringLiteral("/usr/bin/git"),
                    {QStringLiteral("-C"), repository.path(), QStringLiteral("commit"),
                     QStringLiteral("-q"), QStringLiteral("-am"), QStringLiteral("agent")});
        agent.waitForFinished(-1);
        if (agent.exitCode() != 0)
            failures.append(QString::fromUtf8(agent.readAllStandardError()));
    }
    over = true;
    screen.join();
    QCOMPARE(failures, QStringList());
    QVERIFY(looked > 1);
    QCOMPARE(missed, 0);
}

PLINTHAR_TEST_MAIN(GitStatusTest)
#include "GitStatusTest.moc"
