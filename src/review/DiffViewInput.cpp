// SPDX-License-Identifier: GPL-3.0-or-later
#include "review/DiffView.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QScrollBar>

#include <algorithm>
#include <cmath>

// What mouse and keyboard do with a DiffView.

namespace {

constexpr int autoScrollMilliseconds = 30;
/// Up to here copying is done at once; beyond, beside the interface thread.
constexpr qsizetype mostRowsAtOnce = 20'000;

} // namespace

void DiffView::keyPressEvent(QKeyEvent *event)
{
    if (!m_document || m_document->rowCount() == 0)
        return QAbstractScrollArea::keyPressEvent(event);
    if (event->matches(QKeySequence::Copy))
        return copy();
    if (event->matches(QKeySequence::SelectAll))
        return selectAll();
    const Qt::KeyboardModifiers modifiers = event->modifiers() & ~Qt::KeypadModifier;
    if (modifiers == Qt::NoModifier) {
        switch (event->key()) {
        case Qt::Key_N:
            return goToNextHunk();
        case Qt::Key_P:
            return goToPreviousHunk();
        case Qt::Key_F6:
            return switchSide();
        default:
            break;
        }
    }
    if (!moveCaret(event))
        event->ignore(); // for the screen's shortcuts
}

/// Handles the keys that move the caret, with Shift extending the selection.
bool DiffView::moveCaret(QKeyEvent *event)
{
    const bool extend = event->modifiers() & Qt::ShiftModifier;
    const bool control = event->modifiers() & Qt::ControlModifier;
    const DiffSide side = m_selection.side;
    const DiffPosition caret = m_selection.caret;
    const auto to = [this, extend](DiffPosition position) {
        setCaret(position, extend);
        m_goalColumn =
            m_document->line(position.row, m_selection.side).caretColumn(position.offset);
    };
    switch (event->key()) {
    case Qt::Key_Left:
        to(DiffCaret::previous(*m_document, side, caret));
        return true;
    case Qt::Key_Right:
        to(DiffCaret::next(*m_document, side, caret));
        return true;
    case Qt::Key_Up:
        moveCaretByRows(-1, extend);
        return true;
    case Qt::Key_Down:
        moveCaretByRows(1, extend);
        return true;
    case Qt::Key_PageUp:
        moveCaretByRows(-rowsPerPage(), extend);
        return true;
    case Qt::Key_PageDown:
        moveCaretByRows(rowsPerPage(), extend);
        return true;
    case Qt::Key_Home:
        to(control ? DiffCaret::first(*m_document, side) : DiffPosition{caret.row, 0});
        return true;
    case Qt::Key_End:
        to(control ? DiffCaret::last(*m_document, side)
                   : DiffPosition{caret.row, m_document->line(caret.row, side).text().size()});
        return true;
    default:
        return false;
    }
}

qsizetype DiffView::rowsPerPage() const
{
    return std::max(1, viewport()->height() / m_geometry.lineHeight() - 1);
}

void DiffView::moveCaretByRows(qsizetype rows, bool extend)
{
    const qsizetype goal = m_goalColumn;
    const bool page = std::abs(rows) > 1;
    DiffPosition from = m_selection.caret;
    // A page is what is seen: it starts from there, and what is seen moves by it.
    if (page && from.row != referenceRow())
        from = {
            DiffCaret::nearestRow(*m_document, m_selection.side, referenceRow()).value_or(from.row),
            0};
    const DiffPosition to = DiffCaret::moved(*m_document, m_selection.side, from, rows, goal);
    if (page) {
        QScrollBar *bar = verticalScrollBar();
        bar->setValue(bar->value() + static_cast<int>(rows) * m_geometry.lineHeight());
    }
    setCaret(to, extend);
    m_goalColumn = goal;
}

void DiffView::setCaret(DiffPosition caret, bool extend)
{
    DiffSelection selection = m_selection;
    selection.caret = caret;
    if (!extend)
        selection.anchor = caret;
    setSelection(selection);
    showCaret();
}

/// Scrolls as little as is needed to see the caret.
void DiffView::showCaret()
{
    const auto reveal = [](QScrollBar *bar, int begin, int end, int room, int margin) {
        if (begin < 0)
            bar->setValue(bar->value() + begin - margin);
        else if (end > room)
            bar->setValue(bar->value() + std::min(end - room + margin, begin));
    };
    const DiffSide side = m_selection.side;
    const QRect row = rowRect(m_selection.caret.row);
    reveal(verticalScrollBar(), row.top(), row.bottom() + 1, viewport()->height(), 0);
    const int margin = qRound(4 * m_geometry.cellWidth());
    const auto caretX = [this] { return pointAt(m_selection.side, m_selection.caret).x(); };
    const int inText = caretX() + horizontalScrollBar()->value() - m_geometry.textLeft(side);
    reveal(m_textBar, inText, inText + 1, m_geometry.textWidth(side), margin);
    reveal(horizontalScrollBar(), caretX(), caretX() + 1, viewport()->width(), margin);
}

/// Moves the caret to the same row of the other side, or the nearest one that has text there.
void DiffView::switchSide()
{
    const DiffSide side = m_selection.side == OldSide ? NewSide : OldSide;
    const auto row = DiffCaret::nearestRow(*m_document, side, m_selection.caret.row);
    if (!row)
        return;
    const DiffPosition caret{
        *row, m_document->line(*row, side).offsetAt(static_cast<double>(m_goalColumn))};
    setSelection({side, caret, caret});
    showCaret();
}

/// The row from which the next and the previous hunk are looked for: the caret's, or the topmost
/// one when the caret has been scrolled away.
qsizetype DiffView::referenceRow() const
{
    const QRect caretRow = rowRect(m_selection.caret.row);
    if (caretRow.bottom() >= 0 && caretRow.top() < viewport()->height())
        return m_selection.caret.row;
    return m_geometry.rowAt(verticalScrollBar()->value());
}

void DiffView::goToNextHunk()
{
    if (!m_document || m_document->rowCount() == 0)
        return;
    const QList<qsizetype> &hunks = m_document->hunkRows();
    const qsizetype next = m_document->hunksBefore(referenceRow() + 1);
    if (next < hunks.size())
        goToHunk(hunks[next]);
}

void DiffView::goToPreviousHunk()
{
    if (!m_document || m_document->rowCount() == 0)
        return;
    const QList<qsizetype> &hunks = m_document->hunkRows();
    const qsizetype current = m_document->hunksBefore(referenceRow() + 1) - 1;
    if (!hunks.isEmpty())
        goToHunk(hunks[std::max(qsizetype(0), current - 1)]);
}

/// Brings a hunk to the top, and the caret into it.
void DiffView::goToHunk(qsizetype row)
{
    verticalScrollBar()->setValue(
        static_cast<int>(std::min<qint64>(m_geometry.top(row), verticalScrollBar()->maximum())));
    const qsizetype next = m_document->hunksBefore(row + 1);
    const qsizetype end = next < m_document->hunkRows().size() ? m_document->hunkRows()[next]
                                                               : m_document->rowCount();
    // A hunk may have text on one side only.
    for (const DiffSide side :
         {m_selection.side, m_selection.side == OldSide ? NewSide : OldSide}) {
        const auto first = DiffCaret::nearestRow(*m_document, side, row);
        if (!first || *first <= row || *first >= end)
            continue;
        setSelection({side, {*first, 0}, {*first, 0}});
        m_goalColumn = 0;
        m_textBar->setValue(0);
        return;
    }
}

void DiffView::selectAll()
{
    if (m_document && m_document->rowCount() > 0)
        setSelection(wholeSide(*m_document, m_selection.side));
}

void DiffView::copy()
{
    if (m_document && !m_selection.isEmpty())
        putOnClipboard(QClipboard::Clipboard);
}

void DiffView::putOnClipboard(int mode)
{
    const auto put = [mode](const QString &text) {
        if (!text.isEmpty())
            QGuiApplication::clipboard()->setText(text, QClipboard::Mode(mode));
    };
    if (m_selection.end().row - m_selection.begin().row <= mostRowsAtOnce)
        return put(selectedText(*m_document, m_selection));
    m_copyJob.start(
        [document = m_document, selection = m_selection](const std::stop_token &stop) {
            return selectedText(*document, selection, stop);
        },
        put);
}

void DiffView::focusInEvent(QFocusEvent *event)
{
    QAbstractScrollArea::focusInEvent(event);
    viewport()->update();
    tellCaret();
}

void DiffView::focusOutEvent(QFocusEvent *event)
{
    QAbstractScrollArea::focusOutEvent(event);
    viewport()->update();
}

void DiffView::wheelEvent(QWheelEvent *event)
{
    // The text of long lines is moved where the sides cannot be moved further.
    const bool sideways = std::abs(event->angleDelta().x()) > std::abs(event->angleDelta().y()) ||
                          event->modifiers() & Qt::ShiftModifier;
    if (!sideways)
        return QAbstractScrollArea::wheelEvent(event);
    const int delta =
        event->angleDelta().x() != 0 ? event->angleDelta().x() : event->angleDelta().y();
    const int pixels = event->pixelDelta().x() != 0 ? event->pixelDelta().x()
                                                    : delta * QApplication::wheelScrollLines() *
                                                          horizontalScrollBar()->singleStep() / 120;
    QScrollBar *sides = horizontalScrollBar();
    QScrollBar *const first = pixels < 0 ? sides : m_textBar;
    QScrollBar *const second = pixels < 0 ? m_textBar : sides;
    const int before = first->value();
    first->setValue(before - pixels);
    second->setValue(second->value() - (pixels - (before - first->value())));
    event->accept();
}

DiffSelection DiffView::unitAt(DiffPosition position, DiffSide side, Unit unit) const
{
    const LineLayout line = m_document->line(position.row, side);
    DiffSelection selection{side, position, position};
    if (unit == Unit::Word)
        std::tie(selection.anchor.offset, selection.caret.offset) = line.wordAt(position.offset);
    if (unit == Unit::Line) {
        selection.anchor.offset = 0;
        selection.caret.offset = line.text().size();
    }
    return selection;
}

void DiffView::press(const QPoint &point, Unit unit, bool extend)
{
    const DiffSide side = extend ? m_selection.side : sideAt(point.x());
    m_unit = unit;
    m_dragging = true;
    m_dragPoint = point;
    if (extend)
        m_pressed = {side, m_selection.anchor, m_selection.anchor};
    else
        m_pressed = unitAt(positionAt(point, side), side, unit);
    if (extend)
        dragTo(point);
    else
        setSelection(m_pressed);
    m_goalColumn =
        m_document->line(m_selection.caret.row, side).caretColumn(m_selection.caret.offset);
}

/// Selects from what was pressed to what is here.
void DiffView::dragTo(const QPoint &point)
{
    const DiffSide side = m_pressed.side;
    const DiffSelection here = unitAt(positionAt(point, side), side, m_unit);
    if (here.begin() < m_pressed.begin())
        setSelection({side, m_pressed.end(), here.begin()});
    else
        setSelection({side, m_pressed.begin(), std::max(here.end(), m_pressed.end())});
}

void DiffView::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton || !m_document || m_document->rowCount() == 0)
        return;
    const QPoint point = event->position().toPoint();
    const bool third =
        m_sinceDoubleClick.isValid() &&
        m_sinceDoubleClick.elapsed() < QApplication::doubleClickInterval() &&
        (point - m_doubleClickPoint).manhattanLength() < QApplication::startDragDistance();
    m_sinceDoubleClick.invalidate();
    press(point, third ? Unit::Line : Unit::Character, event->modifiers() & Qt::ShiftModifier);
}

void DiffView::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton || !m_document || m_document->rowCount() == 0)
        return;
    m_doubleClickPoint = event->position().toPoint();
    m_sinceDoubleClick.start();
    press(m_doubleClickPoint, Unit::Word, false);
}

void DiffView::mouseMoveEvent(QMouseEvent *event)
{
    if (!m_dragging)
        return;
    m_dragPoint = event->position().toPoint();
    dragTo(m_dragPoint);
    if (viewport()->rect().contains(m_dragPoint))
        m_autoScroll.stop();
    else if (!m_autoScroll.isActive())
        m_autoScroll.start(autoScrollMilliseconds, this);
}

void DiffView::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton || !m_dragging)
        return;
    m_dragging = false;
    m_autoScroll.stop();
    if (!m_selection.isEmpty() && QGuiApplication::clipboard()->supportsSelection())
        putOnClipboard(QClipboard::Selection);
}

/// Goes on scrolling while the mouse is held beyond an edge, faster the further away it is.
void DiffView::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != m_autoScroll.timerId())
        return QAbstractScrollArea::timerEvent(event);
    const QRect inside = viewport()->rect();
    const auto beyond = [](int value, int first, int last) {
        return value < first ? value - first : std::max(0, value - last);
    };
    const int dx = beyond(m_dragPoint.x(), inside.left(), inside.right());
    const int dy = beyond(m_dragPoint.y(), inside.top(), inside.bottom());
    verticalScrollBar()->setValue(verticalScrollBar()->value() + dy);
    m_textBar->setValue(m_textBar->value() + dx);
    horizontalScrollBar()->setValue(horizontalScrollBar()->value() + dx);
    dragTo(m_dragPoint);
}

void DiffView::contextMenuEvent(QContextMenuEvent *event)
{
    if (!m_document || m_document->rowCount() == 0)
        return;
    auto *menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    QAction *copying = menu->addAction(QStringLiteral("Copy"), this, &DiffView::copy);
    copying->setShortcut(QKeySequence(QKeySequence::Copy));
    copying->setEnabled(!m_selection.isEmpty());
    QAction *selecting =
        menu->addAction(QStringLiteral("Select the Side"), this, &DiffView::selectAll);
    selecting->setShortcut(QKeySequence(QKeySequence::SelectAll));
    menu->addSeparator();
    menu->addAction(QStringLiteral("Next Hunk"), this, &DiffView::goToNextHunk)
        ->setShortcut(QKeySequence(Qt::Key_N));
    menu->addAction(QStringLiteral("Previous Hunk"), this, &DiffView::goToPreviousHunk)
        ->setShortcut(QKeySequence(Qt::Key_P));
    menu->popup(event->reason() == QContextMenuEvent::Keyboard
                    ? viewport()->mapToGlobal(pointAt(m_selection.side, m_selection.caret))
                    : event->globalPos());
}
