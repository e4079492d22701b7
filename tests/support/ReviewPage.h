// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "../review/Repository.h"
#include "review/DiffView.h"
#include "support/Window.h"

#include <QPlainTextEdit>

#include <memory>

class QMessageBox;

/// The Review tab of the program's window, for a project in a private home.
class ReviewPage {
public:
    /// Makes the project's folder, which is no repository yet, and tells git who commits.
    explicit ReviewPage(const PrivateHome &home);
    /// Closes the window and waits for what it has begun.
    ~ReviewPage();
    Q_DISABLE_COPY_MOVE(ReviewPage)

    const QString &folder() const { return m_folder; }
    Window &window() { return *m_window; }

    /// Opens the window on the Review tab and waits until the screen has settled.
    void open();
    /// Waits until nothing is under way and what came of it is shown.
    void settle();

    QListView *list() const
    {
        return find<QListView>(m_window->detail(), QStringLiteral("changes"));
    }
    /// Badge and path of every file, as assistive technology is told.
    QStringList files() const;
    /// The selected file's path.
    QString selected() const;
    QString count() const;
    QString path() const;
    DiffView *diff() const { return find<DiffView>(m_window->detail()); }
    /// The rows of the diff in words; a note's title when there is a note in its place.
    QStringList rows() const;
    QString error() const;
    QAbstractButton *button(const QString &text) const
    {
        return buttonOf(m_window->detail(), text);
    }
    QStringList enabledButtons() const;
    /// The placeholders that are to be seen, from left to right.
    QList<EmptyState *> placeholders() const;

    /// Opens with the mouse, and waits for the focus.
    QMessageBox *askReject();
    QDialog *openCommit();

private:
    QString m_folder;
    std::unique_ptr<Window> m_window;
};
