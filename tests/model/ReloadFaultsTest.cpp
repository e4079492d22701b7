// SPDX-License-Identifier: GPL-3.0-or-later

// Reloads while the system or the agents get in the way.

#include "model/Files.h"
#include "model/SessionLoader.h"
#include "support/LogLines.h"
#include "support/TestMain.h"

#include <QFile>
#include <QRandomGenerator>
#include <QThread>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdarg>
#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <thread>
#include <vector>

namespace {

constexpr int projectCount = 20;
constexpr int logsPerProject = 5;

QByteArray line(int number)
{
    return LogLines::user(u"2026-03-05T10:00:00.%1Z"_qs.arg(number % 1000, 3, 10, QLatin1Char('0')),
                          u"prompt %1"_qs.arg(number), u"/code/project"_qs) +
           '\n';
}

/// While it lives, this process can open so many more files at a time and no more.
class FewDescriptors {
public:
    explicit FewDescriptors(size_t more)
    {
        ::getrlimit(RLIMIT_NOFILE, &m_before);
        const rlimit few{std::min<rlim_t>(m_before.rlim_cur, 1000), m_before.rlim_max};
        ::setrlimit(RLIMIT_NOFILE, &few);
        for (;;) {
            FileDescriptor file(::open("/dev/null", O_RDONLY | O_CLOEXEC));
            if (!file.isOpen())
                break;
            m_taken.push_back(std::move(file));
        }
        m_taken.resize(m_taken.size() - more);
    }
    ~FewDescriptors() { ::setrlimit(RLIMIT_NOFILE, &m_before); }
    FewDescriptors(const FewDescriptors &) = delete;
    FewDescriptors &operator=(const FewDescriptors &) = delete;

private:
    rlimit m_before = {};
    std::vector<FileDescriptor> m_taken;
};

/// How many more files and folders can be opened until one of them cannot; none fails below zero.
std::atomic<int> openingsLeft = -1;

/// Whether an opening fails since the whole system has no file left to open.
bool failsToOpen()
{
    if (openingsLeft < 0 || openingsLeft.fetch_sub(1) != 0)
        return false;
    errno = ENFILE;
    return true;
}

} // namespace

// These stand before the system's own for the whole of this program.
extern "C" int open(const char *path, int flags, ...)
{
    if (failsToOpen())
        return -1;
    static const auto next =
        reinterpret_cast<int (*)(const char *, int, ...)>(::dlsym(RTLD_NEXT, "open"));
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = flags & O_CREAT ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return next(path, flags, mode);
}

extern "C" DIR *opendir(const char *path)
{
    if (failsToOpen())
        return nullptr;
    static const auto next =
        reinterpret_cast<DIR *(*)(const char *)>(::dlsym(RTLD_NEXT, "opendir"));
    return next(path);
}

class ReloadFaultsTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void needsFewDescriptors();
    void endsWithoutDescriptors();
    void oneFileThatCannotBeOpenedIsAllThatIsMissing();
    void countsEveryLineThatWasThereWhileLogsChange();

private:
    /// Homes with logs of one line in many projects.
    static void writeLogs(const PrivateHome &home);
    static qsizetype sessionsIn(const PrivateHome &home);
};

void ReloadFaultsTest::writeLogs(const PrivateHome &home)
{
    for (int project = 0; project < projectCount; ++project) {
        for (int log = 0; log < logsPerProject; ++log)
            writeFile(home.claude(u"-code-%1/%2.jsonl"_qs.arg(project).arg(log)),
                      LogLines::log({LogLines::user(u"2026-03-05T10:00:00.000Z"_qs, u"hello"_qs,
                                                    u"/code/%1"_qs.arg(project))}));
    }
}

qsizetype ReloadFaultsTest::sessionsIn(const PrivateHome &home)
{
    qsizetype count = 0;
    for (const QList<Session> &sessions : SessionLoader::load({}, home.claude()).sessions)
        count += sessions.size();
    return count;
}

void ReloadFaultsTest::needsFewDescriptors()
{
    const PrivateHome home;
    writeLogs(home);
    // Each core has a folder and a file open at a time.
    const FewDescriptors few(size_t(2 * QThread::idealThreadCount()));
    QCOMPARE(sessionsIn(home), projectCount * logsPerProject);
}

void ReloadFaultsTest::endsWithoutDescriptors()
{
    const PrivateHome home;
    writeLogs(home);
    {
        const FewDescriptors none(0);
        QCOMPARE(sessionsIn(home), 0);
    }
    QCOMPARE(sessionsIn(home), projectCount * logsPerProject);
}

void ReloadFaultsTest::oneFileThatCannotBeOpenedIsAllThatIsMissing()
{
    const PrivateHome home;
    writeLogs(home);
    int failed = 0;
    for (int number = 0;; ++number) {
        openingsLeft = number;
        const qsizetype found = sessionsIn(home);
        const bool hasFailed = openingsLeft.exchange(-1) < 0;
        if (!hasFailed) // there are fewer openings than that
            break;
        ++failed;
        // Without the folder of all logs there is nothing; otherwise a project or a log is missing.
        QVERIFY2(number == 0 ? found == 0 : found >= (projectCount - 1) * logsPerProject,
                 qPrintable(u"%1 of opening %2"_qs.arg(found).arg(number)));
    }
    QVERIFY(failed > projectCount * logsPerProject);
    QCOMPARE(sessionsIn(home), projectCount * logsPerProject);
}

void ReloadFaultsTest::countsEveryLineThatWasThereWhileLogsChange()
{
    const PrivateHome home;
    const QString growing = home.claude(u"-code-project/growing.jsonl"_qs);
    writeFile(growing, line(0));
    std::atomic<qint64> begun = 1; // lines that are being written or stand in the growing log
    std::atomic<qint64> written = 1;
    std::atomic<bool> stop = false;
    std::jthread agent([&] {
        QRandomGenerator random(1);
        QFile log(growing);
        (void)log.open(QIODevice::Append | QIODevice::Unbuffered);
        while (!stop) {
            // Or the log grows faster than a slow program can read it.
            std::this_thread::sleep_for(std::chrono::microseconds(500));
            begun = begun + 1;
            const QByteArray bytes = line(int(begun));
            const qsizetype cut = random.bounded(int(bytes.size())); // as a crash may leave it
            log.write(bytes.first(cut));
            log.write(bytes.sliced(cut));
            written = written + 1;
            const QString other =
                home.claude(u"-code-%1/%2.jsonl"_qs.arg(random.bounded(3)).arg(random.bounded(4)));
            switch (random.bounded(4)) {
            case 0:
                writeFile(other, line(1).repeated(random.bounded(200)));
                break;
            case 1:
                QFile::resize(other, random.bounded(500));
                break;
            case 2:
                QFile::remove(other);
                break;
            default:
                break;
            }
        }
    });
    for (int reload = 0; reload < 200; ++reload) {
        const qint64 least = written;
        const LoadedProjects loaded = SessionLoader::load({}, home.claude());
        const qint64 most = begun;
        qint64 turns = 0;
        for (const Session &session : loaded.sessions.value(u"/code/project"_qs)) {
            if (session.id == u"growing")
                turns = session.turns;
        }
        QVERIFY2(turns >= least && turns <= most,
                 qPrintable(u"%1 of %2 to %3"_qs.arg(turns).arg(least).arg(most)));
    }
    stop = true;
}

PLINTHAR_TEST_MAIN(ReloadFaultsTest)
#include "ReloadFaultsTest.moc"
