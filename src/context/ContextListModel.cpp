// SPDX-License-Identifier: GPL-3.0-or-later
#include "context/ContextListModel.h"

#include "model/Files.h"
#include "ui/ToolTips.h"

#include <algorithm>

namespace {

bool isHeader(const ContextFile &row)
{
    return row.path.isEmpty();
}

QString fileName(const ContextFile &row)
{
    return lastPathComponent(row.path).toString();
}

QVariant scopeData(const ContextFile &row, int role)
{
    if (role == Qt::DisplayRole)
        return row.scope;
    return role == ContextListModel::HeaderRole ? QVariant(true) : QVariant();
}

} // namespace

ContextListModel::ContextListModel(QString home, QObject *parent)
    : QAbstractListModel(parent)
    , m_home(std::move(home))
{
}

void ContextListModel::setFiles(const QList<ContextFile> &files)
{
    QList<ContextFile> rows;
    for (const QString &scope : {projectScope, homeScope}) {
        rows.append({{}, scope, false});
        std::copy_if(files.cbegin(), files.cend(), std::back_inserter(rows),
                     [&scope](const ContextFile &file) { return file.scope == scope; });
    }
    if (rows == m_rows)
        return; // the view stays where it was scrolled to
    beginResetModel();
    m_rows = std::move(rows);
    endResetModel();
}

std::optional<ContextFile> ContextListModel::file(const QString &path) const
{
    return file(indexOf(path));
}

std::optional<ContextFile> ContextListModel::file(const QModelIndex &index) const
{
    if (!index.isValid() || isHeader(m_rows.at(index.row())))
        return std::nullopt;
    return m_rows.at(index.row());
}

QModelIndex ContextListModel::indexOf(const QString &path) const
{
    const auto found =
        std::find_if(m_rows.cbegin(), m_rows.cend(), [&path](const ContextFile &row) {
            return !isHeader(row) && row.path == path;
        });
    return found == m_rows.cend() ? QModelIndex() : index(int(found - m_rows.cbegin()));
}

void ContextListModel::setExists(const QString &path)
{
    const QModelIndex at = indexOf(path);
    if (!at.isValid() || m_rows.at(at.row()).exists)
        return;
    m_rows[at.row()].exists = true;
    Q_EMIT dataChanged(at, at);
}

int ContextListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

QVariant ContextListModel::data(const QModelIndex &index, int role) const
{
    const ContextFile &row = m_rows.at(index.row());
    if (isHeader(row))
        return scopeData(row, role);
    switch (role) {
    case Qt::DisplayRole:
        return fileName(row);
    case Qt::ToolTipRole:
        return plainToolTip(label(row, m_home));
    case Qt::AccessibleTextRole: // the delegate paints the rest, which nobody else tells
        return QStringLiteral("%1, %2%3")
            .arg(fileName(row), label(row, m_home),
                 row.exists ? QString() : QStringLiteral(", new"));
    case LabelRole:
        return label(row, m_home);
    case ExistsRole:
        return row.exists;
    case HeaderRole:
        return false;
    default:
        return {};
    }
}

Qt::ItemFlags ContextListModel::flags(const QModelIndex &index) const
{
    if (!index.isValid() || isHeader(m_rows.at(index.row())))
        return Qt::ItemNeverHasChildren; // neither the mouse nor the keyboard stops here
    return Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemNeverHasChildren;
}
