// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/SidebarAccessible.h"

#include "app/Sidebar.h"

#include <QAccessibleWidget>
#include <QMenu>

namespace {

class Interface : public QAccessibleWidget {
public:
    explicit Interface(Sidebar *sidebar) : QAccessibleWidget(sidebar, QAccessible::Grouping) {}

    QStringList actionNames() const override
    {
        return QAccessibleWidget::actionNames() << showMenuAction();
    }
    void doAction(const QString &action) override
    {
        if (action == showMenuAction())
            static_cast<Sidebar *>(widget())->showMenuOfSelected();
        else
            QAccessibleWidget::doAction(action);
    }

    // A menu is a window of its own, and Qt lists such windows nowhere.
    int childCount() const override { return QAccessibleWidget::childCount() + (menu() ? 1 : 0); }
    QAccessibleInterface *child(int index) const override
    {
        if (menu() && index == QAccessibleWidget::childCount())
            return QAccessible::queryAccessibleInterface(menu());
        return QAccessibleWidget::child(index);
    }
    int indexOfChild(const QAccessibleInterface *child) const override
    {
        if (menu() && child && child->object() == menu())
            return QAccessibleWidget::childCount();
        return QAccessibleWidget::indexOfChild(child);
    }

private:
    QMenu *menu() const { return static_cast<Sidebar *>(widget())->openMenu(); }
};

QAccessibleInterface *makeInterface(const QString &, QObject *object)
{
    auto *sidebar = qobject_cast<Sidebar *>(object);
    return sidebar ? new Interface(sidebar) : nullptr;
}

} // namespace

void SidebarAccessible::install()
{
    QAccessible::installFactory(makeInterface); // which ignores what it has already
}
