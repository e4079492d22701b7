// SPDX-License-Identifier: GPL-3.0-or-later

// What the user does to the window itself: its projects, tabs, size and colours, and closing it.

#include "Finding.h"
#include "Patience.h"
#include "User.h"
#include "model/PriceStore.h"
#include "support/Input.h"
#include "ui/SegmentedSwitch.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>

void User::changeProject()
{
    const QStringList &projects = m_scratch.projects();
    openProject(projects.at(below(int(projects.size()))));
}

void User::changeTab()
{
    openTab(below(5));
}

void User::refresh()
{
    focus();
    for (int i = below(3); i >= 0; --i) {
        Input::key(Qt::Key_F5);
        QTest::qWait(below(20));
    }
}

void User::resize()
{
    m_window->view().resize(1000 + below(500), 640 + below(450));
}

void User::changeColors()
{
    const bool isDark = below(2) == 0;
    tell(isDark ? QStringLiteral("to dark ones") : QStringLiteral("to light ones"));
    QApplication::setPalette(isDark ? QPalette(QColor(50, 50, 50)) : m_palette);
    QTest::qWait(1);
    const QImage mean = m_window->view().grab().toImage().scaled(1, 1, Qt::IgnoreAspectRatio,
                                                                 Qt::SmoothTransformation);
    require((mean.pixelColor(0, 0).lightness() < 128) == isDark,
            QStringLiteral("the window does not follow the colours"));
}

void User::changeScope()
{
    openTab(3);
    settle();
    const auto *scope = detail()->findChild<SegmentedSwitch *>(QStringLiteral("usageScope"));
    if (!scope || !scope->isVisible()) // nothing was used
        return;
    const int segment = below(2);
    Input::click(scope->findChildren<QAbstractButton *>().at(segment));
    require(scope->current() == segment, QStringLiteral("not the scope that was clicked on"));
}

void User::addOrRemoveProject()
{
    const QString &spare = m_scratch.spareFolder();
    focus();
    if (m_spareIsAdded) {
        m_window->projects()->scrollToBottom();
        chooseEntry(m_window->menuOf(rowOf(spare)), QStringLiteral("Remove from list"));
    } else if (!addSpareFolder()) {
        return;
    }
    m_spareIsAdded = !m_spareIsAdded;
    const auto isThere = [this, &spare] { return (rowOf(spare) >= 0) == m_spareIsAdded; };
    require(QTest::qWaitFor(isThere, patience),
            QStringLiteral("the list of projects does not follow"));
    (void)detail();
    QStringList added = m_scratch.projects();
    if (m_spareIsAdded)
        added.append(spare);
    m_scratch.expect(m_scratch.home().support(QStringLiteral("projects.json")),
                     PriceStore::encodeAdded(added));
}

/// With Qt's own dialog. Whether the user has not thought better of it.
bool User::addSpareFolder()
{
    Input::key(Qt::Key_O, Qt::ControlModifier);
    auto *chooser = openDialog<QFileDialog>();
    // Typing would bring up Qt's list of completions, which takes the next key or click.
    auto *field = find<QLineEdit>(chooser, QStringLiteral("fileNameEdit"));
    field->setFocus();
    field->setText(m_scratch.spareFolder());
    const int answer = below(3);
    if (answer == 0)
        Input::key(Qt::Key_Escape);
    else if (answer == 1)
        Input::key(Qt::Key_Return);
    else
        Input::click(buttonOf(chooser, QStringLiteral("Add Project")));
    awaitNoDialog();
    return answer != 0;
}

/// Perhaps with a reload or a scan under way, for which nobody waits.
void User::reopen()
{
    focus();
    if (below(2) == 0)
        Input::key(Qt::Key_F5);
    close();
    openWindow();
}

/// What has begun is done, unless the neighbour was at it.
void User::closeWhileApproving()
{
    const auto chosen = choose(true);
    if (!chosen)
        return;
    TrackedFile approved = tracked(*chosen);
    approved.index = approved.disk;
    Input::click(buttonOf(detail(), QStringLiteral("Approve")));
    close();
    if (m_scratch.look(chosen->repository, chosen->path) == approved)
        tracked(*chosen) = approved;
    openWindow();
}

void User::closeWhileRejecting()
{
    const auto chosen = choose(false);
    if (!chosen)
        return;
    TrackedFile rejected = tracked(*chosen);
    rejected.disk = rejected.index = rejected.head;
    Input::click(buttonOf(detail(), QStringLiteral("Reject")));
    Input::click(buttonOf(openModalWindow(), QStringLiteral("Discard Changes")));
    close();
    if (m_scratch.look(chosen->repository, chosen->path) == rejected)
        tracked(*chosen) = rejected;
    openWindow();
}

void User::closeWhileSaving()
{
    const OpenFile typed = typeInstructions();
    Input::click(find<QAbstractButton>(detail(), QStringLiteral("save")));
    close();
    m_scratch.expect(typed.path, typed.content);
    openWindow();
}
