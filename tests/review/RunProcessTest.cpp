// SPDX-License-Identifier: GPL-3.0-or-later
#include "review/RunProcess.h"

#include "support/TestMain.h"

#include <QDir>
#include <QFileInfo>
#include <QScopeGuard>
#include <QThreadPool>
#include <QtConcurrentMap>

#include <csignal>
#include <fcntl.h>
#include <numeric>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>

namespace {

const QString child = QStringLiteral(CHILD_DOUBLE);

/// The result of `work` on a thread of its own, as the program does it.
template <typename Work>
ShellResult onThread(Work work)
{
    ShellResult result;
    std::thread([&] { result = work(); }).join();
    return result;
}

ShellResult run(const QString &executable, const QStringList &arguments,
                const std::optional<QString> &cwd = std::nullopt,
                const std::optional<QString> &input = std::nullopt)
{
    return onThread([&] { return runProcess(executable, arguments, cwd, input); });
}

ShellResult runChild(const QStringList &arguments,
                     const std::optional<QString> &input = std::nullopt)
{
    return run(child, arguments, std::nullopt, input);
}

/// Everything that this process holds of the system.
struct Holdings {
    qsizetype files = 0;
    qsizetype threads = 0;
    QStringList children;

    bool operator==(const Holdings &) const = default;
};

qsizetype entries(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size();
}

Holdings holdings()
{
    Holdings held{
        entries(QStringLiteral("/proc/self/fd")), entries(QStringLiteral("/proc/self/task")), {}};
    const QByteArray self = QByteArray::number(::getpid());
    const QStringList pids = QDir(QStringLiteral("/proc")).entryList(QDir::Dirs);
    for (const QString &pid : pids) {
        const QByteArray stat = readFile(QStringLiteral("/proc/%1/stat").arg(pid));
        const QList<QByteArray> fields = stat.mid(stat.lastIndexOf(')') + 2).split(' ');
        if (fields.size() > 1 && fields[1] == self) // a zombie counts like a living one
            held.children.append(pid);
    }
    return held;
}

} // namespace

class RunProcessTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void streamsAndStatusComeBack();
    void statusIsTheExitStatus_data();
    void statusIsTheExitStatus();
    void aSignalIsAStatus_data();
    void aSignalIsAStatus();
    void argumentsArriveAsTheyStand();
    void whatCannotBeStarted_data();
    void whatCannotBeStarted();
    void aMereNameIsAFileAndIsNotSearchedFor();
    void missingWorkingFolder();
    void workingFolder();
    void textWithNulStartsNothing();
    void noDescriptorsLeft();
    void megabytesOnBothStreamsAtOnce_data();
    void megabytesOnBothStreamsAtOnce();
    void noMoreIsKeptThanAnybodyReads_data();
    void noMoreIsKeptThanAnybodyReads();
    void closingItsStreamsIsNotTheEnd();
    void withoutInputThereIsTheNullDevice();
    void inputArrives_data();
    void inputArrives();
    void inputThatNobodyReads();
    void brokenTextIsReplaced();
    void grandchildHoldsThePipe();
    void theChildInheritsTheEnvironment();
    void theChildStartsClean();
    void manyAtOnce();
    void nothingIsLeftBehind();

private:
    QString m_inherited;
};

/// What this program itself was started with is no child's fault.
void RunProcessTest::initTestCase()
{
    for (int fd = 0; fd < 1024; ++fd) {
        const int flags = ::fcntl(fd, F_GETFD);
        if (flags != -1 && (flags & FD_CLOEXEC) == 0)
            m_inherited += QString::number(fd) + u' ';
    }
}

void RunProcessTest::streamsAndStatusComeBack()
{
    const ShellResult result =
        run(QStringLiteral("/bin/sh"),
            {QStringLiteral("-c"), QStringLiteral("echo a; echo b >&2; exit 7")});
    QCOMPARE(result.status, 7);
    QCOMPARE(result.out, QStringLiteral("a\n"));
    QCOMPARE(result.err, QStringLiteral("b\n"));
}

void RunProcessTest::statusIsTheExitStatus_data()
{
    QTest::addColumn<int>("status");
    for (const int status : {0, 1, 127, 128, 255})
        QTest::addRow("%d", status) << status;
}

void RunProcessTest::statusIsTheExitStatus()
{
    QFETCH(const int, status);
    const ShellResult result = runChild({QStringLiteral("exit"), QString::number(status)});
    QCOMPARE(result.status, status);
    QVERIFY(result.out.isEmpty());
    QVERIFY(result.err.isEmpty());
}

void RunProcessTest::aSignalIsAStatus_data()
{
    QTest::addColumn<int>("signal");
    for (const int signal : {SIGTERM, SIGKILL, SIGABRT, SIGHUP})
        QTest::addRow("%d", signal) << signal;
}

void RunProcessTest::aSignalIsAStatus()
{
    QFETCH(const int, signal);
    const ShellResult result = runChild({QStringLiteral("kill-self"), QString::number(signal)});
    QCOMPARE(result.status, signal);
    QCOMPARE(result.out, QStringLiteral("before"));
}

void RunProcessTest::argumentsArriveAsTheyStand()
{
    const QStringList arguments{QString(), QStringLiteral("two words"),
                                QStringLiteral("\"'$HOME`*"), QStringLiteral("-"),
                                QStringLiteral("gr\u00fcn\n\U0001F600")};
    const ShellResult result = runChild(QStringList{QStringLiteral("arguments")} + arguments);
    QCOMPARE(result.out, u'[' + arguments.join(QStringLiteral("][")) + u']');
}

void RunProcessTest::whatCannotBeStarted_data()
{
    const PrivateHome home;
    QTest::addColumn<QString>("path");
    QTest::newRow("missing") << QStringLiteral("/no such folder/no such program");
    QTest::newRow("below a file") << QStringLiteral("/etc/passwd/program");
    QTest::newRow("a folder") << QStringLiteral("/usr/bin");
    QTest::newRow("without the run bit") << QStringLiteral("/etc/passwd");
    QTest::newRow("no program's content") << QStringLiteral("(garbage)");
    QTest::newRow("a script of a missing interpreter") << QStringLiteral("(script)");
    QTest::newRow("empty") << QString();
    QTest::newRow("blank") << QStringLiteral(" ");
    QTest::newRow("too long") << QString(u'/' + QString(5000, u'x'));
}

void RunProcessTest::whatCannotBeStarted()
{
    QFETCH(QString, path);
    const PrivateHome home;
    if (path.startsWith(u'(')) {
        const bool script = path == u"(script)";
        path = home.path(QStringLiteral("program"));
        writeFile(path, script ? "#!/no such/interpreter\n" : "echo this is no script\n");
        QFile::setPermissions(path, QFile::ReadOwner | QFile::ExeOwner);
    }
    const ShellResult result =
        run(path, {QStringLiteral("argument")}, std::nullopt, QStringLiteral("input"));
    QCOMPARE(result.status, -1);
    QVERIFY(result.out.isEmpty());
    QVERIFY(!result.err.isEmpty());
}

void RunProcessTest::aMereNameIsAFileAndIsNotSearchedFor()
{
    QCOMPARE(run(QStringLiteral("true"), {}).status, -1);

    // The same name as a file of the working folder is that file.
    const PrivateHome home;
    const QString before = QDir::currentPath();
    const auto back = qScopeGuard([&before] { QDir::setCurrent(before); });
    QVERIFY(QFile::copy(child, home.path(QStringLiteral("true"))));
    QVERIFY(QDir::setCurrent(home.path()));
    QCOMPARE(run(QStringLiteral("true"), {QStringLiteral("exit"), QStringLiteral("9")}).status, 9);
    // It is found from the folder of the caller, not from that of the child.
    QCOMPARE(run(QStringLiteral("./true"), {QStringLiteral("exit"), QStringLiteral("9")},
                 QStringLiteral("/usr"))
                 .status,
             9);
}

void RunProcessTest::missingWorkingFolder()
{
    const PrivateHome home;
    for (const QString &folder : {home.path(QStringLiteral("missing")), child}) {
        const ShellResult result =
            run(child, {QStringLiteral("exit"), QStringLiteral("0")}, folder);
        QCOMPARE(result.status, -1);
        QVERIFY(result.out.isEmpty());
        QVERIFY(!result.err.isEmpty());
    }
}

void RunProcessTest::workingFolder()
{
    const PrivateHome home;
    const QString folder =
        QFileInfo(home.path()).canonicalFilePath() + QStringLiteral("/a b \u00e4");
    QVERIFY(QDir().mkpath(folder));
    QCOMPARE(run(child, {QStringLiteral("folder")}, folder).out, folder);
    QCOMPARE(runChild({QStringLiteral("folder")}).out, QDir::currentPath());
}

void RunProcessTest::textWithNulStartsNothing()
{
    const QString bad = QStringLiteral("a") + QChar(0) + QStringLiteral("b");
    const QStringList good{QStringLiteral("exit"), QStringLiteral("0")};
    for (const ShellResult &result : {run(child + QChar(0), good),
                                      run(child, good + QStringList(bad)), run(child, good, bad)}) {
        QCOMPARE(result.status, -1);
        QVERIFY(!result.err.isEmpty());
    }
    // In the input it is a byte like any other.
    QCOMPARE(runChild({QStringLiteral("echo")}, bad).out, bad);
}

void RunProcessTest::noDescriptorsLeft()
{
    rlimit limit = {};
    QCOMPARE(::getrlimit(RLIMIT_NOFILE, &limit), 0);
    const rlimit before = limit;
    const auto back = qScopeGuard([&before] { ::setrlimit(RLIMIT_NOFILE, &before); });
    const auto attempt = [&before](rlim_t files) {
        return onThread([&] {
            rlimit tight = before;
            tight.rlim_cur = files;
            ::setrlimit(RLIMIT_NOFILE, &tight);
            const ShellResult result =
                runProcess(child, {QStringLiteral("exit"), QStringLiteral("4")}, std::nullopt,
                           QStringLiteral("x"));
            ::setrlimit(RLIMIT_NOFILE, &before);
            return result;
        });
    };
    QCOMPARE(attempt(512).status, 4);
    const Holdings quiet = holdings();
    int failures = 0;
    for (rlim_t files = 3; files < 64; ++files) {
        const ShellResult result = attempt(files);
        if (result.status == 4)
            continue;
        ++failures;
        QCOMPARE(result.status, -1);
        QVERIFY(!result.err.isEmpty());
    }
    QVERIFY(failures > 0);
    QVERIFY(failures < 60);
    QCOMPARE(holdings().files, quiet.files);
    // A thread that has been joined may stand in the list for a moment longer.
    QTRY_VERIFY(holdings().threads <= quiet.threads);
    QCOMPARE(holdings().children, quiet.children);
}

void RunProcessTest::megabytesOnBothStreamsAtOnce_data()
{
    QTest::addColumn<QString>("manner");
    QTest::newRow("in turns") << QStringLiteral("flood");
    QTest::newRow("one stream first") << QStringLiteral("flood-one-by-one");
}

void RunProcessTest::megabytesOnBothStreamsAtOnce()
{
    QFETCH(const QString, manner);
    constexpr qsizetype bytes = 8 << 20;
    const ShellResult result = runChild({manner, QString::number(bytes)});
    QCOMPARE(result.status, 0);
    QCOMPARE(result.out.size(), bytes);
    QCOMPARE(result.out.count(u'o'), bytes);
    QCOMPARE(result.err.size(), bytes);
    QCOMPARE(result.err.count(u'e'), bytes);
}

void RunProcessTest::noMoreIsKeptThanAnybodyReads_data()
{
    QTest::addColumn<qsizetype>("bytes");
    QTest::addColumn<bool>("isCut");
    QTest::newRow("all that is kept") << (qsizetype(64) << 20) << false;
    QTest::newRow("more") << (qsizetype(64) << 20) + 4096 << true;
}

/// Whoever cannot stop it wants it to come to its end.
void RunProcessTest::noMoreIsKeptThanAnybodyReads()
{
    QFETCH(const qsizetype, bytes);
    QFETCH(const bool, isCut);
    const ShellResult result = runChild({QStringLiteral("flood"), QString::number(bytes)});
    QCOMPARE(result.status, 0);
    QCOMPARE(result.isCut, isCut);
    QCOMPARE(result.out.size(), qsizetype(64) << 20);
    QCOMPARE(result.err.size(), qsizetype(16) << 20);
}

void RunProcessTest::closingItsStreamsIsNotTheEnd()
{
    const ShellResult result = runChild({QStringLiteral("close-early")}, QString(4 << 20, u'x'));
    QCOMPARE(result.status, 5);
    QCOMPARE(result.out, QStringLiteral("before"));
    QVERIFY(result.err.isEmpty());
}

void RunProcessTest::withoutInputThereIsTheNullDevice()
{
    QCOMPARE(runChild({QStringLiteral("input")}).out, QStringLiteral("/dev/null"));
}

void RunProcessTest::inputArrives_data()
{
    QTest::addColumn<QString>("input");
    QTest::newRow("empty") << QStringLiteral("");
    QTest::newRow("null string") << QString();
    QTest::newRow("short") << QStringLiteral("gr\u00fcn\r\n\U0001F600");
    QTest::newRow("larger than every pipe") << QString(2'000'000, QChar(0x20ac));
}

void RunProcessTest::inputArrives()
{
    QFETCH(const QString, input);
    const ShellResult result = runChild({QStringLiteral("echo")}, input);
    QCOMPARE(result.status, 0);
    QVERIFY(result.out == input);
    QVERIFY(runChild({QStringLiteral("input")}, input).out.startsWith(u"pipe:"));
}

void RunProcessTest::inputThatNobodyReads()
{
    // Were the broken pipe's signal not ignored, it would end this test program.
    const QString input(8 << 20, u'x');
    QCOMPARE(runChild({QStringLiteral("exit"), QStringLiteral("6")}, input).status, 6);
    QCOMPARE(runChild({QStringLiteral("flood"), QStringLiteral("1000000")}, input).status, 0);
}

void RunProcessTest::brokenTextIsReplaced()
{
    const QChar bad(QChar::ReplacementCharacter);
    const ShellResult result = runChild({QStringLiteral("broken-text")});
    QVERIFY(result.out.startsWith(QChar(0xfeff))); // a byte-order mark is text too
    QCOMPARE(result.out.count(QChar(0x20ac)), 50'000);
    const QString tail = result.out.mid(50'001);
    QCOMPARE(tail.left(4), QString(bad) + bad + u'(' + QChar(0));
    QVERIFY(tail.size() > 4);
    QCOMPARE(tail.mid(4).count(bad), tail.size() - 4); // the character that was cut at the end
    QCOMPARE(result.err, QStringLiteral("bad ") + bad + u'!');
}

void RunProcessTest::grandchildHoldsThePipe()
{
    const PrivateHome home;
    const QString file = home.path(QStringLiteral("while this exists"));
    const auto end = qScopeGuard([&file] { QFile::remove(file); });
    const ShellResult result = runChild({QStringLiteral("grandchild"), file});
    QVERIFY(QFile::exists(file)); // it is still there, and the call has returned
    QCOMPARE(result.status, 3);
    QCOMPARE(result.out, QStringLiteral("last words"));
}

void RunProcessTest::theChildInheritsTheEnvironment()
{
    const auto value = [] {
        return runChild({QStringLiteral("variable"), QStringLiteral("PLINTHAR_TEST")}).out;
    };
    qputenv("PLINTHAR_TEST", "one two");
    QCOMPARE(value(), QStringLiteral("one two"));
    qunsetenv("PLINTHAR_TEST");
    QCOMPARE(value(), QStringLiteral("(unset)"));
}

void RunProcessTest::theChildStartsClean()
{
    // Also after a broken pipe, for whose sake this process ignores the signal.
    runChild({QStringLiteral("exit"), QStringLiteral("0")}, QString(1 << 20, u'x'));
    QCOMPARE(runChild({QStringLiteral("signals")}).out, QStringLiteral("default free"));
    QCOMPARE(runChild({QStringLiteral("open-files")}).out, m_inherited);
}

void RunProcessTest::manyAtOnce()
{
    QThreadPool pool;
    pool.setMaxThreadCount(64);
    QList<int> numbers(64);
    std::iota(numbers.begin(), numbers.end(), 0);
    const auto work = [](int number) {
        const QString input = QString::number(number).repeated(50'000);
        const ShellResult result = runProcess(child, {QStringLiteral("echo")}, std::nullopt, input);
        return result.status == 0 && result.out == input && result.err.isEmpty();
    };
    const QList<bool> right = QtConcurrent::blockingMapped<QList<bool>>(&pool, numbers, work);
    QCOMPARE(right.count(true), 64);
}

void RunProcessTest::nothingIsLeftBehind()
{
    const auto call = [](int number) {
        const QString input(number % 3 == 0 ? 200'000 : 0, u'x');
        switch (number % 5) {
        case 0:
            return runProcess(QStringLiteral("/no such program"), {}).status == -1;
        case 1:
            return runProcess(child, {QStringLiteral("exit"), QStringLiteral("1")},
                              QStringLiteral("/no such folder"), input)
                       .status == -1;
        case 2:
            return runProcess(child, {QStringLiteral("kill-self"), QStringLiteral("15")}).status ==
                   15;
        case 3:
            return runProcess(child, {QStringLiteral("echo")}, std::nullopt, input).out == input;
        default:
            return runProcess(child, {QStringLiteral("exit"), QStringLiteral("2")}, std::nullopt,
                              input)
                       .status == 2;
        }
    };
    const auto callTimes = [&call](int times) {
        QThreadPool pool;
        pool.setMaxThreadCount(4);
        QList<int> numbers(times);
        std::iota(numbers.begin(), numbers.end(), 0);
        return QtConcurrent::blockingMapped<QList<bool>>(&pool, numbers, call).count(true);
    };
    QCOMPARE(callTimes(15), 15); // what Qt makes once and keeps
    const Holdings before = holdings();
    QCOMPARE(callTimes(1000), 1000);
    const Holdings after = holdings();
    QCOMPARE(after.files, before.files);
    QCOMPARE(after.children, before.children);
    QTRY_VERIFY(holdings().threads <= before.threads);
}

PLINTHAR_TEST_MAIN(RunProcessTest)
#include "RunProcessTest.moc"
