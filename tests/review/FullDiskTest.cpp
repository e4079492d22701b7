// SPDX-License-Identifier: GPL-3.0-or-later

// Decisions and commits while the disk is full: at whatever write that shows, the user is told and
// everything that was not decided about is as before.

#include "app/Environment.h"
#include "review/Commit.h"
#include "review/GitActions.h"
#include "review/Repository.h"
#include "support/LargestFile.h"
#include "support/TestMain.h"

#include <QDir>
#include <QRandomGenerator>
#include <QTemporaryDir>

namespace {

/// What no compression makes smaller.
QByteArray noise(qsizetype size)
{
    QRandomGenerator random(1);
    QByteArray bytes(size, '\0');
    for (char &byte : bytes)
        byte = char(random.bounded(256));
    return bytes;
}

void addLimits()
{
    QTest::addColumn<int>("bytes");
    for (const int bytes : {0, 1, 50, 150, 400, 1000, 5000})
        QTest::addRow("%d bytes", bytes) << bytes;
}

} // namespace

class FullDiskTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void approving_data() { addLimits(); }
    void approving();
    void rejecting_data() { addLimits(); }
    void rejecting();
    void committing_data() { addLimits(); }
    void committing();

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<Repository> m_repository;
};

void FullDiskTest::initTestCase()
{
    prepareEnvironment();
    writeGitIdentity();
}

/// A repository with two changed files that are larger than every limit.
void FullDiskTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    qputenv("TMPDIR", m_folder->path().toUtf8());
    m_repository = std::make_unique<Repository>(m_folder->filePath(QStringLiteral("repository")));
    for (const char *name : {"a", "b"})
        m_repository->write(QString::fromLatin1(name), noise(20'000));
    m_repository->commitAll();
    for (const char *name : {"a", "b"})
        m_repository->write(QString::fromLatin1(name), "changed\n" + noise(15'000));
}

void FullDiskTest::cleanup()
{
    const QDir folder(m_folder->path());
    QCOMPARE(folder.entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList(QStringLiteral("repository")));
    qunsetenv("TMPDIR");
    m_repository.reset();
    m_folder.reset();
}

void FullDiskTest::approving()
{
    QFETCH(const int, bytes);
    const RepositoryState before = m_repository->state();
    ShellResult result;
    {
        const LargestFile limit{rlim_t(bytes)};
        result = approve(m_repository->path(), {QStringLiteral("a"), u' ', u'M'});
    }
    QVERIFY(result.status != 0);
    QVERIFY2(result.err.contains(QStringLiteral("File too large")), qPrintable(result.err));
    QCOMPARE(m_repository->state().differenceFrom(before), QString());
    QCOMPARE(approve(m_repository->path(), {QStringLiteral("a"), u' ', u'M'}).status, 0);
}

void FullDiskTest::rejecting()
{
    QFETCH(const int, bytes);
    const RepositoryState before = m_repository->state().without("a");
    ShellResult result;
    {
        const LargestFile limit{rlim_t(bytes)};
        result = reject(m_repository->path(), {QStringLiteral("a"), u' ', u'M'}, true);
    }
    QVERIFY(result.status != 0);
    QVERIFY2(!result.err.isEmpty(), "nothing is said");
    QCOMPARE(m_repository->state().without("a").differenceFrom(before), QString());
    QCOMPARE(reject(m_repository->path(), {QStringLiteral("a"), u' ', u'M'}, true).status, 0);
    QCOMPARE(readFile(m_repository->path(QStringLiteral("a"))), noise(20'000));
}

void FullDiskTest::committing()
{
    QFETCH(const int, bytes);
    const QString text = QString::fromLatin1(noise(8'000).toHex()); // whatever it is compressed to
    m_repository->git({QStringLiteral("add"), QStringLiteral("a")});
    const QByteArray head =
        m_repository->git({QStringLiteral("rev-parse"), QStringLiteral("HEAD")});
    const RepositoryState before = m_repository->state();
    std::optional<QString> error;
    {
        const LargestFile limit{rlim_t(bytes)};
        error = commit(m_repository->path(), text);
    }
    QVERIFY(error);
    QVERIFY2(!error->isEmpty(), "nothing is said");
    QCOMPARE(m_repository->state().differenceFrom(before), QString());
    QCOMPARE(m_repository->git({QStringLiteral("rev-parse"), QStringLiteral("HEAD")}), head);
    QCOMPARE(commit(m_repository->path(), text), std::nullopt);
}

PLINTHAR_TEST_MAIN(FullDiskTest)
#include "FullDiskTest.moc"
