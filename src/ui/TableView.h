// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHash>
#include <QPersistentModelIndex>
#include <QTableView>

#include <functional>

/// A table of records: whole rows are selected, all rows are equally high, rows that come and go
/// above do not move what is seen, and copying puts the selected rows on the clipboard, as a table
/// in HTML and as tab-separated text.
class TableView : public QTableView {
    Q_OBJECT
public:
    explicit TableView(QWidget *parent = nullptr);

    /// Also gives the table a current cell as soon as it has rows: without one, Qt 6.4 is reported
    /// to crash under a screen reader.
    void setModel(QAbstractItemModel *model) override;

    /// Sets what depends on the font, the widths of columns and the height of rows: now, and again
    /// whenever the font has changed.
    void setMeasures(std::function<void(TableView *)> measures);

    /// Gives a column its width. All widths are at least what the column's title needs.
    void setFixedColumn(int column, int width);
    /// The same, or more where the user's font needs it for the widest text of the column.
    void setFixedColumn(int column, int width, const QString &widest, const QFont &font);
    /// The same for a column that the user may resize, down to `minimum`. Until then it is as wide
    /// as its widest text; where the table would have to be scrolled otherwise it is narrower, down
    /// to `usual` or what the widest line needs when texts are broken into lines.
    void setResizableColumn(int column, int minimum, int usual, const QString &widest,
                            const QString &widestLine);
    /// Lets one column take the width that the others leave, but no less than `minimum`.
    void setFlexibleColumn(int column, int minimum);

    /// The selected rows as text: cells separated by tabs, rows by line feeds. A tab or line break
    /// inside a cell becomes a blank. A column without a title holds no text, but a button.
    QString selectedText() const;
    /// The same as a table in HTML.
    QString selectedHtml() const;

protected:
    void changeEvent(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    QList<QStringList> selectedCells() const;
    static int widthFor(int column, const QString &text, const QFont &font);
    void measure();
    void keepMinimum(int column, int oldWidth, int width);
    void stretch();
    void ensureCurrent();
    void rememberTop();
    void restoreTop();

    std::function<void(TableView *)> m_measures;
    bool m_measuring = false;        // soon, when all widgets have their new font
    QHash<int, int> m_minimumWidths; // by column
    int m_flexibleColumn = -1;
    int m_resizableColumn = -1; // as long as the user has not resized it
    int m_narrowest = 0;        // of that
    int m_widest = 0;
    bool m_stretching = false;
    QPersistentModelIndex m_top; // the first row that is seen, while rows come and go
};
