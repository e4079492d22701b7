// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ProjectDetail.h"

#include "context/ContextView.h"
#include "live/LiveView.h"
#include "review/ReviewView.h"
#include "ui/CopyableLabel.h"
#include "ui/Icons.h"
#include "usage/SessionsView.h"
#include "usage/UsageView.h"

#include <QShortcut>
#include <QTabBar>
#include <QTabWidget>
#include <QVBoxLayout>

#include <array>

namespace {

constexpr int padding = 10;

struct Tab {
    const char16_t *label;
    const char16_t *icon;
    QWidget *(*makeScreen)(const Project &, Store &);
};

QWidget *makeSessions(const Project &project, Store &store)
{
    return new SessionsView(project, store);
}

QWidget *makeLive(const Project &project, Store &)
{
    return new LiveView(project);
}

QWidget *makeReview(const Project &project, Store &)
{
    return new ReviewView(project);
}

QWidget *makeUsage(const Project &project, Store &store)
{
    return new UsageView(project, store);
}

QWidget *makeContext(const Project &project, Store &)
{
    return new ContextView(project);
}

constexpr std::array tabs{
    Tab{u"Sessions", u"list.bullet.rectangle", makeSessions},
    Tab{u"Live", u"waveform.path.ecg", makeLive},
    Tab{u"Review", u"checkmark.seal", makeReview},
    Tab{u"Usage", u"chart.bar", makeUsage},
    Tab{u"Context", u"doc.text", makeContext},
};

QKeySequence shortcutOf(int tab)
{
    return QKeySequence(QKeyCombination(Qt::ControlModifier, Qt::Key(Qt::Key_1 + tab)));
}

} // namespace

ProjectDetail::ProjectDetail(const Project &project, Store &store, QWidget *parent)
    : QWidget(parent)
    , m_project(project)
    , m_store(store)
    , m_tabs(new QTabWidget(this))
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(buildHeader());
    layout->addWidget(m_tabs, 1);
    buildTabs();
    addShortcuts();
}

QWidget *ProjectDetail::buildHeader()
{
    auto *header = new QWidget(this);
    auto *name = new TextLabel(m_project.name(), {.size = TextStyle::Title3, .bold = true}, header);
    auto *path = new CopyableLabel(m_project.path,
                                   {.size = TextStyle::Caption,
                                    .tone = TextLabel::Tone::Secondary,
                                    .overflow = TextLabel::Overflow::ElideHead},
                                   header);
    setTabOrder(path, m_tabs); // which are older
    name->setObjectName(QStringLiteral("projectName"));
    path->setObjectName(QStringLiteral("projectPath"));
    auto *layout = new QVBoxLayout(header);
    layout->setContentsMargins(padding, padding, padding, padding);
    layout->setSpacing(2);
    layout->addWidget(name);
    layout->addWidget(path);
    return header;
}

void ProjectDetail::buildTabs()
{
    m_tabs->setDocumentMode(true);
    auto *indent = new QWidget(m_tabs); // the first tab stands in line with the header's text
    (new QHBoxLayout(indent))->setContentsMargins(padding, 0, 0, 0);
    m_tabs->setCornerWidget(indent, Qt::TopLeftCorner);
    for (int i = 0; i < int(tabs.size()); ++i) {
        auto *page = new QWidget(m_tabs);
        auto *layout = new QVBoxLayout(page);
        layout->setContentsMargins(0, 0, 0, 0);
        m_tabs->addTab(page, symbolIcon(tabs[size_t(i)].icon),
                       QString::fromUtf16(tabs[size_t(i)].label));
        m_tabs->setTabToolTip(
            i, QStringLiteral("%1 (%2)").arg(QString::fromUtf16(tabs[size_t(i)].label),
                                             shortcutOf(i).toString(QKeySequence::NativeText)));
    }
    connect(m_tabs, &QTabWidget::currentChanged, this, &ProjectDetail::makeScreen);
}

void ProjectDetail::addShortcuts()
{
    for (int i = 0; i < int(tabs.size()); ++i) {
        auto *shortcut = new QShortcut(shortcutOf(i), this);
        connect(shortcut, &QShortcut::activated, m_tabs, [this, i] { m_tabs->setCurrentIndex(i); });
    }
}

void ProjectDetail::showScreen()
{
    makeScreen(m_tabs->currentIndex());
}

void ProjectDetail::makeScreen(int tab)
{
    QLayout *page = m_tabs->widget(tab)->layout();
    if (page->isEmpty())
        page->addWidget(tabs[size_t(tab)].makeScreen(m_project, m_store));
}
