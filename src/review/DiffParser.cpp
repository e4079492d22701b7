// SPDX-License-Identifier: GPL-3.0-or-later
#include "review/DiffParser.h"

#include "model/Words.h"

#include <array>
#include <limits>

namespace {

/// The decimal number that a piece of a header is, 0 when it is none or larger than any line's.
int numberOf(QStringView piece)
{
    qsizetype i = 0;
    const bool negative = piece.startsWith(u'-');
    if (negative || piece.startsWith(u'+'))
        ++i;
    constexpr qint64 most = std::numeric_limits<int>::max();
    qint64 number = 0;
    if (i == piece.size())
        return 0;
    for (; i < piece.size(); ++i) {
        const char16_t digit = piece[i].unicode();
        if (digit < u'0' || digit > u'9')
            return 0;
        number = number * 10 + (digit - u'0');
        if (number > most)
            return 0;
    }
    return static_cast<int>(negative ? -number : number);
}

/// The start of a range such as -12,3.
int startOf(QStringView range)
{
    const QStringView start = range.mid(1);
    const qsizetype comma = start.indexOf(u',');
    return numberOf(comma < 0 ? start : start.first(comma));
}

/// Makes rows of one line of the diff after another.
class Rows {
public:
    /// `lines` is the most rows that there can be.
    explicit Rows(qsizetype lines) { m_rows.reserve(lines); }

    void take(QStringView line)
    {
        if (line.startsWith(u"@@"))
            startHunk(line);
        else if (!m_insideHunk || line.isEmpty())
            return;
        else if (line.front() == u'+')
            addChange(NewSide, DiffKind::Added, line.mid(1));
        else if (line.front() == u'-')
            addChange(OldSide, DiffKind::Removed, line.mid(1));
        else if (line.front() == u' ')
            addContext(line.mid(1));
    }

    QList<DiffRow> taken() && { return std::move(m_rows); }

private:
    void startHunk(QStringView line)
    {
        m_rows.append({m_rows.size(), DiffHunk{line}});
        endRun();
        takeWord(line);
        for (quint32 &next : m_next)
            next = static_cast<quint32>(startOf(takeWord(line)));
        m_insideHunk = true;
    }

    void addContext(QStringView text)
    {
        m_rows.append(
            {m_rows.size(), DiffLine{DiffCell{number(OldSide), DiffKind::Context, text},
                                     DiffCell{number(NewSide), DiffKind::Context, text}}});
        endRun();
    }

    /// Changes are paired where they belong at once: the n-th of a side stands in the n-th row of
    /// the run.
    void addChange(DiffSide side, DiffKind kind, QStringView text)
    {
        const qsizetype row = m_runStart + m_inRun[side]++;
        if (row == m_rows.size())
            m_rows.append({row, DiffLine{}});
        std::get<DiffLine>(m_rows[row].content)[side] = {number(side), kind, text};
    }

    void endRun()
    {
        m_runStart = m_rows.size();
        m_inRun = {};
    }

    /// Counted without a sign, since a header can claim the last number that there is.
    int number(DiffSide side) { return static_cast<int>(m_next[side]++); }

    QList<DiffRow> m_rows;
    qsizetype m_runStart = 0; ///< where the run of changes under way began
    std::array<qsizetype, SideCount> m_inRun = {};
    std::array<quint32, SideCount> m_next = {}; ///< numbers of the lines to come
    bool m_insideHunk = false;
};

} // namespace

namespace DiffParser {

DiffRows parse(const QString &text)
{
    const QStringView all(text);
    Rows rows(all.count(u'\n') + 1);
    qsizetype begin = 0;
    while (begin < all.size()) {
        qsizetype end = all.indexOf(u'\n', begin);
        if (end < 0)
            end = all.size();
        rows.take(all.mid(begin, end - begin));
        begin = end + 1;
    }
    return DiffRows(text, std::move(rows).taken());
}

} // namespace DiffParser
