// SPDX-License-Identifier: GPL-3.0-or-later
#include "review/DiffPane.h"

#include "review/DiffView.h"
#include "ui/BusySign.h"
#include "ui/CopyableLabel.h"
#include "ui/EmphasisButton.h"
#include "ui/EmptyState.h"
#include "ui/ErrorText.h"
#include "ui/Separator.h"

#include <QStackedWidget>
#include <QVBoxLayout>

namespace {

constexpr int smallestWidth = 400;
constexpr int padding = 8;
constexpr int mostErrorLines = 6;

} // namespace

DiffPane::DiffPane(QWidget *parent) : QWidget(parent)
{
    setMinimumWidth(smallestWidth);
    m_error = new ErrorText(mostErrorLines, this);
    m_errorArea = new QWidget(this);
    auto *errorLayout = new QVBoxLayout(m_errorArea);
    errorLayout->setContentsMargins(padding, 0, padding, padding);
    errorLayout->addWidget(m_error);
    m_errorArea->hide();
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(buildToolBar());
    layout->addWidget(m_errorArea);
    layout->addWidget(new Separator(Qt::Horizontal, this));
    layout->addWidget(buildBody(), 1);
    setPath({});
    setActions({});
}

QWidget *DiffPane::buildToolBar()
{
    using Emphasis = EmphasisButton::Emphasis;
    auto *bar = m_toolBar = new QWidget(this);
    m_path = new CopyableLabel(
        QString(), {.size = TextStyle::Headline, .overflow = TextLabel::Overflow::ElideHead}, bar);
    m_path->setObjectName(QStringLiteral("selectedPath"));
    m_busySign = new BusySign(bar);
    m_approveButton = new EmphasisButton(QStringLiteral("Approve"), bar);
    m_approveButton->setToolTip(QStringLiteral("Stage this file for the next commit"));
    m_rejectButton = new EmphasisButton(Emphasis::Destructive, QStringLiteral("Reject"), bar);
    m_rejectButton->setToolTip(
        QStringLiteral("Discard this file's changes, after a question (%1)")
            .arg(QKeySequence(QKeySequence::Delete).toString(QKeySequence::NativeText)));
    m_commitButton = new EmphasisButton(Emphasis::Prominent, QStringLiteral("Commit\u2026"), bar);
    m_commitButton->setToolTip(QStringLiteral("Commit the staged files"));
    connect(m_approveButton, &QPushButton::clicked, this, &DiffPane::approveRequested);
    connect(m_rejectButton, &QPushButton::clicked, this, &DiffPane::rejectRequested);
    connect(m_commitButton, &QPushButton::clicked, this, &DiffPane::commitRequested);
    auto *layout = new QHBoxLayout(bar);
    layout->setContentsMargins(padding, padding, padding, padding);
    layout->addWidget(m_path, 1);
    for (QWidget *widget :
         {static_cast<QWidget *>(m_busySign), static_cast<QWidget *>(m_approveButton),
          static_cast<QWidget *>(m_rejectButton), static_cast<QWidget *>(m_commitButton)})
        layout->addWidget(widget);
    return bar;
}

QWidget *DiffPane::buildBody()
{
    m_waitingPage = new QWidget(this);
    m_waitingPage->setBackgroundRole(QPalette::Base); // as the diff, so that nothing flickers
    m_waitingPage->setAutoFillBackground(true);
    m_nothingPage = new EmptyState(QStringLiteral("doc.text.magnifyingglass"),
                                   QStringLiteral("No diff to show"),
                                   QStringLiteral("Select a changed file to see its diff."), this);
    m_diff = new DiffView(this);
    m_body = new QStackedWidget(this);
    for (QWidget *page : {m_waitingPage, m_nothingPage, static_cast<QWidget *>(m_diff)})
        m_body->addWidget(page);
    return m_body;
}

int DiffPane::toolBarHeight() const
{
    return m_toolBar->sizeHint().height();
}

void DiffPane::setPath(const QString &path)
{
    m_path->setText(path.isEmpty() ? QStringLiteral("Select a file") : path);
    m_path->setCopyable(!path.isEmpty());
}

void DiffPane::setActions(const Actions &actions)
{
    m_approveButton->setEnabled(actions.approve);
    m_rejectButton->setEnabled(actions.reject);
    m_commitButton->setEnabled(actions.commit);
}

bool DiffPane::isActing() const
{
    return m_approveButton->hasFocus() || m_rejectButton->hasFocus() || m_commitButton->hasFocus();
}

void DiffPane::setBusy(bool busy)
{
    m_busySign->setBusy(busy);
}

void DiffPane::setError(const QString &text)
{
    m_error->setError(text);
    m_errorArea->setVisible(!text.isEmpty());
}

/// Lets go of the diff that is not to be seen any more: it may be large.
void DiffPane::showPage(QWidget *page)
{
    if (page != m_diff)
        m_diff->setDocument(nullptr);
    if (m_notePage && page != m_notePage) {
        m_body->removeWidget(m_notePage);
        m_notePage->deleteLater();
        m_notePage = nullptr;
    }
    m_body->setCurrentWidget(page);
}

void DiffPane::showDiff(const SharedDocument &document, bool sameFile)
{
    if (document->rowCount() == 0)
        return showNothing();
    showPage(m_diff);
    if (document != m_diff->document())
        m_diff->setDocument(document, sameFile && m_diff->document());
}

void DiffPane::showNote(const QString &note)
{
    auto *page = new EmptyState(QStringLiteral("doc.plaintext"), note, QString(), this);
    m_body->addWidget(page);
    showPage(page);
    m_notePage = page;
}

void DiffPane::showNothing()
{
    showPage(m_nothingPage);
}

void DiffPane::showWaiting()
{
    showPage(m_waitingPage);
}

bool DiffPane::isShowingDiff() const
{
    return m_body->currentWidget() == m_diff;
}
