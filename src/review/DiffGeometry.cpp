// SPDX-License-Identifier: GPL-3.0-or-later
#include "review/DiffGeometry.h"

#include <QFontMetricsF>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr int smallestColumn = 800;
constexpr int smallestNumberWidth = 36;
constexpr int numberGap = 8;
constexpr int caretRoom = 4; // behind the end of the longest line

double widthOf(const QFontMetricsF &metrics, char character)
{
    // Of many, because a single one is rounded.
    constexpr int many = 64;
    return metrics.horizontalAdvance(QString(many, QLatin1Char(character))) / many;
}

} // namespace

DiffGeometry::DiffGeometry(const QFont &font) : m_font(font)
{
    m_font.setKerning(false);
    const QFontMetricsF metrics(m_font);
    m_cellWidth = std::max({1.0, widthOf(metrics, 'W'), widthOf(metrics, 'i')});
    m_fixedPitch = std::abs(widthOf(metrics, 'W') - widthOf(metrics, 'i')) < 0.01;
    m_ascent = qCeil(metrics.ascent());
    m_lineHeight = m_ascent + qCeil(metrics.descent()) + 1;
    setDocument(nullptr);
}

void DiffGeometry::setDocument(const SharedDocument &document)
{
    m_document = document;
    const auto digits = QString::number(m_document ? m_document->largestNumber() : 0).size();
    // On the left there is room for the sign of a changed line.
    const int sign = std::max(numberGap, qCeil(m_cellWidth) + 1);
    m_numberWidth =
        std::max(smallestNumberWidth, qCeil(static_cast<double>(digits) * m_cellWidth) + sign);
}

void DiffGeometry::setViewport(const QSize &size)
{
    m_columnWidth = std::max(smallestColumn, size.width());
}

qint64 DiffGeometry::top(qsizetype row) const
{
    return row * m_lineHeight + m_document->hunksBefore(row) * 2 * hunkPaddingY;
}

int DiffGeometry::height(qsizetype row) const
{
    return m_lineHeight + (m_document->hunk(row) ? 2 * hunkPaddingY : 0);
}

qint64 DiffGeometry::totalHeight() const
{
    return m_document ? top(m_document->rowCount()) : 0;
}

qsizetype DiffGeometry::rowAt(qint64 y) const
{
    qsizetype first = 0;
    qsizetype end = m_document->rowCount();
    while (end - first > 1) {
        const qsizetype middle = first + (end - first) / 2;
        (top(middle) <= y ? first : end) = middle;
    }
    return first;
}

int DiffGeometry::left(DiffSide side) const
{
    return side == OldSide ? 0 : width(OldSide) + 1;
}

int DiffGeometry::width(DiffSide side) const
{
    const int both = m_columnWidth - 1;
    return side == OldSide ? both / 2 : both - both / 2;
}

int DiffGeometry::textLeft(DiffSide side) const
{
    return left(side) + m_numberWidth + numberGap;
}

int DiffGeometry::textWidth(DiffSide side) const
{
    return std::max(1, width(side) - m_numberWidth - numberGap);
}

int DiffGeometry::textRange() const
{
    if (!m_document)
        return 0;
    const double longest = static_cast<double>(m_document->widestLine()) * m_cellWidth + caretRoom;
    const double beyond = std::ceil(longest) - std::min(textWidth(OldSide), textWidth(NewSide));
    return static_cast<int>(std::clamp(beyond, 0.0, std::numeric_limits<int>::max() / 2.0));
}
