// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "live/AgentProcess.h"
#include "ui/RowModel.h"

/// Running agents as a table model.
class LiveModel : public RowModel<AgentProcess> {
    Q_OBJECT
public:
    enum Column { Agent, Pid, Folder, Cpu, Uptime, Stop, ColumnCount };

    using RowModel::RowModel;

    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    QVariant data(const QModelIndex &index, int role) const override;
};
