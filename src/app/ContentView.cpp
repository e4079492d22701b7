// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ContentView.h"

#include "app/ProjectDetail.h"
#include "app/Sidebar.h"
#include "model/Store.h"
#include "ui/EmptyState.h"
#include "ui/FocusRing.h"
#include "ui/ForeignText.h"
#include "ui/PaneSplitter.h"

#include <QApplication>
#include <QEvent>
#include <QShortcut>
#include <QStackedWidget>
#include <QTimer>
#include <QWindow>

namespace {

constexpr QSize smallestContent(1000, 640);
constexpr int sidebarWidth = 250;

} // namespace

ContentView::ContentView(Store &store, QWidget *parent) : QMainWindow(parent), m_store(store)
{
    buildLayout();
    addShortcuts();
    new FocusRing(this);
    connect(&m_store, &Store::selectionChanged, this, &ContentView::followSelection);
    connect(&m_store, &Store::projectsChanged, this, &ContentView::followSelection);
    updateTitle();
    updateDetail();
}

void ContentView::buildLayout()
{
    m_sidebar = new Sidebar(m_store, this);
    m_placeholder = buildPlaceholder();
    m_detailArea = new QStackedWidget(this);
    m_detailArea->addWidget(m_placeholder);

    setCentralWidget(new PaneSplitter(m_sidebar, sidebarWidth, m_detailArea,
                                      smallestContent.width() - sidebarWidth, this));
    setMinimumSize(smallestContent);
    m_sidebar->setFocus(); // the arrow keys walk the projects from the start
}

QWidget *ContentView::buildPlaceholder()
{
    auto *placeholder =
        new EmptyState(QStringLiteral("rectangle.stack"), QStringLiteral("Select a project"),
                       QStringLiteral("Pick or add a project in the sidebar."), this);
    // The tabs reload with the same key; here it serves who has no project yet.
    auto *reload = new QShortcut(QKeySequence(QKeySequence::Refresh), placeholder);
    connect(reload, &QShortcut::activated, &m_store, &Store::reload);
    return placeholder;
}

void ContentView::addShortcuts()
{
    // QKeySequence::Quit is empty where no desktop's theme is loaded.
    auto *quit = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q), this);
    connect(quit, &QShortcut::activated, this, &QWidget::close);
}

/// Qt tells only windows that the application's font is another one. What has a font of a size of
/// its own hears it from here, and follows.
bool ContentView::event(QEvent *event)
{
    const bool taken = QMainWindow::event(event);
    if (event->type() != QEvent::ApplicationFontChange)
        return taken;
    for (QWidget *inside : findChildren<QWidget *>()) {
        QEvent told(QEvent::ApplicationFontChange);
        QCoreApplication::sendEvent(inside, &told);
    }
    return taken;
}

void ContentView::showEvent(QShowEvent *event)
{
    QMainWindow::showEvent(event);
    if (!m_appeared)
        windowHandle()->installEventFilter(this);
}

/// Loads once, when the window has appeared. Not before its first painting, which the reading would
/// delay on a machine with few cores.
bool ContentView::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Expose && windowHandle()->isExposed() && !m_appeared) {
        m_appeared = true;
        watched->removeEventFilter(this);
        QTimer::singleShot(0, &m_store, &Store::reload);
    }
    return QMainWindow::eventFilter(watched, event);
}

/// The first project brings with it the window's first table and most of its fonts and symbols.
/// Opened in steps with a painting between them, it keeps no click waiting; later ones open at
/// once.
void ContentView::followSelection()
{
    updateTitle();
    if (m_detail)
        updateDetail();
    else
        QTimer::singleShot(0, this, &ContentView::updateDetail);
}

/// Shows the selected project, in a detail of its own for each path, so that no tab keeps anything
/// from one project to the next.
void ContentView::updateDetail()
{
    const std::optional<Project> selected = m_store.selected();
    if (m_detail && selected && m_detail->project().path == selected->path)
        return;
    ProjectDetail *const before = m_detail;
    m_detail = selected ? new ProjectDetail(*selected, m_store, m_detailArea) : nullptr;
    if (m_detail)
        m_detailArea->addWidget(m_detail);
    if (m_detail && before)
        m_detail->showScreen();
    else if (m_detail)
        QTimer::singleShot(0, m_detail, &ProjectDetail::showScreen);
    m_detailArea->setCurrentWidget(m_detail ? m_detail : m_placeholder);
    if (before) {
        m_detailArea->removeWidget(before);
        before->deleteLater();
    }
}

void ContentView::updateTitle()
{
    const std::optional<Project> selected = m_store.selected();
    QString title = selected ? ForeignText::title(selected->name()) : QStringLiteral("Plinthar");
    // Qt would take this for its mark of a changed document.
    title.replace(QStringLiteral("[*]"), QStringLiteral("[*][*]"));
    setWindowTitle(title);
}
