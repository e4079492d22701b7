// SPDX-License-Identifier: GPL-3.0-or-later
#include "review/DiffLoader.h"

#include "app/Environment.h"
#include "review/GitStatus.h"
#include "review/Repository.h"
#include "support/TestMain.h"

#include <QTemporaryDir>

class DiffLoaderTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void binaryNote_data();
    void binaryNote();
    void nothingSelected();
    void laterHeadersAreNoLines();
    void untrackedFileIsWhollyAdded();
    void stagedAndUnstagedTogether();
    void withoutHeadOnlyWhatIsStaged();
    void binaryFile();
    void stoppedBefore();

private:
    std::stop_source m_stop;
};

void DiffLoaderTest::initTestCase()
{
    prepareEnvironment();
    writeGitIdentity();
}

void DiffLoaderTest::binaryNote_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("note") << QStringLiteral(
        "diff --git a/f b/f\nBinary files a/f and b/f differ\n");
    QTest::newRow("note at the start") << QStringLiteral("Binary files a/f and b/f differ");
    QTest::newRow("patch") << QStringLiteral("GIT binary patch\nliteral 3\n");
    QTest::newRow("among lines") << QStringLiteral("@@ -1 +1 @@\n-a\n+Binary files\n");
}

void DiffLoaderTest::binaryNote()
{
    QFETCH(const QString, text);
    QCOMPARE(readDiff(text), (LoadedDiff{{}, QStringLiteral("Binary file")}));
}

void DiffLoaderTest::nothingSelected()
{
    QCOMPARE(loadDiff(QStringLiteral("/nowhere"), std::nullopt, true), LoadedDiff());
    QCOMPARE(readDiff({}), LoadedDiff());
}

/// A file that has become a link is removed and added, in two diffs of one text.
void DiffLoaderTest::laterHeadersAreNoLines()
{
    const QString text = QStringLiteral("diff --git a/f b/f\ndeleted file mode 100644\n--- a/f\n"
                                        "+++ /dev/null\n@@ -1 +0,0 @@\n-old\n"
                                        "diff --git a/f b/f\nnew file mode 120000\n"
                                        "--- /dev/null\n+++ b/f\n@@ -0,0 +1 @@\n+new\n");
    const DiffRows rows = readDiff(text).rows;
    QCOMPARE(rows.size(), 4);
    QCOMPARE(std::get<DiffHunk>(rows[0].content).header, QStringLiteral("@@ -1 +0,0 @@"));
    QCOMPARE(std::get<DiffLine>(rows[1].content)[OldSide].text, QStringLiteral("old"));
    QCOMPARE(std::get<DiffHunk>(rows[2].content).header, QStringLiteral("@@ -0,0 +1 @@"));
    QCOMPARE(std::get<DiffLine>(rows[3].content)[NewSide].text, QStringLiteral("new"));
    // A line of a file that only looks like one has its sign before it.
    QCOMPARE(readDiff(QStringLiteral("@@ -1,2 +1,2 @@\n-diff --git a b\n+diff --git a c\n x\n"))
                 .rows.size(),
             3);
}

void DiffLoaderTest::untrackedFileIsWhollyAdded()
{
    const QTemporaryDir folder;
    const Repository repository(folder.path());
    repository.write(QStringLiteral("new"), "a\nb\nc\n");
    const DiffRows rows =
        loadDiff(folder.path(), GitFile{QStringLiteral("new"), u'?', u'?'}, false).rows;
    QCOMPARE(rows.size(), 4);
    QVERIFY(std::holds_alternative<DiffHunk>(rows[0].content));
    for (int i = 1; i <= 3; ++i) {
        const auto line = std::get<DiffLine>(rows[i].content);
        QCOMPARE(line[OldSide], DiffCell());
        QCOMPARE(line[NewSide].num, i);
        QCOMPARE(line[NewSide].kind, DiffKind::Added);
    }
}

void DiffLoaderTest::stagedAndUnstagedTogether()
{
    const QTemporaryDir folder;
    const Repository repository(folder.path());
    repository.write(QStringLiteral("f"), "1\n2\n3\n");
    repository.commitAll();
    repository.write(QStringLiteral("f"), "1 staged\n2\n3\n");
    repository.git({QStringLiteral("add"), QStringLiteral("f")});
    repository.write(QStringLiteral("f"), "1 staged\n2\n3 not staged\n");
    const QString text = diffText(folder.path(), GitFile{QStringLiteral("f"), u'M', u'M'}, true);
    QVERIFY(text.contains(QStringLiteral("\n+1 staged\n")));
    QVERIFY(text.contains(QStringLiteral("\n+3 not staged\n")));
}

void DiffLoaderTest::withoutHeadOnlyWhatIsStaged()
{
    const QTemporaryDir folder;
    const Repository repository(folder.path());
    repository.write(QStringLiteral("f"), "staged\n");
    repository.git({QStringLiteral("add"), QStringLiteral("f")});
    repository.write(QStringLiteral("f"), "staged\nnot staged\n");
    const QString text = diffText(folder.path(), GitFile{QStringLiteral("f"), u'A', u'M'}, false);
    QVERIFY(text.contains(QStringLiteral("\n+staged\n")));
    QVERIFY(!text.contains(QStringLiteral("not staged")));
}

void DiffLoaderTest::binaryFile()
{
    const QTemporaryDir folder;
    const Repository repository(folder.path());
    repository.write(QStringLiteral("f"), QByteArray("\0\1", 2));
    const GitFile file{QStringLiteral("f"), u'?', u'?'};
    QCOMPARE(loadDiff(folder.path(), file, false), (LoadedDiff{{}, QStringLiteral("Binary file")}));
}

void DiffLoaderTest::stoppedBefore()
{
    const QTemporaryDir folder;
    const Repository repository(folder.path());
    repository.write(QStringLiteral("f"), "text\n");
    m_stop.request_stop();
    const GitFile file{QStringLiteral("f"), u'?', u'?'};
    QCOMPARE(loadDiff(folder.path(), file, false, m_stop.get_token()), LoadedDiff());
}

PLINTHAR_TEST_MAIN(DiffLoaderTest)
#include "DiffLoaderTest.moc"
