// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/Project.h"
#include "review/GitFile.h"
#include "ui/LatestJob.h"

#include <QDialog>
#include <QList>

class BusySign;
class EmphasisButton;
class ErrorText;
class QPlainTextEdit;
class QPushButton;

/// The sheet in which a message is written and what is staged is committed. It stays until the
/// commit has succeeded or is given up; while git is at work nothing in it can be pressed.
class CommitSheet : public QDialog {
    Q_OBJECT
public:
    /// `files` are all changed files; the staged ones are counted.
    CommitSheet(const Project &project, const QList<GitFile> &files, QWidget *parent = nullptr);

    void reject() override;

Q_SIGNALS:
    /// A commit has been made.
    void committed();

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void buildLayout(qsizetype stagedCount);
    QWidget *buildEditor();
    QLayout *buildFooter();
    void addShortcuts();
    QString message() const;
    void updateControls();
    void commit();
    void finish(const std::optional<QString> &error);

    const Project m_project;
    LatestJob m_job;
    QPlainTextEdit *m_editor = nullptr;
    ErrorText *m_error = nullptr;
    BusySign *m_busySign = nullptr;
    QPushButton *m_cancelButton = nullptr;
    EmphasisButton *m_commitButton = nullptr;
};
