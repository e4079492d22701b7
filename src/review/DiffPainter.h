// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "review/DiffGeometry.h"
#include "review/DiffSelection.h"

#include <QPainter>
#include <QPalette>

/// Paints rows of a diff. The painter's origin is the left end of the column; only what can be seen
/// is laid out.
class DiffPainter {
public:
    /// What is to be seen beside the rows themselves.
    struct State {
        QPalette palette;
        DiffSelection selection;
        bool focused = false; ///< then the caret shows
        int textOffset = 0;   ///< how far the text is moved
    };

    DiffPainter(QPainter &painter, const DiffDocument &document, const DiffGeometry &geometry,
                const State &state);

    /// Paints a row whose top is at `y`.
    void paintRow(qsizetype row, int y);

private:
    void paintHunk(const DiffHunk &hunk, int y);
    void paintCell(qsizetype row, DiffSide side, int y);
    void paintNumber(const DiffCell &cell, const QRect &place, bool current);
    void paintSelection(qsizetype row, DiffSide side, const LineLayout &line, int y);
    void paintCaret(DiffSide side, const LineLayout &line, int y);
    void paintText(const LineLayout &line, double left, int y, qsizetype beginColumn,
                   qsizetype endColumn);
    void paintRun(const TextRun &run, QStringView text, QPointF at);
    void paintPlain(QStringView text, QPointF at);
    void paintSpaced(const QString &text, QPointF at, double width, qsizetype cells);
    void paintFitted(const QString &text, QPointF at, double width, bool stretch);
    void paintSign(char32_t character, QPointF at, double width);
    double seenLeft(DiffSide side, qsizetype column) const;

    QPainter &m_painter;
    const DiffDocument &m_document;
    const DiffGeometry &m_geometry;
    const State &m_state;
    const QColor m_text;
    const QColor m_secondary;
};
