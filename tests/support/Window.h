// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/ContentView.h"
#include "model/Store.h"
#include "support/PrivateHome.h"
#include "ui/EmptyState.h"

#include <QListView>
#include <QMenu>
#include <QTabWidget>
#include <QTableView>

#include <memory>

class QAbstractButton;
class QDialog;
class QLabel;

/// The descendant of that type (and name, if one is given). The program ends when there is none.
template <typename Widget>
Widget *find(const QWidget *in, const QString &name = {})
{
    Widget *found = in->findChild<Widget *>(name);
    if (!found)
        qFatal("no %s %s", Widget::staticMetaObject.className(), qPrintable(name));
    return found;
}

/// The button with that text. The program ends when there is none.
QAbstractButton *buttonOf(const QWidget *in, const QString &text);

/// The label with exactly that text which is to be seen; none when there is no such label.
QLabel *labelWith(const QWidget *in, const QString &text);

/// The modal window that is open, waiting until it is and has the focus.
QWidget *openModalWindow();

/// The dialog of that type that is open, as openModalWindow() gives it.
template <typename Dialog>
Dialog *openDialog()
{
    auto *dialog = qobject_cast<Dialog *>(openModalWindow());
    if (!dialog)
        qFatal("no %s is open", Dialog::staticMetaObject.className());
    return dialog;
}

/// The context menu that is open, waiting for it.
QMenu *openMenu();
QStringList entriesOf(const QMenu *menu);
/// Chooses an entry with the mouse.
void chooseEntry(QMenu *menu, const QString &text);

/// The program's window over a store of its own, which reads the given home.
class Window {
public:
    explicit Window(const PrivateHome &home);

    /// Shows the window and waits until it has the focus.
    void show();
    /// Shows the window and waits until the first reload is over.
    void load();
    /// Starts a reload and waits until it is over.
    void reload();
    /// Closes and deletes the window, then the store.
    void destroy();

    Store &store() { return *m_store; }
    ContentView &view() { return *m_view; }

    QListView *projects() const
    {
        return find<QListView>(m_view.get(), QStringLiteral("projects"));
    }
    QStringList projectNames() const;
    /// The name in the selected row of the sidebar; empty when none is selected.
    QString selectedName() const;
    /// The placeholder over the list of projects.
    EmptyState *overlay() const;
    /// The context menu of a project, opened with the mouse.
    QMenu *menuOf(int row);

    /// What stands beside the sidebar.
    QWidget *detail() const;
    QTabWidget *tabs() const { return find<QTabWidget>(detail()); }
    QTableView *sessions() const
    {
        return find<QTableView>(detail(), QStringLiteral("sessionsTable"));
    }
    QString summary() const;
    /// Opens the price editor with the mouse.
    QDialog *openPrices();

private:
    std::unique_ptr<Store> m_store;
    std::unique_ptr<ContentView> m_view;
};
