// SPDX-License-Identifier: GPL-3.0-or-later
#include "review/LineLayout.h"

#include <algorithm>
#include <cmath>

namespace {

/// How many characters lie between two places of an index.
constexpr qsizetype stride = 256;

bool isWordCharacter(QStringView text, qsizetype at)
{
    const QChar unit = text[at];
    return unit.isSurrogate() ? false : unit.isLetterOrNumber() || unit.isMark() || unit == u'_';
}

/// Ranges from left to right, with those joined that touch.
QList<std::pair<qsizetype, qsizetype>> joined(QList<std::pair<qsizetype, qsizetype>> ranges)
{
    std::sort(ranges.begin(), ranges.end());
    QList<std::pair<qsizetype, qsizetype>> result;
    for (const auto &range : ranges) {
        if (!result.isEmpty() && result.constLast().second == range.first)
            result.last().second = range.second;
        else
            result.append(range);
    }
    return result;
}

} // namespace

LineIndex indexOf(QStringView text)
{
    if (isPlain(text))
        return {true, text.size(), {}};
    LineIndex index{false, 0, {}};
    TextCells cells(text);
    qsizetype nextPlace = 0;
    while (const std::optional<TextCell> cell = cells.next()) {
        if (cell->begin >= nextPlace) {
            index.places.append({cell->begin, cell->column});
            nextPlace = cell->begin + stride;
        }
        index.columns = cell->column + cell->columns;
    }
    return index;
}

LineLayout::LineLayout(QStringView text, const LineIndex *index)
    : m_text(text)
    , m_index(index)
    , m_plain(index ? index->plain : isPlain(text))
{
}

qsizetype LineLayout::columns() const
{
    if (m_plain)
        return m_text.size();
    return m_index ? m_index->columns : indexOf(m_text).columns;
}

QList<TextRun> LineLayout::runs(qsizetype beginColumn, qsizetype endColumn) const
{
    if (!m_plain)
        return measuredRuns(beginColumn, endColumn);
    const qsizetype begin = std::clamp(beginColumn, qsizetype(0), m_text.size());
    const qsizetype end = std::clamp(endColumn, begin, m_text.size());
    if (begin == end)
        return {};
    return {TextRun{begin, end, begin, end - begin, CellKind::Plain, false}};
}

/// Runs end at the places of the index, so that they are the same wherever they are looked at from.
QList<TextRun> LineLayout::measuredRuns(qsizetype beginColumn, qsizetype endColumn) const
{
    if (!m_index || m_index->places.isEmpty())
        return textRuns(m_text, {}, endColumn);
    QList<TextRun> runs;
    for (auto place = placeBeforeColumn(beginColumn);
         place != m_index->places.cend() && place->column < endColumn; ++place) {
        const auto following = std::next(place);
        const bool last = following == m_index->places.cend();
        runs += textRuns(m_text.first(last ? m_text.size() : following->offset), *place, endColumn);
    }
    return runs;
}

/// Where the cell that takes `columns` from `column` on is seen.
qsizetype LineLayout::seenColumn(const TextRun &run, qsizetype column, qsizetype columns)
{
    return run.rightToLeft ? 2 * run.column + run.columns - column - columns : column;
}

qsizetype LineLayout::offsetAt(double column) const
{
    if (column <= 0)
        return 0;
    if (m_plain)
        return std::min(static_cast<qsizetype>(std::llround(std::min(column, 2e18))),
                        m_text.size());
    const auto whole = static_cast<qsizetype>(std::min(column, 2e18));
    for (const TextRun &run : runs(whole, whole + 1)) {
        if (whole < run.column || whole >= run.column + run.columns)
            continue;
        TextCells cells(m_text.first(run.end), {run.begin, run.column});
        while (const std::optional<TextCell> cell = cells.next()) {
            const qsizetype seen = seenColumn(run, cell->column, cell->columns);
            if (whole < seen || whole >= seen + cell->columns)
                continue;
            const bool rightHalf =
                column - static_cast<double>(seen) >= static_cast<double>(cell->columns) / 2;
            return rightHalf != run.rightToLeft ? cell->end : cell->begin;
        }
    }
    return m_text.size();
}

QList<std::pair<qsizetype, qsizetype>> LineLayout::columnsOf(qsizetype begin, qsizetype end,
                                                             qsizetype beginColumn,
                                                             qsizetype endColumn) const
{
    if (m_plain)
        return {{std::clamp(begin, beginColumn, std::max(beginColumn, endColumn)),
                 std::clamp(end, beginColumn, std::max(beginColumn, endColumn))}};
    QList<std::pair<qsizetype, qsizetype>> ranges;
    for (const TextRun &run : runs(beginColumn, endColumn)) {
        if (run.end <= begin || run.begin >= end)
            continue;
        TextCells cells(m_text.first(run.end), {run.begin, run.column});
        while (const std::optional<TextCell> cell = cells.next()) {
            if (cell->begin < begin || cell->begin >= end)
                continue;
            const qsizetype seen = seenColumn(run, cell->column, cell->columns);
            ranges.append({seen, seen + cell->columns});
        }
    }
    return joined(std::move(ranges));
}

qsizetype LineLayout::caretColumn(qsizetype offset) const
{
    if (m_plain || offset <= 0)
        return std::clamp(offset, qsizetype(0), m_text.size());
    if (offset >= m_text.size())
        return columns();
    const TextCell cell = cellAt(offset);
    for (const TextRun &run : runs(cell.column, cell.column + 1)) {
        if (cell.begin < run.begin || cell.begin >= run.end)
            continue;
        const qsizetype seen = seenColumn(run, cell.column, cell.columns);
        return run.rightToLeft ? seen + cell.columns : seen;
    }
    return cell.column;
}

qsizetype LineLayout::next(qsizetype offset) const
{
    if (offset >= m_text.size())
        return m_text.size();
    return m_plain ? offset + 1 : cellAt(offset).end;
}

qsizetype LineLayout::previous(qsizetype offset) const
{
    if (offset <= 0)
        return 0;
    return m_plain ? offset - 1 : cellAt(offset - 1).begin;
}

std::pair<qsizetype, qsizetype> LineLayout::wordAt(qsizetype offset) const
{
    if (m_text.isEmpty())
        return {0, 0};
    const qsizetype at = std::clamp(offset, qsizetype(0), m_text.size() - 1);
    if (!isWordCharacter(m_text, at)) {
        if (m_plain)
            return {at, at + 1};
        const TextCell cell = cellAt(at);
        return {cell.begin, cell.end};
    }
    qsizetype begin = at;
    while (begin > 0 && isWordCharacter(m_text, begin - 1))
        --begin;
    qsizetype end = at;
    while (end < m_text.size() && isWordCharacter(m_text, end))
        ++end;
    return {begin, end};
}

QList<TextPlace>::const_iterator LineLayout::placeBeforeColumn(qsizetype column) const
{
    const QList<TextPlace> &places = m_index->places;
    const auto after =
        std::upper_bound(places.cbegin(), places.cend(), column,
                         [](qsizetype value, const TextPlace &p) { return value < p.column; });
    return after == places.cbegin() ? after : std::prev(after);
}

TextPlace LineLayout::placeBefore(qsizetype offset) const
{
    if (!m_index || m_index->places.isEmpty())
        return {};
    const QList<TextPlace> &places = m_index->places;
    const auto after =
        std::upper_bound(places.cbegin(), places.cend(), offset,
                         [](qsizetype value, const TextPlace &p) { return value < p.offset; });
    return after == places.cbegin() ? TextPlace{} : *std::prev(after);
}

/// The cell in which the character at `offset` is, which must be in the text.
TextCell LineLayout::cellAt(qsizetype offset) const
{
    TextCells cells(m_text, placeBefore(offset));
    std::optional<TextCell> cell = cells.next();
    while (cell && cell->end <= offset)
        cell = cells.next();
    return cell.value_or(TextCell{offset, offset, 0, 0, CellKind::Plain});
}
