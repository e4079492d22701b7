// SPDX-License-Identifier: GPL-3.0-or-later

// What becomes of the questions to git and of what is done through it when git itself fails.

#include "Repository.h"
#include "review/Commit.h"
#include "review/DiffLoader.h"
#include "review/GitActions.h"
#include "review/GitStatus.h"
#include "support/MemoryPeak.h"
#include "support/TestMain.h"
#include "support/ToolDoubles.h"

#include <QDir>

#include <memory>
#include <optional>
#include <thread>

namespace {

constexpr const char *removed = "";

QString gigabyteOf(const QString &line)
{
    return QStringLiteral("yes '%1' | head -c 1000000000").arg(line);
}

const QString gigabyteOfErrors =
    gigabyteOf(QStringLiteral("an error")) + QStringLiteral(" >&2; echo the end >&2; exit 1");

const GitFile changed{QStringLiteral("kept.txt"), u' ', u'M'};

} // namespace

class GitFaultsTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup();

    void noAnswerIsNoRepository_data() { addFaults(); }
    void noAnswerIsNoRepository();
    void noListIsNoFile_data() { addFaults(); }
    void noListIsNoFile();
    void noDiffIsNoRow_data() { addFaults(); }
    void noDiffIsNoRow();
    void noActionIsAFailure_data() { addFaults(); }
    void noActionIsAFailure();
    void noCommitIsAFailure_data() { addFaults(); }
    void noCommitIsAFailure();
    void garbageIsNoCatastrophe_data();
    void garbageIsNoCatastrophe();

    void aGigabyteOfFilesIsCutOff();
    void aGigabyteOfDiffIsNotShown();
    void ofAGigabyteOfErrorsTheEndIsKept();
    void aHookThatFloodsIsNoReasonToBreakACommitOff();

    void aHangingGitIsEndedWithWhatItHasStarted_data();
    void aHangingGitIsEndedWithWhatItHasStarted();

private:
    static void addFaults();
    /// Plays the row's fault for one command of git's.
    void playFault(const QString &command);
    QStringList temporaryFiles() const
    {
        return QDir(m_home->path(QStringLiteral("tmp")))
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    }

    std::unique_ptr<PrivateHome> m_home;
    std::unique_ptr<ToolDoubles> m_tools;
    std::optional<Repository> m_repository;
    RepositoryState m_before;
};

void GitFaultsTest::init()
{
    m_home = std::make_unique<PrivateHome>();
    m_tools = std::make_unique<ToolDoubles>();
    QVERIFY(QDir().mkpath(m_home->path(QStringLiteral("tmp"))));
    qputenv("TMPDIR", m_home->path(QStringLiteral("tmp")).toUtf8());
    writeGitIdentity();
    m_repository.emplace(m_home->path(QStringLiteral("project")));
    m_repository->write(changed.path, "old\n");
    m_repository->commitAll();
    m_repository->write(changed.path, "new\n");
    m_before = m_repository->state();
}

void GitFaultsTest::cleanup()
{
    const QString processes = m_tools->left();
    const QStringList files = temporaryFiles();
    m_repository.reset();
    m_tools.reset();
    m_home.reset();
    qunsetenv("TMPDIR");
    QCOMPARE(processes, QString());
    QCOMPARE(files, QStringList());
}

void GitFaultsTest::addFaults()
{
    QTest::addColumn<QString>("script");
    QTest::newRow("missing") << QString::fromLatin1(removed);
    QTest::newRow("killed") << QStringLiteral("kill -KILL $$");
    QTest::newRow("crashes") << QStringLiteral("ulimit -c 0; kill -SEGV $$");
    QTest::newRow("fails with garbage")
        << QStringLiteral("head -c 10000 /dev/urandom | tee /dev/stderr | head -c 20; exit 128");
    QTest::newRow("fails without a word") << QStringLiteral("exit 1");
}

void GitFaultsTest::playFault(const QString &command)
{
    QFETCH(const QString, script);
    if (script.isEmpty())
        m_tools->remove(QStringLiteral("git"));
    else
        m_tools->playGit(command, script);
}

void GitFaultsTest::noAnswerIsNoRepository()
{
    playFault(QStringLiteral("rev-parse"));
    QCOMPARE(gitStatusSnapshot(m_repository->path()), GitSnapshot());
}

void GitFaultsTest::noListIsNoFile()
{
    playFault(QStringLiteral("status"));
    QFETCH(const QString, script);
    const GitSnapshot snapshot = gitStatusSnapshot(m_repository->path());
    QCOMPARE(snapshot.isRepo, !script.isEmpty());
    QCOMPARE(snapshot.hasHead, !script.isEmpty());
    if (!script.contains(u"urandom"))
        QCOMPARE(snapshot.files, QList<GitFile>());
}

void GitFaultsTest::noDiffIsNoRow()
{
    playFault(QStringLiteral("diff"));
    QCOMPARE(loadDiff(m_repository->path(), changed, true), LoadedDiff());
}

void GitFaultsTest::noActionIsAFailure()
{
    QFETCH(const QString, script);
    for (const QString &command : {QStringLiteral("add"), QStringLiteral("checkout")}) {
        playFault(command);
        const ShellResult result = command == u"add" ? approve(m_repository->path(), changed)
                                                     : reject(m_repository->path(), changed, true);
        QVERIFY(result.status != 0);
        m_tools->giveBack(QStringLiteral("git"));
        QCOMPARE(m_repository->state().differenceFrom(m_before), QString());
        if (script.isEmpty())
            QVERIFY2(result.err.startsWith(u"/usr/bin/git: "), qPrintable(result.err));
    }
}

void GitFaultsTest::noCommitIsAFailure()
{
    QFETCH(const QString, script);
    m_repository->git({QStringLiteral("add"), changed.path});
    const RepositoryState staged = m_repository->state();
    playFault(QStringLiteral("commit"));
    const std::optional<QString> error = commit(m_repository->path(), QStringLiteral("message"));
    QVERIFY(error);
    if (script.isEmpty())
        QVERIFY2(error->startsWith(u"/usr/bin/git: "), qPrintable(*error));
    m_tools->giveBack(QStringLiteral("git"));
    QCOMPARE(m_repository->state().differenceFrom(staged), QString());
}

void GitFaultsTest::garbageIsNoCatastrophe_data()
{
    QTest::addColumn<QString>("script");
    QTest::newRow("bytes") << QStringLiteral("head -c 100000 /dev/urandom");
    QTest::newRow("letters") << QStringLiteral("head -c 75000 /dev/urandom | base64");
    QTest::newRow("zeros") << QStringLiteral("head -c 100000 /dev/zero");
    QTest::newRow("hunks of nothing")
        << QStringLiteral("yes '@@ -9999999999999999999,-1 +-1 @@' | head -n 10000");
    QTest::newRow("renames without a source")
        << QStringLiteral("head -c 5000 /dev/zero | sed 's/\\x0/R  x\\x0/g'");
    QTest::newRow("its own help") << QStringLiteral("exec /usr/bin/git help -a");
}

/// Every answer of git's is garbage, and it says that all is well.
void GitFaultsTest::garbageIsNoCatastrophe()
{
    QFETCH(const QString, script);
    m_tools->play(QStringLiteral("git"), script);
    const GitSnapshot snapshot = gitStatusSnapshot(m_repository->path());
    QVERIFY(snapshot.isRepo);
    for (const GitFile &file : snapshot.files)
        QVERIFY(!file.path.isEmpty());
    (void)loadDiff(m_repository->path(), changed, true);
    for (const GitFile &file : snapshot.files.first(qMin<qsizetype>(snapshot.files.size(), 3)))
        (void)loadDiff(m_repository->path(), file, true);
    // Where the project lies in its work tree is not known, so nothing is done.
    QVERIFY(approve(m_repository->path(), changed).status != 0);
    QVERIFY(reject(m_repository->path(), changed, true).status != 0);
    m_tools->giveBack(QStringLiteral("git"));
    QCOMPARE(m_repository->state().differenceFrom(m_before), QString());
}

void GitFaultsTest::aGigabyteOfFilesIsCutOff()
{
    SKIP_WITHOUT_MEMORY_PEAK();
    m_tools->playGit(QStringLiteral("status"), gigabyteOf(QStringLiteral("?? a file that is new")) +
                                                   QStringLiteral(" | tr '\\n' '\\0'"));
    const MemoryPeak memory;
    const std::stop_source stop;
    const GitSnapshot snapshot = gitStatusSnapshot(m_repository->path(), stop.get_token());
    QVERIFY(snapshot.isRepo);
    QVERIFY(snapshot.isCut);
    QVERIFY(snapshot.files.size() > 1'000'000); // what comes first is shown
    QCOMPARE(snapshot.files.constLast(), snapshot.files.constFirst());
    QVERIFY2(memory.megabytes() < 1000, QByteArray::number(memory.megabytes()));
}

void GitFaultsTest::aGigabyteOfDiffIsNotShown()
{
    SKIP_WITHOUT_MEMORY_PEAK();
    m_tools->playGit(QStringLiteral("diff"), QStringLiteral("printf '@@ -1 +1 @@\\n'; ") +
                                                 gigabyteOf(QStringLiteral("+a line of text")));
    const MemoryPeak memory;
    const std::stop_source stop;
    const LoadedDiff diff = loadDiff(m_repository->path(), changed, true, stop.get_token());
    QVERIFY(diff.rows.isEmpty());
    QCOMPARE(diff.note, QStringLiteral("This diff is larger than 64 MB"));
    QVERIFY2(memory.megabytes() < 500, QByteArray::number(memory.megabytes()));
}

void GitFaultsTest::ofAGigabyteOfErrorsTheEndIsKept()
{
    SKIP_WITHOUT_MEMORY_PEAK();
    m_tools->playGit(QStringLiteral("add"), gigabyteOfErrors);
    const MemoryPeak memory;
    const ShellResult result = approve(m_repository->path(), changed);
    QCOMPARE(result.status, 1);
    QVERIFY(result.err.endsWith(u"the end\n"));
    QVERIFY2(memory.megabytes() < 200, QByteArray::number(memory.megabytes()));
}

void GitFaultsTest::aHookThatFloodsIsNoReasonToBreakACommitOff()
{
    SKIP_WITHOUT_MEMORY_PEAK();
    m_repository->git({QStringLiteral("add"), changed.path});
    const QString hook = m_repository->path(QStringLiteral(".git/hooks/pre-commit"));
    writeFile(hook, "#!/bin/sh\nyes 'a line of text' | head -c 300000000\n");
    QVERIFY(QFile::setPermissions(hook, QFile::ReadOwner | QFile::ExeOwner));
    const MemoryPeak memory;
    QCOMPARE(commit(m_repository->path(), QStringLiteral("message")), std::nullopt);
    QVERIFY2(memory.megabytes() < 200, QByteArray::number(memory.megabytes()));
    QCOMPARE(m_repository->git({QStringLiteral("status"), QStringLiteral("--porcelain")}), "");
}

void GitFaultsTest::aHangingGitIsEndedWithWhatItHasStarted_data()
{
    QTest::addColumn<QString>("setting");
    QTest::newRow("its watcher of files") << QStringLiteral("core.fsmonitor");
    QTest::newRow("a filter of contents") << QStringLiteral("filter.slow.clean");
    QTest::newRow("another program for diffs") << QStringLiteral("diff.external");
}

/// Git ends when it is told to, but what it waits for does not.
void GitFaultsTest::aHangingGitIsEndedWithWhatItHasStarted()
{
    QFETCH(const QString, setting);
    const QString begun = m_tools->path(QStringLiteral("begun"));
    const QString slow = m_tools->path(QStringLiteral("slow"));
    writeFile(slow, "#!/bin/sh\ntouch '" + begun.toUtf8() + "'\nsleep 600\n");
    QVERIFY(QFile::setPermissions(slow, QFile::ReadOwner | QFile::ExeOwner));
    writeFile(m_repository->path(QStringLiteral(".gitattributes")), "*.txt filter=slow\n");
    m_repository->write(changed.path, "old but not the same\n"); // has to be looked at
    m_repository->git({QStringLiteral("config"), setting, slow});

    std::stop_source stop;
    std::thread worker([&] {
        (void)gitStatusSnapshot(m_repository->path(), stop.get_token());
        (void)loadDiff(m_repository->path(), changed, true, stop.get_token());
    });
    const bool hangs = QTest::qWaitFor([&] { return QFile::exists(begun); }, 60'000);
    stop.request_stop();
    worker.join();
    QVERIFY(hangs);
    QTRY_COMPARE(m_tools->left(), QString());

    QVERIFY(!QFile::exists(m_repository->path(QStringLiteral(".git/index.lock"))));
}

PLINTHAR_TEST_MAIN(GitFaultsTest)
#include "GitFaultsTest.moc"
