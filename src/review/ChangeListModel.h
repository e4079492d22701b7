// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "review/GitFile.h"
#include "ui/RowModel.h"

#include <optional>

/// The changed files as a list model.
class ChangeListModel : public RowModel<GitFile> {
    Q_OBJECT
public:
    using RowModel::RowModel;

    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;

    /// The row of the first file with that path; none when there is no such file.
    std::optional<int> rowOf(const QString &path) const;
};
