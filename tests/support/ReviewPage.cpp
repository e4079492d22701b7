// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/ReviewPage.h"

#include "model/Background.h"
#include "review/DiffViewAccessible.h"
#include "support/Input.h"
#include "support/Sessions.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QMessageBox>

#include <algorithm>

ReviewPage::ReviewPage(const PrivateHome &home)
    : m_folder(addByHand(home, {QStringLiteral("project")}).constFirst())
    , m_window(std::make_unique<Window>(home))
{
    writeGitIdentity();
}

ReviewPage::~ReviewPage()
{
    m_window.reset();
    Background::savingPool().waitForDone();
    Background::pool().waitForDone();
}

void ReviewPage::open()
{
    m_window->load();
    Input::clickCell(m_window->projects(), 0);
    Input::key(Qt::Key_3, Qt::ControlModifier);
    settle();
}

void ReviewPage::settle()
{
    // A result may start the next work: the list of files leads to a diff.
    for (int i = 0; i < 3; ++i) {
        Background::savingPool().waitForDone();
        QTest::qWait(1);
        Background::pool().waitForDone();
        QTest::qWait(1);
    }
}

QStringList ReviewPage::files() const
{
    const QAbstractItemModel *model = list()->model();
    QStringList files;
    for (int row = 0; row < model->rowCount(); ++row)
        files.append(model->index(row, 0).data(Qt::AccessibleTextRole).toString());
    return files;
}

QString ReviewPage::selected() const
{
    const QModelIndexList rows = list()->selectionModel()->selectedIndexes();
    return rows.isEmpty() ? QString() : rows.constFirst().data().toString();
}

QString ReviewPage::count() const
{
    return find<QLabel>(m_window->detail(), QStringLiteral("changeCount"))->text();
}

QString ReviewPage::path() const
{
    return find<QLabel>(m_window->detail(), QStringLiteral("selectedPath"))->text();
}

QStringList ReviewPage::rows() const
{
    QStringList rows;
    if (diff()->isVisible()) {
        for (qsizetype row = 0; row < diff()->document()->rowCount(); ++row)
            rows.append(DiffViewAccessible::rowText(*diff()->document(), row));
        return rows;
    }
    for (const EmptyState *state : placeholders())
        rows.append(state->title());
    return rows;
}

QString ReviewPage::error() const
{
    const auto *text = find<QPlainTextEdit>(m_window->detail(), QStringLiteral("error"));
    return text->isVisible() ? text->toPlainText() : QString();
}

QStringList ReviewPage::enabledButtons() const
{
    QStringList enabled;
    for (const QString &text :
         {QStringLiteral("Approve"), QStringLiteral("Reject"), QStringLiteral("Commit\u2026")}) {
        if (button(text)->isEnabled())
            enabled.append(text);
    }
    return enabled;
}

QList<EmptyState *> ReviewPage::placeholders() const
{
    QList<EmptyState *> shown;
    for (EmptyState *state : m_window->detail()->findChildren<EmptyState *>()) {
        if (state->isVisible())
            shown.append(state);
    }
    std::sort(shown.begin(), shown.end(), [](const EmptyState *a, const EmptyState *b) {
        return a->mapToGlobal(QPoint()).x() < b->mapToGlobal(QPoint()).x();
    });
    return shown;
}

QMessageBox *ReviewPage::askReject()
{
    Input::click(button(QStringLiteral("Reject")));
    auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
    if (!box || !QTest::qWaitForWindowActive(box))
        qFatal("there is no question");
    return box;
}

QDialog *ReviewPage::openCommit()
{
    Input::click(button(QStringLiteral("Commit\u2026")));
    auto *sheet = qobject_cast<QDialog *>(QApplication::activeModalWidget());
    if (!sheet || !QTest::qWaitForWindowActive(sheet))
        qFatal("the commit sheet does not open");
    return sheet;
}
