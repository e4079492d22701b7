// SPDX-License-Identifier: GPL-3.0-or-later
#include "live/LiveModel.h"

#include "ui/Fonts.h"
#include "ui/ToolTips.h"

namespace {

bool isNumber(int column)
{
    return column == LiveModel::Pid || column == LiveModel::Cpu || column == LiveModel::Uptime;
}

int alignment(int column)
{
    return int((isNumber(column) ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
}

QString text(const AgentProcess &agent, int column)
{
    switch (column) {
    case LiveModel::Agent:
        return agent.agent;
    case LiveModel::Pid:
        return QString::number(agent.pid);
    case LiveModel::Folder:
        return agent.folder;
    case LiveModel::Cpu:
        return fmtCpu(agent.cpu);
    case LiveModel::Uptime:
        return agent.uptime;
    default:
        return {};
    }
}

QVariant font(int column)
{
    if (isNumber(column))
        return numberFont();
    if (column != LiveModel::Agent)
        return {};
    QFont bold;
    bold.setBold(true);
    return bold;
}

QVariant toolTip(const AgentProcess &agent, int column)
{
    if (column == LiveModel::Folder)
        return plainToolTip(agent.folder);
    if (column == LiveModel::Stop)
        return QStringLiteral("Ask this process to terminate (Del)");
    return {};
}

} // namespace

int LiveModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant LiveModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    static const QStringList titles{QStringLiteral("Agent"),  QStringLiteral("PID"),
                                    QStringLiteral("Folder"), QStringLiteral("CPU"),
                                    QStringLiteral("Uptime"), QString()};
    if (orientation != Qt::Horizontal)
        return {};
    switch (role) {
    case Qt::DisplayRole:
        return titles.at(section);
    case Qt::TextAlignmentRole:
        return alignment(section);
    case Qt::ToolTipRole:
        return section == Cpu ? QStringLiteral("Average over the life of the process") : QVariant();
    case Qt::AccessibleTextRole:
        return section == Stop ? QStringLiteral("Stop") : QVariant();
    default:
        return {};
    }
}

QVariant LiveModel::data(const QModelIndex &index, int role) const
{
    const AgentProcess &agent = rows().at(index.row());
    switch (role) {
    case Qt::DisplayRole:
        return text(agent, index.column());
    case Qt::TextAlignmentRole:
        return alignment(index.column());
    case Qt::FontRole:
        return font(index.column());
    case Qt::ToolTipRole:
        return toolTip(agent, index.column());
    case Qt::AccessibleTextRole: // the delegate paints a button, which nobody else tells
        return index.column() == Stop ? QStringLiteral("Stop") : QVariant();
    case Qt::AccessibleDescriptionRole:
        return index.column() == Stop ? QStringLiteral("%1, PID %2").arg(agent.agent).arg(agent.pid)
                                      : QVariant();
    default:
        return {};
    }
}
