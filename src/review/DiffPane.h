// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "review/DiffDocument.h"

#include <QWidget>

class BusySign;
class CopyableLabel;
class DiffView;
class EmptyState;
class ErrorText;
class QPushButton;
class QStackedWidget;

/// The right side of the Review screen: the selected file, what can be done with it, and its diff.
class DiffPane : public QWidget {
    Q_OBJECT
public:
    /// What can be done now.
    struct Actions {
        bool approve = false;
        bool reject = false;
        bool commit = false;
    };

    explicit DiffPane(QWidget *parent = nullptr);

    /// How high the row with the path and the buttons wants to be.
    int toolBarHeight() const;
    /// The selected file's path; empty when none is selected.
    void setPath(const QString &path);
    void setActions(const Actions &actions);
    /// Whether one of the buttons has the focus.
    bool isActing() const;
    void setBusy(bool busy);
    /// Shows what went wrong; nothing when `text` is empty.
    void setError(const QString &text);

    /// One of these four is seen: a diff (or that there is none), a note in its place, or nothing
    /// while it is being fetched.
    void showDiff(const SharedDocument &document, bool sameFile);
    void showNote(const QString &note);
    void showNothing();
    void showWaiting();

    DiffView *diff() const { return m_diff; }
    bool isShowingDiff() const;

Q_SIGNALS:
    void approveRequested();
    void rejectRequested();
    void commitRequested();

private:
    QWidget *buildToolBar();
    QWidget *buildBody();
    void showPage(QWidget *page);

    QWidget *m_toolBar = nullptr;
    CopyableLabel *m_path = nullptr;
    BusySign *m_busySign = nullptr;
    QPushButton *m_approveButton = nullptr;
    QPushButton *m_rejectButton = nullptr;
    QPushButton *m_commitButton = nullptr;
    ErrorText *m_error = nullptr;
    QWidget *m_errorArea = nullptr;
    QStackedWidget *m_body = nullptr;
    QWidget *m_waitingPage = nullptr;
    QWidget *m_nothingPage = nullptr;
    EmptyState *m_notePage = nullptr;
    DiffView *m_diff = nullptr;
};
