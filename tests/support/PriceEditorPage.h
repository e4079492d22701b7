// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>

class PriceRowEditor;
class QAbstractButton;
class QDialog;
class QLineEdit;

/// The price editor as the user sees it: rows of five fields and a button, from top to bottom.
class PriceEditorPage {
public:
    enum Column { Key, Input, Output, CacheWrite, CacheRead, ColumnCount };

    explicit PriceEditorPage(QDialog *dialog) : m_dialog(dialog) {}

    QDialog *dialog() const { return m_dialog; }
    int rowCount() const;
    QLineEdit *field(int row, Column column) const;
    QAbstractButton *deleteButton(int row) const;
    QAbstractButton *button(const char *text) const;

    /// What the fields of a row, or of all rows, show.
    QStringList texts(int row) const;
    QList<QStringList> texts() const;

    /// Replaces a field's text by mouse and keys, leaving the focus in it.
    void edit(int row, Column column, const QString &text) const;
    void click(const char *text) const;

private:
    QList<PriceRowEditor *> rows() const;

    QDialog *m_dialog;
};
