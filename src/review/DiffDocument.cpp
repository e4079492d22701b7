// SPDX-License-Identifier: GPL-3.0-or-later
#include "review/DiffDocument.h"

#include <algorithm>

DiffDocument::DiffDocument(DiffRows rows) : m_rows(std::move(rows))
{
    for (qsizetype row = 0; row < m_rows.size(); ++row) {
        if (const DiffHunk *header = hunk(row)) {
            m_hunkRows.append(row);
            m_widestHunk = std::max(m_widestHunk, LineLayout(header->header).columns());
        } else {
            addLine(row, std::get<DiffLine>(m_rows[row].content));
        }
    }
}

void DiffDocument::addLine(qsizetype row, const DiffLine &line)
{
    for (const DiffSide side : {OldSide, NewSide}) {
        const DiffCell &cell = line[side];
        m_largestNumber = std::max(m_largestNumber, cell.num.value_or(0));
        if (cell.text.size() <= LineLayout::longestWithoutIndex) {
            m_widestLine = std::max(m_widestLine, LineLayout(cell.text).columns());
            continue;
        }
        const LineIndex index = indexOf(cell.text);
        m_widestLine = std::max(m_widestLine, index.columns);
        m_longLines[side].insert(row, index);
    }
}

const DiffHunk *DiffDocument::hunk(qsizetype row) const
{
    return std::get_if<DiffHunk>(&m_rows[row].content);
}

const DiffCell *DiffDocument::cell(qsizetype row, DiffSide side) const
{
    const auto *line = std::get_if<DiffLine>(&m_rows[row].content);
    return line ? &(*line)[side] : nullptr;
}

bool DiffDocument::hasText(qsizetype row, DiffSide side) const
{
    const DiffCell *at = cell(row, side);
    return at && at->kind != DiffKind::Empty;
}

LineLayout DiffDocument::line(qsizetype row, DiffSide side) const
{
    const DiffCell *at = cell(row, side);
    if (!at)
        return LineLayout({});
    const auto index = m_longLines[side].constFind(row);
    return LineLayout(at->text, index == m_longLines[side].constEnd() ? nullptr : &*index);
}

qsizetype DiffDocument::hunksBefore(qsizetype row) const
{
    return std::lower_bound(m_hunkRows.begin(), m_hunkRows.end(), row) - m_hunkRows.begin();
}
