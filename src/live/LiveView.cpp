// SPDX-License-Identifier: GPL-3.0-or-later
#include "live/LiveView.h"

#include "live/FolderDelegate.h"
#include "live/LiveModel.h"
#include "live/StopButtons.h"
#include "live/StopDelegate.h"
#include "live/StopDialog.h"
#include "model/Files.h"
#include "ui/CopyableLabel.h"
#include "ui/EmptyState.h"
#include "ui/Fonts.h"
#include "ui/Outlined.h"
#include "ui/Separator.h"
#include "ui/TableView.h"

#include <QAccessible>
#include <QCheckBox>
#include <QHeaderView>
#include <QShortcut>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace {

constexpr int padding = 10;

void measureTable(TableView *table)
{
    table->verticalHeader()->setDefaultSectionSize(table->fontMetrics().lineSpacing() + 14);
    const QFont bold = textFont(TextStyle::Body, true);
    table->setFixedColumn(LiveModel::Agent, 100, QStringLiteral("cursor-agent"), bold);
    table->setFixedColumn(LiveModel::Pid, 60, QStringLiteral("4194304"), numberFont());
    table->setFixedColumn(LiveModel::Cpu, 60, QStringLiteral("1000.0%"), numberFont());
    table->setFixedColumn(LiveModel::Uptime, 90, QStringLiteral("100-00:00:00"), numberFont());
    table->setFixedColumn(LiveModel::Stop,
                          qMax(60, StopDelegate::columnWidth(table->fontMetrics())));
}

void setUpTable(TableView *table)
{
    table->setObjectName(QStringLiteral("agents"));
    table->setAccessibleName(QStringLiteral("Running agents"));
    table->setItemDelegateForColumn(LiveModel::Folder, new FolderDelegate(table));
    table->setMeasures(measureTable);
    table->horizontalHeader()->setSectionResizeMode(LiveModel::Folder, QHeaderView::Stretch);
}

EmptyState *makeEmpty(const QString &title, QWidget *parent)
{
    return new EmptyState(QStringLiteral("moon.zzz"), title,
                          QStringLiteral("Running claude, codex, gemini and cursor-agent processes "
                                         "will show up here."),
                          parent);
}

} // namespace

LiveView::LiveView(const Project &project, ScanLoop::Scanner scanner, QWidget *parent)
    : QWidget(parent)
    , m_project(project)
    , m_loop(std::move(scanner))
    , m_model(new LiveModel(this))
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(buildHeader());
    layout->addWidget(new Separator(Qt::Horizontal, this));
    layout->addWidget(buildBody(), 1);
    connectSignals();
    StopButtons::install();
    showAgents();
}

QWidget *LiveView::buildHeader()
{
    auto *header = new QWidget(this);
    m_summary = new TextLabel(QString(), {.tone = TextLabel::Tone::Secondary}, header);
    m_summary->setObjectName(QStringLiteral("summary"));
    m_summary->setToolTip(
        QStringLiteral("%1 refreshes now, %2 or %3 asks whether to stop the selected agent, %4 "
                       "copies the selected rows")
            .arg(QKeySequence(QKeySequence::Refresh).toString(QKeySequence::NativeText),
                 QKeySequence(Qt::Key_Delete).toString(QKeySequence::NativeText),
                 QKeySequence(Qt::Key_Return).toString(QKeySequence::NativeText),
                 QKeySequence(QKeySequence::Copy).toString(QKeySequence::NativeText)));
    m_message = new CopyableLabel(
        QString(), {.size = TextStyle::Caption, .tone = TextLabel::Tone::Error}, header);
    m_message->setObjectName(QStringLiteral("message"));
    m_message->hide();
    m_onlyProject = new OutlinedCheckBox(QStringLiteral("Only this project"), header);
    auto *layout = new QHBoxLayout(header);
    layout->setContentsMargins(padding, padding, padding, padding);
    layout->setSpacing(padding);
    layout->addWidget(m_summary);
    layout->addStretch(1);
    layout->addWidget(m_message);
    layout->addWidget(m_onlyProject);
    return header;
}

QWidget *LiveView::buildBody()
{
    m_table = new TableView(this);
    m_table->setModel(m_model);
    setUpTable(m_table);
    m_scanningPage = makeEmpty(QStringLiteral("Scanning\u2026"), this);
    m_emptyPage = makeEmpty(QStringLiteral("No agents running"), this);
    m_body = new QStackedWidget(this);
    for (QWidget *page : {m_scanningPage, m_emptyPage, static_cast<QWidget *>(m_table)})
        m_body->addWidget(page);
    return m_body;
}

void LiveView::connectSignals()
{
    connect(&m_loop, &ScanLoop::scanned, this, &LiveView::take);
    connect(m_onlyProject, &QCheckBox::toggled, this, &LiveView::showAgents);
    auto *refresh = new QShortcut(QKeySequence(QKeySequence::Refresh), this);
    connect(refresh, &QShortcut::activated, &m_loop, &ScanLoop::scanNow);

    auto *button = new StopDelegate(m_table);
    m_table->setItemDelegateForColumn(LiveModel::Stop, button);
    connect(button, &StopDelegate::pressed, this, &LiveView::askToStop);
    connect(m_table, &QAbstractItemView::clicked, this, [this](const QModelIndex &index) {
        if (index.column() == LiveModel::Stop)
            askToStop(index);
    });
    for (const Qt::Key key : {Qt::Key_Delete, Qt::Key_Return, Qt::Key_Enter}) {
        auto *shortcut = new QShortcut(QKeySequence(key), m_table);
        shortcut->setContext(Qt::WidgetShortcut);
        connect(shortcut, &QShortcut::activated, this,
                [this] { askToStop(m_table->currentIndex()); });
    }
}

void LiveView::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    m_loop.start();
}

void LiveView::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    m_loop.stop();
}

void LiveView::take(const Scan &scan)
{
    m_scan = scan;
    m_scanned = true;
    showAgents();
}

void LiveView::showAgents()
{
    const QList<AgentProcess> shown =
        m_onlyProject->isChecked() ? agentsInside(m_scan.agents, m_project.path) : m_scan.agents;
    m_model->setRows(shown);
    m_summary->setText(QStringLiteral("%1 running \u00b7 refreshes every 2s").arg(shown.size()));
    if (!shown.isEmpty())
        m_body->setCurrentWidget(m_table);
    else
        m_body->setCurrentWidget(m_scanned ? m_emptyPage : m_scanningPage);
}

QModelIndex LiveView::stopCell(qint32 pid) const
{
    const QList<AgentProcess> &agents = m_model->rows();
    const auto agent = std::find_if(agents.cbegin(), agents.cend(),
                                    [pid](const AgentProcess &each) { return each.pid == pid; });
    return agent == agents.cend()
               ? QModelIndex()
               : m_model->index(static_cast<int>(agent - agents.cbegin()), LiveModel::Stop);
}

void LiveView::askToStop(const QModelIndex &index)
{
    if (m_pending || !index.isValid())
        return;
    const AgentProcess agent = m_model->rows().at(index.row());
    m_pending = Pending{agent, ProcessHandle(agent.pid, m_scan.at)};
    auto *dialog = new StopDialog(agent, this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &StopDialog::answered, this, [this](bool yes) {
        if (yes)
            stopPending();
        m_pending.reset();
    });
    dialog->open();
}

void LiveView::stopPending()
{
    const int error = m_pending->handle.terminate();
    if (error == 0)
        setMessage(std::nullopt);
    else
        setMessage(QStringLiteral("Could not stop PID %1: %2")
                       .arg(m_pending->agent.pid)
                       .arg(systemText(error)));
}

void LiveView::setMessage(const std::optional<QString> &message)
{
    m_message->setText(message.value_or(QString()));
    m_message->setVisible(message.has_value());
    if (message) {
        QAccessibleEvent alert(m_message, QAccessible::Alert);
        QAccessible::updateAccessibility(&alert);
    }
}
