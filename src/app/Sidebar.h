// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPointer>
#include <QWidget>

class ProjectListModel;
class QListView;
class QMenu;
class QStackedWidget;
class Store;
struct Project;

/// The list of projects, with the button that adds one.
class Sidebar : public QWidget {
    Q_OBJECT
public:
    explicit Sidebar(Store &store, QWidget *parent = nullptr);

    QSize sizeHint() const override;
    /// Opens the context menu of the selected project; none when there is no such project.
    void showMenuOfSelected();
    /// The context menu while it is open.
    QMenu *openMenu() const;
    QSize minimumSizeHint() const override;

private:
    QWidget *buildToolBar();
    void buildList();
    void connectSignals();

    void updateProjects();
    void updateSelection();
    void updateOverlay();
    void takeSelection();
    void showContextMenu(const QPoint &position);
    void chooseFolder();

    Store &m_store;
    ProjectListModel *m_model;
    QListView *m_list;
    QWidget *m_emptyState;
    QStackedWidget *m_body;
    QPointer<QMenu> m_menu;
    bool m_loaded = false;   // only after a first reload is an empty list worth a message
    bool m_updating = false; // the list follows the store, and not the other way round
};
