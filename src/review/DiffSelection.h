// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "review/DiffDocument.h"

#include <compare>
#include <stop_token>

/// A place between two characters of one side of a diff.
struct DiffPosition {
    qsizetype row = 0;
    qsizetype offset = 0; ///< in the text of the row's cell

    auto operator<=>(const DiffPosition &) const = default;
};

/// What is selected of one side. The caret is its end that moves.
struct DiffSelection {
    DiffSide side = NewSide;
    DiffPosition anchor;
    DiffPosition caret;

    DiffPosition begin() const { return std::min(anchor, caret); }
    DiffPosition end() const { return std::max(anchor, caret); }
    bool isEmpty() const { return anchor == caret; }
    /// The offsets that are selected in a row whose text has that many characters. The line's end
    /// counts as one character more.
    std::pair<qsizetype, qsizetype> inRow(qsizetype row, qsizetype size) const;

    bool operator==(const DiffSelection &) const = default;
};

/// The text that is selected, as it is in the file: lines end with line feeds, and rows without
/// text on the side are left out.
QString selectedText(const DiffDocument &document, const DiffSelection &selection,
                     const std::stop_token &stop = {});

/// The whole side, with the caret at its end.
DiffSelection wholeSide(const DiffDocument &document, DiffSide side);

/// Moves a caret over the text of its side; where there is nowhere to go, it stays.
namespace DiffCaret {

/// The row with text on the side that is nearest to `row`, looking on from it and then back.
std::optional<qsizetype> nearestRow(const DiffDocument &document, DiffSide side, qsizetype row);
DiffPosition next(const DiffDocument &document, DiffSide side, DiffPosition from);
DiffPosition previous(const DiffDocument &document, DiffSide side, DiffPosition from);
/// So many rows with text further down (or up, when negative), as near to the column as can be.
DiffPosition moved(const DiffDocument &document, DiffSide side, DiffPosition from, qsizetype rows,
                   qsizetype column);
DiffPosition first(const DiffDocument &document, DiffSide side);
DiffPosition last(const DiffDocument &document, DiffSide side);

} // namespace DiffCaret
