// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/Project.h"
#include "review/DiffDocument.h"
#include "review/GitStatus.h"
#include "review/RunProcess.h"
#include "ui/LatestJob.h"

#include <QWidget>

#include <functional>

class ChangeListPane;
class DiffPane;
class EmptyState;
class QStackedWidget;

/// The third tab of a project: the changes in its git work tree, file by file, to be approved,
/// rejected and committed. It looks at the work tree when it is shown and after it has changed
/// something, never by itself.
class ReviewView : public QWidget {
    Q_OBJECT
public:
    explicit ReviewView(const Project &project, QWidget *parent = nullptr);

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void changeEvent(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    /// What the background makes of a selected file.
    struct PreparedDiff {
        SharedDocument document; ///< nothing when there is a note
        std::optional<QString> note;
    };
    using Action = std::function<ShellResult()>;

    void buildLayout();
    void fitHeader();
    void connectSignals();
    const GitFile *selectedFile() const;

    void refresh();
    void apply(const GitSnapshot &snapshot);
    void takeSelection();
    void loadDiff(bool sameFile);
    void show(const PreparedDiff &diff, bool sameFile);

    void approve();
    void confirmReject();
    void reject(const GitFile &file);
    void run(const Action &action);
    void showCommit();
    void setError(const std::optional<QString> &error);
    void updateControls();

    const Project m_project;
    LatestJob m_refreshJob;
    LatestJob m_diffJob;
    LatestJob m_actionJob;

    bool m_isRepo = true;
    bool m_hasHead = true;
    QList<GitFile> m_files;
    std::optional<QString> m_selected;

    QStackedWidget *m_pages = nullptr;
    QWidget *m_review = nullptr;
    EmptyState *m_noRepo = nullptr;
    ChangeListPane *m_changes = nullptr;
    DiffPane *m_diff = nullptr;
};
