// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/Files.h"

#include "support/LargestFile.h"
#include "support/SpecialFiles.h"
#include "support/TestMain.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

QByteArray encoded(const QString &path)
{
    return QFile::encodeName(path);
}

ino_t inode(const QString &path)
{
    struct stat info = {};
    return ::stat(encoded(path).constData(), &info) == 0 ? info.st_ino : 0;
}

bool isOpen(int fd)
{
    return ::fcntl(fd, F_GETFD) != -1;
}

void addSpecialFileRows()
{
    QTest::addColumn<QString>("name");
    for (const QString &name : specialFiles())
        QTest::newRow(qPrintable(name)) << name;
}

} // namespace

class FilesTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void lastComponents_data();
    void lastComponents();
    void systemsOwnWords();
    void opensRegularFilesAndLinksToThem();
    void opensNothingElse_data();
    void opensNothingElse();
    void opensNothingItMayNotRead();
    void wakesNoWriterOfAFifo();
    void opensNothingThatIsPutInTheFilesPlace();
    void closesWithItsOwner();
    void readsWhole();
    void readsAnEmptyFileAsEmptyText();
    void readsWhatHasNoSizeBeforehand();
    void limitIsTheLargestSize();
    void limitHoldsForWhatHasNoSizeBeforehand();
    void readsNothingElse_data();
    void readsNothingElse();
    void writesANewFile();
    void replacesInPlace();
    void writesThroughALink();
    void writesIntoNothingElse_data();
    void writesIntoNothingElse();
    void disturbsNoReaderOfAFifo();
    void writeFailsWithoutTheFolder();
    void writeFailsWithoutPermission();
    void aFullDiskLeavesTheOldContent();
    void twoProgramsTakeTurns();
    void aLockThatIsNeverGivenBackStopsNobody();

private:
    QString path(const QString &name) const { return m_home->path(name); }

    std::unique_ptr<PrivateHome> m_home;
};

void FilesTest::init()
{
    m_home.reset();
    m_home = std::make_unique<PrivateHome>();
    makeSpecialFiles(m_home->path(), QString());
    writeFile(path(u"file"_qs), "text");
    QVERIFY(QFile::link(path(u"file"_qs), path(u"link"_qs)));
}

void FilesTest::lastComponents_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("last");
    QTest::newRow("file") << u"/a/b/c.txt"_qs << u"c.txt"_qs;
    QTest::newRow("folder with slashes") << u"/a/b//"_qs << u"b"_qs;
    QTest::newRow("name alone") << u"b"_qs << u"b"_qs;
    QTest::newRow("root") << u"/"_qs << u"/"_qs;
    QTest::newRow("root, twice") << u"//"_qs << u"/"_qs;
    QTest::newRow("nothing") << QString() << QString();
}

void FilesTest::lastComponents()
{
    QFETCH(const QString, path);
    QFETCH(const QString, last);
    QCOMPARE(lastPathComponent(path).toString(), last);
}

void FilesTest::systemsOwnWords()
{
    QCOMPARE(systemText(ENOENT), u"No such file or directory"_qs);
}

void FilesTest::opensRegularFilesAndLinksToThem()
{
    QVERIFY(openRegularFile(encoded(path(u"file"_qs))).isOpen());
    QVERIFY(openRegularFile(encoded(path(u"link"_qs))).isOpen());
}

void FilesTest::opensNothingElse_data()
{
    addSpecialFileRows();
    QTest::newRow("missing") << u"missing"_qs;
    QTest::newRow("below a file") << u"file/x"_qs;
    QTest::newRow("name too long") << QString(300, u'x');
}

void FilesTest::opensNothingElse()
{
    QFETCH(QString, name);
    const bool regular = name == u"failing"; // it only fails when it is read
    QCOMPARE(openRegularFile(encoded(path(name))).isOpen(), regular);
}

void FilesTest::opensNothingItMayNotRead()
{
    QFile::setPermissions(path(u"file"_qs), {});
    const Unprivileged meanwhile;
    QVERIFY(!openRegularFile(encoded(path(u"file"_qs))).isOpen());
}

void FilesTest::wakesNoWriterOfAFifo()
{
    const QByteArray fifo = encoded(path(u"fifo"_qs));
    std::atomic<bool> awake = false;
    std::jthread writer([&] {
        // Returns as soon as anybody opens the other end.
        const FileDescriptor end(::open(fifo.constData(), O_WRONLY | O_CLOEXEC));
        awake = true;
    });
    for (int i = 0; i < 500; ++i) {
        QVERIFY(!openRegularFile(fifo.constData()).isOpen());
        std::this_thread::yield();
    }
    const bool disturbed = awake;
    const FileDescriptor other(::open(fifo.constData(), O_RDWR | O_CLOEXEC));
    writer.join();
    QVERIFY(!disturbed);
}

void FilesTest::opensNothingThatIsPutInTheFilesPlace()
{
    const QByteArray file = encoded(path(u"file"_qs));
    const QByteArray fifo = encoded(path(u"fifo"_qs));
    std::jthread swapper([&](const std::stop_token &stop) {
        while (!stop.stop_requested())
            ::renameat2(AT_FDCWD, file.constData(), AT_FDCWD, fifo.constData(), RENAME_EXCHANGE);
    });
    for (int i = 0; i < 3'000; ++i) {
        const FileDescriptor opened = openRegularFile(file.constData());
        struct stat info = {};
        QVERIFY(!opened.isOpen() || (::fstat(opened.get(), &info) == 0 && S_ISREG(info.st_mode)));
    }
}

void FilesTest::closesWithItsOwner()
{
    int fd = -1;
    {
        FileDescriptor file = openRegularFile(encoded(path(u"file"_qs)));
        fd = file.get();
        QVERIFY(isOpen(fd));
        FileDescriptor moved(std::move(file));
        QCOMPARE(moved.get(), fd);
        FileDescriptor assigned;
        assigned = std::move(moved);
        QCOMPARE(assigned.get(), fd);
        QVERIFY(isOpen(fd));
    }
    QVERIFY(!isOpen(fd));
}

void FilesTest::readsWhole()
{
    const QByteArray bytes = QByteArray("0123456789\n\0", 12).repeated(10'000);
    writeFile(path(u"file"_qs), bytes);
    QVERIFY(readSmallFile(path(u"file"_qs), bytes.size() * 2) == bytes);
}

void FilesTest::readsAnEmptyFileAsEmptyText()
{
    writeFile(path(u"file"_qs), "");
    const auto bytes = readSmallFile(path(u"file"_qs), 10);
    QVERIFY(bytes);
    QVERIFY(bytes->isEmpty());
}

void FilesTest::readsWhatHasNoSizeBeforehand()
{
    const auto bytes = readSmallFile(u"/proc/self/status"_qs, 1'000'000);
    QVERIFY(bytes);
    QVERIFY(bytes->contains("FilesTest"));
}

void FilesTest::limitIsTheLargestSize()
{
    QCOMPARE(readSmallFile(path(u"file"_qs), 4).value_or("nothing"), QByteArray("text"));
    QVERIFY(!readSmallFile(path(u"file"_qs), 3));
}

void FilesTest::limitHoldsForWhatHasNoSizeBeforehand()
{
    QVERIFY(!readSmallFile(u"/proc/self/status"_qs, 10));
}

void FilesTest::readsNothingElse_data()
{
    opensNothingElse_data();
}

void FilesTest::readsNothingElse()
{
    QFETCH(QString, name);
    QVERIFY(!readSmallFile(path(name), 1'000'000));
}

void FilesTest::writesANewFile()
{
    QVERIFY(writeInPlace(path(u"new"_qs), "content"));
    QCOMPARE(readFile(path(u"new"_qs)), QByteArray("content"));
}

void FilesTest::replacesInPlace()
{
    const ino_t before = inode(path(u"file"_qs));
    QFile::setPermissions(path(u"file"_qs), QFile::ReadOwner | QFile::WriteOwner);
    const QFile::Permissions permissions = QFile::permissions(path(u"file"_qs));
    for (const QByteArray content : {"something longer than before", "short", ""}) {
        QVERIFY(writeInPlace(path(u"file"_qs), content));
        QCOMPARE(readFile(path(u"file"_qs)), content);
    }
    QCOMPARE(inode(path(u"file"_qs)), before);
    QCOMPARE(QFile::permissions(path(u"file"_qs)), permissions);
}

void FilesTest::writesThroughALink()
{
    QVERIFY(writeInPlace(path(u"link"_qs), "through"));
    QVERIFY(QFileInfo(path(u"link"_qs)).isSymLink());
    QCOMPARE(readFile(path(u"file"_qs)), QByteArray("through"));
}

void FilesTest::writesIntoNothingElse_data()
{
    QTest::addColumn<QString>("name");
    for (const QString &name : {u"fifo"_qs, u"socket"_qs, u"device"_qs, u"folder"_qs, u"loop"_qs})
        QTest::newRow(qPrintable(name)) << name;
}

void FilesTest::writesIntoNothingElse()
{
    QFETCH(QString, name);
    QVERIFY(!writeInPlace(path(name), "content"));
}

void FilesTest::disturbsNoReaderOfAFifo()
{
    const FileDescriptor reader(
        ::open(encoded(path(u"fifo"_qs)).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    QVERIFY(reader.isOpen());
    QVERIFY(!writeInPlace(path(u"fifo"_qs), "content"));
    char byte = 0;
    QCOMPARE(readSome(reader, &byte, 1), 0); // the end, and nothing before it
}

void FilesTest::writeFailsWithoutTheFolder()
{
    QVERIFY(!writeInPlace(path(u"missing/file"_qs), "content"));
    QVERIFY(!QFileInfo::exists(path(u"missing"_qs)));
}

void FilesTest::writeFailsWithoutPermission()
{
    QFile::setPermissions(path(u"file"_qs), QFile::ReadOwner);
    {
        const Unprivileged meanwhile;
        QVERIFY(!writeInPlace(path(u"file"_qs), "content"));
    }
    QCOMPARE(readFile(path(u"file"_qs)), QByteArray("text"));
}

void FilesTest::aFullDiskLeavesTheOldContent()
{
    const QByteArray old(3000, 'o');
    writeFile(path(u"file"_qs), old);
    {
        const LargestFile limit(4096);
        QVERIFY(!writeInPlace(path(u"file"_qs), QByteArray(100'000, 'n')));
        QVERIFY(!writeInPlace(path(u"new"_qs), QByteArray(100'000, 'n')));
    }
    QCOMPARE(readFile(path(u"file"_qs)), old);
    QCOMPARE(readFile(path(u"new"_qs)), QByteArray());
}

void FilesTest::twoProgramsTakeTurns()
{
    const QString file = path(u"file"_qs);
    const QByteArray texts[] = {QByteArray(30'000, 'a'), QByteArray(90'000, 'b')};
    writeFile(file, texts[0]);
    pid_t writers[2] = {};
    for (int i = 0; i < 2; ++i) {
        writers[i] = ::fork();
        if (writers[i] == 0) {
            while (::getppid() != 1)
                writeInPlace(file, texts[i]);
            ::_exit(0);
        }
    }
    int whole = 0;
    bool seen[2] = {};
    for (int round = 0; round < 3000; ++round) {
        const std::optional<QByteArray> text = readSmallFile(file, 1'000'000);
        for (int i = 0; i < 2; ++i) {
            seen[i] |= text == texts[i];
            whole += text == texts[i];
        }
    }
    for (const pid_t writer : writers) {
        ::kill(writer, SIGKILL);
        ::waitpid(writer, nullptr, 0);
    }
    QCOMPARE(whole, 3000);
    QVERIFY(seen[0] && seen[1]);
}

void FilesTest::aLockThatIsNeverGivenBackStopsNobody()
{
    writeFile(path(u"file"_qs), "old");
    const FileDescriptor other = openRegularFile(encoded(path(u"file"_qs)).constData());
    QCOMPARE(::flock(other.get(), LOCK_EX), 0);
    QCOMPARE(readSmallFile(path(u"file"_qs), 100), QByteArray("old"));
    QVERIFY(writeInPlace(path(u"file"_qs), "new"));
    QCOMPARE(readFile(path(u"file"_qs)), QByteArray("new"));
}

PLINTHAR_TEST_MAIN(FilesTest)
#include "FilesTest.moc"
