// SPDX-License-Identifier: GPL-3.0-or-later
#include "review/GitFile.h"

#include "support/TestMain.h"

#include <QSet>

class GitFileTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void columns_data();
    void columns();
    void everyFieldCounts();
};

void GitFileTest::columns_data()
{
    QTest::addColumn<QString>("columns");
    QTest::addColumn<QString>("badge");
    QTest::addColumn<bool>("untracked");
    QTest::addColumn<bool>("staged");
    QTest::addColumn<bool>("wholly");
    const auto row = [](const char *columns, const char *badge, bool untracked, bool staged,
                        bool wholly) {
        QTest::newRow(columns) << QString::fromLatin1(columns) << QString::fromLatin1(badge)
                               << untracked << staged << wholly;
    };
    row("??", "U", true, false, false);
    row(" M", "M", false, false, false);
    row("M ", "M", false, true, true);
    row("MM", "MM", false, true, false);
    row("A ", "A", false, true, true);
    row("AM", "AM", false, true, false);
    row("AD", "AD", false, true, false);
    row(" A", "A", false, false, false);
    row(" D", "D", false, false, false);
    row("D ", "D", false, true, true);
    row("R ", "R", false, true, true);
    row("RM", "RM", false, true, false);
    row(" R", "R", false, false, false);
    row("C ", "C", false, true, true);
    row("UU", "UU", false, true, false);
    row(" T", "T", false, false, false);
}

void GitFileTest::columns()
{
    QFETCH(const QString, columns);
    const GitFile file{QStringLiteral("path"), columns[0], columns[1]};
    QTEST(file.badge(), "badge");
    QTEST(file.isUntracked(), "untracked");
    QTEST(file.isStaged(), "staged");
    QTEST(file.isWhollyStaged(), "wholly");
}

void GitFileTest::everyFieldCounts()
{
    const GitFile file{QStringLiteral("path"), u'M', u' '};
    const GitFile otherPath{QStringLiteral("Path"), u'M', u' '};
    const GitFile otherX{QStringLiteral("path"), u' ', u' '};
    const GitFile otherY{QStringLiteral("path"), u'M', u'M'};
    QCOMPARE((QSet<GitFile>{file, otherPath, otherX, otherY, file}.size()), 4);
    QCOMPARE(file, (GitFile{QStringLiteral("path"), u'M', u' '}));
    QCOMPARE(qHash(file), qHash(GitFile{QStringLiteral("path"), u'M', u' '}));
}

PLINTHAR_TEST_MAIN(GitFileTest)
#include "GitFileTest.moc"
