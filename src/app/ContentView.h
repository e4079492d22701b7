// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMainWindow>

class ProjectDetail;
class QStackedWidget;
class Sidebar;
class Store;

/// The window: the list of projects beside the detail of the selected one.
class ContentView : public QMainWindow {
    Q_OBJECT
public:
    explicit ContentView(Store &store, QWidget *parent = nullptr);

protected:
    bool event(QEvent *event) override;
    void showEvent(QShowEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void buildLayout();
    QWidget *buildPlaceholder();
    void addShortcuts();
    void followSelection();
    void updateDetail();
    void updateTitle();

    Store &m_store;
    bool m_appeared = false;
    Sidebar *m_sidebar = nullptr;
    QStackedWidget *m_detailArea = nullptr;
    QWidget *m_placeholder = nullptr;
    ProjectDetail *m_detail = nullptr; // of the selected project, if there is one
};
