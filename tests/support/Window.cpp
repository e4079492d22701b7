// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/Window.h"

#include "app/ProjectDetail.h"
#include "app/Sidebar.h"
#include "support/Input.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QLayout>
#include <QSignalSpy>

namespace {

/// Waits for something that the program ends without.
template <typename Condition>
void await(Condition condition, const char *what)
{
    if (!QTest::qWaitFor(condition, 60'000))
        qFatal("waited in vain for %s", what);
}

/// Qt also calls a window active whose parent has the focus; keys need the focus itself.
void awaitFocus(QWidget *window)
{
    window->activateWindow();
    await([window] { return QGuiApplication::focusWindow() == window->windowHandle(); },
          "the focus");
}

} // namespace

QAbstractButton *buttonOf(const QWidget *in, const QString &text)
{
    for (QAbstractButton *button : in->findChildren<QAbstractButton *>()) {
        if (button->text() == text)
            return button;
    }
    qFatal("no button %s", qPrintable(text));
}

QLabel *labelWith(const QWidget *in, const QString &text)
{
    for (QLabel *label : in->findChildren<QLabel *>()) {
        if (label->isVisible() && label->text() == text)
            return label;
    }
    return nullptr;
}

QWidget *openModalWindow()
{
    await([] { return QApplication::activeModalWidget() != nullptr; }, "a dialog");
    QWidget *window = QApplication::activeModalWidget();
    awaitFocus(window);
    return window;
}

QMenu *openMenu()
{
    await([] { return qobject_cast<QMenu *>(QApplication::activePopupWidget()); }, "a menu");
    return qobject_cast<QMenu *>(QApplication::activePopupWidget());
}

QStringList entriesOf(const QMenu *menu)
{
    QStringList texts;
    for (const QAction *action : menu->actions())
        texts.append(action->text());
    return texts;
}

void chooseEntry(QMenu *menu, const QString &text)
{
    for (QAction *action : menu->actions()) {
        if (action->text() == text)
            return Input::clickAt(menu, menu->actionGeometry(action).center());
    }
    qFatal("no entry %s", qPrintable(text));
}

Window::Window(const PrivateHome &home)
    : m_store(std::make_unique<Store>(home.claude()))
    , m_view(std::make_unique<ContentView>(*m_store))
{
}

void Window::show()
{
    m_view->show();
    awaitFocus(m_view.get());
}

void Window::load()
{
    QSignalSpy finished(m_store.get(), &Store::reloadFinished);
    show();
    await([&finished] { return !finished.isEmpty(); }, "the first reload");
    (void)detail();
}

void Window::reload()
{
    QSignalSpy finished(m_store.get(), &Store::reloadFinished);
    m_store->reload();
    await([&finished] { return !finished.isEmpty(); }, "a reload");
    (void)detail();
}

void Window::destroy()
{
    m_view.reset();
    m_store.reset();
}

QStringList Window::projectNames() const
{
    const QAbstractItemModel *model = projects()->model();
    QStringList names;
    for (int row = 0; row < model->rowCount(); ++row)
        names.append(model->index(row, 0).data().toString());
    return names;
}

QString Window::selectedName() const
{
    const QModelIndexList selected = projects()->selectionModel()->selectedIndexes();
    return selected.isEmpty() ? QString() : selected.constFirst().data().toString();
}

EmptyState *Window::overlay() const
{
    return find<EmptyState>(find<Sidebar>(m_view.get()));
}

QMenu *Window::menuOf(int row)
{
    Input::clickCell(projects(), row, 0, {.button = Qt::RightButton});
    return openMenu();
}

QWidget *Window::detail() const
{
    // The first project is opened in steps.
    await(
        [this] {
            const auto *detail = m_view->findChild<ProjectDetail *>();
            const auto *pages = detail ? detail->findChild<QTabWidget *>() : nullptr;
            return pages ? !pages->currentWidget()->layout()->isEmpty() : !m_store->selected();
        },
        "the selected project");
    for (QWidget *widget : m_view->findChildren<ProjectDetail *>()) {
        if (widget->isVisible())
            return widget;
    }
    for (EmptyState *widget : m_view->findChildren<EmptyState *>()) {
        if (widget->isVisible() && widget != overlay())
            return widget;
    }
    qFatal("there is nothing beside the sidebar");
}

QString Window::summary() const
{
    return find<QLabel>(detail(), QStringLiteral("summary"))->text();
}

QDialog *Window::openPrices()
{
    Input::click(buttonOf(detail(), QStringLiteral("Price Table\u2026")));
    return openDialog<QDialog>();
}
