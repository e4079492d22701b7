// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "review/GitFile.h"

#include <QList>
#include <QWidget>

#include <optional>

class ChangeListModel;
class QListView;
class QStackedWidget;
class QToolButton;
class TextLabel;

/// The left side of the Review screen: how many files have changed, and which.
class ChangeListPane : public QWidget {
    Q_OBJECT
public:
    explicit ChangeListPane(QWidget *parent = nullptr);

    /// Takes over the files and selects the one with the path, without a signal.
    void setFiles(const QList<GitFile> &files, const std::optional<QString> &selected);
    /// Says below the list that it is not the whole.
    void setCut(bool cut);
    std::optional<QString> selectedPath() const;
    void setRefreshEnabled(bool enabled);
    /// The header is at least as high as that.
    void setHeaderHeight(int height);
    QListView *list() const { return m_list; }

Q_SIGNALS:
    /// The user has selected another file, or none.
    void selectionChanged();
    void refreshRequested();

protected:
    QSize sizeHint() const override;

private:
    QWidget *buildHeader();
    QWidget *buildFooter();
    void buildList();

    ChangeListModel *m_model;
    QWidget *m_header = nullptr;
    QWidget *m_footer = nullptr;
    TextLabel *m_count = nullptr;
    QToolButton *m_refreshButton = nullptr;
    QListView *m_list;
    QWidget *m_cleanPage;
    QStackedWidget *m_body;
    bool m_updating = false;
};
