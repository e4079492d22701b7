// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/PriceRow.h"

#include <QDialog>
#include <QList>

class PriceRowEditor;
class QScrollArea;
class QVBoxLayout;
class Store;
class TextLabel;

/// The sheet in which the price table is edited. It works on a copy; only Save changes the store.
class PriceEditor : public QDialog {
    Q_OBJECT
public:
    explicit PriceEditor(Store &store, QWidget *parent = nullptr);

protected:
    bool event(QEvent *event) override;

private:
    void buildLayout();
    QWidget *buildColumnHeader();
    QWidget *buildRowArea();
    QLayout *buildFooter();

    QList<PriceRow> rows() const;
    void setRows(const QList<PriceRow> &rows);
    PriceRowEditor *appendRow(const PriceRow &row);
    void fitTitles();
    void fitRows();
    void updateTabOrder();
    void addRow();
    void deleteRow(PriceRowEditor *editor);
    void save();

    Store &m_store;
    QList<TextLabel *> m_titles; // of the columns
    QScrollArea *m_scrollArea = nullptr;
    QVBoxLayout *m_rowLayout = nullptr;
    QList<PriceRowEditor *> m_editors; // in table order
    QWidgetList m_buttons;             // of the footer, from left to right
};
