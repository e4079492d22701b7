// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/PriceEditorPage.h"

#include "support/Input.h"
#include "support/Window.h"
#include "usage/PriceRowEditor.h"

#include <QDialog>
#include <QLineEdit>
#include <QToolButton>

#include <algorithm>

QList<PriceRowEditor *> PriceEditorPage::rows() const
{
    // A deleted row is gone from the screen at once, and from memory a little later.
    QList<PriceRowEditor *> rows = m_dialog->findChildren<PriceRowEditor *>();
    rows.removeIf([this](const PriceRowEditor *row) { return !row->isVisibleTo(m_dialog); });
    QCoreApplication::sendPostedEvents(m_dialog, QEvent::LayoutRequest);
    std::stable_sort(rows.begin(), rows.end(),
                     [](const QWidget *a, const QWidget *b) { return a->y() < b->y(); });
    return rows;
}

int PriceEditorPage::rowCount() const
{
    return static_cast<int>(rows().size());
}

QLineEdit *PriceEditorPage::field(int row, Column column) const
{
    return rows().at(row)->findChildren<QLineEdit *>().at(column);
}

QAbstractButton *PriceEditorPage::deleteButton(int row) const
{
    return find<QToolButton>(rows().at(row));
}

QAbstractButton *PriceEditorPage::button(const char *text) const
{
    return buttonOf(m_dialog, QString::fromLatin1(text));
}

QStringList PriceEditorPage::texts(int row) const
{
    QStringList texts;
    for (const QLineEdit *field : rows().at(row)->findChildren<QLineEdit *>())
        texts.append(field->text());
    return texts;
}

QList<QStringList> PriceEditorPage::texts() const
{
    QList<QStringList> texts;
    for (int row = 0; row < rowCount(); ++row)
        texts.append(this->texts(row));
    return texts;
}

void PriceEditorPage::edit(int row, Column column, const QString &text) const
{
    Input::click(field(row, column));
    Input::key(Qt::Key_A, Qt::ControlModifier);
    if (text.isEmpty())
        Input::key(Qt::Key_Delete);
    Input::type(text);
}

void PriceEditorPage::click(const char *text) const
{
    Input::click(button(text));
}
