// SPDX-License-Identifier: GPL-3.0-or-later

// The real program, closed in the middle of whatever it can be doing. It ends as if nothing were
// under way, leaves neither a process nor a file behind, and what was to be saved is saved.

#include "RealProgram.h"
#include "review/Repository.h"
#include "support/LogLines.h"
#include "support/TestMain.h"
#include "support/ToolDoubles.h"

#include <QDir>
#include <QJsonDocument>

#include <memory>

namespace {

constexpr int patience = 60'000;
/// Longer than the program waits, at its end, for what need not be finished.
constexpr int aLongTime = 2000;

const QString hangs = QStringLiteral("exec sleep 600");
const QString isDeaf = QStringLiteral("trap '' TERM; while :; do sleep 0.1; done");

QStringList filesIn(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System |
                                  QDir::NoDotAndDotDot);
}

} // namespace

class ClosingTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup();

    void whileNothingIsUnderWay();
    void whileAToolHangs_data();
    void whileAToolHangs();
    void whileAToolHangsByForce();
    void whileLogsAreRead();
    void whileUsageIsComputed();
    void whileAFileIsSaved();
    void whilePricesAreSaved();
    void whileAChangeIsDecided_data();
    void whileAChangeIsDecided();
    void whileACommitIsMade();

private:
    void start();
    /// Closes the window, and says what is wrong with what follows from it; empty when nothing is.
    QString close();
    QString endOf() const;
    QString gate() const { return m_tools->path(QStringLiteral("gate")); }
    QString untilTheGateOpens() const
    {
        return QStringLiteral("touch '%1.begun'; while [ -e '%1' ]; do sleep 0.05; done")
            .arg(gate());
    }
    bool isAtTheGate() const { return QFile::exists(gate() + QStringLiteral(".begun")); }
    QByteArray statusOf(const Repository &repository) const
    {
        return repository.git({QStringLiteral("status"), QStringLiteral("--porcelain")});
    }

    std::unique_ptr<PrivateHome> m_home;
    std::unique_ptr<ToolDoubles> m_tools;
    std::unique_ptr<RealProgram> m_program;
    QString m_folder;
};

void ClosingTest::init()
{
    m_home = std::make_unique<PrivateHome>();
    m_folder = addProject(*m_home);
    writeGitIdentity();
    const Repository repository(m_folder);
    repository.write(QStringLiteral("file.txt"), "old\n");
    repository.commitAll();
    repository.write(QStringLiteral("file.txt"), "new\n");
    m_tools = std::make_unique<ToolDoubles>();
    QVERIFY(QDir().mkpath(m_home->path(QStringLiteral("tmp"))));
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    preload(environment, QStringLiteral(PRELOAD));
    environment.insert(QStringLiteral("TMPDIR"), m_home->path(QStringLiteral("tmp")));
    m_program = std::make_unique<RealProgram>(*m_home, environment);
}

void ClosingTest::cleanup()
{
    m_program.reset();
    m_tools.reset();
    m_home.reset();
}

void ClosingTest::start()
{
    QVERIFY(m_program->begin());
    m_program->perform({QStringLiteral("await Reload")}); // the project's first tab is open
}

QString ClosingTest::close()
{
    m_program->perform({QStringLiteral("Ctrl+Q")});
    if (!m_program->waitForFinished(patience))
        return QStringLiteral("it does not end");
    return endOf();
}

QString ClosingTest::endOf() const
{
    if (m_program->exitStatus() != QProcess::NormalExit || m_program->exitCode() != 0)
        return QStringLiteral("it ends with %1").arg(m_program->exitCode());
    if (!QTest::qWaitFor([this] { return m_tools->left().isEmpty(); }, aLongTime))
        return QStringLiteral("it leaves ") + m_tools->left();
    return filesIn(m_home->path(QStringLiteral("tmp"))).join(u' ');
}

void ClosingTest::whileNothingIsUnderWay()
{
    start();
    QCOMPARE(close(), QString());
}

void ClosingTest::whileAToolHangs_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("tool");
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("script");
    const QString live = QStringLiteral("Ctrl+2");
    const QString review = QStringLiteral("Ctrl+3");
    const QString git = QStringLiteral("git");
    QTest::newRow("ps") << live << QStringLiteral("ps") << QString() << hangs;
    QTest::newRow("ps that is deaf") << live << QStringLiteral("ps") << QString() << isDeaf;
    QTest::newRow("lsof") << live << QStringLiteral("lsof") << QString() << hangs;
    QTest::newRow("git from the start") << review << git << QStringLiteral("rev-parse") << hangs;
    QTest::newRow("git status") << review << git << QStringLiteral("status") << hangs;
    QTest::newRow("git status that is deaf") << review << git << QStringLiteral("status") << isDeaf;
    QTest::newRow("git diff") << review << git << QStringLiteral("diff") << hangs;
    QTest::newRow("git diff that is deaf, with a temporary folder")
        << review << git << QStringLiteral("--no-index") << isDeaf;
}

void ClosingTest::whileAToolHangs()
{
    QFETCH(const QString, key);
    QFETCH(const QString, tool);
    QFETCH(const QString, command);
    QFETCH(const QString, script);
    m_tools->play(QStringLiteral("ps"), QStringLiteral("echo '4711 1.0 01:00 claude'"));
    if (command.isEmpty())
        m_tools->play(tool, script);
    else
        m_tools->playGit(command, script);
    const Repository repository(m_folder);
    if (command == u"--no-index") { // a new link to a folder is compared with an empty one
        repository.commitAll();
        repository.link(QStringLiteral("link"), "/usr");
    }
    start();
    m_program->perform({key});
    const auto isUnderWay = [&] {
        const QStringList runs = m_tools->begun(tool);
        return !runs.isEmpty() && runs.constLast().contains(command);
    };
    QTRY_VERIFY_WITH_TIMEOUT(isUnderWay(), patience);
    QCOMPARE(close(), QString());
    QVERIFY(!QFile::exists(repository.path(QStringLiteral(".git/index.lock"))));
}

/// As by Ctrl+C in the terminal that it was started from, or by a crash.
void ClosingTest::whileAToolHangsByForce()
{
    m_tools->play(QStringLiteral("ps"), hangs);
    start();
    m_program->perform({QStringLiteral("Ctrl+2")});
    QTRY_VERIFY_WITH_TIMEOUT(!m_tools->begun(QStringLiteral("ps")).isEmpty(), patience);
    m_program->kill();
    QVERIFY(m_program->waitForFinished(patience));
    QTRY_COMPARE(m_tools->left(), QString());
}

/// They are on a disk that does not answer.
void ClosingTest::whileLogsAreRead()
{
    writeFile(m_home->claude(QStringLiteral("-code/session.jsonl")),
              LogLines::log({LogLines::user({}, {}, m_folder)}));
    writeFile(m_tools->path(QStringLiteral("hold-open")), {});
    QVERIFY(m_program->begin());
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(m_tools->path(QStringLiteral("open-begun"))), patience);
    QCOMPARE(close(), QString());
}

void ClosingTest::whileUsageIsComputed()
{
    QList<QByteArray> lines;
    const QString now = QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs);
    lines.append(LogLines::user(now, QStringLiteral("prompt"), m_folder));
    for (int i = 0; i < 60'000; ++i) // so many that they are added up beside the interface thread
        lines.append(LogLines::assistant(now, QString(), {.input = i}));
    writeFile(m_home->claude(QStringLiteral("-code/session.jsonl")), LogLines::log(lines));
    start();
    m_program->perform({QStringLiteral("Ctrl+4;Ctrl+Q")});
    QVERIFY(m_program->waitForFinished(patience));
    QCOMPARE(endOf(), QString());
}

/// Nobody would know that the text is lost.
void ClosingTest::whileAFileIsSaved()
{
    writeFile(m_folder + QStringLiteral("/CLAUDE.md"), "text");
    const QStringList before = filesIn(m_folder);
    start();
    m_program->perform({QStringLiteral("Ctrl+5"), QStringLiteral("type new ")});
    const QString hold = m_tools->path(QStringLiteral("hold-fsync"));
    writeFile(hold, {});
    m_program->perform({QStringLiteral("click Save")});
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(m_tools->path(QStringLiteral("fsync-begun"))), patience);
    m_program->perform({QStringLiteral("Ctrl+Q")});
    QVERIFY(!m_program->waitForFinished(aLongTime));
    QVERIFY(QFile::remove(hold));
    QVERIFY(m_program->waitForFinished(patience));
    QCOMPARE(endOf(), QString());
    QCOMPARE(readFile(m_folder + QStringLiteral("/CLAUDE.md")), "new text");
    QCOMPARE(filesIn(m_folder), before);
}

void ClosingTest::whilePricesAreSaved()
{
    start();
    m_program->perform({QStringLiteral("click Price Table\u2026"), QStringLiteral("click Add Row"),
                        QStringLiteral("click Save")});
    QCOMPARE(close(), QString());
    const QByteArray prices = readFile(m_home->support(QStringLiteral("prices.json")));
    QVERIFY2(QJsonDocument::fromJson(prices).isArray(), prices);
    QCOMPARE(filesIn(m_home->support()).join(u' '), QStringLiteral("prices.json projects.json"));
}

void ClosingTest::whileAChangeIsDecided_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QStringList>("clicks");
    QTest::addColumn<QByteArray>("status");
    QTest::newRow("approve") << QStringLiteral("add")
                             << QStringList{QStringLiteral("click Approve")}
                             << QByteArray("M  file.txt\n");
    QTest::newRow("reject") << QStringLiteral("checkout")
                            << QStringList{QStringLiteral("click Reject"),
                                           QStringLiteral("click Discard Changes")}
                            << QByteArray();
}

void ClosingTest::whileAChangeIsDecided()
{
    QFETCH(const QString, command);
    QFETCH(const QStringList, clicks);
    QFETCH(const QByteArray, status);
    const Repository repository(m_folder);
    writeFile(gate(), {});
    m_tools->playGit(command, untilTheGateOpens() + QStringLiteral("; exec /usr/bin/git \"$@\""));
    start();
    m_program->perform({QStringLiteral("Ctrl+3")});
    m_program->perform(clicks);
    QTRY_VERIFY_WITH_TIMEOUT(isAtTheGate(), patience);
    m_program->perform({QStringLiteral("Ctrl+Q")});
    QVERIFY(!m_program->waitForFinished(aLongTime));
    QVERIFY(QFile::remove(gate()));
    QVERIFY(m_program->waitForFinished(patience));
    QCOMPARE(endOf(), QString());
    m_tools->giveBack(QStringLiteral("git"));
    QCOMPARE(statusOf(repository), status);
}

/// The sheet stays, and the window with it, until it is known what has become of the commit.
void ClosingTest::whileACommitIsMade()
{
    const Repository repository(m_folder);
    repository.git({QStringLiteral("add"), QStringLiteral("-A")});
    repository.write(QStringLiteral("other.txt"), "new\n");
    writeFile(gate(), {});
    repository.write(QStringLiteral(".git/hooks/pre-commit"),
                     "#!/bin/sh\n" + untilTheGateOpens().toUtf8() + "\necho done >&2\n");
    repository.makeExecutable(QStringLiteral(".git/hooks/pre-commit"));
    start();
    m_program->perform({QStringLiteral("Ctrl+3"), QStringLiteral("click Commit\u2026"),
                        QStringLiteral("type message"), QStringLiteral("click Commit")});
    QTRY_VERIFY_WITH_TIMEOUT(isAtTheGate(), patience);
    QCOMPARE(filesIn(m_home->path(QStringLiteral("tmp"))).size(), 1);
    m_program->perform({QStringLiteral("Ctrl+Q")});
    QVERIFY(!m_program->waitForFinished(aLongTime));
    QVERIFY(QFile::remove(gate()));
    QTRY_COMPARE_WITH_TIMEOUT(statusOf(repository), "?? other.txt\n", patience);
    m_program->perform({QStringLiteral("await Approve")});
    QCOMPARE(close(), QString());
}

PLINTHAR_TEST_MAIN(ClosingTest)
#include "ClosingTest.moc"
