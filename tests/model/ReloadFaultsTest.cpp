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
#include <chrono>
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

} // namespace

class ReloadFaultsTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void needsFewDescriptors();
    void endsWithoutDescriptors();
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
