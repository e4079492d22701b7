// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QString>
#include <QStringView>

#include <array>
#include <optional>
#include <utility>
#include <variant>

/// How a cell of a side-by-side diff is coloured. `Empty` fills the side that has no line.
enum class DiffKind : quint8 { Context, Added, Removed, Empty };

/// The sides of a diff. Whatever exists for both is an array indexed by them.
enum DiffSide { OldSide, NewSide, SideCount };

/// One side of a line of a diff.
struct DiffCell {
    std::optional<int> num; ///< the line's number on its side; none for an empty cell
    DiffKind kind = DiffKind::Empty;
    QStringView text; ///< without the diff's prefix; part of the text that DiffRows holds

    bool operator==(const DiffCell &) const = default;
};

/// The header of a hunk, as git printed it.
struct DiffHunk {
    QStringView header; ///< part of the text that DiffRows holds

    bool operator==(const DiffHunk &) const = default;
};

/// A line on both sides.
using DiffLine = std::array<DiffCell, SideCount>;

/// A row of a side-by-side diff: the header of a hunk or a line. Its identity is its place in the
/// list, counted from 0.
struct DiffRow {
    qsizetype index = 0;
    std::variant<DiffHunk, DiffLine> content;

    bool operator==(const DiffRow &) const = default;
};

/// The rows of a diff, with the text that they are parts of: a row of its own strings would cost an
/// allocation for every line when it is made, and freeing a million of them takes longer than a
/// frame. What is taken out of a row is good for as long as a copy of these rows lives. Copies
/// share everything.
class DiffRows {
public:
    DiffRows() = default;
    /// `rows` are made of parts of `text`.
    DiffRows(QString text, QList<DiffRow> rows) : m_text(std::move(text)), m_rows(std::move(rows))
    {
    }

    qsizetype size() const { return m_rows.size(); }
    bool isEmpty() const { return m_rows.isEmpty(); }
    const DiffRow &operator[](qsizetype index) const { return m_rows[index]; }
    auto begin() const { return m_rows.cbegin(); }
    auto end() const { return m_rows.cend(); }

    bool operator==(const DiffRows &other) const { return m_rows == other.m_rows; }

private:
    QString m_text;
    QList<DiffRow> m_rows;
};
