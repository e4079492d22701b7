// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "context/ContextEditor.h"
#include "context/ContextFile.h"
#include "model/Project.h"
#include "ui/LatestJob.h"

#include <QDir>
#include <QTimer>
#include <QWidget>

class ContextListModel;
class EditorPane;
class EmptyState;
class QListView;
class QStackedWidget;

/// The last tab of a project: the agents' instruction files and an editor for one of them.
///
/// All work on files is done beside the interface thread, in the order in which it was asked for:
/// nothing is read while a save is under way. Until a file has been read the one before it stays
/// on the screen and cannot be changed.
class ContextView : public QWidget {
    Q_OBJECT
public:
    explicit ContextView(const Project &project, const QString &home = QDir::homePath(),
                         QWidget *parent = nullptr);

    /// What a background job reads of one file.
    struct OpenedFile {
        OpenedText text;
        QString problem;
    };

    /// What it reads when the tab is shown.
    struct Scanned {
        QList<ContextFile> files;
        std::optional<QString> selected;
        OpenedFile opened;
    };

    /// Looks which files there are, and reads the first one that exists.
    void scan();

protected:
    void showEvent(QShowEvent *event) override;

private:
    enum class Reading { Nothing, File, All };

    QWidget *buildList();
    QWidget *buildDetail();
    void connectSignals();

    void read(Reading what);
    void startReading();
    void readAll();
    void readFile();
    void take(Scanned scanned);
    void take(OpenedFile opened);
    void showSelection();
    void takeSelection();
    void save();
    void finishSaving(const QString &path, const QString &text,
                      const std::optional<QString> &error);

    const Project m_project;
    const QString m_home;
    std::optional<QString> m_selected;
    /// Chosen by the user while all files are looked for, so it counts more than the first one.
    std::optional<QString> m_chosen;
    Reading m_reading = Reading::Nothing;
    bool m_saving = false;
    bool m_updatingList = false;
    LatestJob m_job;
    QTimer m_patience;

    ContextListModel *m_model;
    QListView *m_list = nullptr;
    QStackedWidget *m_detail = nullptr;
    QWidget *m_blankPage = nullptr;
    QWidget *m_busyPage = nullptr;
    EmptyState *m_emptyPage = nullptr;
    EditorPane *m_pane = nullptr;
};
