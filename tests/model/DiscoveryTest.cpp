// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/Discovery.h"

#include "support/Describe.h"
#include "support/LogLines.h"
#include "support/SpecialFiles.h"
#include "support/TestMain.h"

#include <QDir>
#include <QFile>

namespace {

QByteArray logOf(const QString &cwd)
{
    return LogLines::log({R"({"type":"summary"})", LogLines::user({}, u"hello"_qs, cwd)});
}

QStringList pathsOf(const QList<Project> &projects)
{
    QStringList paths;
    for (const Project &project : projects)
        paths.append(project.path);
    return paths;
}

} // namespace

class DiscoveryTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();

    void rootLiesInTheHomeFolder();
    void encodesAPath_data();
    void encodesAPath();
    void logsAreTheFilesWithThatExtension();
    void logsAreRegularFilesAndLinksToThem();

    void nothingThereYieldsNoProjects();
    void rootThatIsNoFolderYieldsOnlyTheAdded();
    void folderRecordedInTheLogsWins();
    void folderWithoutLogsIsDecodedFromItsName_data();
    void folderWithoutLogsIsDecodedFromItsName();
    void firstLogThatNamesAFolderDecides();
    void folderNamedTooLateInALogDoesNotCount();
    void specialFilesAreNoLogs();
    void entriesThatAreNoFoldersArePassedOver();
    void linkedFolderCounts();
    void folderThatCannotBeListedIsDecodedFromItsName();
    void rootThatCannotBeListedYieldsOnlyTheAdded();
    void ofTwoFoldersOfOneProjectTheLastWins();

    void addedFolderWithLogsIsOneProject();
    void addedFolderWithoutLogsHasNone();
    void addedFolderFindsItsLogsByName();
    void addedFolderKeepsTheLogsThatNameIt();
    void addedFolderMayShareTheLogsOfAnother();
    void addedTwiceIsOneProject();
    void addedFolderWithStrangeName_data();
    void addedFolderWithStrangeName();

    void sortedByLoweredName();
    void equalNamesAreSortedByPath();
    void stopsWhenAsked();

private:
    QString root() const { return m_home->claude(); }
    QList<Project> projects(const QStringList &added = {}) const
    {
        return Discovery::projects(added, root());
    }

    std::unique_ptr<PrivateHome> m_home;
};

void DiscoveryTest::init()
{
    m_home.reset();
    m_home = std::make_unique<PrivateHome>();
}

void DiscoveryTest::rootLiesInTheHomeFolder()
{
    const QString home = Discovery::claudeProjectsRoot();
    QVERIFY2(home.endsWith(u"/.claude/projects"_qs), qPrintable(home));
    QVERIFY2(home.startsWith(QDir::tempPath()), qPrintable(home)); // a private home, first of all
    // Looked up once: a home that changes later changes nothing.
    const PrivateHome other;
    QCOMPARE(Discovery::claudeProjectsRoot(), home);
}

void DiscoveryTest::encodesAPath_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("name");
    const auto row = [](const char *name, const QString &path, const QString &encoded) {
        QTest::newRow(name) << path << encoded;
    };
    row("usual", u"/Users/dev/my_app.web"_qs, u"-Users-dev-my-app-web"_qs);
    row("hyphens and blanks", u"/a-b c"_qs, u"-a-b-c"_qs);
    row("signs in a row", u"/.config//x"_qs, u"--config--x"_qs);
    row("digits", u"/v1.25"_qs, u"-v1-25"_qs);
    row("empty", QString(), QString());
    row("root", u"/"_qs, u"-"_qs);
    row("other ASCII signs", u"!\"#$%&'()*+,:;<=>?@[\\]^`{|}~"_qs, QString(28, u'-'));
    row("control characters", u"a\tb\nc\u0001d"_qs, u"a-b-c-d"_qs);
    row("carriage return and line feed are one character", u"a\r\nb"_qs, u"a-b"_qs);
    row("accented letters stay", u"/Übung/é"_qs, u"-Übung-é"_qs);
    row("letters of other scripts stay", u"/日本/мир/한/कि"_qs, u"-日本-мир-한-कि"_qs);
    row("letters beyond the first 65,536 stay", u"/𝒜𐐷"_qs, u"-𝒜𐐷"_qs);
    row("digits of other scripts stay", u"/٣१"_qs, u"-٣१"_qs);
    row("combined letter stays whole", u"/e\u0301a"_qs, u"-e\u0301a"_qs);
    row("combined sign becomes one hyphen", u"a.\u0301b"_qs, u"a-b"_qs);
    row("emoji", u"/😀x"_qs, u"--x"_qs);
    row("emoji with skin tone", u"a👍🏽b"_qs, u"a-b"_qs);
    row("flag", u"a🇩🇪b"_qs, u"a-b"_qs);
    row("emoji with variation selector", u"a❤\ufe0fb"_qs, u"a-b"_qs);
    row("family of joined emoji", u"a👩\u200d👩\u200d👧b"_qs, u"a-b"_qs);
    row("currency and mathematics", u"€±×"_qs, u"---"_qs);
    row("letter that takes in a slash", u"/\u0d4e\u0600/x"_qs, u"--x"_qs);
    row("lone surrogate with a sign above it", QString(QChar(0xd88d)) + QChar(0xa980), u"-"_qs);
    row("lone surrogates", QString(QChar(0xd83d)) + u'x' + QChar(0xde00), u"-x-"_qs);
}

void DiscoveryTest::encodesAPath()
{
    QFETCH(QString, path);
    QTEST(Discovery::encodeClaudeDir(path), "name");
}

void DiscoveryTest::logsAreTheFilesWithThatExtension()
{
    for (const QString &name :
         {u"b.jsonl"_qs, u"a.jsonl"_qs, u"B.jsonl"_qs, u".hidden.jsonl"_qs, u"x.y.jsonl"_qs,
          u"x.JSONL"_qs, u"x.Jsonl"_qs, u"x.jsonl.bak"_qs, u"x.jsonl~"_qs, u".jsonl"_qs,
          u"jsonl"_qs, u"xjsonl"_qs, u"x.json"_qs, u"x.jsonl "_qs, u"x.jsonlx"_qs})
        writeFile(m_home->path(u"logs/"_qs + name), "");
    QStringList names;
    for (const auto &log : Discovery::logsIn(m_home->path(u"logs"_qs).toStdString()))
        names.append(QString::fromStdString(log).section(u'/', -1));
    QCOMPARE(names, QStringList({u".hidden.jsonl"_qs, u"B.jsonl"_qs, u"a.jsonl"_qs, u"b.jsonl"_qs,
                                 u"x.y.jsonl"_qs}));
    QVERIFY(Discovery::logsIn(m_home->path(u"missing"_qs).toStdString()).empty());
    QVERIFY(Discovery::logsIn(m_home->path(u"logs/b.jsonl"_qs).toStdString()).empty());
}

void DiscoveryTest::logsAreRegularFilesAndLinksToThem()
{
    const QString folder = m_home->path(u"logs"_qs);
    writeFile(folder + u"/file.jsonl"_qs, "");
    QVERIFY(QFile::link(u"file.jsonl"_qs, folder + u"/link.jsonl"_qs));
    makeSpecialFiles(folder, u".jsonl"_qs);
    const std::string path = folder.toStdString();
    QCOMPARE(Discovery::logsIn(path),
             (std::vector<std::string>{path + "/failing.jsonl", path + "/file.jsonl",
                                       path + "/link.jsonl"}));
}

// Log folders ------------------------------------------------------------------------------------

void DiscoveryTest::nothingThereYieldsNoProjects()
{
    QCOMPARE(describe(projects()), QString());
    QVERIFY(QDir().mkpath(root()));
    QCOMPARE(describe(projects()), QString());
}

void DiscoveryTest::rootThatIsNoFolderYieldsOnlyTheAdded()
{
    writeFile(root(), "a file");
    QCOMPARE(describe(projects({u"/a"_qs})), describe(Project{u"/a"_qs, std::nullopt, true}));
}

void DiscoveryTest::folderRecordedInTheLogsWins()
{
    writeFile(m_home->claude(u"-Users-dev-my-app/1.jsonl"_qs), logOf(u"/Users/dev/my-app"_qs));
    const Project expected{u"/Users/dev/my-app"_qs, m_home->claude(u"-Users-dev-my-app"_qs), false};
    QCOMPARE(describe(projects()), describe(expected));
}

void DiscoveryTest::folderWithoutLogsIsDecodedFromItsName_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QString>("path");
    const auto row = [](const QString &folder, const QString &path) {
        QTest::newRow(qPrintable(folder)) << folder << path;
    };
    row(u"-tmp-demo"_qs, u"/tmp/demo"_qs);
    row(u"-Users-dev-site"_qs, u"/Users/dev/site"_qs);
    row(u"--config"_qs, u"//config"_qs);
    row(u"-"_qs, u"/"_qs);
    row(u"x"_qs, u"/"_qs);
    row(u"xa-b"_qs, u"/a/b"_qs);
    row(u".hidden"_qs, u"/hidden"_qs);
    row(u"-a b.c_d"_qs, u"/a b.c_d"_qs);
    row(u"e\u0301x"_qs, u"/x"_qs); // the first character has two code points
    row(u"😀-x"_qs, u"//x"_qs);
    row(u"-日本-😀"_qs, u"/日本/😀"_qs);
}

void DiscoveryTest::folderWithoutLogsIsDecodedFromItsName()
{
    QFETCH(QString, folder);
    QFETCH(QString, path);
    const QString expected = describe(Project{path, m_home->claude(folder), false});
    QVERIFY(QDir().mkpath(m_home->claude(folder)));
    QCOMPARE(describe(projects()), expected);
    // The same with files that are no logs, and with logs that name no folder.
    writeFile(m_home->claude(folder + u"/notes.txt"_qs), logOf(u"/no"_qs));
    writeFile(m_home->claude(folder + u"/1.JSONL"_qs), logOf(u"/no"_qs));
    writeFile(m_home->claude(folder + u"/sub/1.jsonl"_qs), logOf(u"/no"_qs));
    writeFile(m_home->claude(folder + u"/1.jsonl"_qs), logOf({}));
    writeFile(m_home->claude(folder + u"/2.jsonl"_qs), "");
    QCOMPARE(describe(projects()), expected);
}

void DiscoveryTest::firstLogThatNamesAFolderDecides()
{
    writeFile(m_home->claude(u"-x/1.jsonl"_qs), logOf({}));
    writeFile(m_home->claude(u"-x/2.jsonl"_qs), logOf(u"/second"_qs));
    writeFile(m_home->claude(u"-x/3.jsonl"_qs), logOf(u"/third"_qs));
    QCOMPARE(pathsOf(projects()), QStringList(u"/second"_qs));
}

void DiscoveryTest::folderNamedTooLateInALogDoesNotCount()
{
    const QByteArray late = QByteArray(256 * 1024, '\n') + logOf(u"/late"_qs);
    writeFile(m_home->claude(u"-tmp-demo/1.jsonl"_qs), late);
    QCOMPARE(pathsOf(projects()), QStringList(u"/tmp/demo"_qs));
    writeFile(m_home->claude(u"-tmp-demo/2.jsonl"_qs), logOf(u"/early"_qs));
    QCOMPARE(pathsOf(projects()), QStringList(u"/early"_qs));
}

void DiscoveryTest::specialFilesAreNoLogs()
{
    makeSpecialFiles(m_home->claude(u"-tmp-demo"_qs), u".jsonl"_qs);
    QCOMPARE(pathsOf(projects()), QStringList(u"/tmp/demo"_qs));
    writeFile(m_home->claude(u"-tmp-demo/zzz.jsonl"_qs), logOf(u"/found"_qs));
    QCOMPARE(pathsOf(projects()), QStringList(u"/found"_qs));
}

void DiscoveryTest::entriesThatAreNoFoldersArePassedOver()
{
    makeSpecialFiles(root(), QString());
    QVERIFY(QDir(m_home->claude(u"folder"_qs)).removeRecursively());
    writeFile(m_home->claude(u"-a-file"_qs), logOf(u"/no"_qs));
    writeFile(m_home->claude(u"1.jsonl"_qs), logOf(u"/no"_qs));
    QCOMPARE(describe(projects()), QString());
}

void DiscoveryTest::linkedFolderCounts()
{
    writeFile(m_home->path(u"elsewhere/1.jsonl"_qs), logOf(u"/linked"_qs));
    QVERIFY(QDir().mkpath(root()));
    QVERIFY(QFile::link(m_home->path(u"elsewhere"_qs), m_home->claude(u"-link"_qs)));
    QCOMPARE(describe(projects()),
             describe(Project{u"/linked"_qs, m_home->claude(u"-link"_qs), false}));
}

void DiscoveryTest::folderThatCannotBeListedIsDecodedFromItsName()
{
    writeFile(m_home->claude(u"-tmp-demo/1.jsonl"_qs), logOf(u"/no"_qs));
    writeFile(m_home->claude(u"-x/1.jsonl"_qs), logOf(u"/yes"_qs));
    QFile::setPermissions(m_home->path(), QFile::Permissions(0x5555)); // nobody may pass through
    QFile::setPermissions(m_home->claude(u"-tmp-demo"_qs), {});
    QStringList paths;
    {
        const Unprivileged meanwhile;
        paths = pathsOf(projects());
    }
    QFile::setPermissions(m_home->claude(u"-tmp-demo"_qs), QFile::Permissions(0x7755));
    QFile::setPermissions(m_home->path(), QFile::Permissions(0x7755));
    QCOMPARE(paths, QStringList({u"/tmp/demo"_qs, u"/yes"_qs}));
}

void DiscoveryTest::rootThatCannotBeListedYieldsOnlyTheAdded()
{
    writeFile(m_home->claude(u"-tmp-demo/1.jsonl"_qs), logOf(u"/no"_qs));
    QFile::setPermissions(root(), {});
    QStringList paths;
    {
        const Unprivileged meanwhile;
        paths = pathsOf(projects({u"/a"_qs}));
    }
    QFile::setPermissions(root(), QFile::Permissions(0x7755));
    QCOMPARE(paths, QStringList(u"/a"_qs));
}

void DiscoveryTest::ofTwoFoldersOfOneProjectTheLastWins()
{
    for (const QString &folder : {u"-b"_qs, u"-c"_qs, u"-a"_qs})
        writeFile(m_home->claude(folder + u"/1.jsonl"_qs), logOf(u"/same"_qs));
    QCOMPARE(describe(projects()), describe(Project{u"/same"_qs, m_home->claude(u"-c"_qs), false}));
}

// Added folders ----------------------------------------------------------------------------------

void DiscoveryTest::addedFolderWithLogsIsOneProject()
{
    const QString folder = m_home->claude(u"-Users-dev-site"_qs);
    writeFile(folder + u"/1.jsonl"_qs, logOf(u"/Users/dev/site"_qs));
    QCOMPARE(describe(projects({u"/Users/dev/site"_qs})),
             describe(Project{u"/Users/dev/site"_qs, folder, true}));
}

void DiscoveryTest::addedFolderWithoutLogsHasNone()
{
    writeFile(m_home->claude(u"-other/1.jsonl"_qs), logOf(u"/z"_qs));
    QCOMPARE(describe(projects({u"/Users/dev/gone"_qs}).value(0)),
             describe(Project{u"/Users/dev/gone"_qs, std::nullopt, true}));
}

void DiscoveryTest::addedFolderFindsItsLogsByName()
{
    // The logs name another folder, or what is decoded from the name is another path.
    const QString folder = m_home->claude(u"-Users-dev-my-app"_qs);
    QVERIFY(QDir().mkpath(folder));
    const QList<Project> found = projects({u"/Users/dev/my_app"_qs});
    QCOMPARE(describe(found), describe(QList<Project>{{u"/Users/dev/my/app"_qs, folder, false},
                                                      {u"/Users/dev/my_app"_qs, folder, true}}));
}

void DiscoveryTest::addedFolderKeepsTheLogsThatNameIt()
{
    // A folder with the encoded name exists, too; the one whose logs name the project is its own.
    writeFile(m_home->claude(u"-a-b/1.jsonl"_qs), logOf(u"/other"_qs));
    writeFile(m_home->claude(u"-renamed/1.jsonl"_qs), logOf(u"/a/b"_qs));
    QCOMPARE(describe(projects({u"/a/b"_qs}).value(0)),
             describe(Project{u"/a/b"_qs, m_home->claude(u"-renamed"_qs), true}));
}

void DiscoveryTest::addedFolderMayShareTheLogsOfAnother()
{
    const QString folder = m_home->claude(u"-a-b"_qs);
    writeFile(folder + u"/1.jsonl"_qs, logOf(u"/a/b"_qs));
    QCOMPARE(describe(projects({u"/a-b"_qs})),
             describe(QList<Project>{{u"/a-b"_qs, folder, true}, {u"/a/b"_qs, folder, false}}));
}

void DiscoveryTest::addedTwiceIsOneProject()
{
    QVERIFY(QDir().mkpath(m_home->claude(u"-a"_qs)));
    QCOMPARE(describe(projects({u"/a"_qs, u"/b"_qs, u"/a"_qs, u"/b"_qs})),
             describe(QList<Project>{{u"/a"_qs, m_home->claude(u"-a"_qs), true},
                                     {u"/b"_qs, std::nullopt, true}}));
}

void DiscoveryTest::addedFolderWithStrangeName_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("combining characters") << u"/cafe\u0301/na\u00efve"_qs;
    QTest::newRow("emoji") << u"/😀/👩\u200d👩\u200d👧"_qs;
    QTest::newRow("quotes and backslashes") << u"/\"a\"\\b"_qs;
    QTest::newRow("line feed") << u"/a\nb"_qs;
    QTest::newRow("slash at the end") << u"/a/b/"_qs;
    QTest::newRow("relative") << u"a"_qs;
    QTest::newRow("very long") << u'/' + QString(5'000, u'x');
}

void DiscoveryTest::addedFolderWithStrangeName()
{
    QFETCH(QString, path);
    QCOMPARE(describe(projects({path})), describe(Project{path, std::nullopt, true}));
    const QString folder = m_home->claude(Discovery::encodeClaudeDir(path));
    if (!QDir().mkpath(folder))
        return; // such a name is too long for a folder
    writeFile(folder + u"/1.jsonl"_qs, logOf(path));
    QCOMPARE(describe(projects({path})), describe(Project{path, folder, true}));
    QCOMPARE(describe(projects()), describe(Project{path, folder, false}));
}

// Order ------------------------------------------------------------------------------------------

void DiscoveryTest::sortedByLoweredName()
{
    QCOMPARE(pathsOf(projects({u"/1/gamma"_qs, u"/2/Alpha"_qs, u"/3/beta"_qs})),
             QStringList({u"/2/Alpha"_qs, u"/3/beta"_qs, u"/1/gamma"_qs}));
    // The folder above does not matter, nor whether a project was added or discovered.
    writeFile(m_home->claude(u"-x/1.jsonl"_qs), logOf(u"/z/ALSO/"_qs));
    QCOMPARE(
        pathsOf(projects({u"/a/É"_qs, u"/a/éa"_qs, u"/a/z"_qs, u"/a/_"_qs, u"/a/1"_qs})),
        QStringList({u"/a/1"_qs, u"/a/_"_qs, u"/z/ALSO/"_qs, u"/a/z"_qs, u"/a/É"_qs, u"/a/éa"_qs}));
}

void DiscoveryTest::equalNamesAreSortedByPath()
{
    const QStringList sorted{u"/a/Same"_qs, u"/b/same"_qs, u"/c/SAME"_qs, u"/d/same"_qs};
    QCOMPARE(pathsOf(projects(sorted)), sorted);
    QCOMPARE(pathsOf(projects({sorted[2], sorted[0], sorted[3], sorted[1]})), sorted);
}

void DiscoveryTest::stopsWhenAsked()
{
    writeFile(m_home->claude(u"-a/1.jsonl"_qs), logOf(u"/a"_qs));
    std::stop_source stop;
    stop.request_stop();
    QCOMPARE(pathsOf(Discovery::projects({}, root(), stop.get_token())), QStringList());
}

PLINTHAR_TEST_MAIN(DiscoveryTest)
#include "DiscoveryTest.moc"
