// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/Project.h"
#include "ui/LatestJob.h"
#include "usage/DayWatch.h"
#include "usage/UsageCharts.h"

#include <QWidget>

class BarChart;
class QScrollArea;
class QStackedWidget;
class SegmentedSwitch;
class Store;
class TextLabel;

/// The fourth tab of a project: what was used in the last 30 days, by day and by project.
class UsageView : public QWidget {
    Q_OBJECT
public:
    UsageView(const Project &project, Store &store, const Clock &clock = {},
              QWidget *parent = nullptr);

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    QWidget *buildPage();
    QWidget *buildHeader();
    QWidget *buildProjects();
    void connectSignals();

    /// Has the figures made anew. Until they are there the old ones stay.
    void refresh();
    void showCharts(const UsageCharts &charts);
    void showDays();

    const Project m_project;
    Store &m_store;
    const Clock m_clock;
    LatestJob m_job;
    DayWatch m_dayWatch;
    UsageCharts m_charts;
    bool m_known = false; // whether m_charts holds figures
    bool m_stale = true;  // whether they have to be made anew when the tab is shown

    QStackedWidget *m_body = nullptr;
    QWidget *m_waiting = nullptr;
    QWidget *m_empty = nullptr;
    QScrollArea *m_page = nullptr;
    SegmentedSwitch *m_scope = nullptr;
    TextLabel *m_tokensTitle = nullptr;
    BarChart *m_dayTokens = nullptr;
    TextLabel *m_costTitle = nullptr;
    BarChart *m_dayCost = nullptr;
    QWidget *m_projects = nullptr;
    BarChart *m_projectTokens = nullptr;
    BarChart *m_projectCost = nullptr;
};
