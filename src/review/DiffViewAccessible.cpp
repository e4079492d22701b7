// SPDX-License-Identifier: GPL-3.0-or-later
#include "review/DiffViewAccessible.h"

#include "review/DiffView.h"
#include "ui/AccessiblePart.h"

#include <QAccessibleWidget>

namespace {

/// How many rows are kept for those who have asked for them.
constexpr qsizetype mostItems = 1000;

QString sideText(const QString &side, const DiffCell &cell)
{
    const char16_t *const kind = cell.kind == DiffKind::Added     ? u"added"
                                 : cell.kind == DiffKind::Removed ? u"removed"
                                                                  : u"unchanged";
    return QStringLiteral("%1 line %2, %3: ")
               .arg(side)
               .arg(cell.num.value_or(0))
               .arg(QString::fromUtf16(kind)) +
           visibleText(cell.text.toString());
}

class RowInterface : public AccessiblePart<DiffView> {
public:
    RowInterface(DiffView *view, qsizetype row) : AccessiblePart(view), m_row(row) {}

    bool isValid() const override
    {
        return widget() && widget()->document() && m_row < widget()->document()->rowCount();
    }
    QAccessible::Role role() const override { return QAccessible::ListItem; }
    QString text(QAccessible::Text text) const override
    {
        return text == QAccessible::Name && isValid()
                   ? DiffViewAccessible::rowText(*widget()->document(), m_row)
                   : QString();
    }
    QRect rect() const override
    {
        if (!isValid())
            return {};
        return onScreen(widget()->viewport(), widget()->rowRect(m_row));
    }
    QAccessible::State state() const override
    {
        QAccessible::State state;
        if (!isValid())
            return state;
        const DiffView *view = widget();
        const bool current = view->selection().caret.row == m_row;
        state.readOnly = true;
        state.focusable = true;
        state.active = current;
        state.focused = current && view->hasFocus();
        state.offscreen = !view->viewport()->rect().intersects(view->rowRect(m_row));
        return state;
    }
    qsizetype row() const { return m_row; }

private:
    const qsizetype m_row;
};

class ViewInterface : public QAccessibleWidget {
public:
    explicit ViewInterface(DiffView *view) : QAccessibleWidget(view, QAccessible::List)
    {
        m_connection =
            QObject::connect(view, &DiffView::documentChanged, view, [this] { forgetItems(); });
    }
    ~ViewInterface() override
    {
        QObject::disconnect(m_connection);
        forgetItems();
    }

    int childCount() const override
    {
        return view()->document() ? static_cast<int>(view()->document()->rowCount()) : 0;
    }
    QAccessibleInterface *child(int index) const override
    {
        if (index < 0 || index >= childCount())
            return nullptr;
        if (const auto known = m_items.constFind(index); known != m_items.constEnd())
            return QAccessible::accessibleInterface(*known);
        if (m_items.size() >= mostItems)
            forgetItems();
        auto *item = new RowInterface(view(), index);
        m_items.insert(index, QAccessible::registerAccessibleInterface(item));
        return item;
    }
    QAccessibleInterface *childAt(int x, int y) const override
    {
        const QPoint point = view()->viewport()->mapFromGlobal(QPoint(x, y));
        if (!view()->viewport()->rect().contains(point))
            return nullptr;
        const std::optional<qsizetype> row = view()->rowAt(point.y());
        return row ? child(static_cast<int>(*row)) : nullptr;
    }
    int indexOfChild(const QAccessibleInterface *item) const override
    {
        const auto *row = dynamic_cast<const RowInterface *>(item);
        return row ? static_cast<int>(row->row()) : -1;
    }
    QAccessibleInterface *focusChild() const override
    {
        return view()->hasFocus() ? child(static_cast<int>(view()->selection().caret.row))
                                  : nullptr;
    }

private:
    DiffView *view() const { return static_cast<DiffView *>(widget()); }

    void forgetItems() const
    {
        for (const QAccessible::Id id : std::as_const(m_items))
            QAccessible::deleteAccessibleInterface(id);
        m_items.clear();
    }

    mutable QHash<int, QAccessible::Id> m_items; // by row
    QMetaObject::Connection m_connection;
};

QAccessibleInterface *makeInterface(const QString &, QObject *object)
{
    auto *view = qobject_cast<DiffView *>(object);
    return view ? new ViewInterface(view) : nullptr;
}

} // namespace

namespace DiffViewAccessible {

void install()
{
    QAccessible::installFactory(makeInterface); // which ignores what it has already
}

QString rowText(const DiffDocument &document, qsizetype row)
{
    if (const DiffHunk *hunk = document.hunk(row))
        return QStringLiteral("Hunk ") + visibleText(hunk->header.toString());
    QStringList sides;
    if (document.hasText(row, OldSide))
        sides.append(sideText(QStringLiteral("Old"), *document.cell(row, OldSide)));
    if (document.hasText(row, NewSide))
        sides.append(sideText(QStringLiteral("New"), *document.cell(row, NewSide)));
    return sides.join(QStringLiteral("; "));
}

} // namespace DiffViewAccessible
