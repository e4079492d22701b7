// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ProjectListModel.h"

#include "ui/Icons.h"
#include "ui/ToolTips.h"

#include <QIcon>

#include <algorithm>

void ProjectListModel::setProjects(const QList<Project> &projects)
{
    QList<ProjectRow> next;
    next.reserve(projects.size());
    for (const Project &project : projects)
        next.append({project});
    setRows(std::move(next));
}

QModelIndex ProjectListModel::indexOf(const QString &path) const
{
    const auto found = std::find_if(rows().cbegin(), rows().cend(),
                                    [&path](const ProjectRow &row) { return row.key() == path; });
    return found == rows().cend() ? QModelIndex()
                                  : index(static_cast<int>(found - rows().cbegin()), 0);
}

int ProjectListModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : 1;
}

QVariant ProjectListModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const Project &project = rows().at(index.row()).project;
    switch (role) {
    case Qt::DisplayRole:
        return project.name();
    case Qt::DecorationRole:
        return symbolIcon(project.added ? u"folder.badge.plus" : u"folder", QPalette::Text);
    case Qt::ToolTipRole:
        return plainToolTip(project.path);
    case Qt::AccessibleTextRole: // the delegate paints the path, which nobody else tells
        return QStringLiteral("%1, %2").arg(project.name(), project.path);
    case PathRole:
        return project.path;
    default:
        return {};
    }
}
