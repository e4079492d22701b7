// SPDX-License-Identifier: GPL-3.0-or-later
// The rows of a diff rebuild both of its sides: of any text that is taken for a diff, and of a diff
// that was made from two known files.

#include "Choices.h"
#include "Property.h"
#include "Target.h"
#include "review/DiffParser.h"

#include <QRegularExpression>
#include <QStringList>

namespace {

/// The lines of one side, one text for each: its kind, its number and itself.
using Side = std::array<QStringList, SideCount>;

QString told(DiffKind kind, int number, QStringView text)
{
    return QStringLiteral("%1 %2 %3").arg(int(kind)).arg(number).arg(text);
}

/// Takes rows apart again, and holds them against what every row promises.
Side sidesOf(const DiffRows &rows, QStringList &headers)
{
    Side sides;
    qsizetype place = 0;
    for (const DiffRow &row : rows) {
        holds(row.index == place++, "rows know their places");
        if (const auto *hunk = std::get_if<DiffHunk>(&row.content)) {
            headers.append(hunk->header.toString());
            continue;
        }
        const DiffLine &line = std::get<DiffLine>(row.content);
        const bool context = line[OldSide].kind == DiffKind::Context;
        holds(context == (line[NewSide].kind == DiffKind::Context), "context is on both sides");
        holds(!context || line[OldSide].text == line[NewSide].text, "context is the same");
        holds(line[OldSide].num || line[NewSide].num, "no row is empty");
        holds(line[OldSide].kind != DiffKind::Added, "nothing is added to the old side");
        holds(line[NewSide].kind != DiffKind::Removed, "nothing is removed from the new side");
        for (const DiffSide side : {OldSide, NewSide}) {
            const DiffCell &cell = line[side];
            holds(cell.num.has_value() == (cell.kind != DiffKind::Empty), "lines have numbers");
            if (cell.num)
                sides[side].append(told(cell.kind, *cell.num, cell.text));
            else
                holds(cell.text.isEmpty(), "an empty cell is empty");
        }
    }
    return sides;
}

/// What a piece of a hunk's header such as -12,3 begins with, which is 0 unless it is a number.
int startIn(const QString &range)
{
    static const QRegularExpression number(
        QRegularExpression::anchoredPattern(QStringLiteral("[-+]?[0-9]+")));
    const QString start = range.mid(1).section(u',', 0, 0);
    return number.match(start).hasMatch() ? start.toInt() : 0;
}

/// A place in both files that wraps round as the parser's does.
struct Numbers {
    quint32 next[SideCount] = {};
    int take(DiffSide side) { return static_cast<int>(next[side]++); }
};

/// Any text, line by line.
void checkText(const QString &text)
{
    Side expected;
    QStringList expectedHeaders;
    Numbers numbers;
    for (const QString &line : text.split(u'\n')) {
        if (line.startsWith(u"@@")) {
            expectedHeaders.append(line);
            const QStringList words = line.split(u' ', Qt::SkipEmptyParts);
            numbers.next[OldSide] = quint32(startIn(words.value(1)));
            numbers.next[NewSide] = quint32(startIn(words.value(2)));
        } else if (expectedHeaders.isEmpty()) {
            continue;
        } else if (line.startsWith(u' ')) {
            for (const DiffSide side : {OldSide, NewSide})
                expected[side].append(told(DiffKind::Context, numbers.take(side), line.mid(1)));
        } else if (line.startsWith(u'-')) {
            expected[OldSide].append(told(DiffKind::Removed, numbers.take(OldSide), line.mid(1)));
        } else if (line.startsWith(u'+')) {
            expected[NewSide].append(told(DiffKind::Added, numbers.take(NewSide), line.mid(1)));
        }
    }
    QStringList headers;
    const Side found = sidesOf(DiffParser::parse(text), headers);
    same(headers.join(u'\n'), expectedHeaders.join(u'\n'), "every header has its row");
    for (const DiffSide side : {OldSide, NewSide})
        same(found[side].join(u'\n'), expected[side].join(u'\n'), "the side is rebuilt");
}

/// Two files made line by line: kept, removed, added, or replaced. Written as git would, then read.
void checkFiles(Choices choices)
{
    QString hunk;
    Side expected;
    std::array<int, SideCount> count = {};
    qsizetype rows = 0;            // that there should be,
    qsizetype run[SideCount] = {}; // with this many changes since the last common line
    while (!choices.atEnd()) {
        const int kind = choices.below(4);
        const QString text = choices.textWithout(u'\n');
        const auto write = [&](DiffSide side, DiffKind what) {
            expected[side].append(told(what, ++count[side], text));
        };
        if (kind == 0) {
            rows += std::max(run[OldSide], run[NewSide]) + 1;
            run[OldSide] = run[NewSide] = 0;
            write(OldSide, DiffKind::Context);
            write(NewSide, DiffKind::Context);
            hunk += u' ' + text + u'\n';
            continue;
        }
        const DiffSide side = kind == 1 ? OldSide : NewSide;
        write(side, side == OldSide ? DiffKind::Removed : DiffKind::Added);
        ++run[side];
        hunk += (side == OldSide ? u'-' : u'+') + text + u'\n';
        if (kind == 3)
            hunk += QStringLiteral("\\ No newline at end of file\n");
    }
    rows += std::max(run[OldSide], run[NewSide]);
    const QString header =
        QStringLiteral("@@ -1,%1 +1,%2 @@").arg(count[OldSide]).arg(count[NewSide]);
    QStringList headers;
    const DiffRows parsed = DiffParser::parse(
        QStringLiteral("diff --git a/x b/x\n--- a/x\n+++ b/x\n") + header + u'\n' + hunk);
    const Side found = sidesOf(parsed, headers);
    same(headers.join(u'\n'), header, "the one header");
    holds(parsed.size() == rows + 1, "changes are paired from the top");
    for (const DiffSide side : {OldSide, NewSide})
        same(found[side].join(u'\n'), expected[side].join(u'\n'), "the file is rebuilt");
}

} // namespace

namespace Target {

void check(const QByteArray &input)
{
    checkText(QString::fromUtf8(input));
    checkFiles(Choices(input));
}

QByteArrayList seeds()
{
    return {"@@ -1,3 +1,3 @@\n a\n-b\n+c\n d\n",
            "--- a/x\n+++ b/x\n@@ -1 +1,2 @@ f()\n-a\n-b\n+c\n\\ No newline at end of file\n",
            "@@ -0,0 +1 @@\n+\n@@ -10,2 +11,2 @@\n \n-\n+\xc3\xa9\r\n",
            "@@ -2147483647,2 +2147483648 @@\n a\n a\n+b\n",
            "@@@ -1,2 -1,2 +1,3 @@@\n+ a\n++b\n",
            "@@\n@@ - +\n@@ --5 ++7\n-a\n+b\n@@ -1, +,1\n x",
            QByteArray("\0\3abc\1\1x\2\1y\3\0\0\2zz", 14),
            "Binary files a and b differ\n"};
}

QByteArrayList words()
{
    return {"\n@@ -1,3 +1,3 @@\n", "\n+",  "\n-",         "\n ",
            "\n\\ No newline",     "@@",   "-12",         "+0,0",
            "4294967295",          "\r\n", "\xe2\x80\xa8"};
}

} // namespace Target
