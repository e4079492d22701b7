// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/PriceRow.h"

#include <QWidget>

class NumberField;
class QLineEdit;
class QToolButton;

/// The fields of one row of the price table, and the button that deletes it.
class PriceRowEditor : public QWidget {
    Q_OBJECT
public:
    static constexpr int spacing = 8;
    /// The widths of the columns: the usual ones, or more where the user's font needs it.
    static int keyWidth();
    static int priceWidth();

    explicit PriceRowEditor(const PriceRow &row, QWidget *parent = nullptr);

    /// The row as it has been edited.
    PriceRow row() const;
    /// Everything in the row that the keyboard reaches, from left to right.
    QWidgetList fields() const;
    /// Puts the keyboard focus on the key, ready to be replaced.
    void editKey();

    /// Gives the fields the widths of the columns, which change with the font.
    void fitFields();

Q_SIGNALS:
    void deleteRequested();

private:
    QLineEdit *addKeyField(const QString &key);
    NumberField *addPriceField(double price);
    QToolButton *addDeleteButton();
    void updateNames();

    const QUuid m_id;
    QLineEdit *m_key;
    NumberField *m_input;
    NumberField *m_output;
    NumberField *m_cacheWrite;
    NumberField *m_cacheRead;
    QToolButton *m_delete;
};
