// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "live/ProcessHandle.h"
#include "live/ScanLoop.h"
#include "model/Project.h"

#include <QModelIndex>
#include <QWidget>

#include <optional>

class LiveModel;
class QCheckBox;
class QStackedWidget;
class TableView;
class TextLabel;

/// The second tab of a project: the agents that are running on this machine, each with a button
/// that asks it to stop. Looks for them only while it is shown.
class LiveView : public QWidget {
    Q_OBJECT
public:
    explicit LiveView(const Project &project, ScanLoop::Scanner scanner = scanMachine,
                      QWidget *parent = nullptr);

    TableView *table() const { return m_table; }
    /// The cell of a process that stands for its Stop button; invalid when it is not listed.
    QModelIndex stopCell(qint32 pid) const;
    /// Asks whether to stop the process of a row.
    void askToStop(const QModelIndex &index);

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    /// A process whose end the user is asked about.
    struct Pending {
        AgentProcess agent;
        ProcessHandle handle;
    };

    QWidget *buildHeader();
    QWidget *buildBody();
    void connectSignals();

    void take(const Scan &scan);
    void showAgents();
    void stopPending();
    void setMessage(const std::optional<QString> &message);

    const Project m_project;
    ScanLoop m_loop;
    Scan m_scan;
    bool m_scanned = false;
    std::optional<Pending> m_pending;

    LiveModel *m_model;
    TextLabel *m_summary = nullptr;
    TextLabel *m_message = nullptr;
    QCheckBox *m_onlyProject = nullptr;
    QStackedWidget *m_body = nullptr;
    QWidget *m_scanningPage = nullptr;
    QWidget *m_emptyPage = nullptr;
    TableView *m_table = nullptr;
};
