// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/Project.h"
#include "ui/RowModel.h"

/// A project as a row of the sidebar.
struct ProjectRow {
    Project project;

    const QString &key() const { return project.path; }
};

/// The sidebar's list: one row per project.
class ProjectListModel : public RowModel<ProjectRow> {
    Q_OBJECT
public:
    static constexpr int PathRole = Qt::UserRole;

    using RowModel::RowModel;

    void setProjects(const QList<Project> &projects);
    /// The row of the project with that path; an invalid index if there is none.
    QModelIndex indexOf(const QString &path) const;

    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
};
