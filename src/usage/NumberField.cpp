// SPDX-License-Identifier: GPL-3.0-or-later
#include "usage/NumberField.h"

#include <QEvent>

#include <cmath>

NumberField::NumberField(double value, QWidget *parent) : OutlinedLineEdit(parent), m_value(value)
{
    setAlignment(Qt::AlignRight);
    showValue();
    connect(this, &QLineEdit::editingFinished, this, &NumberField::finishEditing);
}

double NumberField::value() const
{
    if (text() == m_shown) // isModified() would not count what assistive technology writes
        return m_value;
    bool isNumber = false;
    const double value = m_locale.toDouble(text().trimmed(), &isNumber);
    return isNumber && std::isfinite(value) ? value : m_value;
}

void NumberField::changeEvent(QEvent *event)
{
    QLineEdit::changeEvent(event);
    if (event->type() == QEvent::LocaleChange)
        finishEditing();
}

void NumberField::finishEditing()
{
    m_value = value();
    showValue();
}

void NumberField::showValue()
{
    m_locale = locale();
    m_shown = m_locale.toString(m_value, 'f', QLocale::FloatingPointShortest);
    setText(m_shown);
}
