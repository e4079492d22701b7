// SPDX-License-Identifier: GPL-3.0-or-later
#include "usage/SessionsView.h"

#include "model/Format.h"
#include "model/Store.h"
#include "ui/BusyPage.h"
#include "ui/EmphasisButton.h"
#include "ui/EmptyState.h"
#include "ui/Fonts.h"
#include "ui/Icons.h"
#include "ui/Separator.h"
#include "ui/TableView.h"
#include "ui/TextLabel.h"
#include "usage/PriceEditor.h"
#include "usage/PromptDelegate.h"
#include "usage/SessionsModel.h"
#include "usage/StartDelegate.h"
#include "usage/StartText.h"

#include <QHeaderView>
#include <QPushButton>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace {

constexpr int padding = 10;
constexpr int numberWidth = 70;

/// Up to here the table is made at once, so that a small project never flickers; beyond, beside the
/// interface thread.
constexpr qsizetype mostAtOnce = 20'000;

QString longestOf(const QStringList &texts, const QFontMetrics &metrics)
{
    return *std::max_element(texts.cbegin(), texts.cend(),
                             [&metrics](const QString &a, const QString &b) {
                                 return metrics.horizontalAdvance(a) < metrics.horizontalAdvance(b);
                             });
}

/// The longest of some dates as the user's locale writes them.
QString longestStart(const TableView *table)
{
    using namespace std::chrono;
    const QLocale locale = table->locale();
    const QString format = mediumDateTimeFormat(locale);
    QStringList texts;
    for (unsigned monthOfYear = 1; monthOfYear <= 12; ++monthOfYear) {
        for (const hours hour : {hours(10), hours(22)}) {
            const sys_days date = year(2028) / month(monthOfYear) / 28;
            texts.append(startText(date + hour, locale, format));
        }
    }
    return longestOf(texts, table->fontMetrics());
}

void measureTable(TableView *table)
{
    const QString start = longestStart(table);
    table->verticalHeader()->setDefaultSectionSize(2 * table->fontMetrics().lineSpacing() + 8);
    const QStringList halves = StartDelegate::halves(start, table->fontMetrics());
    table->setResizableColumn(SessionsModel::Started, 120, 140, start,
                              longestOf(halves, table->fontMetrics()));
    const QFont font = numberFont();
    const auto setNumbers = [table, &font](int column, int width, const QString &widest) {
        table->setFixedColumn(column, width, widest, font);
    };
    setNumbers(SessionsModel::Duration, numberWidth, QStringLiteral("59m 59s"));
    setNumbers(SessionsModel::Turns, 50, QStringLiteral("999"));
    for (const int column : {SessionsModel::Input, SessionsModel::Output, SessionsModel::Cache})
        setNumbers(column, numberWidth, QStringLiteral("999.9k"));
    setNumbers(SessionsModel::Cost, numberWidth, QStringLiteral("$99.99"));
    table->setFlexibleColumn(SessionsModel::FirstPrompt, 180);
}

void setUpTable(TableView *table)
{
    table->setObjectName(QStringLiteral("sessionsTable"));
    table->setAccessibleName(QStringLiteral("Sessions"));
    table->setItemDelegateForColumn(SessionsModel::Started, new StartDelegate(table));
    table->setItemDelegateForColumn(SessionsModel::FirstPrompt, new PromptDelegate(table));
    table->setMeasures(measureTable);
}

} // namespace

SessionsView::SessionsView(const Project &project, Store &store, const Clock &clock,
                           QWidget *parent)
    : QWidget(parent)
    , m_project(project)
    , m_store(store)
    , m_job(this)
    , m_dayWatch(clock)
    , m_model(new SessionsModel(locale(), this))
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(buildHeader());
    layout->addWidget(new Separator(Qt::Horizontal, this));
    layout->addWidget(buildBody(), 1);
    connectSignals();
    refresh();
}

QWidget *SessionsView::buildHeader()
{
    auto *header = new QWidget(this);
    m_summary = new TextLabel(QString(), {.tone = TextLabel::Tone::Secondary}, header);
    m_summary->setObjectName(QStringLiteral("summary"));
    m_summary->setToolTip(
        QStringLiteral("%1 copies the selected sessions")
            .arg(QKeySequence(QKeySequence::Copy).toString(QKeySequence::NativeText)));
    m_pricesButton = new EmphasisButton(QStringLiteral("Price Table\u2026"), header);
    m_reloadButton = new EmphasisButton(QStringLiteral("Reload"), header);
    m_reloadButton->setIcon(symbolIcon(u"arrow.clockwise", QPalette::ButtonText));
    m_reloadButton->setShortcut(QKeySequence(QKeySequence::Refresh));
    m_reloadButton->setToolTip(
        QStringLiteral("Read all sessions again (%1)")
            .arg(m_reloadButton->shortcut().toString(QKeySequence::NativeText)));
    auto *layout = new QHBoxLayout(header);
    layout->setContentsMargins(padding, padding, padding, padding);
    layout->addWidget(m_summary, 1);
    layout->addWidget(m_pricesButton);
    layout->addWidget(m_reloadButton);
    return header;
}

QWidget *SessionsView::buildBody()
{
    m_table = new TableView(this);
    m_table->setModel(m_model);
    setUpTable(m_table);
    m_busyPage = new BusyPage(QStringLiteral("Reading sessions\u2026"), this);
    m_emptyPage = new EmptyState(QStringLiteral("tray"), QStringLiteral("No sessions found"),
                                 emptyMessage(), this);
    m_emptyPage->setMessageCopyable();
    m_body = new QStackedWidget(this);
    for (QWidget *page :
         {m_busyPage, static_cast<QWidget *>(m_emptyPage), static_cast<QWidget *>(m_table)})
        m_body->addWidget(page);
    return m_body;
}

void SessionsView::connectSignals()
{
    connect(m_pricesButton, &QPushButton::clicked, this, &SessionsView::showPrices);
    connect(m_reloadButton, &QPushButton::clicked, &m_store, &Store::reload);
    connect(&m_store, &Store::sessionsChanged, this, &SessionsView::refresh);
    connect(&m_store, &Store::pricesChanged, this, &SessionsView::refresh);
    connect(&m_store, &Store::loadingChanged, this, &SessionsView::showBody);
    // When the time zone is another, so is the time at which every session began.
    connect(&m_dayWatch, &DayWatch::dayChanged, m_model, &SessionsModel::tellStartsChanged);
}

void SessionsView::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    m_dayWatch.start();
}

void SessionsView::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    m_dayWatch.stop();
}

void SessionsView::refresh()
{
    const QList<Session> sessions = m_store.sessions().value(m_project.path);
    const QList<PriceRow> prices = m_store.prices();
    if (sessions.size() + recordCount(sessions) <= mostAtOnce) {
        m_job.cancel();
        show(makeSessionTable(sessions, prices));
        return;
    }
    m_job.start(
        [sessions, prices](const std::stop_token &stop) {
            return makeSessionTable(sessions, prices, stop);
        },
        [this](const SessionTable &table) { show(table); });
}

void SessionsView::show(const SessionTable &table)
{
    m_model->setRows(table.rows);
    m_summary->setText(QStringLiteral("%1 sessions \u00b7 %2 estimated")
                           .arg(table.rows.size())
                           .arg(fmtCost(table.cost)));
    showBody();
}

void SessionsView::showBody()
{
    m_emptyPage->setMessage(emptyMessage());
    if (m_model->rowCount() > 0)
        m_body->setCurrentWidget(m_table);
    else if (m_store.loading() || m_job.busy())
        m_body->setCurrentWidget(m_busyPage);
    else
        m_body->setCurrentWidget(m_emptyPage);
}

void SessionsView::showPrices()
{
    auto *editor = new PriceEditor(m_store, this);
    editor->setAttribute(Qt::WA_DeleteOnClose);
    editor->open();
}

QString SessionsView::emptyMessage() const
{
    // The project may have got its log folder since this screen was made.
    const Project project = m_store.project(m_project.path).value_or(m_project);
    if (project.claudeDir)
        return QStringLiteral("No readable .jsonl session files in %1.").arg(*project.claudeDir);
    return QStringLiteral("Claude Code has no session history for this folder yet. Run `claude` in "
                          "%1 and sessions will appear here.")
        .arg(project.path);
}
