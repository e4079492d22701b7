// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/Store.h"

#include "model/Background.h"
#include "model/PriceStore.h"
#include "support/Describe.h"
#include "support/LogLines.h"
#include "support/SpecialFiles.h"
#include "support/TestMain.h"

#include <QDir>
#include <QFileInfo>
#include <QSignalSpy>
#include <QThread>

using namespace std::chrono_literals;

namespace {

QByteArray logOf(const QString &cwd, const QString &time = u"2025-01-01T10:00:00Z"_qs)
{
    return LogLines::log({LogLines::user(time, u"hello"_qs, cwd),
                          LogLines::assistant(time, u"opus"_qs, {1, 2, 3, 4})});
}

QStringList pathsOf(const QList<Project> &projects)
{
    QStringList paths;
    for (const Project &project : projects)
        paths.append(project.path);
    return paths;
}

/// Writes down every signal of a store, and what its fields are at that moment.
class Recorder {
public:
    explicit Recorder(Store &store) : m_store(store)
    {
        const auto record = [this](auto signal, const char *name) {
            QObject::connect(&m_store, signal, &m_store, [this, name] { note(name); });
        };
        record(&Store::projectsChanged, "projects");
        record(&Store::sessionsChanged, "sessions");
        record(&Store::selectionChanged, "selection");
        record(&Store::pricesChanged, "prices");
        record(&Store::loadingChanged, "loading");
        record(&Store::reloadFinished, "finished");
    }

    /// What has been written down since the last call.
    QStringList take() { return std::exchange(m_events, {}); }

private:
    void note(const char *name)
    {
        m_events.append(QStringLiteral("%1: %2 projects, %3 lists, %4, %5")
                            .arg(QString::fromLatin1(name))
                            .arg(m_store.projects().size())
                            .arg(m_store.sessions().size())
                            .arg(describe(m_store.selection()),
                                 m_store.loading() ? u"loading"_qs : u"idle"_qs));
    }

    Store &m_store;
    QStringList m_events;
};

bool waitForReloads(Store &store, int count = 1)
{
    QSignalSpy finished(&store, &Store::reloadFinished);
    while (finished.size() < count) {
        if (!finished.wait(60'000))
            return false;
    }
    return true;
}

bool reloadAndWait(Store &store)
{
    store.reload();
    return waitForReloads(store);
}

/// How many logs this program has open.
int openLogs()
{
    int count = 0;
    for (const QFileInfo &fd :
         QDir(u"/proc/self/fd"_qs).entryInfoList(QDir::AllEntries | QDir::System))
        count += fd.symLinkTarget().endsWith(u".jsonl"_qs) ? 1 : 0;
    return count;
}

/// Returns in the middle of a reload, or at its end if that comes sooner.
void waitUntilLogsAreRead()
{
    while (openLogs() == 0 && Background::pool().activeThreadCount() > 0)
        QThread::yieldCurrentThread();
}

/// How many bytes this program has read from files so far.
qint64 bytesRead()
{
    const QByteArray first = readFile(u"/proc/self/io"_qs).split('\n').value(0);
    return first.mid(first.indexOf(' ') + 1).toLongLong(); // "rchar: 123"
}

} // namespace

class StoreTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();

    void startsWithWhatIsSaved();
    void startsWithDefaultsWithoutFiles();
    void startsWithDefaultsWhenFilesAreBad_data();
    void startsWithDefaultsWhenFilesAreBad();
    void creatingReloadsAndWritesNothing();

    void reloadFillsProjectsAndSessions();
    void projectWithoutLogsHasAnEmptyList();
    void newestSessionsComeFirst();
    void reloadReplacesTheWholeMap();
    void orderOfTheEffectsOfAReload();
    void reloadWithoutChangeKeepsTheSelectionQuiet();

    void selectionStaysWhileItsProjectIsListed();
    void selectionOfAVanishedProjectGoesToTheFirst();
    void selectionIsAbsentWithoutProjects();
    void selectedIsTheListedProject();

    void addingWritesSelectsAndReloads();
    void addingAgainWritesNothingButSelectsAndReloads();
    void addedPathsAreComparedExactly();
    void addedFolderReplacesABadFile();
    void removingWritesAndReloads();
    void removingTheSelectedProjectSelectsTheFirst();
    void removingADiscoveredProjectListsItAgain();
    void removingForgetsEveryOccurrence();
    void foldersSurviveARestart();

    void pricesAreWrittenOnEveryAssignment();
    void emptyPricesYieldTheDefaultsAtTheNextStart();
    void supportFolderThatCannotBeMadeIsIgnored();

    void overlappingReloadsAllDeliver();
    void reloadThatEndsLastLeavesItsLists();
    void reloadsSeeTheFoldersOfTheirStart();
    void destroyingAStoreStopsItsReload();
    void destroyingAStoreAtOnceIsFine();
    void specialFilesHarmNoReload();

private:
    std::unique_ptr<Store> newStore() const { return std::make_unique<Store>(m_home->claude()); }
    QString projectsFile() const { return m_home->support(u"projects.json"_qs); }
    QString pricesFile() const { return m_home->support(u"prices.json"_qs); }
    void writeLog(const QString &name, const QByteArray &content) const
    {
        writeFile(m_home->claude(name), content);
    }
    std::unique_ptr<PrivateHome> m_home;
};

void StoreTest::init()
{
    m_home.reset();
    m_home = std::make_unique<PrivateHome>();
}

// Start ------------------------------------------------------------------------------------------

void StoreTest::startsWithWhatIsSaved()
{
    const PriceRow row{QUuid::createUuid(), u"mine"_qs, 1, 2, 3, 4};
    PriceStore::savePrices({row});
    writeFile(projectsFile(), R"(["/b","\/a"])");
    const auto store = newStore();
    QVERIFY(store->prices() == QList<PriceRow>{row});
    QCOMPARE(store->added(), QStringList({u"/b"_qs, u"/a"_qs}));
}

void StoreTest::startsWithDefaultsWithoutFiles()
{
    const auto store = newStore();
    QVERIFY(store->projects().isEmpty());
    QVERIFY(!store->selection());
    QVERIFY(!store->selected());
    QVERIFY(store->sessions().isEmpty());
    QVERIFY(store->prices() == PriceStore::defaults());
    QVERIFY(!store->loading());
    QVERIFY(store->added().isEmpty());
}

void StoreTest::startsWithDefaultsWhenFilesAreBad_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("object") << QByteArray(R"({"a":1})");
    QTest::newRow("empty array") << QByteArray("[]");
    QTest::newRow("cut") << QByteArray(R"(["/a)");
    QTest::newRow("numbers") << QByteArray("[1,2]");
    QTest::newRow("empty file") << QByteArray();
}

void StoreTest::startsWithDefaultsWhenFilesAreBad()
{
    QFETCH(QByteArray, content);
    writeFile(projectsFile(), content);
    writeFile(pricesFile(), content);
    const auto store = newStore();
    QVERIFY(store->prices() == PriceStore::defaults());
    QVERIFY(store->added().isEmpty());
    QCOMPARE(readFile(projectsFile()), content);
    QCOMPARE(readFile(pricesFile()), content);
}

void StoreTest::creatingReloadsAndWritesNothing()
{
    writeLog(u"-a/1.jsonl"_qs, logOf(u"/a"_qs));
    const auto store = newStore();
    QSignalSpy loading(store.get(), &Store::loadingChanged);
    QSignalSpy projects(store.get(), &Store::projectsChanged);
    QTest::qWait(50);
    QVERIFY(loading.isEmpty() && projects.isEmpty());
    QVERIFY(store->projects().isEmpty());
    QVERIFY(!QFileInfo::exists(projectsFile()));
    QVERIFY(!QFileInfo::exists(pricesFile()));
}

// Reload -----------------------------------------------------------------------------------------

void StoreTest::reloadFillsProjectsAndSessions()
{
    writeFile(projectsFile(), R"(["/added"])");
    writeLog(u"-b/1.jsonl"_qs, logOf(u"/b"_qs));
    const auto store = newStore();
    store->reload();
    QVERIFY(store->loading());
    QVERIFY(store->projects().isEmpty()); // it does not wait
    QVERIFY(waitForReloads(*store));
    QVERIFY(!store->loading());
    QCOMPARE(describe(store->projects()),
             describe(QList<Project>{{u"/added"_qs, std::nullopt, true},
                                     {u"/b"_qs, m_home->claude(u"-b"_qs), false}}));
    QCOMPARE(store->sessions()[u"/b"_qs].value(0).firstPrompt, u"hello"_qs);
    QCOMPARE(describe(store->selection()), u"\"/added\""_qs);
}

void StoreTest::projectWithoutLogsHasAnEmptyList()
{
    writeFile(projectsFile(), R"(["/added"])");
    const auto store = newStore();
    QVERIFY(reloadAndWait(*store));
    QVERIFY(store->sessions().contains(u"/added"_qs));
    QVERIFY(store->sessions()[u"/added"_qs].isEmpty());
}

void StoreTest::newestSessionsComeFirst()
{
    writeLog(u"-a/1.jsonl"_qs, logOf(u"/a"_qs, u"2025-01-01T09:00:00Z"_qs));
    writeLog(u"-a/2.jsonl"_qs, logOf(u"/a"_qs, u"2025-01-01T10:00:00Z"_qs));
    const auto store = newStore();
    QVERIFY(reloadAndWait(*store));
    const QList<Session> sessions = store->sessions()[u"/a"_qs];
    QCOMPARE(sessions.size(), 2);
    QCOMPARE(describe(sessions[0].start), u"2025-01-01T10:00:00.000Z"_qs);
    QCOMPARE(describe(sessions[1].start), u"2025-01-01T09:00:00.000Z"_qs);
}

void StoreTest::reloadReplacesTheWholeMap()
{
    writeLog(u"-a/1.jsonl"_qs, logOf(u"/a"_qs));
    writeLog(u"-b/1.jsonl"_qs, logOf(u"/b"_qs));
    const auto store = newStore();
    QVERIFY(reloadAndWait(*store));
    QCOMPARE(store->sessions().size(), 2);
    QVERIFY(QDir(m_home->claude(u"-a"_qs)).removeRecursively());
    QVERIFY(QFile::remove(m_home->claude(u"-b/1.jsonl"_qs)));
    QVERIFY(reloadAndWait(*store));
    QCOMPARE(describe(store->sessions()), u"\"/b\": "_qs);
}

void StoreTest::orderOfTheEffectsOfAReload()
{
    writeLog(u"-a/1.jsonl"_qs, logOf(u"/a"_qs));
    writeLog(u"-b/1.jsonl"_qs, logOf(u"/b"_qs));
    const auto store = newStore();
    Recorder recorder(*store);
    QVERIFY(reloadAndWait(*store));
    QCOMPARE(recorder.take(), QStringList({u"loading: 0 projects, 0 lists, nothing, loading"_qs,
                                           u"projects: 2 projects, 0 lists, nothing, loading"_qs,
                                           u"sessions: 2 projects, 2 lists, nothing, loading"_qs,
                                           u"selection: 2 projects, 2 lists, \"/a\", loading"_qs,
                                           u"loading: 2 projects, 2 lists, \"/a\", idle"_qs,
                                           u"finished: 2 projects, 2 lists, \"/a\", idle"_qs}));
}

void StoreTest::reloadWithoutChangeKeepsTheSelectionQuiet()
{
    writeLog(u"-a/1.jsonl"_qs, logOf(u"/a"_qs));
    const auto store = newStore();
    QVERIFY(reloadAndWait(*store));
    Recorder recorder(*store);
    QVERIFY(reloadAndWait(*store));
    QCOMPARE(recorder.take(), QStringList({u"loading: 1 projects, 1 lists, \"/a\", loading"_qs,
                                           u"projects: 1 projects, 1 lists, \"/a\", loading"_qs,
                                           u"sessions: 1 projects, 1 lists, \"/a\", loading"_qs,
                                           u"loading: 1 projects, 1 lists, \"/a\", idle"_qs,
                                           u"finished: 1 projects, 1 lists, \"/a\", idle"_qs}));
}

// Selection --------------------------------------------------------------------------------------

void StoreTest::selectionStaysWhileItsProjectIsListed()
{
    writeLog(u"-b/1.jsonl"_qs, logOf(u"/b"_qs));
    const auto store = newStore();
    QVERIFY(reloadAndWait(*store));
    QCOMPARE(describe(store->selection()), u"\"/b\""_qs);
    writeLog(u"-a/1.jsonl"_qs, logOf(u"/a"_qs)); // now stands before it
    QSignalSpy changed(store.get(), &Store::selectionChanged);
    QVERIFY(reloadAndWait(*store));
    QCOMPARE(pathsOf(store->projects()), QStringList({u"/a"_qs, u"/b"_qs}));
    QCOMPARE(describe(store->selection()), u"\"/b\""_qs);
    QVERIFY(changed.isEmpty());
}

void StoreTest::selectionOfAVanishedProjectGoesToTheFirst()
{
    for (const QString &name : {u"a"_qs, u"b"_qs, u"c"_qs})
        writeLog(u"-%1/1.jsonl"_qs.arg(name), logOf(u'/' + name));
    const auto store = newStore();
    store->setSelection(u"/c"_qs);
    QVERIFY(reloadAndWait(*store));
    QCOMPARE(describe(store->selection()), u"\"/c\""_qs);
    QVERIFY(QDir(m_home->claude(u"-c"_qs)).removeRecursively());
    QVERIFY(reloadAndWait(*store));
    QCOMPARE(describe(store->selection()), u"\"/a\""_qs);
}

void StoreTest::selectionIsAbsentWithoutProjects()
{
    const auto store = newStore();
    store->setSelection(u"/a"_qs);
    QVERIFY(reloadAndWait(*store));
    QVERIFY(!store->selection());
}

void StoreTest::selectedIsTheListedProject()
{
    writeLog(u"-a/1.jsonl"_qs, logOf(u"/a"_qs));
    const auto store = newStore();
    store->setSelection(u"/a"_qs);
    QVERIFY(!store->selected()); // the list is still empty
    QVERIFY(reloadAndWait(*store));
    QCOMPARE(describe(store->selected()),
             describe(Project{u"/a"_qs, m_home->claude(u"-a"_qs), false}));
    store->setSelection(u"/a/"_qs);
    QVERIFY(!store->selected());
    store->setSelection(std::nullopt);
    QVERIFY(!store->selected());
}

// Folders added by hand --------------------------------------------------------------------------

void StoreTest::addingWritesSelectsAndReloads()
{
    writeLog(u"-a/1.jsonl"_qs, logOf(u"/a"_qs));
    const auto store = newStore();
    Recorder recorder(*store);
    store->addProject(u"/tmp/site"_qs);
    QCOMPARE(store->added(), QStringList(u"/tmp/site"_qs));
    QCOMPARE(readFile(projectsFile()), QByteArray(R"(["\/tmp\/site"])"));
    QVERIFY(!store->selected()); // selected, but not in the list yet
    QCOMPARE(recorder.take(),
             QStringList({u"selection: 0 projects, 0 lists, \"/tmp/site\", idle"_qs,
                          u"loading: 0 projects, 0 lists, \"/tmp/site\", loading"_qs}));
    QVERIFY(waitForReloads(*store));
    QCOMPARE(pathsOf(store->projects()), QStringList({u"/a"_qs, u"/tmp/site"_qs}));
    QCOMPARE(describe(store->selected()), describe(Project{u"/tmp/site"_qs, std::nullopt, true}));
}

void StoreTest::addingAgainWritesNothingButSelectsAndReloads()
{
    const auto store = newStore();
    store->addProject(u"/a"_qs);
    store->addProject(u"/b"_qs);
    QVERIFY(waitForReloads(*store, 2));
    writeFile(projectsFile(), "untouched");
    store->addProject(u"/a"_qs);
    QVERIFY(store->loading());
    QCOMPARE(describe(store->selection()), u"\"/a\""_qs);
    QVERIFY(waitForReloads(*store));
    QCOMPARE(readFile(projectsFile()), QByteArray("untouched"));
    QCOMPARE(store->added(), QStringList({u"/a"_qs, u"/b"_qs}));
}

void StoreTest::addedPathsAreComparedExactly()
{
    const auto store = newStore();
    const QStringList paths{u"/a"_qs, u"/A"_qs, u"/a/"_qs, u"/e\u0301"_qs, u"/\u00e9"_qs};
    for (const QString &path : paths)
        store->addProject(path);
    QCOMPARE(store->added(), paths);
    QVERIFY(waitForReloads(*store, int(paths.size())));
    QVERIFY(reloadAndWait(*store)); // one of the first may have ended last
    QCOMPARE(store->projects().size(), paths.size());
}

void StoreTest::addedFolderReplacesABadFile()
{
    writeFile(projectsFile(), R"({"an":"object that is longer than the list behind it"})");
    const auto store = newStore();
    store->addProject(u"/a b"_qs);
    QCOMPARE(readFile(projectsFile()), QByteArray(R"(["\/a b"])"));
}

void StoreTest::removingWritesAndReloads()
{
    writeFile(projectsFile(), R"(["/a","/b","/c"])");
    const auto store = newStore();
    QVERIFY(reloadAndWait(*store));
    store->removeProject({u"/b"_qs, std::nullopt, true});
    QVERIFY(store->loading());
    QCOMPARE(describe(store->selection()), u"\"/a\""_qs); // another one stays selected
    QCOMPARE(readFile(projectsFile()), QByteArray(R"(["\/a","\/c"])"));
    QVERIFY(waitForReloads(*store));
    QCOMPARE(pathsOf(store->projects()), QStringList({u"/a"_qs, u"/c"_qs}));
    // The path counts, not the rest; and it is written even when nothing was removed.
    store->removeProject({u"/c"_qs, u"/elsewhere"_qs, false});
    QCOMPARE(readFile(projectsFile()), QByteArray(R"(["\/a"])"));
    writeFile(projectsFile(), "[]");
    store->removeProject({u"/unknown"_qs, std::nullopt, true});
    QCOMPARE(readFile(projectsFile()), QByteArray(R"(["\/a"])"));
    QVERIFY(waitForReloads(*store, 2));
}

void StoreTest::removingTheSelectedProjectSelectsTheFirst()
{
    writeFile(projectsFile(), R"(["/a","/b","/c"])");
    const auto store = newStore();
    store->setSelection(u"/b"_qs);
    QVERIFY(reloadAndWait(*store));
    Recorder recorder(*store);
    store->removeProject(*store->selected());
    QCOMPARE(recorder.take(), QStringList({u"selection: 3 projects, 3 lists, nothing, idle"_qs,
                                           u"loading: 3 projects, 3 lists, nothing, loading"_qs}));
    QVERIFY(waitForReloads(*store));
    QCOMPARE(describe(store->selection()), u"\"/a\""_qs);
}

void StoreTest::removingADiscoveredProjectListsItAgain()
{
    writeLog(u"-a/1.jsonl"_qs, logOf(u"/a"_qs));
    const auto store = newStore();
    QVERIFY(reloadAndWait(*store));
    store->removeProject(*store->selected());
    QCOMPARE(readFile(projectsFile()), QByteArray("[]"));
    QVERIFY(!store->selection());
    QVERIFY(waitForReloads(*store));
    QCOMPARE(describe(store->selection()), u"\"/a\""_qs);
    QVERIFY(QFileInfo::exists(m_home->claude(u"-a/1.jsonl"_qs)));
}

void StoreTest::removingForgetsEveryOccurrence()
{
    writeFile(projectsFile(), R"(["/a","/b","/a"])"); // as written by hand
    const auto store = newStore();
    store->removeProject({u"/a"_qs, std::nullopt, true});
    QCOMPARE(readFile(projectsFile()), QByteArray(R"(["\/b"])"));
}

void StoreTest::foldersSurviveARestart()
{
    const QStringList paths{u"/ü/😀"_qs, u"/a \"b\"\\"_qs, u"/z"_qs};
    {
        const auto store = newStore();
        for (const QString &path : paths)
            store->addProject(path);
    }
    QCOMPARE(newStore()->added(), paths);
}

// Prices -----------------------------------------------------------------------------------------

void StoreTest::pricesAreWrittenOnEveryAssignment()
{
    const auto store = newStore();
    QSignalSpy changed(store.get(), &Store::pricesChanged);
    QByteArray writtenBeforeTheSignal;
    connect(store.get(), &Store::pricesChanged, store.get(),
            [&] { writtenBeforeTheSignal = readFile(pricesFile()); });
    const QList<PriceRow> rows{{QUuid::createUuid(), u"a"_qs, 1, 2, 3, 4}};
    for (int i = 1; i <= 2; ++i) { // the same table counts as an assignment, too
        writeFile(pricesFile(), "something else");
        store->setPrices(rows);
        QVERIFY(store->prices() == rows);
        QCOMPARE(changed.size(), i);
        QCOMPARE(readFile(pricesFile()), *PriceStore::encodePrices(rows));
        QCOMPARE(writtenBeforeTheSignal, readFile(pricesFile()));
    }
    QVERIFY(newStore()->prices() == rows);
}

void StoreTest::emptyPricesYieldTheDefaultsAtTheNextStart()
{
    const auto store = newStore();
    store->setPrices({});
    QVERIFY(store->prices().isEmpty());
    QCOMPARE(readFile(pricesFile()), QByteArray("[]"));
    QVERIFY(newStore()->prices() == PriceStore::defaults());
}

void StoreTest::supportFolderThatCannotBeMadeIsIgnored()
{
    writeFile(m_home->path(u".local"_qs), "a file in the way");
    const auto store = newStore();
    const QList<PriceRow> rows{{QUuid::createUuid(), u"a"_qs, 1, 2, 3, 4}};
    store->setPrices(rows);
    QVERIFY(store->prices() == rows);
    store->addProject(u"/a"_qs);
    QVERIFY(waitForReloads(*store));
    QCOMPARE(pathsOf(store->projects()), QStringList(u"/a"_qs));
    store->removeProject({u"/a"_qs, std::nullopt, true});
    QVERIFY(waitForReloads(*store));
    QVERIFY(store->projects().isEmpty());
}

// Overlapping and interrupted reloads ------------------------------------------------------------

void StoreTest::overlappingReloadsAllDeliver()
{
    writeLog(u"-a/1.jsonl"_qs, logOf(u"/a"_qs));
    const auto store = newStore();
    Recorder recorder(*store);
    for (int i = 0; i < 5; ++i)
        store->reload();
    QVERIFY(waitForReloads(*store, 5));
    const QStringList events = recorder.take();
    // One loading for all; the first to finish ends it, and the others change no more of it.
    QCOMPARE(events.filter(u"loading: "_qs),
             QStringList({u"loading: 0 projects, 0 lists, nothing, loading"_qs,
                          u"loading: 1 projects, 1 lists, \"/a\", idle"_qs}));
    QCOMPARE(events.indexOf(u"loading: 1 projects, 1 lists, \"/a\", idle"_qs), 4);
    QCOMPARE(events.filter(u"projects: "_qs).size(), 5);
    QCOMPARE(events.filter(u"sessions: "_qs).size(), 5);
    QCOMPARE(events.filter(u"finished: "_qs).size(), 5);
}

void StoreTest::reloadThatEndsLastLeavesItsLists()
{
    writeLog(u"-slow/1.jsonl"_qs, logOf(u"/slow"_qs).repeated(100'000));
    const auto store = newStore();
    QStringList finished;
    connect(store.get(), &Store::reloadFinished, store.get(), [&] {
        finished += pathsOf(store->projects());
        QVERIFY(!store->loading());
    });
    store->reload();
    waitUntilLogsAreRead();
    // It has found its folder, and reads what it has open to the end.
    QVERIFY(QDir(m_home->claude(u"-slow"_qs)).removeRecursively());
    writeLog(u"-fast/1.jsonl"_qs, logOf(u"/fast"_qs));
    store->reload();
    QVERIFY(waitForReloads(*store, 2));
    // As a rule the first one ends last; whichever does, what it found stays.
    const QString last = finished.value(1);
    QCOMPARE(pathsOf(store->projects()), QStringList(last));
    QCOMPARE(store->sessions().keys(), QStringList(last));
    QCOMPARE(describe(store->selection()), describe(last));
    finished.sort();
    QCOMPARE(finished, QStringList({u"/fast"_qs, u"/slow"_qs}));
}

void StoreTest::reloadsSeeTheFoldersOfTheirStart()
{
    const auto store = newStore();
    QStringList sizes;
    connect(store.get(), &Store::projectsChanged, store.get(),
            [&] { sizes.append(QString::number(store->projects().size())); });
    store->reload();
    store->addProject(u"/a"_qs);
    store->addProject(u"/b"_qs);
    QVERIFY(waitForReloads(*store, 3));
    sizes.sort(); // they may end in any order
    QCOMPARE(sizes, QStringList({u"0"_qs, u"1"_qs, u"2"_qs}));
}

void StoreTest::destroyingAStoreStopsItsReload()
{
    // One log under many names takes little room and is long to read.
    const QByteArray content = logOf(u"/a"_qs).repeated(50'000);
    constexpr int logs = 500;
    writeFile(m_home->path(u"large.jsonl"_qs), content);
    QVERIFY(QDir().mkpath(m_home->claude(u"-a"_qs)));
    for (int i = 0; i < logs; ++i)
        QVERIFY(
            QFile::link(m_home->path(u"large.jsonl"_qs), m_home->claude(u"-a/%1.jsonl"_qs.arg(i))));
    auto store = newStore();
    bool delivered = false;
    connect(store.get(), &Store::projectsChanged, this, [&] { delivered = true; });
    connect(store.get(), &Store::reloadFinished, this, [&] { delivered = true; });
    store->reload();
    waitUntilLogsAreRead();
    store.reset();
    const qint64 readBefore = bytesRead();
    QVERIFY(Background::finish(1min));
    const qint64 readAfterwards = bytesRead() - readBefore;
    QVERIFY2(readAfterwards < content.size() * logs / 20,
             qPrintable(QString::number(readAfterwards)));
    QCOMPARE(openLogs(), 0);
    QCoreApplication::processEvents();
    QVERIFY(!delivered);
}

void StoreTest::destroyingAStoreAtOnceIsFine()
{
    writeLog(u"-a/1.jsonl"_qs, logOf(u"/a"_qs).repeated(100));
    for (int i = 0; i < 50; ++i) {
        const auto store = newStore();
        for (int reloads = 0; reloads <= i; ++reloads)
            store->reload(); // more of them than there are threads
        if (i % 3 == 0)
            QCoreApplication::processEvents();
    }
    QCoreApplication::processEvents();
}

void StoreTest::specialFilesHarmNoReload()
{
    makeSpecialFiles(m_home->claude(u"-a"_qs), u".jsonl"_qs);
    makeSpecialFiles(m_home->claude(), QString());
    makeSpecialFiles(m_home->support(), u".json"_qs);
    QVERIFY(QFile::rename(m_home->support(u"fifo.json"_qs), projectsFile()));
    QVERIFY(QFile::rename(m_home->support(u"device.json"_qs), pricesFile()));
    writeLog(u"-a/good.jsonl"_qs, logOf(u"/a"_qs));
    const auto store = newStore();
    store->setPrices({});
    store->addProject(u"/b"_qs);
    QVERIFY(waitForReloads(*store));
    QCOMPARE(store->sessions()[u"/a"_qs].size(), 1);
    QVERIFY(store->sessions().contains(u"/b"_qs));
}

PLINTHAR_TEST_MAIN(StoreTest)
#include "StoreTest.moc"
