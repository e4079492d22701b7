// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/TableView.h"

#include "ui/CellDelegate.h"
#include "ui/CurrentRow.h"
#include "ui/TableHeader.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMimeData>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QtMath>

#include <algorithm>
#include <utility>

TableView::TableView(QWidget *parent) : QTableView(parent)
{
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setShowGrid(false);
    setWordWrap(false);
    setTabKeyNavigation(false); // Tab leaves the table; the arrow keys walk in it
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    setFrameShape(QFrame::NoFrame);
    setHorizontalHeader(new TableHeader(this));
    setItemDelegate(new CellDelegate(this));
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    connect(horizontalHeader(), &QHeaderView::sectionResized, this, &TableView::keepMinimum);
}

void TableView::setModel(QAbstractItemModel *model)
{
    QTableView::setModel(model);
    connect(model, &QAbstractItemModel::rowsAboutToBeInserted, this, &TableView::rememberTop);
    connect(model, &QAbstractItemModel::rowsAboutToBeRemoved, this, &TableView::rememberTop);
    connect(model, &QAbstractItemModel::rowsInserted, this, &TableView::restoreTop);
    connect(model, &QAbstractItemModel::rowsRemoved, this, &TableView::restoreTop);
    connect(model, &QAbstractItemModel::rowsInserted, this, &TableView::ensureCurrent);
    connect(model, &QAbstractItemModel::modelReset, this, &TableView::ensureCurrent);
    letCurrentRowFollowSelection(this);
    ensureCurrent();
}

void TableView::setMeasures(std::function<void(TableView *)> measures)
{
    m_measures = std::move(measures);
    m_measures(this);
}

void TableView::measure()
{
    m_measuring = false;
    m_minimumWidths.clear();
    m_measures(this);
}

void TableView::setFixedColumn(int column, int width)
{
    horizontalHeader()->resizeSection(column,
                                      qMax(width, horizontalHeader()->sectionSizeHint(column)));
}

void TableView::setFixedColumn(int column, int width, const QString &widest, const QFont &font)
{
    setFixedColumn(column, qMax(width, widthFor(column, widest, font)));
}

int TableView::widthFor(int column, const QString &text, const QFont &font)
{
    constexpr int cell = 1000;
    const int around = cell - CellDelegate::textPlace(QRect(0, 0, cell, 0), column).width();
    // Rounded down, it would be elided for the missing fraction of a pixel.
    return qCeil(QFontMetricsF(font).horizontalAdvance(text)) + 1 + around;
}

void TableView::setResizableColumn(int column, int minimum, int usual, const QString &widest,
                                   const QString &widestLine)
{
    const int title = horizontalHeader()->sectionSizeHint(column);
    m_minimumWidths[column] = qMax(minimum, title);
    horizontalHeader()->setSectionResizeMode(column, QHeaderView::Interactive);
    m_narrowest = qMax(qMax(usual, title), widthFor(column, widestLine, font()));
    m_widest = qMax(m_narrowest, widthFor(column, widest, font()));
    setFixedColumn(column, m_widest);
    m_resizableColumn = column;
}

void TableView::setFlexibleColumn(int column, int minimum)
{
    m_minimumWidths[column] = minimum;
    m_flexibleColumn = column;
    stretch();
}

QList<QStringList> TableView::selectedCells() const
{
    QModelIndexList rows = selectionModel()->selectedRows();
    std::sort(rows.begin(), rows.end());
    QList<QStringList> cells;
    for (const QModelIndex &row : rows) {
        cells.emplaceBack();
        for (int column = 0; column < model()->columnCount(); ++column)
            if (!model()->headerData(column, Qt::Horizontal).toString().isEmpty())
                cells.last().append(row.siblingAtColumn(column).data().toString().simplified());
    }
    return cells;
}

QString TableView::selectedText() const
{
    QString text;
    for (const QStringList &row : selectedCells())
        text += row.join(u'\t') + u'\n';
    return text;
}

QString TableView::selectedHtml() const
{
    QString html;
    for (const QStringList &row : selectedCells()) {
        html += QStringLiteral("<tr>");
        for (const QString &cell : row)
            html += QStringLiteral("<td>") + cell.toHtmlEscaped() + QStringLiteral("</td>");
        html += QStringLiteral("</tr>");
    }
    return QStringLiteral("<table>") + html + QStringLiteral("</table>");
}

void TableView::changeEvent(QEvent *event)
{
    QTableView::changeEvent(event);
    // The header has its new font only when all widgets have been told.
    if (event->type() == QEvent::FontChange && m_measures && !std::exchange(m_measuring, true))
        QMetaObject::invokeMethod(this, &TableView::measure, Qt::QueuedConnection);
}

void TableView::keyPressEvent(QKeyEvent *event)
{
    if (!event->matches(QKeySequence::Copy))
        return QTableView::keyPressEvent(event);
    if (!selectionModel()->hasSelection())
        return;
    auto *copied = new QMimeData; // the clipboard's from here on
    copied->setText(selectedText());
    copied->setHtml(selectedHtml());
    QGuiApplication::clipboard()->setMimeData(copied);
}

void TableView::resizeEvent(QResizeEvent *event)
{
    QTableView::resizeEvent(event);
    stretch();
}

void TableView::keepMinimum(int column, int, int width)
{
    if (m_stretching)
        return;
    if (column == m_resizableColumn)
        m_resizableColumn = -1;
    const int minimum = m_minimumWidths.value(column);
    if (width < minimum)
        horizontalHeader()->resizeSection(column, minimum);
    else if (column != m_flexibleColumn)
        stretch();
}

void TableView::stretch()
{
    if (m_flexibleColumn < 0)
        return;
    const QScopedValueRollback stretching(m_stretching, true);
    QHeaderView *header = horizontalHeader();
    const int least = m_minimumWidths.value(m_flexibleColumn);
    int others = header->length() - header->sectionSize(m_flexibleColumn);
    if (m_resizableColumn >= 0) {
        others -= header->sectionSize(m_resizableColumn);
        const int width = qBound(m_narrowest, viewport()->width() - others - least, m_widest);
        header->resizeSection(m_resizableColumn, width);
        others += width;
    }
    header->resizeSection(m_flexibleColumn, qMax(least, viewport()->width() - others));
}

/// At the very top new rows may push the others down: there, the newest is what one wants to see.
void TableView::rememberTop()
{
    const bool atTop = verticalScrollBar()->value() == 0;
    m_top = atTop ? QPersistentModelIndex() : QPersistentModelIndex(indexAt(QPoint(0, 0)));
}

void TableView::restoreTop()
{
    if (!m_top.isValid())
        return;
    updateGeometries(); // the scroll bar does not know the new rows yet
    verticalScrollBar()->setValue(m_top.row());
}

void TableView::ensureCurrent()
{
    if (!currentIndex().isValid() && model()->rowCount() > 0)
        selectionModel()->setCurrentIndex(model()->index(0, 0), QItemSelectionModel::NoUpdate);
}
