// SPDX-License-Identifier: GPL-3.0-or-later
#include "context/InstructionFile.h"

#include "support/LargestFile.h"
#include "support/SpecialFiles.h"
#include "support/TestMain.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <array>
#include <csignal>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace {

struct stat infoOf(const QString &path)
{
    struct stat info = {};
    ::lstat(QFile::encodeName(path).constData(), &info);
    return info;
}

const char accessList[] = "system.posix_acl_access";
const char listForNewFiles[] = "system.posix_acl_default";

bool setAttribute(const QString &path, const char *name, const QByteArray &value)
{
    return ::setxattr(QFile::encodeName(path).constData(), name, value.constData(),
                      size_t(value.size()), 0) == 0;
}

/// The value of a file's extended attribute; null when it has none.
QByteArray attribute(const QString &path, const char *name)
{
    std::array<char, 256> value;
    const ssize_t size =
        ::getxattr(QFile::encodeName(path).constData(), name, value.data(), value.size());
    return size < 0 ? QByteArray() : QByteArray(value.data(), size);
}

/// An access control list as the kernel takes it: user 1234 may read too, and all others nothing.
QByteArray listWithAFurtherReader()
{
    struct Entry {
        quint16 tag;
        quint16 rights;
        quint32 id;
    };
    constexpr quint32 noId = 0xffffffff;
    const std::array<Entry, 5> entries{
        {{1, 6, noId}, {2, 4, 1234}, {4, 0, noId}, {0x10, 4, noId}, {0x20, 0, noId}}};
    const quint32 version = 2;
    return QByteArray(reinterpret_cast<const char *>(&version), sizeof version) +
           QByteArray(reinterpret_cast<const char *>(entries.data()), sizeof entries);
}

} // namespace

class InstructionFileTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void readsText();
    void readsEmptyWithoutAReasonWhatIsMissing();
    void saysWhyItReadsNothing_data();
    void saysWhyItReadsNothing();
    void saysThatItMayNotRead();
    void savesWithoutAnythingAdded();
    void makesMissingFolders();
    void aLinkStaysALink();
    void aChainOfLinksStays();
    void aDanglingLinkGetsItsFile();
    void modeStays_data();
    void modeStays();
    void aNewFileGetsTheUsualMode();
    void ownerStays();
    void ownerStaysWhereItCannotBeGiven();
    void furtherNamesStay();
    void attributesStay();
    void accessControlListsStay();
    void aListForNewFilesIsNotForOldOnes();
    void worksWhereAttributesCannotBeRead();
    void leavesNothingBehind();
    void aFullDiskLeavesTheOldFile_data();
    void aFullDiskLeavesTheOldFile();
    void aFullDiskLeavesNoHalfNewFile();
    void aKilledProgramLeavesTheOldOrTheNewText();
    void worksWhereNoSideFileCanBeMade();
    void worksWithALongName();
    void failuresAreTheSystemsWords_data();
    void failuresAreTheSystemsWords();
    void refusesAReadOnlyFile();
    void refusesAFolderThatItMayNotWrite();
    void disturbsNoReaderOfAFifo();

private:
    QString path(const QString &name) const { return m_home->path(u"p/"_qs + name); }
    void openToEveryone() const
    {
        QFile::setPermissions(m_home->path(), QFile::Permissions(0x7775));
    }
    QStringList names() const
    {
        return QDir(path({})).entryList(QDir::AllEntries | QDir::Hidden | QDir::System |
                                        QDir::NoDotAndDotDot);
    }

    std::unique_ptr<PrivateHome> m_home;
    const QString m_name = u"CLAUDE.md"_qs;
};

void InstructionFileTest::init()
{
    m_home.reset();
    m_home = std::make_unique<PrivateHome>();
    QVERIFY(QDir().mkpath(path({})));
}

void InstructionFileTest::readsText()
{
    writeFile(path(m_name), "\xef\xbb\xbf"
                            "a\r\nb");
    const InstructionText read = readInstructions(path(m_name));
    QCOMPARE(read.problem, QString());
    QCOMPARE(read.file, decodeText(readFile(path(m_name))).value());
}

void InstructionFileTest::readsEmptyWithoutAReasonWhatIsMissing()
{
    for (const QString &name : {m_name, u"no/such/folder.md"_qs}) {
        const InstructionText read = readInstructions(path(name));
        QCOMPARE(read.file, FileText());
        QCOMPARE(read.problem, QString());
    }
}

void InstructionFileTest::saysWhyItReadsNothing_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("reason");
    QTest::newRow("fifo") << u"fifo"_qs << u"not a regular file"_qs;
    QTest::newRow("socket") << u"socket"_qs << u"not a regular file"_qs;
    QTest::newRow("device") << u"device"_qs << u"not a regular file"_qs;
    QTest::newRow("folder") << u"folder"_qs << u"a folder"_qs;
    QTest::newRow("loop") << u"loop"_qs << u"cannot be reached"_qs;
    QTest::newRow("failing") << u"failing"_qs << u"cannot be read"_qs;
    QTest::newRow("Latin-1") << u"latin1"_qs << u"not valid UTF-8"_qs;
    QTest::newRow("huge") << u"huge"_qs << u"larger than 64 MB"_qs;
}

void InstructionFileTest::saysWhyItReadsNothing()
{
    QFETCH(QString, name);
    QFETCH(QString, reason);
    makeSpecialFiles(path({}), QString());
    writeFile(path(u"latin1"_qs), "caf\xe9");
    writeFile(path(u"huge"_qs), "");
    QVERIFY(QFile::resize(path(u"huge"_qs), 64 * 1024 * 1024 + 1)); // without a byte on the disk
    const InstructionText read = readInstructions(path(name));
    QCOMPARE(read.file, FileText());
    QVERIFY2(read.problem.contains(reason), qPrintable(read.problem));
}

void InstructionFileTest::saysThatItMayNotRead()
{
    writeFile(path(m_name), "text");
    QFile::setPermissions(path(m_name), {});
    openToEveryone();
    const Unprivileged meanwhile;
    const InstructionText read = readInstructions(path(m_name));
    QCOMPARE(read.file, FileText());
    QVERIFY2(read.problem.contains(u"cannot be read"_qs), qPrintable(read.problem));
}

void InstructionFileTest::savesWithoutAnythingAdded()
{
    for (const QByteArray text : {"longer text without a newline", "short", ""}) {
        QCOMPARE(saveInstructions(path(m_name), text), std::nullopt);
        QVERIFY(QFileInfo(path(m_name)).isFile());
        QCOMPARE(readFile(path(m_name)), text);
    }
}

void InstructionFileTest::makesMissingFolders()
{
    QCOMPARE(saveInstructions(path(u"a/b/c/CLAUDE.md"_qs), "text"), std::nullopt);
    QCOMPARE(readFile(path(u"a/b/c/CLAUDE.md"_qs)), QByteArray("text"));
}

void InstructionFileTest::aLinkStaysALink()
{
    writeFile(path(u"AGENTS.md"_qs), "old");
    QVERIFY(::symlink("AGENTS.md", QFile::encodeName(path(m_name)).constData()) == 0);
    QCOMPARE(saveInstructions(path(m_name), "new"), std::nullopt);
    QVERIFY(S_ISLNK(infoOf(path(m_name)).st_mode));
    QVERIFY(S_ISREG(infoOf(path(u"AGENTS.md"_qs)).st_mode));
    QCOMPARE(readFile(path(u"AGENTS.md"_qs)), QByteArray("new"));
}

void InstructionFileTest::aChainOfLinksStays()
{
    writeFile(path(u"shared/text.md"_qs), "old");
    QVERIFY(QFile::link(u"shared/text.md"_qs, path(u"second"_qs)));
    QVERIFY(QFile::link(path(u"second"_qs), path(m_name)));
    QCOMPARE(saveInstructions(path(m_name), "new"), std::nullopt);
    QVERIFY(S_ISLNK(infoOf(path(m_name)).st_mode));
    QVERIFY(S_ISLNK(infoOf(path(u"second"_qs)).st_mode));
    QCOMPARE(readFile(path(u"shared/text.md"_qs)), QByteArray("new"));
}

void InstructionFileTest::aDanglingLinkGetsItsFile()
{
    QVERIFY(QFile::link(path(u"elsewhere/text.md"_qs), path(m_name)));
    QCOMPARE(saveInstructions(path(m_name), "new"), std::nullopt);
    QVERIFY(S_ISLNK(infoOf(path(m_name)).st_mode));
    QCOMPARE(readFile(path(u"elsewhere/text.md"_qs)), QByteArray("new"));
}

void InstructionFileTest::modeStays_data()
{
    QTest::addColumn<uint>("mode");
    for (const uint mode : {0600U, 0640U, 0666U, 0755U, 01644U})
        QTest::addRow("%o", mode) << mode;
}

void InstructionFileTest::modeStays()
{
    QFETCH(uint, mode);
    writeFile(path(m_name), "old");
    QCOMPARE(::chmod(QFile::encodeName(path(m_name)).constData(), mode), 0);
    QCOMPARE(saveInstructions(path(m_name), "new"), std::nullopt);
    QCOMPARE(infoOf(path(m_name)).st_mode & 07777, mode);
    QCOMPARE(readFile(path(m_name)), QByteArray("new"));
}

void InstructionFileTest::aNewFileGetsTheUsualMode()
{
    const mode_t before = ::umask(027);
    const auto error = saveInstructions(path(u"new/CLAUDE.md"_qs), "text");
    ::umask(before);
    QCOMPARE(error, std::nullopt);
    QCOMPARE(infoOf(path(u"new/CLAUDE.md"_qs)).st_mode & 0777, 0640U);
    QCOMPARE(infoOf(path(u"new"_qs)).st_mode & 0777, 0750U);
}

void InstructionFileTest::ownerStays()
{
    if (::geteuid() != 0)
        QSKIP("only root can give files away");
    writeFile(path(m_name), "old");
    const QByteArray file = QFile::encodeName(path(m_name));
    QCOMPARE(::chown(file.constData(), 1234, 4321), 0);
    QCOMPARE(::chmod(file.constData(), 0640), 0);
    QCOMPARE(saveInstructions(path(m_name), "new"), std::nullopt);
    QCOMPARE(infoOf(path(m_name)).st_uid, 1234U);
    QCOMPARE(infoOf(path(m_name)).st_gid, 4321U);
    QCOMPARE(infoOf(path(m_name)).st_mode & 07777, 0640U);
}

void InstructionFileTest::ownerStaysWhereItCannotBeGiven()
{
    if (::geteuid() != 0)
        QSKIP("needs a second user, whom only root can become");
    writeFile(path(m_name), "old and longer");
    openToEveryone();
    QCOMPARE(::chmod(QFile::encodeName(path({})).constData(), 0777), 0);
    QCOMPARE(::chmod(QFile::encodeName(path(m_name)).constData(), 0666), 0);
    {
        const Unprivileged meanwhile;
        QCOMPARE(saveInstructions(path(m_name), "new"), std::nullopt);
    }
    QCOMPARE(infoOf(path(m_name)).st_uid, 0U);
    QCOMPARE(readFile(path(m_name)), QByteArray("new"));
    QCOMPARE(names(), QStringList(m_name));
}

void InstructionFileTest::furtherNamesStay()
{
    writeFile(path(m_name), "old and longer");
    QCOMPARE(::link(QFile::encodeName(path(m_name)).constData(),
                    QFile::encodeName(path(u"AGENTS.md"_qs)).constData()),
             0);
    for (const QByteArray text : {"new", "a text that is longer than any before"}) {
        QCOMPARE(saveInstructions(path(m_name), text), std::nullopt);
        QCOMPARE(readFile(path(m_name)), text);
        QCOMPARE(readFile(path(u"AGENTS.md"_qs)), text);
    }
}

void InstructionFileTest::attributesStay()
{
    writeFile(path(m_name), "old");
    if (!setAttribute(path(m_name), "user.origin", "a \xff\x01 b"))
        QSKIP("this file system has no extended attributes");
    QVERIFY(setAttribute(path(m_name), "user.empty", ""));
    const ino_t before = infoOf(path(m_name)).st_ino;
    QCOMPARE(saveInstructions(path(m_name), "new"), std::nullopt);
    QVERIFY(infoOf(path(m_name)).st_ino !=
            before); // by a side file, so that they were carried over
    QCOMPARE(attribute(path(m_name), "user.origin"), QByteArray("a \xff\x01 b"));
    QVERIFY(!attribute(path(m_name), "user.empty").isNull());
    QCOMPARE(readFile(path(m_name)), QByteArray("new"));
}

void InstructionFileTest::accessControlListsStay()
{
    writeFile(path(m_name), "old");
    const QByteArray list = listWithAFurtherReader();
    if (!setAttribute(path(m_name), accessList, list))
        QSKIP("this file system has no access control lists");
    const mode_t mode = infoOf(path(m_name)).st_mode;
    QCOMPARE(saveInstructions(path(m_name), "new"), std::nullopt);
    QCOMPARE(attribute(path(m_name), accessList), list);
    QCOMPARE(infoOf(path(m_name)).st_mode, mode);
    QCOMPARE(readFile(path(m_name)), QByteArray("new"));
}

void InstructionFileTest::aListForNewFilesIsNotForOldOnes()
{
    writeFile(path(m_name), "old");
    QCOMPARE(::chmod(QFile::encodeName(path(m_name)).constData(), 0640), 0);
    if (!setAttribute(path({}), listForNewFiles, listWithAFurtherReader()))
        QSKIP("this file system has no access control lists");
    QCOMPARE(saveInstructions(path(m_name), "new"), std::nullopt);
    QVERIFY(attribute(path(m_name), accessList).isNull()); // the further reader still may not
    QCOMPARE(infoOf(path(m_name)).st_mode & 07777, 0640U);
    // A file that is really new gets what the folder says.
    QCOMPARE(saveInstructions(path(u"AGENTS.md"_qs), "new"), std::nullopt);
    QVERIFY(!attribute(path(u"AGENTS.md"_qs), accessList).isNull());
}

void InstructionFileTest::worksWhereAttributesCannotBeRead()
{
    // A file that may be written and not read keeps its attributes to itself, so it is written in
    // its place.
    writeFile(path(m_name), "old");
    if (!setAttribute(path(m_name), "user.origin", "x"))
        QSKIP("this file system has no extended attributes");
    openToEveryone();
    const QByteArray file = QFile::encodeName(path(m_name));
    QCOMPARE(::chmod(QFile::encodeName(path({})).constData(), 0777), 0);
    if (::geteuid() == 0)
        QCOMPARE(::chown(file.constData(), 65534, gid_t(-1)), 0);
    QCOMPARE(::chmod(file.constData(), 0200), 0);
    {
        const Unprivileged meanwhile;
        QCOMPARE(saveInstructions(path(m_name), "new"), std::nullopt);
    }
    QCOMPARE(infoOf(path(m_name)).st_mode & 07777, 0200U);
    QCOMPARE(::chmod(file.constData(), 0600), 0);
    QCOMPARE(attribute(path(m_name), "user.origin"), QByteArray("x"));
    QCOMPARE(readFile(path(m_name)), QByteArray("new"));
}

void InstructionFileTest::leavesNothingBehind()
{
    QCOMPARE(saveInstructions(path(m_name), "1"), std::nullopt);
    QCOMPARE(saveInstructions(path(m_name), "2"), std::nullopt);
    QCOMPARE(names(), QStringList(m_name));
}

void InstructionFileTest::aFullDiskLeavesTheOldFile_data()
{
    QTest::addColumn<bool>("inPlace");
    QTest::newRow("with a side file") << false;
    QTest::newRow("in place") << true;
}

void InstructionFileTest::aFullDiskLeavesTheOldFile()
{
    QFETCH(bool, inPlace);
    const QByteArray old(3000, 'o');
    writeFile(path(m_name), old);
    if (inPlace) // a second name forbids a side file
        QCOMPARE(::link(QFile::encodeName(path(m_name)).constData(),
                        QFile::encodeName(m_home->path(u"second"_qs)).constData()),
                 0);
    std::optional<QString> error;
    {
        const LargestFile limit(4096);
        error = saveInstructions(path(m_name), QByteArray(100'000, 'n'));
    }
    QCOMPARE(error.value_or(u"none"_qs), u"File too large"_qs);
    QCOMPARE(readFile(path(m_name)), old);
    QCOMPARE(names(), QStringList(m_name));
}

void InstructionFileTest::aFullDiskLeavesNoHalfNewFile()
{
    std::optional<QString> error;
    {
        const LargestFile limit(4096);
        error = saveInstructions(path(m_name), QByteArray(100'000, 'n'));
    }
    QCOMPARE(error.value_or(u"none"_qs), u"File too large"_qs);
    QCOMPARE(names(), QStringList());
}

void InstructionFileTest::aKilledProgramLeavesTheOldOrTheNewText()
{
    const QByteArray texts[] = {QByteArray(8'000'000, 'a'), QByteArray(6'000'000, 'b')};
    writeFile(path(m_name), texts[0]);
    for (int round = 0; round < 20; ++round) {
        const pid_t child = ::fork();
        if (child == 0) {
            for (int i = 1;; ++i) {
                if (saveInstructions(path(m_name), texts[i % 2]))
                    ::_exit(1);
            }
        }
        QVERIFY(child > 0);
        QTest::qSleep(1 + round * 3); // every round it is somewhere else
        QCOMPARE(::kill(child, SIGKILL), 0);
        int status = 0;
        QCOMPARE(::waitpid(child, &status, 0), child);
        QVERIFY(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);
        const QByteArray now = readFile(path(m_name));
        QVERIFY2(now == texts[0] || now == texts[1], "half a text is on the disk");
    }
}

void InstructionFileTest::worksWhereNoSideFileCanBeMade()
{
    writeFile(path(m_name), "the old and longer text");
    openToEveryone();
    QCOMPARE(::chmod(QFile::encodeName(path(m_name)).constData(), 0666), 0);
    QCOMPARE(::chmod(QFile::encodeName(path({})).constData(), 0555), 0);
    for (const QByteArray text : {"new", "new, and longer than everything before"}) {
        {
            const Unprivileged meanwhile;
            QVERIFY(::open(QFile::encodeName(path(u"side"_qs)).constData(), O_CREAT | O_WRONLY,
                           0600) < 0);
            QCOMPARE(saveInstructions(path(m_name), text), std::nullopt);
        }
        QCOMPARE(readFile(path(m_name)), text);
    }
    QCOMPARE(::chmod(QFile::encodeName(path({})).constData(), 0755), 0);
    QCOMPARE(infoOf(path(m_name)).st_mode & 07777, 0666U);
}

void InstructionFileTest::worksWithALongName()
{
    const QString name(255, u'n'); // with anything behind it, it would be too long
    QCOMPARE(saveInstructions(path(name), "first"), std::nullopt);
    QCOMPARE(saveInstructions(path(name), "second"), std::nullopt);
    QCOMPARE(readFile(path(name)), QByteArray("second"));
    QCOMPARE(names(), QStringList(name));
}

void InstructionFileTest::failuresAreTheSystemsWords_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("text");
    QTest::newRow("folder") << u"folder"_qs << u"Is a directory"_qs;
    QTest::newRow("fifo") << u"fifo"_qs << u"Illegal seek"_qs;
    QTest::newRow("socket") << u"socket"_qs << u"Illegal seek"_qs;
    QTest::newRow("device") << u"device"_qs << u"Illegal seek"_qs;
    QTest::newRow("loop") << u"loop"_qs << u"Too many levels of symbolic links"_qs;
    QTest::newRow("below a file") << u"file/x/CLAUDE.md"_qs << u"Not a directory"_qs;
    QTest::newRow("right below a file") << u"file/CLAUDE.md"_qs << u"File exists"_qs;
    QTest::newRow("name too long") << QString(256, u'x') << u"File name too long"_qs;
}

void InstructionFileTest::failuresAreTheSystemsWords()
{
    QFETCH(QString, name);
    QFETCH(QString, text);
    makeSpecialFiles(path({}), QString());
    writeFile(path(u"file"_qs), "");
    const QStringList before = names();
    QCOMPARE(saveInstructions(path(name), "text").value_or(u"none"_qs), text);
    QCOMPARE(names(), before);
}

void InstructionFileTest::refusesAReadOnlyFile()
{
    writeFile(path(m_name), "old");
    openToEveryone();
    QCOMPARE(::chmod(QFile::encodeName(path({})).constData(), 0777), 0);
    QCOMPARE(::chmod(QFile::encodeName(path(m_name)).constData(), 0444), 0);
    {
        const Unprivileged meanwhile;
        QCOMPARE(saveInstructions(path(m_name), "new").value_or(u"none"_qs),
                 u"Permission denied"_qs);
    }
    QCOMPARE(readFile(path(m_name)), QByteArray("old"));
}

void InstructionFileTest::refusesAFolderThatItMayNotWrite()
{
    openToEveryone();
    QCOMPARE(::chmod(QFile::encodeName(path({})).constData(), 0555), 0);
    const Unprivileged meanwhile;
    for (const QString &name : {m_name, u"sub/CLAUDE.md"_qs})
        QCOMPARE(saveInstructions(path(name), "new").value_or(u"none"_qs), u"Permission denied"_qs);
}

void InstructionFileTest::disturbsNoReaderOfAFifo()
{
    makeSpecialFiles(path({}), QString());
    const int reader =
        ::open(QFile::encodeName(path(u"fifo"_qs)).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    QVERIFY(reader >= 0);
    QVERIFY(saveInstructions(path(u"fifo"_qs), "text"));
    char byte = 0;
    QCOMPARE(::read(reader, &byte, 1), 0);
    ::close(reader);
    QVERIFY(S_ISFIFO(infoOf(path(u"fifo"_qs)).st_mode));
}

PLINTHAR_TEST_MAIN(InstructionFileTest)
#include "InstructionFileTest.moc"
