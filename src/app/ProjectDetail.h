// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/Project.h"

#include <QWidget>

class QTabWidget;
class Store;

/// One project: its name and folder over the five tabs. A tab's screen is made when the tab is
/// first shown; that of the first tab by showScreen().
class ProjectDetail : public QWidget {
    Q_OBJECT
public:
    ProjectDetail(const Project &project, Store &store, QWidget *parent = nullptr);

    const Project &project() const { return m_project; }

    /// Makes the screen of the current tab, if it is not there yet.
    void showScreen();

private:
    QWidget *buildHeader();
    void buildTabs();
    void addShortcuts();
    void makeScreen(int tab);

    const Project m_project;
    Store &m_store;
    QTabWidget *m_tabs;
};
