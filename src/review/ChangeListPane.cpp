// SPDX-License-Identifier: GPL-3.0-or-later
#include "review/ChangeListPane.h"

#include "review/ChangeDelegate.h"
#include "review/ChangeListModel.h"
#include "ui/CurrentRow.h"
#include "ui/EmptyState.h"
#include "ui/Icons.h"
#include "ui/Separator.h"
#include "ui/TextLabel.h"

#include <QHBoxLayout>
#include <QListView>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QStackedWidget>
#include <QToolButton>

namespace {

constexpr int smallestWidth = 240;
constexpr int usualWidth = 280;
constexpr int largestWidth = 400;
constexpr int padding = 8;

QString keyText(Qt::Key key)
{
    return QKeySequence(key).toString(QKeySequence::NativeText);
}

} // namespace

ChangeListPane::ChangeListPane(QWidget *parent)
    : QWidget(parent)
    , m_model(new ChangeListModel(this))
    , m_list(new QListView(this))
    , m_cleanPage(new EmptyState(QStringLiteral("checkmark.circle"),
                                 QStringLiteral("Working tree clean"),
                                 QStringLiteral("No changed files."), this))
    , m_body(new QStackedWidget(this))
{
    setMinimumWidth(smallestWidth);
    setMaximumWidth(largestWidth);
    buildList();
    m_body->addWidget(new QWidget(this)); // while nothing is known yet
    m_body->addWidget(m_cleanPage);
    m_body->addWidget(m_list);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(buildHeader());
    layout->addWidget(new Separator(Qt::Horizontal, this));
    layout->addWidget(m_body, 1);
    layout->addWidget(buildFooter());
}

QWidget *ChangeListPane::buildHeader()
{
    auto *header = m_header = new QWidget(this);
    m_count = new TextLabel(QString(), {.tone = TextLabel::Tone::Secondary}, header);
    m_count->setObjectName(QStringLiteral("changeCount"));
    m_refreshButton = new QToolButton(header);
    m_refreshButton->setObjectName(QStringLiteral("refresh"));
    m_refreshButton->setAccessibleName(QStringLiteral("Refresh"));
    m_refreshButton->setIcon(symbolIcon(u"arrow.clockwise", QPalette::ButtonText));
    m_refreshButton->setAutoRaise(true);
    m_refreshButton->setFocusPolicy(Qt::StrongFocus);
    m_refreshButton->setToolTip(
        QStringLiteral("Look for changes again (%1)")
            .arg(QKeySequence(QKeySequence::Refresh).toString(QKeySequence::NativeText)));
    connect(m_refreshButton, &QToolButton::clicked, this, &ChangeListPane::refreshRequested);
    m_count->setToolTip(
        QStringLiteral("%1 and %2 walk the files, %3 and %4 scroll the diff, N and P go to the "
                       "next and the previous hunk")
            .arg(keyText(Qt::Key_Up), keyText(Qt::Key_Down), keyText(Qt::Key_PageUp),
                 keyText(Qt::Key_PageDown)));
    auto *layout = new QHBoxLayout(header);
    layout->setContentsMargins(padding, padding, padding, padding);
    layout->addWidget(m_count, 1);
    layout->addWidget(m_refreshButton);
    return header;
}

QWidget *ChangeListPane::buildFooter()
{
    m_footer = new QWidget(this);
    auto *note = new TextLabel(QStringLiteral("More files have changed than are listed here."),
                               {.size = TextStyle::Caption,
                                .tone = TextLabel::Tone::Warning,
                                .overflow = TextLabel::Overflow::Wrap},
                               m_footer);
    note->setObjectName(QStringLiteral("cutNote"));
    auto *layout = new QVBoxLayout(m_footer);
    layout->setContentsMargins(padding, padding, padding, padding);
    layout->addWidget(note);
    m_footer->hide();
    return m_footer;
}

void ChangeListPane::buildList()
{
    m_list->setObjectName(QStringLiteral("changes"));
    m_list->setAccessibleName(QStringLiteral("Changed files"));
    m_list->setModel(m_model);
    letCurrentRowFollowSelection(m_list);
    m_list->setItemDelegate(new ChangeDelegate(m_list));
    m_list->setUniformItemSizes(true);
    m_list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_list->setFrameShape(QFrame::NoFrame);
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    connect(m_list->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] {
        if (!m_updating)
            Q_EMIT selectionChanged();
    });
}

QSize ChangeListPane::sizeHint() const
{
    return {usualWidth, QWidget::sizeHint().height()};
}

void ChangeListPane::setFiles(const QList<GitFile> &files, const std::optional<QString> &selected)
{
    const QScopedValueRollback updating(m_updating, true);
    const std::optional<QString> selectedBefore = selectedPath();
    const int scrolled = m_list->verticalScrollBar()->value();
    m_model->setRows(files);
    const std::optional<int> row = selected ? m_model->rowOf(*selected) : std::nullopt;
    if (row) {
        m_list->setCurrentIndex(m_model->index(*row, 0));
        if (selected == selectedBefore) // also where the model has started over
            m_list->verticalScrollBar()->setValue(scrolled);
    } else {
        m_list->clearSelection();
    }
    m_count->setText(QStringLiteral("%1 changed").arg(files.size()));
    m_body->setCurrentWidget(files.isEmpty() ? m_cleanPage : m_list);
}

void ChangeListPane::setCut(bool cut)
{
    m_footer->setVisible(cut);
}

std::optional<QString> ChangeListPane::selectedPath() const
{
    const QModelIndexList selected = m_list->selectionModel()->selectedIndexes();
    if (selected.isEmpty())
        return std::nullopt;
    return m_model->rows().at(selected.constFirst().row()).path;
}

void ChangeListPane::setHeaderHeight(int height)
{
    m_header->setMinimumHeight(height);
}

void ChangeListPane::setRefreshEnabled(bool enabled)
{
    m_refreshButton->setEnabled(enabled);
}
