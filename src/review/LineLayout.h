// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/TextCells.h"

#include <utility>

/// Where the columns of a long line are: enough places on the way that none is far.
struct LineIndex {
    bool plain = true;
    qsizetype columns = 0;
    QList<TextPlace> places; ///< in order; empty when the line is plain
};

/// The index of a line, for which the whole of it is read once.
LineIndex indexOf(QStringView text);

/// How a line of text lies on the grid of columns. Made for one use: it refers to text and index.
class LineLayout {
public:
    /// Lines longer than this are only looked at through an index.
    static constexpr qsizetype longestWithoutIndex = 256;

    /// `index` may be missing for a short line.
    explicit LineLayout(QStringView text, const LineIndex *index = nullptr);

    QStringView text() const { return m_text; }
    qsizetype columns() const;

    /// What is to be drawn in these columns, and perhaps a little more on both sides.
    QList<TextRun> runs(qsizetype beginColumn, qsizetype endColumn) const;

    /// The beginning of the cell that is seen in a column, or its end when `column` is nearer to
    /// it. `column` may be anywhere.
    qsizetype offsetAt(double column) const;
    /// The columns in which the cells between two offsets are seen, as ranges from left to right.
    /// Only what is seen between those two columns counts.
    QList<std::pair<qsizetype, qsizetype>>
    columnsOf(qsizetype begin, qsizetype end, qsizetype beginColumn, qsizetype endColumn) const;
    /// Where a caret before the cell at `offset` is seen.
    qsizetype caretColumn(qsizetype offset) const;

    /// The beginning of the cell after, or before, the one that begins at `offset`.
    qsizetype next(qsizetype offset) const;
    qsizetype previous(qsizetype offset) const;
    /// The word at an offset: letters, digits and underscores, or a single cell of another kind.
    std::pair<qsizetype, qsizetype> wordAt(qsizetype offset) const;

private:
    QList<TextRun> measuredRuns(qsizetype beginColumn, qsizetype endColumn) const;
    TextPlace placeBefore(qsizetype offset) const;
    QList<TextPlace>::const_iterator placeBeforeColumn(qsizetype column) const;
    TextCell cellAt(qsizetype offset) const;
    static qsizetype seenColumn(const TextRun &run, qsizetype column, qsizetype columns);

    QStringView m_text;
    const LineIndex *m_index;
    bool m_plain;
};
