// SPDX-License-Identifier: GPL-3.0-or-later
#include "usage/NumberField.h"

#include <QEvent>

#include <cmath>

NumberField::NumberField(double value, QWidget *parent) : QLineEdit(parent), m_value(value)
{
    setAlignment(Qt::AlignRight);
    showValue();
    connect(this, &QLineEdit::editingFinished, this, &NumberField::finishEditing);
}

double NumberField::value() const
{
    if (!isModified())
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
    setText(m_locale.toString(m_value, 'f', QLocale::FloatingPointShortest));
}
