// SPDX-License-Identifier: GPL-3.0-or-later
#include "usage/PriceRowEditor.h"

#include "ui/Fonts.h"
#include "ui/Icons.h"
#include "ui/Outlined.h"
#include "usage/NumberField.h"

#include <QFontMetricsF>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QToolButton>
#include <QtMath>

#include <initializer_list>

PriceRowEditor::PriceRowEditor(const PriceRow &row, QWidget *parent) : QWidget(parent), m_id(row.id)
{
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing);
    m_key = addKeyField(row.key);
    m_input = addPriceField(row.input);
    m_output = addPriceField(row.output);
    m_cacheWrite = addPriceField(row.cacheWrite);
    m_cacheRead = addPriceField(row.cacheRead);
    m_delete = addDeleteButton();
    layout->addStretch();
    updateNames();
    fitFields();
}

int PriceRowEditor::keyWidth()
{
    const QFontMetricsF metrics(textFont(TextStyle::Body));
    return qMax(110, qCeil(metrics.horizontalAdvance(QStringLiteral("claude-opus"))));
}

int PriceRowEditor::priceWidth()
{
    const QFontMetricsF metrics(textFont(TextStyle::Caption, true));
    return qMax(80, qCeil(metrics.horizontalAdvance(QStringLiteral("Cache write"))));
}

void PriceRowEditor::fitFields()
{
    m_key->setFixedWidth(keyWidth());
    for (QLineEdit *field :
         std::initializer_list<QLineEdit *>{m_input, m_output, m_cacheWrite, m_cacheRead})
        field->setFixedWidth(priceWidth());
}

PriceRow PriceRowEditor::row() const
{
    return {m_id,
            m_key->text(),
            m_input->value(),
            m_output->value(),
            m_cacheWrite->value(),
            m_cacheRead->value()};
}

QWidgetList PriceRowEditor::fields() const
{
    return {m_key, m_input, m_output, m_cacheWrite, m_cacheRead, m_delete};
}

void PriceRowEditor::editKey()
{
    m_key->setFocus(Qt::OtherFocusReason);
    m_key->selectAll();
}

QLineEdit *PriceRowEditor::addKeyField(const QString &key)
{
    auto *field = new OutlinedLineEdit(key, this);
    field->setPlaceholderText(QStringLiteral("key"));
    connect(field, &QLineEdit::textChanged, this, &PriceRowEditor::updateNames);
    layout()->addWidget(field);
    return field;
}

NumberField *PriceRowEditor::addPriceField(double price)
{
    auto *field = new NumberField(price, this);
    layout()->addWidget(field);
    return field;
}

QToolButton *PriceRowEditor::addDeleteButton()
{
    auto *button = new QToolButton(this);
    button->setIcon(symbolIcon(u"minus.circle"));
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::StrongFocus);
    button->setToolTip(QStringLiteral("Delete this row"));
    connect(button, &QToolButton::clicked, this, &PriceRowEditor::deleteRequested);
    layout()->addWidget(button);
    return button;
}

/// Names the fields for assistive technology, which does not see rows and columns.
void PriceRowEditor::updateNames()
{
    const QString name =
        m_key->text().isEmpty() ? QStringLiteral("row without key") : m_key->text();
    m_key->setAccessibleName(QStringLiteral("Key of %1").arg(name));
    m_input->setAccessibleName(QStringLiteral("Input price of %1").arg(name));
    m_output->setAccessibleName(QStringLiteral("Output price of %1").arg(name));
    m_cacheWrite->setAccessibleName(QStringLiteral("Cache write price of %1").arg(name));
    m_cacheRead->setAccessibleName(QStringLiteral("Cache read price of %1").arg(name));
    m_delete->setAccessibleName(QStringLiteral("Delete %1").arg(name));
}
