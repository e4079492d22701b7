// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/SessionLoader.h"

#include "model/SessionParser.h"
#include "support/Describe.h"
#include "support/LogLines.h"
#include "support/SpecialFiles.h"
#include "support/TestMain.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>

#include <thread>

namespace {

QString time(int minute)
{
    return QStringLiteral("2025-01-%1T%2:%3:00Z")
        .arg(1 + minute / 1440, 2, 10, QChar(u'0'))
        .arg(minute / 60 % 24, 2, 10, QChar(u'0'))
        .arg(minute % 60, 2, 10, QChar(u'0'));
}

/// A log whose session starts at that minute.
QByteArray logFrom(int minute, int lines = 1)
{
    QByteArrayList all;
    for (int i = 0; i < lines; ++i) {
        all.append(LogLines::user(time(minute + i % 60), u"prompt %1"_qs.arg(i), u"/p"_qs));
        all.append(LogLines::assistant(time(minute + i % 60), u"opus"_qs, {i, 1, 2, 3}));
    }
    return LogLines::log(all);
}

QStringList idsOf(const QList<Session> &sessions)
{
    QStringList ids;
    for (const Session &session : sessions)
        ids.append(session.id);
    return ids;
}

} // namespace

class SessionLoaderTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void everyProjectHasAnEntry();
    void newestSessionsComeFirst();
    void equalStartsKeepTheListingOrder();
    void onlyLogsThatAreSessionsCount();
    void projectsMayShareAFolder();
    void findsProjectsAndReadsTheirSessions();
    void resultDoesNotDependOnTheThreads();
    void hugeLogIsReadWhole();
    void stopsWhenAsked();
    void logsThatChangeMeanwhile();
    void tellsHowFarItHasCome();

private:
    void writeLog(const QString &name, const QByteArray &content) const
    {
        writeFile(m_home->claude(name), content);
    }
    Project project(const QString &path, const QString &folder) const
    {
        return {path, m_home->claude(folder), false};
    }
    QList<Session> sessionsIn(const QString &folder) const
    {
        return SessionLoader::loadSessions({project(u"/p"_qs, folder)}).value(u"/p"_qs);
    }

    std::unique_ptr<PrivateHome> m_home;
};

void SessionLoaderTest::init()
{
    m_home.reset();
    m_home = std::make_unique<PrivateHome>();
}

void SessionLoaderTest::everyProjectHasAnEntry()
{
    writeLog(u"-c/1.jsonl"_qs, logFrom(0));
    writeLog(u"-file"_qs, logFrom(0));
    const SessionMap sessions =
        SessionLoader::loadSessions({{u"/without"_qs, std::nullopt, true},
                                     project(u"/missing"_qs, u"-missing"_qs),
                                     project(u"/file"_qs, u"-file"_qs),
                                     project(u"/c"_qs, u"-c"_qs)});
    QCOMPARE(sessions.size(), 4);
    for (const QString &path : {u"/without"_qs, u"/missing"_qs, u"/file"_qs})
        QVERIFY2(sessions.contains(path) && sessions[path].isEmpty(), qPrintable(path));
    QCOMPARE(idsOf(sessions[u"/c"_qs]), QStringList(u"1"_qs));
    QVERIFY(SessionLoader::loadSessions({}).isEmpty());
}

void SessionLoaderTest::newestSessionsComeFirst()
{
    writeLog(u"-p/a.jsonl"_qs, logFrom(9 * 60));
    writeLog(u"-p/b.jsonl"_qs, logFrom(10 * 60));
    writeLog(u"-p/c.jsonl"_qs, logFrom(8 * 60, 200)); // the largest, and the last to end
    QCOMPARE(idsOf(sessionsIn(u"-p"_qs)), QStringList({u"b"_qs, u"a"_qs, u"c"_qs}));
}

void SessionLoaderTest::equalStartsKeepTheListingOrder()
{
    QStringList expected;
    for (int i = 0; i < 60; ++i) {
        const QString id = QStringLiteral("%1").arg(i, 2, 10, QChar(u'0'));
        writeLog(u"-p/%1.jsonl"_qs.arg(id), logFrom(0, 1 + i * 7 % 40));
        expected.append(id);
    }
    QCOMPARE(idsOf(sessionsIn(u"-p"_qs)), expected);
}

void SessionLoaderTest::onlyLogsThatAreSessionsCount()
{
    makeSpecialFiles(m_home->claude(u"-p"_qs), u".jsonl"_qs);
    writeLog(u"-p/good.jsonl"_qs, logFrom(0));
    writeLog(u"-p/no time.jsonl"_qs, LogLines::user({}, u"hello"_qs));
    writeLog(u"-p/empty.jsonl"_qs, "");
    writeLog(u"-p/garbage.jsonl"_qs, QByteArray(1000, '\xff'));
    writeLog(u"-p/other.json"_qs, logFrom(0));
    writeLog(u"-p/sub/deeper.jsonl"_qs, logFrom(0));
    QVERIFY(QFile::link(m_home->claude(u"-p/good.jsonl"_qs), m_home->claude(u"-p/link.jsonl"_qs)));
    QCOMPARE(idsOf(sessionsIn(u"-p"_qs)), QStringList({u"good"_qs, u"link"_qs}));
}

void SessionLoaderTest::projectsMayShareAFolder()
{
    writeLog(u"-a-b/1.jsonl"_qs, logFrom(1));
    writeLog(u"-a-b/2.jsonl"_qs, logFrom(2));
    const SessionMap sessions = SessionLoader::loadSessions(
        {project(u"/a-b"_qs, u"-a-b"_qs), project(u"/a/b"_qs, u"-a-b"_qs)});
    QCOMPARE(idsOf(sessions[u"/a-b"_qs]), QStringList({u"2"_qs, u"1"_qs}));
    QCOMPARE(describe(sessions[u"/a/b"_qs]), describe(sessions[u"/a-b"_qs]));
}

void SessionLoaderTest::findsProjectsAndReadsTheirSessions()
{
    writeLog(u"-p/1.jsonl"_qs, logFrom(0));
    const LoadedProjects loaded = SessionLoader::load({u"/added"_qs}, m_home->claude());
    QCOMPARE(describe(loaded.projects),
             describe(QList<Project>{{u"/added"_qs, std::nullopt, true},
                                     {u"/p"_qs, m_home->claude(u"-p"_qs), false}}));
    QCOMPARE(loaded.sessions.size(), 2);
    QCOMPARE(idsOf(loaded.sessions[u"/p"_qs]), QStringList(u"1"_qs));
}

void SessionLoaderTest::resultDoesNotDependOnTheThreads()
{
    QRandomGenerator random(7);
    QList<Project> projects;
    SessionMap expected;
    for (int p = 0; p < 6; ++p) {
        const QString folder = u"-p%1"_qs.arg(p);
        projects.append(project(u"/p%1"_qs.arg(p), folder));
        QList<Session> &sessions = expected[projects.last().path];
        for (int i = 0; i < 15; ++i) {
            const QString name = folder + QStringLiteral("/%1.jsonl").arg(i, 2, 10, QChar(u'0'));
            writeLog(name, logFrom(random.bounded(10), 1 + random.bounded(1 + i * i)));
            // Each put behind those that are not older: the order, by another way.
            const auto session = SessionParser::parse(m_home->claude(name).toStdString());
            qsizetype place = 0;
            while (place < sessions.size() && sessions[place].start >= session->start)
                ++place;
            sessions.insert(place, *session);
        }
    }
    for (int run = 0; run < 20; ++run)
        QCOMPARE(describe(SessionLoader::loadSessions(projects)), describe(expected));
}

/// A log of this size is read in parts where there is more than one core.
void SessionLoaderTest::hugeLogIsReadWhole()
{
    QByteArray content;
    for (int i = 0; content.size() < 100'000'000; ++i) {
        content +=
            LogLines::assistant(
                i % 7 ? u"2025-01-01T%1:%2:00Z"_qs.arg(10 + i % 10).arg(i % 60, 2, 10, QChar(u'0'))
                      : QString(),
                u"opus"_qs, {i, 2, 3, 4}, QString::number(i / 3 % 5'000)) +
            '\n';
        content += R"({"type":"system","content":")" + QByteArray(5'000, 'x') + "\"}\n";
    }
    writeLog(u"-p/1.jsonl"_qs, logFrom(0) + content);
    writeLog(u"-p/2.jsonl"_qs, logFrom(0));
    const auto expected =
        SessionParser::parse(m_home->claude(u"-p/1.jsonl"_qs).toStdString(), currentTime());
    QVERIFY(expected && expected->records.size() > 1'000);
    const LoadedProjects loaded = SessionLoader::load({}, m_home->claude());
    const QList<Session> sessions = loaded.sessions.value(u"/p"_qs);
    QCOMPARE(sessions.size(), 2);
    QVERIFY(describe(sessions).contains(describe(*expected)));
}

void SessionLoaderTest::stopsWhenAsked()
{
    writeLog(u"-p/1.jsonl"_qs, logFrom(0));
    std::stop_source stop;
    stop.request_stop();
    const LoadedProjects loaded = SessionLoader::load({}, m_home->claude(), stop.get_token());
    for (const QList<Session> &sessions : loaded.sessions)
        QVERIFY(sessions.isEmpty());
}

void SessionLoaderTest::logsThatChangeMeanwhile()
{
    const auto path = [&](int log) { return m_home->claude(u"-p/%1.jsonl"_qs.arg(log)); };
    const QByteArray content = logFrom(0, 500);
    writeFile(m_home->claude(u"-p/steady.jsonl"_qs), content);
    std::jthread agent([&](const std::stop_token &stop) {
        QRandomGenerator random(8);
        while (!stop.stop_requested()) {
            const QString log = path(random.bounded(8));
            QFile file(log);
            switch (random.bounded(5)) {
            case 0:
                writeFile(log, content);
                break;
            case 1:
                if (file.open(QIODevice::Append))
                    file.write(content.left(random.bounded(int(content.size()))));
                break;
            case 2:
                QFile::resize(log, random.bounded(int(content.size())));
                break;
            case 3:
                QFile::rename(log, path(random.bounded(8)));
                break;
            default:
                QFile::remove(log);
            }
        }
    });
    for (int run = 0; run < 30; ++run) {
        const LoadedProjects loaded = SessionLoader::load({}, m_home->claude());
        QCOMPARE(loaded.projects.size(), 1);
        const QList<Session> sessions = loaded.sessions.value(u"/p"_qs);
        const auto steady = std::find_if(sessions.begin(), sessions.end(),
                                         [](const Session &s) { return s.id == u"steady"_qs; });
        QVERIFY(steady != sessions.end());
        QCOMPARE(steady->turns, 500);
    }
}

void SessionLoaderTest::tellsHowFarItHasCome()
{
    writeLog(u"-a/one.jsonl"_qs,
             LogLines::log({LogLines::user(u"2026-03-05T10:00:00Z"_qs, u"x"_qs)}));
    writeLog(u"-a/empty.jsonl"_qs, "");
    // So large that the cores share it.
    writeLog(u"-b/large.jsonl"_qs, (QByteArray(1000, ' ') + '\n').repeated(20'000));
    ReloadProgress progress;
    SessionLoader::load({}, m_home->claude(), {}, &progress);
    QCOMPARE(progress.logsFound.load(), 3);
    QCOMPARE(progress.logsRead.load(), 3);

    std::stop_source stop;
    stop.request_stop();
    ReloadProgress stopped;
    SessionLoader::load({}, m_home->claude(), stop.get_token(), &stopped);
    QCOMPARE(stopped.logsRead.load(), 0);
}

PLINTHAR_TEST_MAIN(SessionLoaderTest)
#include "SessionLoaderTest.moc"
