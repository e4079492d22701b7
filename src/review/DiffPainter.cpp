// SPDX-License-Identifier: GPL-3.0-or-later
#include "review/DiffPainter.h"

#include "ui/Colors.h"

#include <QFontMetricsF>

#include <algorithm>
#include <cmath>

namespace {

constexpr float changedOpacity = 0.22F;
constexpr float emptyOpacity = 0.08F;
constexpr float hunkOpacity = 0.1F;
constexpr float selectionOpacity = 0.4F;

/// What lies behind a cell; invalid for none.
QColor background(DiffKind kind, const QPalette &palette)
{
    switch (kind) {
    case DiffKind::Context:
        return {};
    case DiffKind::Added:
        return Colors::tint(Colors::Hue::Green, palette, changedOpacity);
    case DiffKind::Removed:
        return Colors::tint(Colors::Hue::Red, palette, changedOpacity);
    case DiffKind::Empty:
        return Colors::grayTint(palette, emptyOpacity);
    }
    Q_UNREACHABLE();
}

QColor selectionColor(const QPalette &palette, bool focused)
{
    QColor color =
        palette.color(focused ? QPalette::Active : QPalette::Inactive, QPalette::Highlight);
    color.setAlphaF(selectionOpacity);
    return color;
}

char32_t firstCharacter(QStringView text)
{
    const bool isPair = text.size() > 1 && text[0].isHighSurrogate() && text[1].isLowSurrogate();
    return isPair ? QChar::surrogateToUcs4(text[0], text[1]) : text[0].unicode();
}

} // namespace

DiffPainter::DiffPainter(QPainter &painter, const DiffDocument &document,
                         const DiffGeometry &geometry, const State &state)
    : m_painter(painter)
    , m_document(document)
    , m_geometry(geometry)
    , m_state(state)
    , m_text(state.palette.color(QPalette::Text))
    , m_secondary(Colors::secondaryText(state.palette, QPalette::Text, QPalette::Base))
{
    painter.setFont(geometry.font());
}

void DiffPainter::paintRow(qsizetype row, int y)
{
    if (const DiffHunk *hunk = m_document.hunk(row))
        return paintHunk(*hunk, y);
    for (const DiffSide side : {OldSide, NewSide})
        paintCell(row, side, y);
    m_painter.fillRect(m_geometry.dividerLeft(), y, 1, m_geometry.lineHeight(),
                       Colors::separator(m_state.palette));
}

void DiffPainter::paintHunk(const DiffHunk &hunk, int y)
{
    const QRect place(0, y, m_geometry.columnWidth(),
                      m_geometry.lineHeight() + 2 * DiffGeometry::hunkPaddingY);
    m_painter.fillRect(place, Colors::tint(Colors::Hue::Blue, m_state.palette, hunkOpacity));
    m_painter.setPen(Colors::hue(Colors::Hue::Blue, m_state.palette));
    const auto columns =
        static_cast<qsizetype>(place.width() / m_geometry.cellWidth()); // what can be seen
    paintText(LineLayout(hunk.header), DiffGeometry::hunkPaddingX, y + DiffGeometry::hunkPaddingY,
              0, columns);
}

void DiffPainter::paintCell(qsizetype row, DiffSide side, int y)
{
    const DiffCell &cell = *m_document.cell(row, side);
    const int left = m_geometry.left(side);
    const QColor fill = background(cell.kind, m_state.palette);
    if (fill.isValid())
        m_painter.fillRect(left, y, m_geometry.width(side), m_geometry.lineHeight(), fill);
    if (cell.kind == DiffKind::Empty)
        return;
    const bool current =
        m_state.focused && m_state.selection.side == side && m_state.selection.caret.row == row;
    paintNumber(cell, {left, y, m_geometry.numberWidth(), m_geometry.lineHeight()}, current);

    const LineLayout line = m_document.line(row, side);
    const QRect place(m_geometry.textLeft(side), y, m_geometry.textWidth(side),
                      m_geometry.lineHeight());
    m_painter.save();
    m_painter.setClipRect(place, Qt::IntersectClip);
    paintSelection(row, side, line, y);
    m_painter.setPen(m_text);
    const double cellWidth = m_geometry.cellWidth();
    paintText(line, seenLeft(side, 0), y, static_cast<qsizetype>(m_state.textOffset / cellWidth),
              static_cast<qsizetype>(
                  std::ceil((m_state.textOffset + m_geometry.textWidth(side)) / cellWidth)));
    if (current)
        paintCaret(side, line, y);
    m_painter.restore();
}

void DiffPainter::paintNumber(const DiffCell &cell, const QRect &place, bool current)
{
    if (current)
        m_painter.fillRect(place, selectionColor(m_state.palette, true));
    if (!cell.num)
        return;
    m_painter.setPen(current ? m_text : m_secondary);
    // As git marks them, for those who do not see the colours.
    if (cell.kind == DiffKind::Added || cell.kind == DiffKind::Removed)
        paintPlain(cell.kind == DiffKind::Added ? u"+" : u"-",
                   {place.left() + 1.0, double(place.top() + m_geometry.ascent())});
    const QString number = QString::number(*cell.num);
    const double width = static_cast<double>(number.size()) * m_geometry.cellWidth();
    paintPlain(number, {place.right() + 1 - width, double(place.top() + m_geometry.ascent())});
}

void DiffPainter::paintSelection(qsizetype row, DiffSide side, const LineLayout &line, int y)
{
    if (side != m_state.selection.side || m_state.selection.isEmpty())
        return;
    const auto [begin, end] = m_state.selection.inRow(row, line.text().size());
    if (begin == end)
        return;
    const QColor color = selectionColor(m_state.palette, m_state.focused);
    const double cellWidth = m_geometry.cellWidth();
    const auto first = static_cast<qsizetype>(m_state.textOffset / cellWidth);
    const auto last = first + static_cast<qsizetype>(m_geometry.textWidth(side) / cellWidth) + 2;
    const auto fill = [&](qsizetype from, qsizetype to) {
        const double left = seenLeft(side, from);
        m_painter.fillRect(QRectF(left, y, seenLeft(side, to) - left, m_geometry.lineHeight()),
                           color);
    };
    for (const auto &[from, to] : line.columnsOf(begin, end, first, last))
        fill(from, to);
    if (end > line.text().size() && line.columns() <= last) // the line's end is selected too
        fill(line.columns(), line.columns() + 1);
}

void DiffPainter::paintCaret(DiffSide side, const LineLayout &line, int y)
{
    const double x = seenLeft(side, line.caretColumn(m_state.selection.caret.offset));
    m_painter.fillRect(QRectF(std::floor(x), y, 1, m_geometry.lineHeight()), m_text);
}

void DiffPainter::paintText(const LineLayout &line, double left, int y, qsizetype beginColumn,
                            qsizetype endColumn)
{
    const double cellWidth = m_geometry.cellWidth();
    for (TextRun run : line.runs(beginColumn, endColumn)) {
        if (run.column + run.columns <= beginColumn || run.column >= endColumn)
            continue;
        if (run.kind == CellKind::Plain && !run.rightToLeft) { // of which any part can be drawn
            const qsizetype before = std::max(qsizetype(0), beginColumn - run.column);
            run.begin += before;
            run.column += before;
            run.columns = std::min(run.columns - before, endColumn - run.column);
            run.end = run.begin + run.columns;
        }
        paintRun(
            run, line.text().sliced(run.begin, run.end - run.begin),
            {left + static_cast<double>(run.column) * cellWidth, double(y + m_geometry.ascent())});
    }
}

void DiffPainter::paintRun(const TextRun &run, QStringView text, QPointF at)
{
    const double width = static_cast<double>(run.columns) * m_geometry.cellWidth();
    switch (run.kind) {
    case CellKind::Plain:
        return paintPlain(text, at);
    case CellKind::Narrow:
        return paintSpaced(text.toString(), at, width, run.columns);
    case CellKind::Wide:
        return paintSpaced(text.toString(), at, width, run.columns / 2);
    case CellKind::Joined:
        return paintFitted(text.toString(), at, width, false);
    case CellKind::Shaped:
        return paintFitted(text.toString(), at, width, true);
    case CellKind::Sign:
        return paintSign(firstCharacter(text), at, width);
    case CellKind::Blank:
        return;
    }
}

void DiffPainter::paintPlain(QStringView text, QPointF at)
{
    if (m_geometry.isFixedPitch())
        return m_painter.drawText(at, text.toString());
    for (const QChar character : text) {
        m_painter.drawText(at, QString(character));
        at.rx() += m_geometry.cellWidth();
    }
}

/// Characters of one width each, which is that of their columns only when they are from the font
/// that the grid is made for. Otherwise they are set apart, or closer.
void DiffPainter::paintSpaced(const QString &text, QPointF at, double width, qsizetype cells)
{
    const double spacing = (width - QFontMetricsF(m_geometry.font()).horizontalAdvance(text)) /
                           static_cast<double>(cells);
    if (std::abs(spacing) < 0.05)
        return m_painter.drawText(at, text);
    QFont font = m_geometry.font();
    font.setLetterSpacing(QFont::AbsoluteSpacing, spacing);
    m_painter.setFont(font);
    m_painter.drawText(at + QPointF(spacing / 2, 0), text);
    m_painter.setFont(m_geometry.font());
}

/// Text that can only be drawn as a whole: in the middle of its columns, made narrower where it
/// would not fit, and wider only where every letter has to stand on its column.
void DiffPainter::paintFitted(const QString &text, QPointF at, double width, bool stretch)
{
    const double natural = QFontMetricsF(m_geometry.font()).horizontalAdvance(text);
    if (natural <= 0)
        return m_painter.drawText(at, text);
    if (natural <= width && !stretch)
        return m_painter.drawText(at + QPointF((width - natural) / 2, 0), text);
    m_painter.save();
    m_painter.translate(at);
    m_painter.scale(width / natural, 1);
    m_painter.drawText(QPointF(0, 0), text);
    m_painter.restore();
}

void DiffPainter::paintSign(char32_t character, QPointF at, double width)
{
    const QPen before = m_painter.pen();
    const bool misleading = QChar::category(character) == QChar::Other_Format;
    m_painter.setPen(misleading ? Colors::hue(Colors::Hue::Orange, m_state.palette) : m_secondary);
    paintPlain(signName(character), at + QPointF(m_geometry.cellWidth() / 2, 0));
    const double top = at.y() - m_geometry.ascent();
    m_painter.drawRect(QRectF(std::floor(at.x()) + 1.5, top + 1.5, std::floor(width) - 3,
                              m_geometry.lineHeight() - 3));
    m_painter.setPen(before);
}

double DiffPainter::seenLeft(DiffSide side, qsizetype column) const
{
    return m_geometry.textLeft(side) - m_state.textOffset +
           static_cast<double>(column) * m_geometry.cellWidth();
}
