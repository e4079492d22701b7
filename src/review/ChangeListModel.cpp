// SPDX-License-Identifier: GPL-3.0-or-later
#include "review/ChangeListModel.h"

#include "model/TextCells.h"

#include <algorithm>

int ChangeListModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : 1;
}

QVariant ChangeListModel::data(const QModelIndex &index, int role) const
{
    const GitFile &file = rows().at(index.row());
    switch (role) {
    case Qt::DisplayRole:
        return file.path;
    case Qt::AccessibleTextRole: {
        const QString told = file.badge() + u' ' + visibleText(file.path);
        return file.isWhollyStaged() ? told + QStringLiteral(", wholly staged") : told;
    }
    default:
        return {};
    }
}

std::optional<int> ChangeListModel::rowOf(const QString &path) const
{
    const auto row = std::find_if(rows().begin(), rows().end(), [&path](const GitFile &candidate) {
        return candidate.path == path;
    });
    if (row == rows().end())
        return std::nullopt;
    return static_cast<int>(row - rows().begin());
}
