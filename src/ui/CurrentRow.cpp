// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/CurrentRow.h"

#include <QAbstractItemView>
#include <QItemSelectionModel>

void letCurrentRowFollowSelection(QAbstractItemView *view)
{
    QItemSelectionModel *model = view->selectionModel();
    const auto follow = [model](const QItemSelection &selected) {
        const QItemSelection all = model->selection();
        // What Ctrl takes out of a selection stays current, and so does one end of a longer one.
        if (selected.isEmpty() || all.size() != 1 || all.constFirst().height() != 1)
            return;
        const QModelIndex current = model->currentIndex();
        const QModelIndex row = all.constFirst().topLeft();
        if (row.row() != current.row())
            model->setCurrentIndex(row.siblingAtColumn(qMax(row.column(), current.column())),
                                   QItemSelectionModel::NoUpdate);
    };
    QObject::connect(model, &QItemSelectionModel::selectionChanged, model, follow);
}
