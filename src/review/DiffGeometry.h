// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "review/DiffDocument.h"

#include <QFont>
#include <QRect>

/// Where everything of a diff stands. Rows are counted in pixels from the top of the first one; the
/// two sides share the width of the column evenly, and long lines are moved inside of them, so that
/// both sides of a row are always to be seen together.
class DiffGeometry {
public:
    explicit DiffGeometry(const QFont &font);

    void setDocument(const SharedDocument &document);
    void setViewport(const QSize &size);

    const QFont &font() const { return m_font; }
    /// Whether every ASCII character of the font is as wide as a column.
    bool isFixedPitch() const { return m_fixedPitch; }
    double cellWidth() const { return m_cellWidth; }
    int ascent() const { return m_ascent; }
    int lineHeight() const { return m_lineHeight; }

    qint64 top(qsizetype row) const;
    int height(qsizetype row) const;
    qint64 totalHeight() const;
    /// The row at a height; the first or last one beyond them. There must be rows.
    qsizetype rowAt(qint64 y) const;

    /// Of both sides together: as wide as the viewport, and never too narrow to read.
    int columnWidth() const { return m_columnWidth; }
    int numberWidth() const { return m_numberWidth; }
    int left(DiffSide side) const;
    int width(DiffSide side) const;
    int dividerLeft() const { return left(NewSide) - 1; }
    int textLeft(DiffSide side) const;
    int textWidth(DiffSide side) const;
    /// How far the text can be moved to see the end of the longest line.
    int textRange() const;

    static constexpr int hunkPaddingX = 8;
    static constexpr int hunkPaddingY = 3;

private:
    SharedDocument m_document;
    QFont m_font;
    bool m_fixedPitch;
    double m_cellWidth;
    int m_ascent;
    int m_lineHeight;
    int m_numberWidth = 0;
    int m_columnWidth = 0;
};
