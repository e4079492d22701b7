// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/Project.h"
#include "ui/LatestJob.h"
#include "usage/DayWatch.h"
#include "usage/SessionTable.h"

#include <QWidget>

class EmptyState;
class QPushButton;
class QStackedWidget;
class SessionsModel;
class Store;
class TableView;
class TextLabel;

/// The first tab of a project: its recorded sessions with tokens and estimated cost.
class SessionsView : public QWidget {
    Q_OBJECT
public:
    SessionsView(const Project &project, Store &store, const Clock &clock = {},
                 QWidget *parent = nullptr);

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    QWidget *buildHeader();
    QWidget *buildBody();
    void connectSignals();

    /// Makes the table anew from the store's sessions and prices.
    void refresh();
    void show(const SessionTable &table);
    void showBody();
    void showPrices();
    QString emptyMessage() const;

    const Project m_project;
    Store &m_store;
    LatestJob m_job;
    DayWatch m_dayWatch;

    SessionsModel *m_model;
    TextLabel *m_summary = nullptr;
    QPushButton *m_pricesButton = nullptr;
    QPushButton *m_reloadButton = nullptr;
    QStackedWidget *m_body = nullptr;
    QWidget *m_busyPage = nullptr;
    EmptyState *m_emptyPage = nullptr;
    TableView *m_table = nullptr;
};
