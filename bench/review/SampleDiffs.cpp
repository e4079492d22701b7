// SPDX-License-Identifier: GPL-3.0-or-later
#include "review/SampleDiffs.h"

namespace {

using SampleDiffs::Script;

QString phrase(Script script)
{
    switch (script) {
    case Script::Latin:
        return QStringLiteral("for (int row = first; row < last; ++row) paint(row, top(row)); ");
    case Script::Ideographs:
        return QString::fromUtf8("中文字符在差异视图里每个占两列所以很容易计算位置");
    case Script::Mixed:
        return QString::fromUtf8(
            "\tnaïve = \"שלום עולם\" + 中文 + 👩‍👩‍👧 + e\u0301; ");
    }
    Q_UNREACHABLE();
}

QString textOf(qsizetype characters, Script script)
{
    const QString part = phrase(script);
    return part.repeated(characters / part.size() + 1);
}

} // namespace

namespace SampleDiffs {

QString rows(qsizetype count, Script script)
{
    constexpr qsizetype rowsPerHunk = 100;
    const QString line = textOf(60, script) + u'\n';
    QString text;
    text.reserve(count * (line.size() + 2) * 5 / 4);
    for (qsizetype row = 0; row < count; ++row) {
        if (row % rowsPerHunk == 0) {
            text += QStringLiteral("@@ -%1,99 +%1,99 @@ int main()\n").arg(row + 1);
            continue;
        }
        switch (row % 5) { // each one row, between lines of context
        case 1:
            text += u'-' + line + u'+' + line;
            break;
        case 3:
            text += (row % 2 ? u'-' : u'+') + line;
            break;
        default:
            text += u' ' + line;
        }
    }
    return text;
}

QString longLine(qsizetype characters, Script script)
{
    const QString line = textOf(characters, script);
    return QStringLiteral("@@ -1,3 +1,3 @@\n a\n-") + line + QStringLiteral("\n+x") + line +
           QStringLiteral("\n b\n");
}

} // namespace SampleDiffs
