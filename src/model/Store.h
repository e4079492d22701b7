// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/Discovery.h"
#include "model/PriceRow.h"
#include "model/Project.h"
#include "model/ReloadProgress.h"
#include "model/Session.h"

#include <QObject>
#include <QStringList>

#include <memory>
#include <optional>
#include <stop_token>

struct LoadedProjects;

/// The program's model: the projects, which of them is selected, their sessions and the prices.
/// There is one, and only the interface thread touches it. Every change of a field is announced
/// by that field's signal.
class Store : public QObject {
    Q_OBJECT
public:
    /// Reads the price table and the added folders. The projects come with the first reload().
    explicit Store(QString claudeProjectsRoot = Discovery::claudeProjectsRoot(),
                   QObject *parent = nullptr);
    /// Tells reloads under way to stop; nothing of theirs arrives any more.
    ~Store() override;

    const QList<Project> &projects() const { return m_projects; }
    /// The path of the selected project. It may name one that is not (yet) in the list.
    const std::optional<QString> &selection() const { return m_selection; }
    /// The sessions of every listed project, newest first.
    const SessionMap &sessions() const { return m_sessions; }
    const QList<PriceRow> &prices() const { return m_prices; }
    /// Whether a reload is running.
    bool loading() const { return m_loading; }
    /// How far the reload has come that began last; nothing before the first one.
    std::shared_ptr<const ReloadProgress> progress() const { return m_progress; }
    /// The folders added by hand, in the order of adding.
    const QStringList &added() const { return m_added; }

    /// The listed project with that path.
    std::optional<Project> project(const QString &path) const;
    /// The selected project, if it is listed.
    std::optional<Project> selected() const;

    void setSelection(const std::optional<QString> &path);
    /// Replaces the price table and writes it to disk, whatever it holds.
    void setPrices(const QList<PriceRow> &prices);

    /// Starts to read projects and sessions from disk anew, and returns at once. Reloads may
    /// overlap: the first to finish ends `loading`, the last to finish leaves its lists.
    void reload();
    /// Adds a folder by hand (unless it is there), selects it and starts a reload.
    void addProject(const QString &path);
    /// Forgets a folder that was added by hand and starts a reload. Deletes nothing on disk, and a
    /// project that has logs of its own is listed again.
    void removeProject(const Project &project);

Q_SIGNALS:
    void projectsChanged();
    void selectionChanged();
    void sessionsChanged();
    void pricesChanged();
    void loadingChanged();
    /// The results of one call of reload() are in place.
    void reloadFinished();

private:
    void apply(LoadedProjects &&loaded);
    void repairSelection();
    void setLoading(bool loading);

    const QString m_claudeProjectsRoot;
    QList<Project> m_projects;
    std::optional<QString> m_selection;
    SessionMap m_sessions;
    QList<PriceRow> m_prices;
    bool m_loading = false;
    std::shared_ptr<ReloadProgress> m_progress;
    QStringList m_added;
    std::stop_source m_stop;
};
