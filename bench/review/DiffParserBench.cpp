// SPDX-License-Identifier: GPL-3.0-or-later

// How long the rows of a large diff take, compared with nothing but splitting its text into lines.

#include "review/DiffParser.h"
#include "support/BenchOptions.h"
#include "support/Figures.h"

#include <QCoreApplication>

#include <cstdio>

namespace {

/// Of what splitting into strings takes. The parser makes more of each line, but no string.
constexpr double mostTimesSplit = 2;

/// Hunks of seven lines of context with a run of changes between them, as long as lines of code
/// are.
QString diffOfLines(qsizetype lines)
{
    static const char *const pattern[] = {" ", " ", " ", "-", "-", "+", "+", "+", " ", " "};
    constexpr qsizetype linesOfHunk = 1000;
    QString text = QStringLiteral("diff --git a/f b/f\nindex 1..2 100644\n--- a/f\n+++ b/f\n");
    for (qsizetype line = 4; line < lines; ++line) {
        if (line % linesOfHunk == 4)
            text += QStringLiteral("@@ -%1,700 +%1,800 @@ void function()\n").arg(line);
        else
            text += QLatin1String(pattern[line % 10]) +
                    QStringLiteral("    const int value%1 = compute(first, second);\n").arg(line);
    }
    return text;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    BenchOptions options(QStringLiteral("Measures how fast diffs are parsed."));
    options.addNumber(QStringLiteral("lines"), QStringLiteral("Lines."), 1000000);
    options.addNumber(QStringLiteral("rounds"), QStringLiteral("Rounds."), 9);
    options.process(application);
    const QString text = diffOfLines(options.number(QStringLiteral("lines")));
    const QString half = text.left(text.indexOf(u'\n', text.size() / 2) + 1);

    Series parsing;
    Series parsingHalf;
    Series splitting;
    Series splittingViews;
    qsizetype lines = 0;
    qsizetype rows = 0;
    for (int round = 0; round < int(options.number(QStringLiteral("rounds"))); ++round) {
        // What is made is also freed in the measured time.
        splitting.push_back(elapsed([&] { lines = text.split(u'\n').size(); }).cpu);
        splittingViews.push_back(elapsed([&] { (void)QStringView(text).split(u'\n'); }).cpu);
        parsing.push_back(elapsed([&] { rows = DiffParser::parse(text).size(); }).cpu);
        parsingHalf.push_back(elapsed([&] { (void)DiffParser::parse(half); }).cpu);
    }
    if (rows == 0 || rows > lines) {
        std::fprintf(stderr, "%lld rows of %lld lines\n", static_cast<long long>(rows),
                     static_cast<long long>(lines));
        return 1;
    }
    Report report(QStringLiteral("diff parser, CPU time"));
    const QString parse = QStringLiteral("parse");
    report.add({.what = parse,
                .comparedWith = QStringLiteral("(%1 lines, %2 rows)").arg(lines).arg(rows),
                .unit = QStringLiteral("ms"),
                .best = least(parsing) * 1e3,
                .usual = median(parsing) * 1e3});
    report.add(
        ratio(parse, parsing, QStringLiteral("split into strings"), splitting, mostTimesSplit));
    report.add(ratio(parse, parsing, QStringLiteral("split into views"), splittingViews));
    report.add(ratio(parse, parsing, QStringLiteral("parse of half the text"), parsingHalf));
    report.addDetail(QStringLiteral("lines"), lines);
    report.addDetail(QStringLiteral("rows"), rows);
    return options.finish(report);
}
