// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/RowModel.h"
#include "usage/SessionTable.h"

#include <QLocale>

/// The rows of a SessionTable as a table model.
class SessionsModel : public RowModel<SessionRow> {
    Q_OBJECT
public:
    enum Column { Started, Duration, FirstPrompt, Turns, Input, Output, Cache, Cost, ColumnCount };
    /// What the delegate paints of a first prompt.
    static constexpr int PreviewRole = Qt::UserRole;

    explicit SessionsModel(const QLocale &locale, QObject *parent = nullptr);

    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    QVariant data(const QModelIndex &index, int role) const override;

    /// Tells that the sessions' starts read otherwise than before.
    void tellStartsChanged();

private:
    QString text(const SessionRow &row, int column) const;

    const QLocale m_locale;
    const QString m_startFormat;
};
