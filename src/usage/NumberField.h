// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/Outlined.h"

#include <QLocale>

/// A text field for a number in the user's locale. Text that is no number changes nothing: the
/// value stays, and comes back into the field when the field is left.
class NumberField : public OutlinedLineEdit {
    Q_OBJECT
public:
    explicit NumberField(double value, QWidget *parent = nullptr);

    /// The number in the field, or the last good one when what stands there is none.
    double value() const;

protected:
    void changeEvent(QEvent *event) override;

private:
    void finishEditing();
    void showValue();

    double m_value;
    QString m_shown;  // the value as text
    QLocale m_locale; // in which the text stands
};
