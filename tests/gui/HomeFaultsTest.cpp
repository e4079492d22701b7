// SPDX-License-Identifier: GPL-3.0-or-later

// The window on home folders that are missing, closed, not to be written to or full: it opens,
// shows what can be read, keeps for this run what cannot be saved, and harms nothing.

#include "context/ContextEditor.h"
#include "context/ContextListModel.h"
#include "model/Background.h"
#include "model/PriceStore.h"
#include "support/Input.h"
#include "support/Sessions.h"
#include "support/SpecialFiles.h"
#include "support/Window.h"
#include "support/WindowTestMain.h"

#include <QAbstractButton>
#include <QDir>
#include <QDirIterator>
#include <QLabel>
#include <QProcess>
#include <QTemporaryDir>

#include <sys/mount.h>

namespace {

/// In the environment of a test that has been started again on a disk of its own.
const char ownDisk[] = "PLINTHAR_TEST_DISK";

/// Starts one case of this test once more as the root of a namespace in which there is a small disk
/// of its own.
int runOnOwnDisk(const QString &testCase)
{
    const QTemporaryDir disk;
    QProcess test;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QString::fromLatin1(ownDisk), disk.path());
    test.setProcessEnvironment(environment);
    test.setProcessChannelMode(QProcess::ForwardedChannels);
    test.start(u"unshare"_qs,
               {u"--map-root-user"_qs, u"--mount"_qs, u"sh"_qs, u"-c"_qs,
                u"mount -t tmpfs -o size=2m none \"$PLINTHAR_TEST_DISK\" && exec \"$0\" \"$1\""_qs,
                QCoreApplication::applicationFilePath(), testCase});
    test.waitForFinished(-1);
    return test.exitStatus() == QProcess::NormalExit ? test.exitCode() : -1;
}

bool canHaveOwnDisk()
{
    return QProcess::execute(u"unshare"_qs, {u"--map-root-user"_qs, u"--mount"_qs, u"true"_qs}) ==
           0;
}

void makeReadOnly()
{
    if (::mount(nullptr, qgetenv(ownDisk).constData(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr) !=
        0)
        qFatal("the disk stays writable");
}

/// Leaves no room on the disk for as much as one byte.
void fill()
{
    QFile filler(QFile::decodeName(qgetenv(ownDisk)) + u"/filler"_qs);
    if (!filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        qFatal("no file to fill the disk with");
    for (const qsizetype size : {4096, 1}) {
        while (filler.write(QByteArray(size, 'x')) > 0) {
        }
    }
}

/// Gives the rights back that stand in the way of removing a folder.
void makeRemovable(const QString &folder)
{
    QFile::setPermissions(folder, QFile::Permissions(0x7700));
    QDirIterator folders(folder, QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories);
    while (folders.hasNext())
        QFile::setPermissions(folders.next(), QFile::Permissions(0x7700));
}

} // namespace

class HomeFaultsTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup();
    void withoutAHomeTheWindowIsEmpty_data();
    void withoutAHomeTheWindowIsEmpty();
    void aHomeThatIsNotToBeWritten();
    void aDiskThatTakesNothing_data();
    void aDiskThatTakesNothing();

private:
    void fillHome() const;
    /// The window with the home's one project shows it, and takes what is changed for this run.
    void useHome(const QString &reason);
    void saveInstructions(const QString &reason) const;

    std::unique_ptr<PrivateHome> m_home;
    std::unique_ptr<QTemporaryDir> m_elsewhere;
    std::unique_ptr<Window> m_window;
};

void HomeFaultsTest::init()
{
    // Not before the program has started: sanitizers keep files of their own in TMPDIR.
    if (!qEnvironmentVariableIsEmpty(ownDisk))
        qputenv("TMPDIR", qgetenv(ownDisk));
    m_home = std::make_unique<PrivateHome>();
    m_elsewhere = std::make_unique<QTemporaryDir>();
}

void HomeFaultsTest::cleanup()
{
    m_window.reset();
    Background::savingPool().waitForDone();
    makeRemovable(m_home->path());
    m_home.reset();
    m_elsewhere.reset();
}

void HomeFaultsTest::withoutAHomeTheWindowIsEmpty_data()
{
    QTest::addColumn<QString>("kind");
    for (const char *kind : {"missing", "a file", "unreadable", "a folder that is a file"})
        QTest::newRow(kind) << QString::fromLatin1(kind);
}

void HomeFaultsTest::withoutAHomeTheWindowIsEmpty()
{
    QFETCH(QString, kind);
    const QString home = m_home->path();
    std::optional<Unprivileged> unprivileged;
    if (kind == u"unreadable") {
        fillHome();
        QFile::setPermissions(home, {});
        unprivileged.emplace();
    } else if (kind == u"a folder that is a file") {
        writeFile(m_home->path(u".claude"_qs), "in the way");
        writeFile(m_home->support(), "in the way");
    } else {
        QVERIFY(QDir(home).removeRecursively());
        if (kind == u"a file")
            writeFile(home, "in the way");
    }
    m_window = std::make_unique<Window>(*m_home);
    m_window->load();
    QCOMPARE(m_window->projectNames(), QStringList());
    QCOMPARE(m_window->overlay()->title(), u"No projects yet"_qs);
    QVERIFY(m_window->store().prices() == PriceStore::defaults());

    m_window->store().addProject(m_elsewhere->path());
    QTRY_COMPARE(m_window->projectNames().size(), 1);
    QTRY_COMPARE(m_window->selectedName(), QDir(m_elsewhere->path()).dirName());
    for (const auto key : {Qt::Key_1, Qt::Key_2, Qt::Key_3, Qt::Key_4, Qt::Key_5}) {
        Input::key(key, Qt::ControlModifier);
        Background::pool().waitForDone();
        QTest::qWait(1);
    }
    m_window.reset();
    unprivileged.reset();
    if (kind == u"a file") {
        QCOMPARE(readFile(home), QByteArray("in the way"));
        QVERIFY(QFile::remove(home));
    }
    if (kind == u"a folder that is a file")
        QCOMPARE(readFile(m_home->support()), QByteArray("in the way"));
}

void HomeFaultsTest::fillHome() const
{
    const QString project = addByHand(*m_home, {u"project"_qs}).constFirst();
    writeSession(*m_home, {.project = project});
    writeFile(project + u"/CLAUDE.md"_qs, "old text");
    writeFile(m_home->support(u"prices.json"_qs), PriceStore::encodePrices({}).value());
}

void HomeFaultsTest::useHome(const QString &reason)
{
    const QByteArray folders = readFile(m_home->support(u"projects.json"_qs));
    m_window = std::make_unique<Window>(*m_home);
    m_window->load();
    QCOMPARE(m_window->projectNames(), QStringList(u"project"_qs));
    QCOMPARE(m_window->summary(), u"1 sessions \u00b7 $0.00 estimated"_qs);
    saveInstructions(reason);

    PriceRow row = PriceStore::defaults().constFirst();
    row.input = 1e300; // longer than what is there
    m_window->store().setPrices(QList<PriceRow>(200, row));
    QCOMPARE(m_window->store().prices().size(), 200);
    m_window->store().addProject(u"/"_qs + u"long/"_qs.repeated(2000));
    QTRY_COMPARE(m_window->projectNames().size(), 2);
    m_window.reset();

    QCOMPARE(readFile(m_home->support(u"projects.json"_qs)), folders);
    QCOMPARE(readFile(m_home->support(u"prices.json"_qs)), QByteArray("[]"));
}

void HomeFaultsTest::saveInstructions(const QString &reason) const
{
    Input::key(Qt::Key_5, Qt::ControlModifier);
    auto *editor = find<ContextEditor>(m_window->detail());
    QTRY_VERIFY(!editor->isReadOnly());
    QCOMPARE(editor->toPlainText(), u"old text"_qs);
    Input::click(editor->viewport());
    editor->insertPlainText(u"new text "_qs.repeated(2000));
    Input::click(buttonOf(m_window->detail(), u"Save"_qs));
    const auto *status = find<QLabel>(m_window->detail(), u"status"_qs);
    QTRY_VERIFY(status->isVisible());
    QCOMPARE(status->text(), u"Save failed: "_qs + reason);
    QVERIFY(editor->toPlainText().contains(u"new text"));
    QCOMPARE(readFile(m_window->store().added().constFirst() + u"/CLAUDE.md"_qs),
             QByteArray("old text"));
}

void HomeFaultsTest::aHomeThatIsNotToBeWritten()
{
    fillHome();
    QDirIterator everything(m_home->path(), QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                            QDirIterator::Subdirectories);
    while (everything.hasNext())
        QVERIFY(QFile::setPermissions(everything.next(), QFile::Permissions(0x5555)));
    QVERIFY(QFile::setPermissions(m_home->path(), QFile::Permissions(0x5555)));
    const Unprivileged unprivileged;
    useHome(u"Permission denied"_qs);
}

void HomeFaultsTest::aDiskThatTakesNothing_data()
{
    QTest::addColumn<QString>("reason");
    QTest::newRow("read-only") << u"Read-only file system"_qs;
    QTest::newRow("full") << u"No space left on device"_qs;
}

void HomeFaultsTest::aDiskThatTakesNothing()
{
    QFETCH(QString, reason);
    const QString row = QString::fromLatin1(QTest::currentDataTag());
    if (qEnvironmentVariableIsEmpty(ownDisk)) {
        if (!canHaveOwnDisk())
            QSKIP("This system lets nobody mount a disk of their own.");
        QCOMPARE(runOnOwnDisk(u"aDiskThatTakesNothing:"_qs + row), 0);
        return;
    }
    fillHome();
    if (row == u"full")
        fill();
    else
        makeReadOnly();
    useHome(reason);
}

PLINTHAR_WINDOW_TEST_MAIN(HomeFaultsTest)
#include "HomeFaultsTest.moc"
