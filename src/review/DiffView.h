// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "review/DiffGeometry.h"
#include "review/DiffSelection.h"
#include "ui/LatestJob.h"

#include <QAbstractScrollArea>
#include <QBasicTimer>
#include <QElapsedTimer>

/// The side-by-side view of a diff. It draws what is to be seen and nothing else, so its work does
/// not grow with the diff. Text is selected on one side at a time, with mouse or keyboard, and
/// copied as it is in the file.
class DiffView : public QAbstractScrollArea {
    Q_OBJECT
public:
    explicit DiffView(QWidget *parent = nullptr);
    ~DiffView() override;

    const SharedDocument &document() const { return m_document; }
    /// Shows another diff, from its top. With `samePlace`, which is for a newer diff of the same
    /// file, the view stays where it is.
    void setDocument(const SharedDocument &document, bool samePlace = false);

    const DiffSelection &selection() const { return m_selection; }
    void setSelection(const DiffSelection &selection);

    /// Where a row is in the viewport, be it visible or not.
    QRect rowRect(qsizetype row) const;
    /// The row at a height of the viewport; nothing beyond the last one.
    std::optional<qsizetype> rowAt(int y) const;
    /// Where the caret is seen in the viewport when it is at a place.
    QPoint pointAt(DiffSide side, DiffPosition position) const;
    /// The scroll bar that moves the text of both sides when a line is longer than a side. The
    /// horizontal one moves the sides, when the view is too narrow for both.
    QScrollBar *textBar() const { return m_textBar; }

    void goToNextHunk();
    void goToPreviousHunk();
    void copy();
    void selectAll();

Q_SIGNALS:
    void documentChanged();

protected:
    bool event(QEvent *event) override;
    bool viewportEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;
    void wheelEvent(QWheelEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void timerEvent(QTimerEvent *event) override;

private:
    enum class Unit { Character, Word, Line };

    void updateFont();
    void updateScrollBars();
    void setCaret(DiffPosition caret, bool extend);
    void showCaret();
    void tellCaret();
    void switchSide();
    bool moveCaret(QKeyEvent *event);
    void moveCaretByRows(qsizetype rows, bool extend);
    void goToHunk(qsizetype row);
    qsizetype referenceRow() const;
    qsizetype rowsPerPage() const;
    DiffSide sideAt(int x) const;
    DiffPosition positionAt(const QPoint &point, DiffSide side) const;
    DiffSelection unitAt(DiffPosition position, DiffSide side, Unit unit) const;
    void press(const QPoint &point, Unit unit, bool extend);
    void dragTo(const QPoint &point);
    void putOnClipboard(int mode);
    int originX() const;

    SharedDocument m_document;
    DiffGeometry m_geometry;
    QScrollBar *m_textBar;
    LatestJob m_copyJob;

    DiffSelection m_selection;
    qsizetype m_goalColumn = 0; ///< where the caret wants to be when it moves up and down

    Unit m_unit = Unit::Character; ///< what a drag selects
    DiffSelection m_pressed;       ///< what the press selected, which stays selected in a drag
    bool m_dragging = false;
    QPoint m_dragPoint;
    QBasicTimer m_autoScroll;
    QElapsedTimer m_sinceDoubleClick;
    QPoint m_doubleClickPoint;
};
