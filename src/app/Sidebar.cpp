// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Sidebar.h"

#include "app/FileManager.h"
#include "app/ProjectDelegate.h"
#include "app/ProjectListModel.h"
#include "app/ReloadFoot.h"
#include "app/SidebarAccessible.h"
#include "model/Store.h"
#include "ui/CurrentRow.h"
#include "ui/EmptyState.h"
#include "ui/Icons.h"
#include "ui/TextLabel.h"

#include <QFileDialog>
#include <QListView>
#include <QMenu>
#include <QScopedValueRollback>
#include <QStackedWidget>
#include <QToolButton>
#include <QVBoxLayout>

namespace {

constexpr int smallestWidth = 200;
constexpr int usualWidth = 250;
constexpr int padding = 8;

} // namespace

Sidebar::Sidebar(Store &store, QWidget *parent)
    : QWidget(parent)
    , m_store(store)
    , m_model(new ProjectListModel(this))
    , m_list(new QListView(this))
    , m_emptyState(new EmptyState(
          QStringLiteral("folder.badge.questionmark"), QStringLiteral("No projects yet"),
          QStringLiteral("Click + to choose a folder, or run Claude Code to have projects appear "
                         "from ~/.claude/projects."),
          this))
    , m_body(new QStackedWidget(this))
{
    setFocusProxy(m_list);
    SidebarAccessible::install();
    setAccessibleName(QStringLiteral("Projects"));
    buildList();
    m_body->addWidget(m_list);
    m_body->addWidget(m_emptyState);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(buildToolBar());
    layout->addWidget(m_body, 1);
    new ReloadFoot(m_store, this);
    connectSignals();
    updateProjects();
}

QSize Sidebar::sizeHint() const
{
    return {qMax(usualWidth, minimumSizeHint().width()), QWidget::sizeHint().height()};
}

/// More than the least where the user's font is so large that the bar above needs it.
QSize Sidebar::minimumSizeHint() const
{
    const QSize needed = QWidget::minimumSizeHint();
    return {qMax(smallestWidth, needed.width()), needed.height()};
}

QWidget *Sidebar::buildToolBar()
{
    auto *bar = new QWidget(this);
    auto *title = new TextLabel(
        QStringLiteral("Projects"),
        {.size = TextStyle::Caption, .bold = true, .tone = TextLabel::Tone::Secondary}, bar);
    title->setBuddy(m_list);
    title->setToolTip(
        QStringLiteral("The menu key opens the menu of a project, %1 quits Plinthar")
            .arg(QKeySequence(Qt::CTRL | Qt::Key_Q).toString(QKeySequence::NativeText)));
    title->setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Fixed); // never shortened
    auto *addButton = new QToolButton(bar);
    addButton->setObjectName(QStringLiteral("addProject"));
    addButton->setText(QStringLiteral("Add Project"));
    addButton->setIcon(symbolIcon(u"plus", QPalette::ButtonText));
    addButton->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    addButton->setAutoRaise(true);
    addButton->setFocusPolicy(Qt::StrongFocus);
    addButton->setShortcut(QKeySequence(QKeySequence::Open));
    addButton->setToolTip(QStringLiteral("Add a project folder (%1)")
                              .arg(addButton->shortcut().toString(QKeySequence::NativeText)));
    connect(addButton, &QToolButton::clicked, this, &Sidebar::chooseFolder);
    auto *layout = new QHBoxLayout(bar);
    // The button has some room of its own. (A margin would not change its side with the direction.)
    layout->setContentsMargins(padding / 2, padding, padding / 2, padding);
    layout->setSpacing(0);
    layout->addSpacing(padding / 2);
    layout->addWidget(title, 1);
    layout->addWidget(addButton);
    return bar;
}

void Sidebar::buildList()
{
    m_list->setObjectName(QStringLiteral("projects"));
    m_list->setAccessibleName(QStringLiteral("Projects"));
    m_list->setModel(m_model);
    letCurrentRowFollowSelection(m_list);
    m_list->setItemDelegate(new ProjectDelegate(m_list));
    m_list->setUniformItemSizes(true);
    m_list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_list->setFrameShape(QFrame::NoFrame);
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_list->setContextMenuPolicy(Qt::CustomContextMenu);
}

void Sidebar::connectSignals()
{
    connect(&m_store, &Store::projectsChanged, this, &Sidebar::updateProjects);
    connect(&m_store, &Store::selectionChanged, this, &Sidebar::updateSelection);
    connect(&m_store, &Store::loadingChanged, this, &Sidebar::updateOverlay);
    connect(&m_store, &Store::reloadFinished, this, [this] {
        m_loaded = true;
        updateOverlay();
    });
    connect(m_list->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &Sidebar::takeSelection);
    connect(m_list, &QWidget::customContextMenuRequested, this, &Sidebar::showContextMenu);
}

void Sidebar::updateProjects()
{
    {
        const QScopedValueRollback updating(m_updating, true);
        m_model->setProjects(m_store.projects());
    }
    updateSelection();
    updateOverlay();
}

/// Lets the list follow the store.
void Sidebar::updateSelection()
{
    const QScopedValueRollback updating(m_updating, true);
    const QModelIndex index = m_model->indexOf(m_store.selection().value_or(QString()));
    if (index.isValid())
        m_list->setCurrentIndex(index);
    else
        m_list->clearSelection();
}

void Sidebar::updateOverlay()
{
    const bool nothing = m_loaded && m_store.projects().isEmpty() && !m_store.loading();
    m_body->setCurrentWidget(nothing ? m_emptyState : m_list);
}

/// Lets the store follow the user. A project stays selected when its row is clicked away.
void Sidebar::takeSelection()
{
    if (m_updating)
        return;
    const QModelIndexList selected = m_list->selectionModel()->selectedIndexes();
    if (selected.isEmpty())
        QMetaObject::invokeMethod(this, &Sidebar::updateSelection, Qt::QueuedConnection);
    else
        m_store.setSelection(selected.constFirst().data(ProjectListModel::PathRole).toString());
}

void Sidebar::showContextMenu(const QPoint &position)
{
    const QModelIndex index = m_list->indexAt(position);
    if (!index.isValid())
        return;
    const Project project = m_model->rows().at(index.row()).project;
    auto *menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    m_menu = menu;
    if (project.added)
        menu->addAction(QStringLiteral("Remove from list"), &m_store,
                        [this, project] { m_store.removeProject(project); });
    menu->addAction(QStringLiteral("Reveal in Finder"), this,
                    [this, project] { revealInFileManager(project.path, this); });
    menu->popup(m_list->viewport()->mapToGlobal(position));
}

void Sidebar::showMenuOfSelected()
{
    m_list->scrollTo(m_list->currentIndex());
    showContextMenu(m_list->visualRect(m_list->currentIndex()).center());
}

QMenu *Sidebar::openMenu() const
{
    return m_menu && m_menu->isVisible() ? m_menu.data() : nullptr;
}

void Sidebar::chooseFolder()
{
    auto *chooser = new QFileDialog(this);
    chooser->setAttribute(Qt::WA_DeleteOnClose);
    chooser->setWindowTitle(QStringLiteral("Add Project"));
    chooser->setFileMode(QFileDialog::Directory);
    chooser->setOption(QFileDialog::ShowDirsOnly);
    chooser->setLabelText(QFileDialog::Accept, QStringLiteral("Add Project"));
    connect(chooser, &QFileDialog::fileSelected, &m_store, &Store::addProject);
    chooser->open();
}
