// SPDX-License-Identifier: GPL-3.0-or-later
#include "review/DiffParser.h"

#include "app/Environment.h"
#include "review/Repository.h"
#include "support/TestMain.h"

#include <QProcess>
#include <QTemporaryDir>

#include <random>

namespace {

/// Rows as lines of text that show everything of them.
QStringList describe(const DiffRows &rows)
{
    static const char *const kinds[] = {"context", "added", "removed", "empty"};
    const auto cell = [](const DiffCell &part) {
        return QStringLiteral("%1 \"%2\" %3")
            .arg(part.num ? QString::number(*part.num) : QStringLiteral("none"),
                 part.text.toString(), QLatin1String(kinds[static_cast<int>(part.kind)]));
    };
    QStringList lines;
    for (const DiffRow &row : rows) {
        const auto *hunk = std::get_if<DiffHunk>(&row.content);
        const auto *line = std::get_if<DiffLine>(&row.content);
        lines.append(
            QString::number(row.index) + u' ' +
            (hunk ? hunk->header.toString()
                  : cell((*line)[OldSide]) + QStringLiteral(" | ") + cell((*line)[NewSide])));
    }
    return lines;
}

QStringList parsed(const char *text)
{
    return describe(DiffParser::parse(QString::fromUtf8(text)));
}

/// What the first hunk's lines are numbered with when its header is this.
std::pair<int, int> starts(const QString &header)
{
    const DiffRows rows = DiffParser::parse(header + QStringLiteral("\n x\n"));
    const auto *line = std::get_if<DiffLine>(&rows[rows.size() - 1].content);
    return {*(*line)[OldSide].num, *(*line)[NewSide].num};
}

using Lines = QList<QByteArray>;

/// A file's lines that resemble those of a diff, with few different ones, so that a diff has
/// something to find.
Lines randomLines(std::mt19937 &random)
{
    static const Lines pool{"",
                            "a",
                            "b",
                            "+",
                            "-",
                            " ",
                            "@@ -1 +1 @@",
                            "\\",
                            "--- a",
                            "+++ b",
                            "\t",
                            "\r",
                            "x\ry",
                            "diff --git a/f b/f",
                            "\xc3\xa9",
                            "\xf0\x9f\x98\x80",
                            "\xcc\x81",
                            "c"};
    Lines lines;
    const int count = static_cast<int>(random() % 40);
    for (int i = 0; i < count; ++i)
        lines.append(pool[static_cast<qsizetype>(random() % static_cast<size_t>(pool.size()))]);
    return lines;
}

Lines edited(Lines lines, std::mt19937 &random)
{
    const Lines more = randomLines(random);
    for (const QByteArray &line : more.mid(0, 8)) {
        const auto at = static_cast<qsizetype>(random() % (static_cast<size_t>(lines.size()) + 1));
        if (random() % 2 == 0 && at < lines.size())
            lines.remove(at, std::min<qsizetype>(1 + at % 3, lines.size() - at));
        else
            lines.insert(at, line);
    }
    return lines;
}

/// The file; without a line feed at its end if it has been given none.
QByteArray joined(const Lines &lines, bool finalLineFeed)
{
    QByteArray text = lines.join('\n');
    if (finalLineFeed && !lines.isEmpty())
        text += '\n';
    return text;
}

Lines linesOf(const QByteArray &file)
{
    Lines lines = file.split('\n');
    if (lines.last().isEmpty()) // what follows the last line feed is no line
        lines.removeLast();
    return lines;
}

/// What git finds different between two files, in a folder of the test's own.
DiffRows compare(const QTemporaryDir &folder, const std::array<QByteArray, SideCount> &files,
                 int context)
{
    writeFile(folder.filePath(QStringLiteral("old")), files[OldSide]);
    writeFile(folder.filePath(QStringLiteral("new")), files[NewSide]);
    QProcess process;
    process.setWorkingDirectory(folder.path());
    process.start(QStringLiteral("/usr/bin/git"),
                  {QStringLiteral("diff"), QStringLiteral("--no-index"), QStringLiteral("--text"),
                   QStringLiteral("-U%1").arg(context), QStringLiteral("old"),
                   QStringLiteral("new")});
    process.waitForFinished(-1);
    return DiffParser::parse(QString::fromUtf8(process.readAllStandardOutput()));
}

/// The number of lines of the old file that stand before a hunk.
qsizetype linesBefore(const DiffHunk &hunk)
{
    const QStringList range = hunk.header.toString().section(u' ', 1, 1).mid(1).split(u',');
    const bool isEmpty = range.value(1) == u"0"; // then the line that it comes after is named
    return range[0].toInt() - (isEmpty ? 0 : 1);
}

} // namespace

class DiffParserTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void pairsChangesBetweenContext();
    void padsTheNewSide();
    void padsTheOldSide();
    void pairsInterleavedChanges();
    void noFinalLineFeed();
    void headerWithoutCounts();
    void headerWithMissingPieces();
    void headersBeforeTheFirstHunk();
    void wholeNewFile();
    void nothing();
    void textWithoutHunk();
    void severalHunks();
    void absurdHeaders_data();
    void absurdHeaders();
    void lastNumberOfAll();
    void textIsKeptAsItIs();
    void rowsOutliveTheText();
    void rebuildsWhatGitCompared_data();
    void rebuildsWhatGitCompared();
};

void DiffParserTest::initTestCase()
{
    prepareEnvironment();
    writeGitIdentity();
}

void DiffParserTest::pairsChangesBetweenContext()
{
    QCOMPARE(parsed("@@ -3,2 +3,3 @@\n a\n-b\n+B\n+C\n d\n"),
             (QStringList{QStringLiteral("0 @@ -3,2 +3,3 @@"),
                          QStringLiteral("1 3 \"a\" context | 3 \"a\" context"),
                          QStringLiteral("2 4 \"b\" removed | 4 \"B\" added"),
                          QStringLiteral("3 none \"\" empty | 5 \"C\" added"),
                          QStringLiteral("4 5 \"d\" context | 6 \"d\" context")}));
}

void DiffParserTest::padsTheNewSide()
{
    QCOMPARE(parsed("@@ -1,3 +1 @@\n-a\n-b\n-c\n+A"),
             (QStringList{QStringLiteral("0 @@ -1,3 +1 @@"),
                          QStringLiteral("1 1 \"a\" removed | 1 \"A\" added"),
                          QStringLiteral("2 2 \"b\" removed | none \"\" empty"),
                          QStringLiteral("3 3 \"c\" removed | none \"\" empty")}));
}

void DiffParserTest::padsTheOldSide()
{
    QCOMPARE(parsed("@@ -1 +1,2 @@\n-a\n+A\n+B\n"),
             (QStringList{QStringLiteral("0 @@ -1 +1,2 @@"),
                          QStringLiteral("1 1 \"a\" removed | 1 \"A\" added"),
                          QStringLiteral("2 none \"\" empty | 2 \"B\" added")}));
}

void DiffParserTest::pairsInterleavedChanges()
{
    QCOMPARE(parsed("@@ -1 +1 @@\n+A\n-a\n+B\n-b\n-c\n"),
             (QStringList{QStringLiteral("0 @@ -1 +1 @@"),
                          QStringLiteral("1 1 \"a\" removed | 1 \"A\" added"),
                          QStringLiteral("2 2 \"b\" removed | 2 \"B\" added"),
                          QStringLiteral("3 3 \"c\" removed | none \"\" empty")}));
}

void DiffParserTest::noFinalLineFeed()
{
    QCOMPARE(parsed("@@ -1 +1 @@\n-a\n\\ No newline at end of file\n+b\n"
                    "\\ No newline at end of file\n"),
             (QStringList{QStringLiteral("0 @@ -1 +1 @@"),
                          QStringLiteral("1 1 \"a\" removed | 1 \"b\" added")}));
}

void DiffParserTest::headerWithoutCounts()
{
    QCOMPARE(starts(QStringLiteral("@@ -7 +9 @@ function()")), std::make_pair(7, 9));
    QCOMPARE(starts(QStringLiteral("@@  -7,2   +9,1 @@")), std::make_pair(7, 9));
}

void DiffParserTest::headerWithMissingPieces()
{
    QCOMPARE(starts(QStringLiteral("@@")), std::make_pair(0, 0));
    QCOMPARE(starts(QStringLiteral("@@ ")), std::make_pair(0, 0));
    QCOMPARE(starts(QStringLiteral("@@ -5")), std::make_pair(5, 0));
    QCOMPARE(starts(QStringLiteral("@@-5 +6 @@")), std::make_pair(6, 0));
}

void DiffParserTest::headersBeforeTheFirstHunk()
{
    QCOMPARE(parsed("diff --git a/f b/f\nindex 1..2 100644\n--- a/f\n+++ b/f\n"
                    "@@ -1 +1 @@\n--- x\n+++ y\n"),
             (QStringList{QStringLiteral("0 @@ -1 +1 @@"),
                          QStringLiteral("1 1 \"-- x\" removed | 1 \"++ y\" added")}));
}

void DiffParserTest::wholeNewFile()
{
    QCOMPARE(parsed("--- /dev/null\n+++ b/f\n@@ -0,0 +1,3 @@\n+a\n+b\n+c\n"),
             (QStringList{QStringLiteral("0 @@ -0,0 +1,3 @@"),
                          QStringLiteral("1 none \"\" empty | 1 \"a\" added"),
                          QStringLiteral("2 none \"\" empty | 2 \"b\" added"),
                          QStringLiteral("3 none \"\" empty | 3 \"c\" added")}));
}

void DiffParserTest::nothing()
{
    QVERIFY(DiffParser::parse({}).isEmpty());
    QVERIFY(DiffParser::parse(QStringLiteral("\n\n\n")).isEmpty());
}

void DiffParserTest::textWithoutHunk()
{
    QVERIFY(DiffParser::parse(QStringLiteral("+a\n-b\n c\nold mode 100644\n")).isEmpty());
}

void DiffParserTest::severalHunks()
{
    QCOMPARE(parsed("@@ -1 +1 @@ one\n-a\n@@ -8 +8 @@ two\n+b\n c\nrest\n\n d\n"),
             (QStringList{QStringLiteral("0 @@ -1 +1 @@ one"),
                          QStringLiteral("1 1 \"a\" removed | none \"\" empty"),
                          QStringLiteral("2 @@ -8 +8 @@ two"),
                          QStringLiteral("3 none \"\" empty | 8 \"b\" added"),
                          QStringLiteral("4 8 \"c\" context | 9 \"c\" context"),
                          QStringLiteral("5 9 \"d\" context | 10 \"d\" context")}));
}

void DiffParserTest::absurdHeaders_data()
{
    QTest::addColumn<QString>("header");
    QTest::addColumn<int>("oldStart");
    QTest::addColumn<int>("newStart");
    const auto row = [](const char *header, int oldStart, int newStart) {
        QTest::newRow(header) << QString::fromUtf8(header) << oldStart << newStart;
    };
    row("@@ -99999999999999999999 +3 @@", 0, 3);
    row("@@ -2147483648 +2147483647 @@", 0, 2147483647);
    row("@@ -4294967297 +18446744073709551617 @@", 0, 0);
    row("@@ -,3 +, @@", 0, 0);
    row("@@ - + @@", 0, 0);
    row("@@ -a +1b @@", 0, 0);
    row("@@ --5 ++6 @@", -5, 6);
    row("@@ -- ++ @@", 0, 0);
    row("@@ -1.5 +0x10 @@", 0, 0);
    row("@@ -\xd9\xa3 +\xef\xbc\x93 @@", 0, 0); // digits, but not decimal ones of ASCII
    row("@@ -\t4 +5\t @@", 0, 0);
    row("@@@ -1,2 -3,4 +5,6 @@@", 1, 3);
    row("@@@@@@@@@@", 0, 0);
}

void DiffParserTest::absurdHeaders()
{
    QFETCH(const QString, header);
    QFETCH(const int, oldStart);
    QFETCH(const int, newStart);
    QCOMPARE(starts(header), std::make_pair(oldStart, newStart));
}

void DiffParserTest::lastNumberOfAll()
{
    const DiffRows rows =
        DiffParser::parse(QStringLiteral("@@ -2147483647 +2147483647 @@\n a\n b\n+c\n-d\n"));
    QCOMPARE(rows.size(), 4);
}

void DiffParserTest::textIsKeptAsItIs()
{
    const QString strange = QStringLiteral("\u0301a\tb\r\U0001F600\u202E\u0000\u2028 ");
    const DiffRows rows = DiffParser::parse(QStringLiteral("@@ -1 +1 @@\n+") + strange);
    QCOMPARE(std::get<DiffLine>(rows[1].content)[NewSide].text.toString(), strange);
}

void DiffParserTest::rowsOutliveTheText()
{
    DiffRows rows;
    {
        QString text = QString(u'@').repeated(2) + QStringLiteral(" -1 +1 @@\n");
        text += QStringLiteral("+first\n");
        const DiffRows parsedRows = DiffParser::parse(text);
        text[0] = u'!'; // makes a copy of its own
        text.clear();
        rows = parsedRows;
    }
    QCOMPARE(describe(rows).last(), QStringLiteral("1 none \"\" empty | 1 \"first\" added"));
}

void DiffParserTest::rebuildsWhatGitCompared_data()
{
    QTest::addColumn<int>("context");
    for (const int context : {0, 1, 3, 100})
        QTest::addRow("%d lines of context", context) << context;
}

/// The lines of both files, where the rows say they are, with those between the hunks that are the
/// same in both.
void DiffParserTest::rebuildsWhatGitCompared()
{
    QFETCH(const int, context);
    const QTemporaryDir folder;
    std::mt19937 random(static_cast<unsigned>(context) + 1);
    for (int round = 0; round < 60; ++round) {
        const Lines old = randomLines(random);
        const std::array<QByteArray, SideCount> files{
            joined(old, random() % 4 != 0), joined(edited(old, random), random() % 4 != 0)};
        const std::array<Lines, SideCount> wanted{linesOf(files[OldSide]), linesOf(files[NewSide])};
        std::array<Lines, SideCount> rebuilt{};
        const auto takeUnchangedUntil = [&](qsizetype line) {
            while (rebuilt[OldSide].size() < line) {
                const QByteArray unchanged = wanted[OldSide].value(rebuilt[OldSide].size());
                rebuilt[OldSide].append(unchanged);
                rebuilt[NewSide].append(unchanged);
            }
        };
        const DiffRows rows = compare(folder, files, context);
        for (const DiffRow &row : rows) {
            if (const auto *hunk = std::get_if<DiffHunk>(&row.content)) {
                takeUnchangedUntil(linesBefore(*hunk));
                continue;
            }
            for (const DiffSide side : {OldSide, NewSide}) {
                const DiffCell &cell = std::get<DiffLine>(row.content)[side];
                QCOMPARE(cell.num.has_value(), cell.kind != DiffKind::Empty);
                if (!cell.num)
                    continue;
                rebuilt[side].append(cell.text.toUtf8());
                QCOMPARE(*cell.num, rebuilt[side].size());
            }
        }
        takeUnchangedUntil(wanted[OldSide].size());
        QCOMPARE(rebuilt[OldSide], wanted[OldSide]);
        QCOMPARE(rebuilt[NewSide], wanted[NewSide]);
    }
}

PLINTHAR_TEST_MAIN(DiffParserTest)
#include "DiffParserTest.moc"
