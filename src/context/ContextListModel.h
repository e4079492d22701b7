// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "context/ContextFile.h"

#include <QAbstractListModel>
#include <QList>

#include <optional>

/// The list of instruction files: under the name of each scope its files.
class ContextListModel : public QAbstractListModel {
    Q_OBJECT
public:
    enum Role {
        LabelRole = Qt::UserRole, ///< the path as it is shown
        ExistsRole,
        HeaderRole, ///< whether the row is the name of a scope
    };

    explicit ContextListModel(QString home, QObject *parent = nullptr);

    void setFiles(const QList<ContextFile> &files);
    /// The first file with that path; nothing if there is none.
    std::optional<ContextFile> file(const QString &path) const;
    std::optional<ContextFile> file(const QModelIndex &index) const;
    /// The row of the first file with that path; an invalid index if there is none.
    QModelIndex indexOf(const QString &path) const;
    /// Says that the first file with that path exists from now on.
    void setExists(const QString &path);

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

private:
    /// A row without a path is the name of a scope.
    QList<ContextFile> m_rows;
    const QString m_home;
};
