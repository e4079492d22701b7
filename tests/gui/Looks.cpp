// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/Looks.h"

#include "review/DiffView.h"
#include "ui/CellDelegate.h"
#include "ui/SegmentedSwitch.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QCheckBox>
#include <QHeaderView>
#include <QImage>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QMainWindow>
#include <QPlainTextEdit>
#include <QStyleOption>
#include <QTabBar>
#include <QTableView>
#include <QToolButton>

#include <algorithm>
#include <cmath>

namespace {

/// What the web's accessibility guidelines ask for, for texts and for signs.
constexpr double leastContrast = 4.5;
constexpr double leastOfSigns = 3;

/// Columns whose texts are as long as their writers made them.
const QStringList shortened{QStringLiteral("First prompt"), QStringLiteral("Folder")};
/// Labels of the same kind.
const QStringList paths{QStringLiteral("projectPath"), QStringLiteral("selectedPath"),
                        QStringLiteral("fileLabel")};

QString nameOf(const QWidget *widget)
{
    const auto *label = qobject_cast<const QLabel *>(widget);
    const auto *button = qobject_cast<const QAbstractButton *>(widget);
    return QStringLiteral("%1 %2 '%3'")
        .arg(QLatin1String(widget->metaObject()->className()), widget->objectName(),
             label    ? label->text()
             : button ? button->text()
                      : QString());
}

QString inPixels(const QSize &size)
{
    return QStringLiteral("%1x%2").arg(size.width()).arg(size.height());
}

double luminance(QRgb color)
{
    const auto linear = [](int channel) {
        const double value = channel / 255.0;
        return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(qRed(color)) + 0.7152 * linear(qGreen(color)) +
           0.0722 * linear(qBlue(color));
}

double contrast(double a, double b)
{
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

/// Of the ink that stands out most against the ground, which is what most of the place is.
double contrastIn(const QImage &place)
{
    QList<double> values;
    values.reserve(qsizetype(place.width()) * place.height());
    for (int y = 0; y < place.height(); ++y) {
        for (int x = 0; x < place.width(); ++x)
            values.append(luminance(place.pixel(x, y)));
    }
    if (values.isEmpty())
        return 1;
    std::sort(values.begin(), values.end());
    const double ground = values.at(values.size() / 2);
    return std::max(contrast(values.constFirst(), ground), contrast(values.constLast(), ground));
}

class Inspection {
public:
    explicit Inspection(QWidget *window) : m_window(window), m_picture(window->grab().toImage()) {}

    QStringList faults()
    {
        lookAtMinimum();
        for (QWidget *widget : m_window->findChildren<QWidget *>()) {
            if (!widget->isVisible() || widget->visibleRegion().isEmpty())
                continue;
            lookAtLayout(widget);
            if (const auto *label = qobject_cast<QLabel *>(widget))
                lookAtLabel(label);
            if (const auto *button = qobject_cast<QAbstractButton *>(widget))
                lookAtButton(button);
            if (const auto *box = qobject_cast<QCheckBox *>(widget))
                lookAtIndicator(box);
            if (const auto *field = qobject_cast<QLineEdit *>(widget))
                lookAtField(field);
            if (const auto *text = qobject_cast<QPlainTextEdit *>(widget))
                lookAtInk(text->viewport(), text->viewport()->rect(), nameOf(text),
                          !text->document()->isEmpty());
            if (const auto *diff = qobject_cast<DiffView *>(widget))
                lookAtInk(diff->viewport(), diff->viewport()->rect(), nameOf(diff));
            if (const auto *tabs = qobject_cast<QTabBar *>(widget))
                lookAtTabs(tabs);
            if (const auto *header = qobject_cast<QHeaderView *>(widget))
                lookAtHeader(header);
            else if (const auto *view = qobject_cast<QAbstractItemView *>(widget))
                lookAtRows(view);
        }
        return m_faults;
    }

private:
    void add(const QString &what) { m_faults.append(what); }

    /// A window that cannot be made as small as its content would cut it.
    void lookAtMinimum()
    {
        const auto *main = qobject_cast<QMainWindow *>(m_window);
        const QWidget *content = main ? main->centralWidget() : m_window;
        const QSize needed = content->minimumSizeHint();
        if (needed.width() > m_window->width() || needed.height() > m_window->height())
            add(QStringLiteral("the content needs ") + inPixels(needed));
    }

    void lookAtLayout(const QWidget *widget)
    {
        const QLayout *layout = widget->layout();
        if (!layout || qobject_cast<const QAbstractItemView *>(widget))
            return;
        QList<QWidget *> seen;
        for (QWidget *child : widget->findChildren<QWidget *>(Qt::FindDirectChildrenOnly)) {
            if (child->isVisible() && layout->indexOf(child) >= 0)
                seen.append(child);
        }
        for (const QWidget *child : seen) {
            if (!widget->rect().contains(child->geometry()))
                add(nameOf(child) + QStringLiteral(" stands over the edge"));
            for (const QWidget *other : seen) {
                if (child < other && child->geometry().intersects(other->geometry()))
                    add(nameOf(child) + QStringLiteral(" overlaps ") + nameOf(other));
            }
        }
    }

    void lookAtLabel(const QLabel *label)
    {
        if (label->text().isEmpty())
            return;
        const int height =
            label->wordWrap() ? label->heightForWidth(label->width()) : label->sizeHint().height();
        const bool isCut = !label->wordWrap() && !paths.contains(label->objectName()) &&
                           label->width() < label->sizeHint().width();
        if (isCut || label->height() < height)
            add(nameOf(label) + QStringLiteral(" is cut"));
        lookAtInk(label, label->rect(), nameOf(label), label->isEnabled());
    }

    void lookAtButton(const QAbstractButton *button)
    {
        if (qobject_cast<const QTabBar *>(button->parentWidget()))
            return;
        const QSize needed = button->sizeHint();
        const bool isSegment = qobject_cast<const SegmentedSwitch *>(button->parentWidget());
        if (button->width() < needed.width() || button->height() < needed.height())
            add(nameOf(button) + QStringLiteral(" is cut"));
        const QRect inside = button->rect().adjusted(4, 4, -4, -4); // without its frame
        // Selected text has the desktop's own colours.
        if (isSegment || !button->text().isEmpty())
            lookAtInk(button, inside, nameOf(button),
                      button->isEnabled() && !(isSegment && button->isChecked()));
    }

    void lookAtIndicator(const QCheckBox *box)
    {
        QStyleOptionButton option;
        option.initFrom(box);
        const QRect place =
            box->style()->subElementRect(QStyle::SE_CheckBoxIndicator, &option, box);
        // Its upper edge, where no check mark reaches.
        const QRect edge(place.left() + 2, place.top() - 2, place.width() - 4, 5);
        const double contrast = contrastIn(pictureOf(box, edge));
        // A line that lies between two pixels is paler.
        const double scale = m_picture.devicePixelRatio();
        if (contrast < (scale == std::floor(scale) ? leastOfSigns : leastOfSigns - 1))
            add(QStringLiteral("the sign of %1 has a contrast of %2")
                    .arg(nameOf(box))
                    .arg(contrast));
    }

    void lookAtField(const QLineEdit *field)
    {
        QStyleOptionFrame option;
        option.initFrom(field);
        const QRect inside =
            field->style()->subElementRect(QStyle::SE_LineEditContents, &option, field);
        const QFontMetrics metrics(field->font());
        if (inside.width() < metrics.horizontalAdvance(field->text()) ||
            inside.height() < metrics.height())
            add(QStringLiteral("the field with '%1' is cut").arg(field->text()));
        // Selected text has the desktop's own colours.
        lookAtInk(field, inside, field->text(),
                  !field->text().isEmpty() && !field->hasSelectedText());
    }

    void lookAtTabs(const QTabBar *tabs)
    {
        for (const QToolButton *arrow : tabs->findChildren<QToolButton *>()) {
            if (arrow->isVisible())
                add(QStringLiteral("the tabs have no room"));
        }
        if (tabs->height() < tabs->sizeHint().height())
            add(QStringLiteral("the tabs are cut"));
        for (int tab = 0; tab < tabs->count(); ++tab)
            lookAtInk(tabs, tabs->tabRect(tab), tabs->tabText(tab));
    }

    void lookAtHeader(const QHeaderView *header)
    {
        if (header->orientation() != Qt::Horizontal)
            return;
        for (int section = 0; section < header->count(); ++section) {
            const QString title = header->model()->headerData(section, Qt::Horizontal).toString();
            if (header->sectionSize(section) < header->sectionSizeHint(section))
                add(QStringLiteral("the title '%1' is cut").arg(title));
            const QRect place(header->sectionViewportPosition(section), 0,
                              header->sectionSize(section), header->height());
            if (!title.isEmpty() && header->viewport()->rect().contains(place))
                lookAtInk(header->viewport(), place, title);
        }
        if (header->height() < header->sizeHint().height())
            add(QStringLiteral("the column titles are cut"));
    }

    void lookAtRows(const QAbstractItemView *view)
    {
        const QAbstractItemModel *model = view->model();
        const auto *table = qobject_cast<const QTableView *>(view);
        for (int row = 0; model && row < model->rowCount(); ++row) {
            for (int column = 0; column < model->columnCount(); ++column) {
                const QModelIndex index = model->index(row, column);
                const QRect place = view->visualRect(index);
                if (!view->viewport()->rect().contains(place))
                    continue;
                const QString text = index.data().toString();
                if (table)
                    lookAtCell(table, index, place);
                else if (place.height() < view->sizeHintForIndex(index).height())
                    add(QStringLiteral("the row '%1' is cut").arg(text));
                if (!text.isEmpty() && table)
                    lookAtInk(view->viewport(), place, text);
                if (!text.isEmpty() && !table) // a row may have two lines
                    lookAtInk(view->viewport(), place.adjusted(0, place.height() / 2, 0, 0), text);
            }
        }
    }

    void lookAtCell(const QTableView *table, const QModelIndex &index, const QRect &place)
    {
        const QString title = index.model()->headerData(index.column(), Qt::Horizontal).toString();
        const QString text = index.data().toString();
        const QVariant font = index.data(Qt::FontRole);
        const QFontMetrics metrics(font.isValid() ? font.value<QFont>() : table->font());
        const bool isLong = title == shortened.constFirst();
        const int height = metrics.lineSpacing() * (isLong ? 2 : 1);
        const int width = shortened.contains(title) ? 0 : metrics.horizontalAdvance(text);
        const QRect room = CellDelegate::textPlace(place, index.column());
        const bool fits = title == QLatin1String("Started") // on one line or two
                              ? room.size().boundedTo(
                                    metrics.boundingRect(room, Qt::TextWordWrap, text).size()) ==
                                    metrics.boundingRect(room, Qt::TextWordWrap, text).size()
                              : room.width() >= width && room.height() >= height;
        if (!fits)
            add(QStringLiteral("the cell '%1' is cut").arg(text));
    }

    QImage pictureOf(const QWidget *widget, const QRect &place) const
    {
        const double scale = m_picture.devicePixelRatio();
        const QRect seen = place & widget->visibleRegion().boundingRect();
        const QPoint at = widget->mapTo(m_window, seen.topLeft());
        return m_picture.copy(QRect((QPointF(at) * scale).toPoint(), seen.size() * scale));
    }

    /// What is disabled may be pale.
    void lookAtInk(const QWidget *widget, const QRect &place, const QString &text,
                   bool counts = true)
    {
        const double contrast = counts ? contrastIn(pictureOf(widget, place)) : leastContrast;
        if (contrast < leastContrast)
            add(QStringLiteral("'%1' has a contrast of %2").arg(text).arg(contrast));
    }

    QWidget *m_window;
    const QImage m_picture;
    QStringList m_faults;
};

} // namespace

namespace Looks {

QStringList faults(QWidget *window)
{
    return Inspection(window).faults();
}

int changedPixels(const QImage &before, const QImage &after, const QRect &part)
{
    const double scale = before.devicePixelRatio();
    const QRect pixels =
        QRect((QPointF(part.topLeft()) * scale).toPoint(), part.size() * scale) & before.rect();
    int changed = 0;
    for (int y = pixels.top(); y <= pixels.bottom(); ++y) {
        for (int x = pixels.left(); x <= pixels.right(); ++x)
            changed += contrast(luminance(before.pixel(x, y)), luminance(after.pixel(x, y))) >=
                       leastOfSigns;
    }
    return changed;
}

} // namespace Looks
