// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/CopyAction.h"

#include <QClipboard>
#include <QDialog>
#include <QGuiApplication>
#include <QMenu>

void addCopyAction(QDialog *dialog, const QString &title, const QString &text)
{
    auto *copy = new QAction(title, dialog);
    copy->setShortcut(QKeySequence(QKeySequence::Copy));
    QObject::connect(copy, &QAction::triggered, dialog,
                     [text] { QGuiApplication::clipboard()->setText(text); });
    dialog->addAction(copy);
    dialog->setContextMenuPolicy(Qt::CustomContextMenu); // Qt's own would run an event loop
    QObject::connect(dialog, &QWidget::customContextMenuRequested, dialog,
                     [dialog, copy](const QPoint &position) {
                         auto *menu = new QMenu(dialog);
                         menu->setAttribute(Qt::WA_DeleteOnClose);
                         menu->addAction(copy);
                         menu->popup(dialog->mapToGlobal(position));
                     });
}
