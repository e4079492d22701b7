// SPDX-License-Identifier: GPL-3.0-or-later
#include "usage/SessionsModel.h"

#include "model/Format.h"
#include "ui/ToolTips.h"
#include "usage/StartText.h"

namespace {

const QString dash = QStringLiteral("\u2014");

bool isNumber(int column)
{
    return column >= SessionsModel::Turns;
}

} // namespace

SessionsModel::SessionsModel(const QLocale &locale, QObject *parent)
    : RowModel(parent)
    , m_locale(locale)
    , m_startFormat(mediumDateTimeFormat(locale))
{
}

int SessionsModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant SessionsModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    static const QStringList titles{QStringLiteral("Started"),      QStringLiteral("Duration"),
                                    QStringLiteral("First prompt"), QStringLiteral("Turns"),
                                    QStringLiteral("Input"),        QStringLiteral("Output"),
                                    QStringLiteral("Cache"),        QStringLiteral("Est. cost")};
    if (orientation != Qt::Horizontal || section < 0 || section >= ColumnCount)
        return {};
    if (role == Qt::DisplayRole)
        return titles.at(section);
    if (role == Qt::TextAlignmentRole && isNumber(section))
        return int(Qt::AlignRight | Qt::AlignVCenter);
    return {};
}

QVariant SessionsModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const SessionRow &row = rows().at(index.row());
    switch (role) {
    case Qt::DisplayRole:
        return text(row, index.column());
    case Qt::TextAlignmentRole:
        return int((isNumber(index.column()) ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    case Qt::ToolTipRole:
        return index.column() == FirstPrompt ? plainToolTip(row.firstPrompt) : QVariant();
    case PreviewRole:
        return row.firstPrompt.isEmpty() ? dash : row.preview;
    default:
        return {};
    }
}

void SessionsModel::tellStartsChanged()
{
    if (rowCount() > 0)
        Q_EMIT dataChanged(index(0, Started), index(rowCount() - 1, Started), {Qt::DisplayRole});
}

QString SessionsModel::text(const SessionRow &row, int column) const
{
    switch (column) {
    case Started:
        return startText(row.start, m_locale, m_startFormat);
    case Duration:
        return fmtDuration(row.duration);
    case FirstPrompt:
        return row.firstPrompt.isEmpty() ? dash : row.firstPrompt;
    case Turns:
        return QString::number(row.turns);
    case Input:
        return fmtTokens(row.input, m_locale);
    case Output:
        return fmtTokens(row.output, m_locale);
    case Cache:
        return fmtTokens(row.cache, m_locale);
    case Cost:
        return fmtCost(row.cost);
    default:
        return {};
    }
}
