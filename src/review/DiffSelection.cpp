// SPDX-License-Identifier: GPL-3.0-or-later
#include "review/DiffSelection.h"

#include <algorithm>

namespace {

/// The next row with text in that direction.
std::optional<qsizetype> rowBeside(const DiffDocument &document, DiffSide side, qsizetype row,
                                   qsizetype step)
{
    for (qsizetype at = row + step; at >= 0 && at < document.rowCount(); at += step) {
        if (document.hasText(at, side))
            return at;
    }
    return std::nullopt;
}

DiffPosition endOf(const DiffDocument &document, DiffSide side, qsizetype row)
{
    return {row, document.line(row, side).text().size()};
}

} // namespace

std::pair<qsizetype, qsizetype> DiffSelection::inRow(qsizetype row, qsizetype size) const
{
    if (row < begin().row || row > end().row)
        return {0, 0};
    return {row == begin().row ? begin().offset : 0, row == end().row ? end().offset : size + 1};
}

QString selectedText(const DiffDocument &document, const DiffSelection &selection,
                     const std::stop_token &stop)
{
    QString text;
    const qsizetype last = std::min(selection.end().row, document.rowCount() - 1);
    for (qsizetype row = selection.begin().row; row <= last && !stop.stop_requested(); ++row) {
        if (!document.hasText(row, selection.side))
            continue;
        const QStringView line = document.cell(row, selection.side)->text;
        const auto [begin, end] = selection.inRow(row, line.size());
        text += line.sliced(begin, std::min(end, line.size()) - begin);
        if (end > line.size())
            text += u'\n';
    }
    return text;
}

DiffSelection wholeSide(const DiffDocument &document, DiffSide side)
{
    return {side, DiffCaret::first(document, side), DiffCaret::last(document, side)};
}

namespace DiffCaret {

std::optional<qsizetype> nearestRow(const DiffDocument &document, DiffSide side, qsizetype row)
{
    const std::optional<qsizetype> after = rowBeside(document, side, row - 1, 1);
    return after ? after : rowBeside(document, side, row, -1);
}

DiffPosition next(const DiffDocument &document, DiffSide side, DiffPosition from)
{
    const LineLayout line = document.line(from.row, side);
    if (from.offset < line.text().size())
        return {from.row, line.next(from.offset)};
    const std::optional<qsizetype> row = rowBeside(document, side, from.row, 1);
    return row ? DiffPosition{*row, 0} : from;
}

DiffPosition previous(const DiffDocument &document, DiffSide side, DiffPosition from)
{
    if (from.offset > 0)
        return {from.row, document.line(from.row, side).previous(from.offset)};
    const std::optional<qsizetype> row = rowBeside(document, side, from.row, -1);
    return row ? endOf(document, side, *row) : from;
}

DiffPosition moved(const DiffDocument &document, DiffSide side, DiffPosition from, qsizetype rows,
                   qsizetype column)
{
    qsizetype to = from.row;
    for (qsizetype i = 0; i != rows; i += rows < 0 ? -1 : 1) {
        const std::optional<qsizetype> row = rowBeside(document, side, to, rows < 0 ? -1 : 1);
        if (!row)
            break;
        to = *row;
    }
    if (to == from.row)
        return rows < 0 ? first(document, side) : last(document, side);
    return {to, document.line(to, side).offsetAt(static_cast<double>(column))};
}

DiffPosition first(const DiffDocument &document, DiffSide side)
{
    return {nearestRow(document, side, 0).value_or(0), 0};
}

DiffPosition last(const DiffDocument &document, DiffSide side)
{
    const std::optional<qsizetype> row = rowBeside(document, side, document.rowCount(), -1);
    return row ? endOf(document, side, *row) : DiffPosition{};
}

} // namespace DiffCaret
