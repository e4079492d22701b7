// SPDX-License-Identifier: GPL-3.0-or-later
#include "review/Commit.h"

#include "app/Environment.h"
#include "review/Repository.h"
#include "support/TestMain.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <memory>

class CommitTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void message_data();
    void message();
    void commitsWhatIsStagedOnly();
    void messageStaysAsItIs();
    void messageFile();
    void nothingStaged();
    void noRepository();
    void noTemporaryFolder();
    void failingHook_data();
    void failingHook();
    void hookThatLeavesAProcessBehind();

private:
    const Repository &repository() const { return *m_repository; }
    void hook(const QByteArray &script) const
    {
        repository().write(QStringLiteral(".git/hooks/pre-commit"), "#!/bin/sh\n" + script);
        repository().makeExecutable(QStringLiteral(".git/hooks/pre-commit"));
    }
    QByteArray lastMessage() const
    {
        return repository().git(
            {QStringLiteral("log"), QStringLiteral("-1"), QStringLiteral("--format=%B")});
    }
    QStringList messageFiles() const
    {
        return QDir(m_folder->path()).entryList({QStringLiteral("*plinthar-msg-*")}, QDir::Files);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<Repository> m_repository;
};

void CommitTest::initTestCase()
{
    prepareEnvironment();
    writeGitIdentity();
}

/// The temporary folder of the system is one of the test's own, too.
void CommitTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    qputenv("TMPDIR", m_folder->path().toUtf8());
    m_repository = std::make_unique<Repository>(m_folder->filePath(QStringLiteral("repository")));
    repository().write(QStringLiteral("file"), "1\n");
    repository().git({QStringLiteral("add"), QStringLiteral("file")});
}

void CommitTest::cleanup()
{
    QCOMPARE(messageFiles(), QStringList());
    qunsetenv("TMPDIR");
    m_repository.reset();
    m_folder.reset();
}

void CommitTest::message_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("message");
    const auto row = [](const char *name, const QString &typed, const QString &message) {
        QTest::newRow(name) << typed << message;
    };
    const QString fixed = QStringLiteral("Fix bug\n\nAgent-assisted: true");
    row("one line", QStringLiteral("Fix bug"), fixed);
    row("blanks and empty lines around", QStringLiteral(" \t\n\n  Fix bug \r\n\n\u00a0\n"), fixed);
    row("with the trailer", fixed, fixed);
    row("with the trailer and line feeds", fixed + QStringLiteral("\n\n"), fixed);
    row("with the trailer directly below", QStringLiteral("Fix bug\nAgent-assisted: true"),
        QStringLiteral("Fix bug\nAgent-assisted: true"));
    row("with the trailer in the middle", QStringLiteral("Agent-assisted: true\n\nmore"),
        QStringLiteral("Agent-assisted: true\n\nmore\n\nAgent-assisted: true"));
    row("with another trailer", QStringLiteral("Fix\n\nSigned-off-by: A"),
        QStringLiteral("Fix\n\nSigned-off-by: A\n\nAgent-assisted: true"));
    row("other case", QStringLiteral("agent-assisted: true"),
        QStringLiteral("agent-assisted: true\n\nAgent-assisted: true"));
    row("only the trailer", QStringLiteral("Agent-assisted: true"),
        QStringLiteral("Agent-assisted: true"));
    row("inner lines stay", QStringLiteral("a\n\n\n  b\n# c"),
        QStringLiteral("a\n\n\n  b\n# c\n\nAgent-assisted: true"));
}

void CommitTest::message()
{
    QFETCH(const QString, typed);
    QTEST(commitMessage(typed), "message");
}

void CommitTest::commitsWhatIsStagedOnly()
{
    repository().write(QStringLiteral("file"), "2\n");
    repository().write(QStringLiteral("untracked"), "3\n");
    QCOMPARE(commit(repository().path(), QStringLiteral("Fix bug")), std::nullopt);
    QCOMPARE(lastMessage(), "Fix bug\n\nAgent-assisted: true\n\n");
    QCOMPARE(repository().git({QStringLiteral("show"), QStringLiteral("HEAD:file")}), "1\n");
    QCOMPARE(repository().state().status,
             (QMap<QByteArray, QByteArray>{{"file", " M"}, {"untracked", "??"}}));
}

void CommitTest::messageStaysAsItIs()
{
    const QString typed = QStringLiteral("Caf\u00e9 \u65e5\u672c \U0001F600 \"quoted\" $HOME\n\n"
                                         "# no comment\n-F --amend\n`true`");
    QCOMPARE(commit(repository().path(), typed), std::nullopt);
    QCOMPARE(lastMessage(), typed.toUtf8() + "\n\nAgent-assisted: true\n\n");
}

/// The hook sees the file that git reads the message from.
void CommitTest::messageFile()
{
    hook("ls \"$TMPDIR\" | grep plinthar-msg > \"$TMPDIR/seen\"\n"
         "cat \"$TMPDIR\"/plinthar-msg-*.txt > \"$TMPDIR/content\"\n"
         "stat -c %a \"$TMPDIR\"/plinthar-msg-*.txt > \"$TMPDIR/mode\"\n");
    QCOMPARE(commit(repository().path(), QStringLiteral("  Fix bug\n\n")), std::nullopt);
    const QString seen = QString::fromUtf8(readFile(m_folder->filePath(QStringLiteral("seen"))));
    static const QRegularExpression name(
        QStringLiteral("^plinthar-msg-[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}\\.txt\n$"));
    QVERIFY2(name.match(seen).hasMatch(), qPrintable(seen));
    QCOMPARE(readFile(m_folder->filePath(QStringLiteral("content"))),
             "Fix bug\n\nAgent-assisted: true\n");
    QCOMPARE(readFile(m_folder->filePath(QStringLiteral("mode"))), "600\n");
}

/// Git says that on its standard output.
void CommitTest::nothingStaged()
{
    QCOMPARE(commit(repository().path(), QStringLiteral("first")), std::nullopt);
    const auto error = commit(repository().path(), QStringLiteral("second"));
    QVERIFY(error && error->contains(QStringLiteral("nothing to commit")));
    QCOMPARE(lastMessage(), "first\n\nAgent-assisted: true\n\n");
}

void CommitTest::noRepository()
{
    const auto error = commit(m_folder->path(), QStringLiteral("message"));
    QVERIFY(error && error->contains(QStringLiteral("not a git repository")));
}

void CommitTest::noTemporaryFolder()
{
    qputenv("TMPDIR", "/proc"); // where nobody can make a file
    const auto error = commit(repository().path(), QStringLiteral("message"));
    QVERIFY(error);
    QVERIFY2(error->contains(QStringLiteral("plinthar-msg-")), qPrintable(*error));
}

void CommitTest::failingHook_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<QString>("error");
    QTest::newRow("both streams") << QByteArray("echo out\necho err >&2\nexit 1\n")
                                  << QStringLiteral("out\nerr\n");
    QTest::newRow("colours") << QByteArray("printf '\\033[1;31mred\\033[0m\\r\\n' >&2\nexit 1\n")
                             << QStringLiteral("red\n");
    QTest::newRow("silent") << QByteArray("exit 3\n") << QString();
    QTest::newRow("no UTF-8") << QByteArray("printf '\\377\\n' >&2\nexit 1\n")
                              << QStringLiteral("\uFFFD\n");
    QTest::newRow("much") << QByteArray("head -c 300000 /dev/zero | tr '\\0' e >&2\nexit 1\n")
                          << QString(u'e').repeated(300000);
    QTest::newRow("slow") << QByteArray("sleep 0.5\necho late >&2\nexit 1\n")
                          << QStringLiteral("late\n");
}

void CommitTest::failingHook()
{
    QFETCH(const QByteArray, script);
    hook(script);
    const RepositoryState before = repository().state();
    const auto error = commit(repository().path(), QStringLiteral("message"));
    QVERIFY(error);
    QTEST(*error, "error");
    QCOMPARE(repository().state().differenceFrom(before), QString());
}

/// It holds git's output open for longer than git runs.
void CommitTest::hookThatLeavesAProcessBehind()
{
    const QString left = m_folder->filePath(QStringLiteral("left"));
    hook("(while [ -e '" + left.toUtf8() + "' ]; do sleep 0.05; done) &\n");
    writeFile(left, {});
    QCOMPARE(commit(repository().path(), QStringLiteral("message")), std::nullopt);
    QVERIFY(QFile::remove(left)); // it is still there, and ends now
    QCOMPARE(lastMessage(), "message\n\nAgent-assisted: true\n\n");
}

PLINTHAR_TEST_MAIN(CommitTest)
#include "CommitTest.moc"
