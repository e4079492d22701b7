// SPDX-License-Identifier: GPL-3.0-or-later
#include "review/DiffView.h"

#include "model/Background.h"
#include "review/DiffPainter.h"
#include "review/DiffViewAccessible.h"
#include "ui/Fonts.h"

#include <QAccessible>
#include <QHelpEvent>
#include <QPaintEvent>
#include <QScrollBar>
#include <QToolTip>

#include <algorithm>
#include <limits>

namespace {

constexpr int rowsPerStep = 3;
constexpr int columnsPerStep = 4;

int asScrollValue(qint64 value)
{
    return static_cast<int>(std::clamp(value, qint64(0), qint64(std::numeric_limits<int>::max())));
}

} // namespace

DiffView::DiffView(QWidget *parent)
    : QAbstractScrollArea(parent)
    , m_geometry(monospacedFont(TextStyle::Caption))
    , m_textBar(new QScrollBar(Qt::Horizontal, this))
    , m_copyJob(this)
{
    DiffViewAccessible::install();
    setObjectName(QStringLiteral("diffView"));
    setAccessibleName(QStringLiteral("Diff"));
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::StrongFocus);
    setLayoutDirection(Qt::LeftToRight); // code is, whatever way the desktop's language runs
    viewport()->setBackgroundRole(QPalette::Base);
    viewport()->setCursor(Qt::IBeamCursor);
    m_textBar->setObjectName(QStringLiteral("textBar"));
    m_textBar->setAccessibleName(QStringLiteral("Text of long lines"));
    m_textBar->hide();
    connect(m_textBar, &QScrollBar::valueChanged, viewport(), [this] { viewport()->update(); });
    updateFont();
}

DiffView::~DiffView()
{
    setDocument(nullptr);
}

void DiffView::setDocument(const SharedDocument &document, bool samePlace)
{
    const SharedDocument before = std::exchange(m_document, document);
    m_dragging = false;
    m_autoScroll.stop();
    m_copyJob.cancel();
    m_geometry.setDocument(m_document);
    const qsizetype row = samePlace && m_document ? m_selection.caret.row : 0;
    m_selection = {samePlace ? m_selection.side : NewSide, {}, {}};
    if (m_document && m_document->rowCount() > 0) {
        const qsizetype nearest = std::min(row, m_document->rowCount() - 1);
        if (!samePlace && !DiffCaret::nearestRow(*m_document, NewSide, 0))
            m_selection.side = OldSide; // nothing but removed lines
        m_selection.caret.row =
            DiffCaret::nearestRow(*m_document, m_selection.side, nearest).value_or(0);
        m_selection.anchor = m_selection.caret;
    }
    m_goalColumn = 0;
    updateScrollBars();
    if (!samePlace) {
        verticalScrollBar()->setValue(0);
        horizontalScrollBar()->setValue(0);
        m_textBar->setValue(0);
    }
    viewport()->update();
    Q_EMIT documentChanged();
    if (before && before != m_document)
        Background::destroy(before);
}

void DiffView::setSelection(const DiffSelection &selection)
{
    if (m_selection == selection)
        return;
    const bool moved =
        m_selection.caret.row != selection.caret.row || m_selection.side != selection.side;
    m_selection = selection;
    viewport()->update();
    if (moved)
        tellCaret();
}

/// Assistive technology follows the focus: it reads the row that the caret has come to.
void DiffView::tellCaret()
{
    if (!hasFocus() || !m_document || m_document->rowCount() == 0)
        return;
    QAccessibleEvent focus(this, QAccessible::Focus);
    focus.setChild(static_cast<int>(m_selection.caret.row));
    QAccessible::updateAccessibility(&focus);
}

int DiffView::originX() const
{
    return -horizontalScrollBar()->value();
}

QRect DiffView::rowRect(qsizetype row) const
{
    const qint64 y = m_geometry.top(row) - verticalScrollBar()->value();
    return {originX(), static_cast<int>(y), m_geometry.columnWidth(), m_geometry.height(row)};
}

std::optional<qsizetype> DiffView::rowAt(int y) const
{
    const qint64 at = qint64(verticalScrollBar()->value()) + y;
    if (!m_document || at < 0 || at >= m_geometry.totalHeight())
        return std::nullopt;
    return m_geometry.rowAt(at);
}

QPoint DiffView::pointAt(DiffSide side, DiffPosition position) const
{
    const qsizetype column = m_document->line(position.row, side).caretColumn(position.offset);
    const double x = originX() + m_geometry.textLeft(side) - m_textBar->value() +
                     static_cast<double>(column) * m_geometry.cellWidth();
    return {qRound(x), rowRect(position.row).center().y()};
}

void DiffView::updateFont()
{
    m_geometry = DiffGeometry(monospacedFont(TextStyle::Caption));
    m_geometry.setDocument(m_document);
    updateScrollBars();
    viewport()->update();
}

void DiffView::updateScrollBars()
{
    // The bar for the text takes its room from the viewport, which another width may make needless.
    m_geometry.setViewport(viewport()->size());
    const bool needed = m_geometry.textRange() > 0;
    const int room = needed ? m_textBar->sizeHint().height() : 0;
    if (viewportMargins().bottom() != room)
        setViewportMargins(0, 0, 0, room); // which resizes the viewport
    m_textBar->setVisible(needed);
    const QRect area = viewport()->geometry();
    m_textBar->setGeometry(area.left(), area.bottom() + 1, area.width(), room);
    m_textBar->setPageStep(m_geometry.textWidth(OldSide));
    m_textBar->setSingleStep(qRound(columnsPerStep * m_geometry.cellWidth()));
    m_textBar->setRange(0, m_geometry.textRange());

    const QSize size = viewport()->size();
    verticalScrollBar()->setPageStep(size.height());
    verticalScrollBar()->setSingleStep(rowsPerStep * m_geometry.lineHeight() / 3);
    verticalScrollBar()->setRange(0, asScrollValue(m_geometry.totalHeight() - size.height()));
    horizontalScrollBar()->setPageStep(size.width());
    horizontalScrollBar()->setSingleStep(qRound(columnsPerStep * m_geometry.cellWidth()));
    horizontalScrollBar()->setRange(0, m_geometry.columnWidth() - size.width());
}

bool DiffView::event(QEvent *event)
{
    switch (event->type()) {
    case QEvent::ApplicationFontChange:
        updateFont();
        break;
    case QEvent::PaletteChange:
    case QEvent::WindowActivate:
    case QEvent::WindowDeactivate:
        viewport()->update();
        break;
    default:
        break;
    }
    return QAbstractScrollArea::event(event);
}

bool DiffView::viewportEvent(QEvent *event)
{
    if (event->type() != QEvent::ToolTip)
        return QAbstractScrollArea::viewportEvent(event);
    // Over the text it would be in the way.
    const auto *help = static_cast<QHelpEvent *>(event);
    const int x = help->pos().x() - originX();
    const DiffSide side = sideAt(help->pos().x());
    const bool overNumbers = x < m_geometry.left(side) + m_geometry.numberWidth();
    QToolTip::showText(
        help->globalPos(),
        overNumbers
            ? QStringLiteral("Next hunk (N), previous hunk (P), other side "
                             "(F6), scroll (%1, %2), copy (%3), select the side (%4)")
                  .arg(QKeySequence(Qt::Key_PageUp).toString(QKeySequence::NativeText),
                       QKeySequence(Qt::Key_PageDown).toString(QKeySequence::NativeText),
                       QKeySequence(QKeySequence::Copy).toString(QKeySequence::NativeText),
                       QKeySequence(QKeySequence::SelectAll).toString(QKeySequence::NativeText))
            : QString(),
        viewport());
    return true;
}

void DiffView::paintEvent(QPaintEvent *event)
{
    if (!m_document || m_document->rowCount() == 0)
        return;
    QPainter painter(viewport());
    painter.setClipRect(event->rect());
    painter.translate(originX(), 0);
    painter.setLayoutDirection(layoutDirection());
    const DiffPainter::State state{palette(), m_selection, hasFocus(), m_textBar->value()};
    DiffPainter rows(painter, *m_document, m_geometry, state);
    const qint64 scrolled = verticalScrollBar()->value();
    const qint64 bottom = scrolled + event->rect().bottom();
    for (qsizetype row = m_geometry.rowAt(scrolled + event->rect().top());
         row < m_document->rowCount(); ++row) {
        const qint64 y = m_geometry.top(row);
        if (y > bottom)
            break;
        rows.paintRow(row, static_cast<int>(y - scrolled));
    }
}

void DiffView::resizeEvent(QResizeEvent *)
{
    updateScrollBars();
}

void DiffView::scrollContentsBy(int dx, int dy)
{
    viewport()->scroll(dx, dy);
}

DiffSide DiffView::sideAt(int x) const
{
    return x - originX() < m_geometry.left(NewSide) ? OldSide : NewSide;
}

DiffPosition DiffView::positionAt(const QPoint &point, DiffSide side) const
{
    const qint64 y = qint64(verticalScrollBar()->value()) + point.y();
    const qsizetype row = m_geometry.rowAt(y);
    const double x = point.x() - originX() - m_geometry.textLeft(side) + m_textBar->value();
    return {row, m_document->line(row, side).offsetAt(x / m_geometry.cellWidth())};
}
