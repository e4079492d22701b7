// SPDX-License-Identifier: GPL-3.0-or-later
#include "live/StopButtons.h"

#include "live/LiveModel.h"
#include "live/LiveView.h"
#include "ui/AccessiblePart.h"
#include "ui/TableView.h"

#include <QAccessibleWidget>

namespace {

/// The button of one process, whichever row it is in.
class Button : public AccessiblePart<LiveView>, public QAccessibleActionInterface {
public:
    Button(LiveView *view, qint32 pid) : AccessiblePart(view), m_pid(pid) {}

    bool isValid() const override { return cell().isValid(); }
    QAccessible::Role role() const override { return QAccessible::PushButton; }

    QString text(QAccessible::Text what) const override
    {
        const QModelIndex index = cell();
        if (!index.isValid())
            return {};
        if (what == QAccessible::Name)
            return QStringLiteral("%1 %2").arg(
                index.data(Qt::AccessibleTextRole).toString(),
                index.data(Qt::AccessibleDescriptionRole).toString());
        return what == QAccessible::Description ? index.data(Qt::ToolTipRole).toString()
                                                : QString();
    }

    QRect rect() const override
    {
        const QModelIndex index = cell();
        if (!index.isValid())
            return {};
        const TableView *table = widget()->table();
        return onScreen(table->viewport(), table->visualRect(index));
    }

    QAccessible::State state() const override
    {
        QAccessible::State state;
        const QModelIndex index = cell();
        state.invalid = !index.isValid();
        if (state.invalid) {
            state.invisible = true;
            return state;
        }
        const TableView *table = widget()->table();
        state.invisible = !table->isVisible();
        state.offscreen = !table->viewport()->rect().intersects(table->visualRect(index));
        return state;
    }

    void *interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::ActionInterface
                   ? static_cast<QAccessibleActionInterface *>(this)
                   : nullptr;
    }
    QStringList actionNames() const override { return {pressAction()}; }
    void doAction(const QString &action) override
    {
        if (action == pressAction() && widget())
            widget()->askToStop(cell());
    }
    QStringList keyBindingsForAction(const QString &) const override { return {}; }

private:
    QModelIndex cell() const { return widget() ? widget()->stopCell(m_pid) : QModelIndex(); }

    const qint32 m_pid;
};

class Interface : public QAccessibleWidget {
public:
    explicit Interface(LiveView *view) : QAccessibleWidget(view)
    {
        const QAbstractItemModel *model = view->table()->model();
        const auto tellEach = [this](QAccessible::Event what) {
            return
                [this, what](const QModelIndex &, int first, int last) { tell(what, first, last); };
        };
        const auto tellAll = [this](QAccessible::Event what) {
            return [this, what] { tell(what, 0, rowCount() - 1); };
        };
        using Model = QAbstractItemModel;
        m_connections = {
            QObject::connect(model, &Model::rowsInserted, tellEach(QAccessible::ObjectCreated)),
            QObject::connect(model, &Model::rowsAboutToBeRemoved,
                             tellEach(QAccessible::ObjectDestroyed)),
            QObject::connect(model, &Model::modelAboutToBeReset,
                             tellAll(QAccessible::ObjectDestroyed)),
            QObject::connect(model, &Model::modelReset, tellAll(QAccessible::ObjectCreated))};
    }

    ~Interface() override
    {
        for (const QMetaObject::Connection &connection : m_connections)
            QObject::disconnect(connection);
        for (const QAccessible::Id id : std::as_const(m_buttons))
            QAccessible::deleteAccessibleInterface(id);
    }

    int childCount() const override { return QAccessibleWidget::childCount() + rowCount(); }

    QAccessibleInterface *child(int index) const override
    {
        const int row = index - QAccessibleWidget::childCount();
        if (row < 0)
            return QAccessibleWidget::child(index);
        return row < rowCount() ? button(row) : nullptr;
    }

    int indexOfChild(const QAccessibleInterface *child) const override
    {
        for (int row = 0; row < rowCount(); ++row) {
            if (button(row) == child)
                return QAccessibleWidget::childCount() + row;
        }
        return QAccessibleWidget::indexOfChild(child);
    }

private:
    LiveView *view() const { return static_cast<LiveView *>(widget()); }
    int rowCount() const { return view() ? view()->table()->model()->rowCount() : 0; }

    QAccessibleInterface *button(int row) const
    {
        const qint32 pid =
            view()->table()->model()->index(row, LiveModel::Pid).data().toString().toInt();
        auto known = m_buttons.constFind(pid);
        if (known == m_buttons.constEnd())
            known = m_buttons.insert(
                pid, QAccessible::registerAccessibleInterface(new Button(view(), pid)));
        return QAccessible::accessibleInterface(*known);
    }

    void tell(QAccessible::Event what, int first, int last) const
    {
        for (int row = first; row <= last; ++row) {
            QAccessibleEvent event(button(row), what);
            QAccessible::updateAccessibility(&event);
        }
    }

    mutable QHash<qint32, QAccessible::Id> m_buttons; // by process
    QList<QMetaObject::Connection> m_connections;
};

QAccessibleInterface *makeInterface(const QString &, QObject *object)
{
    auto *view = qobject_cast<LiveView *>(object);
    return view && view->table() ? new Interface(view) : nullptr;
}

} // namespace

void StopButtons::install()
{
    QAccessible::installFactory(makeInterface); // which ignores what it has already
}
