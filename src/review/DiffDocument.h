// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "review/DiffRow.h"
#include "review/LineLayout.h"

#include <QHash>

#include <array>
#include <memory>

/// The rows of a diff with all that a view must know of the whole before it can show a part. Making
/// one reads every character, so it is made in the background; afterwards it never changes.
class DiffDocument {
public:
    explicit DiffDocument(DiffRows rows);

    qsizetype rowCount() const { return m_rows.size(); }
    const DiffRows &rows() const { return m_rows; }
    /// The header in a row; nothing when the row is a line.
    const DiffHunk *hunk(qsizetype row) const;
    /// The line's cell on a side; nothing when the row is the header of a hunk.
    const DiffCell *cell(qsizetype row, DiffSide side) const;
    /// Whether the row has text on the side, be it empty.
    bool hasText(qsizetype row, DiffSide side) const;
    /// How the text of the row lies on the grid. Without text, that of an empty one.
    LineLayout line(qsizetype row, DiffSide side) const;

    /// The rows that are headers of hunks, in order.
    const QList<qsizetype> &hunkRows() const { return m_hunkRows; }
    /// How many headers stand before a row.
    qsizetype hunksBefore(qsizetype row) const;
    /// The columns of the longest line of both sides.
    qsizetype widestLine() const { return m_widestLine; }
    /// The columns of the longest header.
    qsizetype widestHunk() const { return m_widestHunk; }
    /// The largest line number.
    int largestNumber() const { return m_largestNumber; }

private:
    void addLine(qsizetype row, const DiffLine &line);

    DiffRows m_rows;
    QList<qsizetype> m_hunkRows;
    qsizetype m_widestLine = 0;
    qsizetype m_widestHunk = 0;
    int m_largestNumber = 0;
    std::array<QHash<qsizetype, LineIndex>, SideCount> m_longLines; // by row
};

/// How documents are handed around: the thread that lets go last destroys one, and that should not
/// be the interface thread.
using SharedDocument = std::shared_ptr<const DiffDocument>;
