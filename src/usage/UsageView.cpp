// SPDX-License-Identifier: GPL-3.0-or-later
#include "usage/UsageView.h"

#include "model/Format.h"
#include "model/Store.h"
#include "ui/BusyPage.h"
#include "ui/EmptyState.h"
#include "ui/SegmentedSwitch.h"
#include "ui/TextLabel.h"
#include "usage/BarChart.h"

#include <QKeySequence>
#include <QScrollArea>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace {

constexpr int padding = 20;
constexpr int itemSpacing = 24;
constexpr int titleSpacing = 8; // between a chart and the title that belongs to it
constexpr int switchWidth = 260;
constexpr int dayChartHeight = 180;
constexpr int projectsSpacing = 20;
constexpr int leastProjectsHeight = 120;
constexpr int heightPerProject = 32;
constexpr int heightAroundProjects = 30;

/// Up to here the figures are made at once, so that a small project never flickers; beyond, beside
/// the interface thread.
constexpr qsizetype mostAtOnce = 20'000;

/// The order of the switch's segments.
enum Scope { AllProjects, OneProject };

/// Whether the sessions have so many records together that counting them should not be waited for.
bool isLarge(const SessionMap &sessions)
{
    qsizetype count = 0;
    for (const QList<Session> &list : sessions) {
        for (const Session &session : list) {
            count += 1 + session.records.size();
            if (count > mostAtOnce)
                return true;
        }
    }
    return false;
}

TextLabel *headline(const QString &text, const QString &name, QWidget *parent)
{
    auto *label = new TextLabel(text, {.size = TextStyle::Headline, .bold = true}, parent);
    label->setObjectName(name);
    return label;
}

BarChart *dayChartWidget(const QString &name, const QString &objectName, Measure measure,
                         Colors::Hue hue, QWidget *parent)
{
    auto *chart =
        new BarChart(name, {.bars = Qt::Vertical, .measure = measure, .hue = hue}, parent);
    chart->setObjectName(objectName);
    chart->setFixedHeight(dayChartHeight);
    return chart;
}

/// Says on the title of a chart which keys walk it.
void tellKeys(QWidget *title, Qt::Key back, Qt::Key forth)
{
    const auto text = [](Qt::Key key) {
        return QKeySequence(key).toString(QKeySequence::NativeText);
    };
    title->setToolTip(QStringLiteral("%1, %2, %3 and %4 walk the bars of the chart")
                          .arg(text(back), text(forth), text(Qt::Key_Home), text(Qt::Key_End)));
}

/// A caption over a chart.
QLayout *projectColumn(const QString &caption, BarChart *chart)
{
    auto *column = new QVBoxLayout;
    column->setSpacing(4);
    auto *label =
        new TextLabel(caption, {.size = TextStyle::Caption, .tone = TextLabel::Tone::Secondary},
                      chart->parentWidget());
    tellKeys(label, Qt::Key_Up, Qt::Key_Down);
    column->addWidget(label);
    column->addWidget(chart, 1);
    return column;
}

} // namespace

UsageView::UsageView(const Project &project, Store &store, const Clock &clock, QWidget *parent)
    : QWidget(parent)
    , m_project(project)
    , m_store(store)
    , m_clock(clock)
    , m_job(this)
    , m_dayWatch(clock)
{
    m_waiting = new BusyPage({}, this);
    m_empty = new EmptyState(
        QStringLiteral("chart.bar.xaxis"), QStringLiteral("No usage in the last 30 days"),
        QStringLiteral("Token usage from Claude Code sessions will be charted here."), this);
    m_page = new QScrollArea(this);
    m_page->setObjectName(QStringLiteral("usagePage"));
    m_page->setFrameShape(QFrame::NoFrame);
    m_page->setWidgetResizable(true);
    m_page->setFocusPolicy(Qt::NoFocus);
    m_page->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_page->setWidget(buildPage());
    m_page->viewport()->setAutoFillBackground(false);
    m_page->widget()->setAutoFillBackground(false);
    m_body = new QStackedWidget(this);
    for (QWidget *page : {m_waiting, m_empty, static_cast<QWidget *>(m_page)})
        m_body->addWidget(page);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_body);
    connectSignals();
}

QWidget *UsageView::buildPage()
{
    auto *content = new QWidget(this);
    auto *layout = new QVBoxLayout(content);
    layout->setContentsMargins(padding, padding, padding, padding);
    layout->setSpacing(itemSpacing);
    layout->addWidget(buildHeader()); // first, because Tab goes in the order of making
    m_tokensTitle = headline(QString(), QStringLiteral("tokensTitle"), content);
    m_dayTokens = dayChartWidget(QStringLiteral("Tokens per day"), QStringLiteral("dayTokens"),
                                 Measure::Tokens, Colors::Hue::Blue, content);
    m_costTitle = headline(QString(), QStringLiteral("costTitle"), content);
    m_dayCost =
        dayChartWidget(QStringLiteral("Estimated cost per day, in US dollars"),
                       QStringLiteral("dayCost"), Measure::Cost, Colors::Hue::Orange, content);
    for (const auto &[title, chart] :
         {std::pair{m_tokensTitle, m_dayTokens}, std::pair{m_costTitle, m_dayCost}}) {
        auto *item = new QVBoxLayout;
        item->setSpacing(titleSpacing);
        tellKeys(title, Qt::Key_Left, Qt::Key_Right);
        item->addWidget(title);
        item->addWidget(chart);
        layout->addLayout(item);
    }
    layout->addWidget(
        headline(QStringLiteral("Per project"), QStringLiteral("projectsTitle"), content));
    layout->addWidget(buildProjects());
    layout->addStretch();
    return content;
}

QWidget *UsageView::buildHeader()
{
    auto *header = new QWidget(this);
    auto *title = new TextLabel(QStringLiteral("Last 30 days"),
                                {.size = TextStyle::Title2, .bold = true}, header);
    m_scope = new SegmentedSwitch({QStringLiteral("All projects"), m_project.name()}, header);
    m_scope->setObjectName(QStringLiteral("usageScope"));
    m_scope->setAccessibleName(QStringLiteral("Scope of the daily charts"));
    m_scope->setUsualWidth(switchWidth, AllProjects);
    m_scope->setCurrent(OneProject);
    auto *layout = new QHBoxLayout(header);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(title);
    layout->addStretch();
    layout->addWidget(m_scope);
    return header;
}

QWidget *UsageView::buildProjects()
{
    m_projects = new QWidget(this);
    m_projects->setObjectName(QStringLiteral("projectCharts"));
    m_projectTokens = new BarChart(
        QStringLiteral("Tokens per project"),
        {.bars = Qt::Horizontal, .measure = Measure::Tokens, .hue = Colors::Hue::Blue}, m_projects);
    m_projectTokens->setObjectName(QStringLiteral("projectTokens"));
    m_projectCost = new BarChart(
        QStringLiteral("Estimated cost per project, in US dollars"),
        {.bars = Qt::Horizontal, .measure = Measure::Cost, .hue = Colors::Hue::Orange}, m_projects);
    m_projectCost->setObjectName(QStringLiteral("projectCost"));
    auto *row = new QHBoxLayout(m_projects);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(projectsSpacing);
    row->addLayout(projectColumn(QStringLiteral("Tokens"), m_projectTokens), 1);
    row->addLayout(projectColumn(QStringLiteral("Estimated cost (USD)"), m_projectCost), 1);
    return m_projects;
}

void UsageView::connectSignals()
{
    const auto refreshWhenShown = [this] {
        m_stale = true;
        if (isVisible())
            refresh();
    };
    connect(&m_store, &Store::sessionsChanged, this, refreshWhenShown);
    connect(&m_store, &Store::pricesChanged, this, refreshWhenShown);
    connect(&m_dayWatch, &DayWatch::dayChanged, this, refreshWhenShown);
    connect(m_scope, &SegmentedSwitch::currentChanged, this, &UsageView::showDays);
    for (BarChart *chart : {m_dayTokens, m_dayCost, m_projectTokens, m_projectCost}) {
        connect(chart, &BarChart::walked, this, [this, chart](const QRect &room) {
            const QPoint middle = chart->mapTo(m_page->widget(), room.center());
            m_page->ensureVisible(middle.x(), middle.y(), 0, room.height() / 2 + padding);
        });
    }
}

void UsageView::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    m_dayWatch.start();
    if (m_stale)
        refresh();
}

void UsageView::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    m_dayWatch.stop();
}

void UsageView::refresh()
{
    m_stale = false;
    const UsageInput input{.projects = m_store.projects(),
                           .sessions = m_store.sessions(),
                           .prices = m_store.prices(),
                           .path = m_project.path,
                           .now = m_clock.now(),
                           .zone = m_clock.zone()};
    if (!isLarge(input.sessions)) {
        m_job.cancel();
        showCharts(makeUsageCharts(input, locale()));
        return;
    }
    m_job.start([input, locale = locale()](
                    const std::stop_token &stop) { return makeUsageCharts(input, locale, stop); },
                [this](const UsageCharts &charts) { showCharts(charts); });
}

void UsageView::showCharts(const UsageCharts &charts)
{
    m_charts = charts;
    m_known = true;
    m_projects->setFixedHeight(
        std::max(leastProjectsHeight, static_cast<int>(m_charts.projectCount) * heightPerProject +
                                          heightAroundProjects));
    m_projectTokens->setContents(m_charts.projectTokens);
    m_projectCost->setContents(m_charts.projectCost);
    showDays();
}

void UsageView::showDays()
{
    if (!m_known)
        return;
    const UsageCharts::Days &days = m_charts.days(m_scope->current() == AllProjects);
    m_tokensTitle->setText(QStringLiteral("Tokens per day \u00b7 total %1")
                               .arg(fmtTokens(days.total.tokens, locale())));
    m_dayTokens->setContents(days.tokens);
    m_costTitle->setText(
        QStringLiteral("Estimated cost per day \u00b7 total %1").arg(fmtCost(days.total.cost)));
    m_dayCost->setContents(days.cost);
    m_body->setCurrentWidget(days.isEmpty ? m_empty : m_page);
}
