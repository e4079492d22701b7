// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QString>
#include <QStringView>

#include <optional>

/// Text on a grid of columns, as a terminal shows it: a Latin letter takes one column, an ideograph
/// or emoji two, a tab leads to the next multiple of eight. So the place of every character of a
/// line is known without laying out a font, and a line of megabytes costs what is visible of it.

/// How the characters of a cell are drawn.
enum class CellKind {
    Plain,  ///< one printable ASCII character
    Narrow, ///< one other character that takes a column
    Wide,   ///< one character that takes two columns
    Joined, ///< several characters that make one picture
    Shaped, ///< of a script whose letters take their form, or their place, from their neighbours
    Blank,  ///< a tab
    Sign    ///< a character that is not to be seen, or that would move others: its name is shown
};

/// A place in a line: the character at `offset` begins in `column`.
struct TextPlace {
    qsizetype offset = 0;
    qsizetype column = 0;

    bool operator==(const TextPlace &) const = default;
};

/// What the user takes for one character.
struct TextCell {
    qsizetype begin = 0; ///< offsets in the text
    qsizetype end = 0;
    qsizetype column = 0;
    qsizetype columns = 0;
    CellKind kind = CellKind::Plain;
};

/// Neighbouring cells that are drawn together.
struct TextRun {
    qsizetype begin = 0;
    qsizetype end = 0;
    qsizetype column = 0;
    qsizetype columns = 0;
    CellKind kind = CellKind::Plain;
    /// The first character stands at the right end. The run takes the columns that it would take
    /// otherwise, so no text can change the place of another.
    bool rightToLeft = false;
};

/// Whether the text is printable ASCII, in which every offset is a column.
bool isPlain(QStringView text);

/// What stands for a character of kind Sign: its usual abbreviation, or its number in hexadecimal.
QString signName(char32_t character);

/// The text on one line with the characters of kind Sign replaced by their names in brackets.
QString visibleText(const QString &text);

/// Walks the cells of a text.
class TextCells {
public:
    explicit TextCells(QStringView text, TextPlace from = {}) : m_text(text), m_place(from) {}

    /// The next cell; nothing at the end.
    std::optional<TextCell> next();

private:
    qsizetype endOfCluster() const;
    TextCell made(qsizetype end, qsizetype columns, CellKind kind);

    QStringView m_text;
    TextPlace m_place;
    mutable QList<qsizetype> m_boundaries; // of the clusters ahead, in reverse order
};

/// Cells from that place on, joined to runs, until one reaches `endColumn`.
QList<TextRun> textRuns(QStringView text, TextPlace from, qsizetype endColumn);
