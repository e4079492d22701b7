// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/Store.h"

#include "model/Background.h"
#include "model/PriceStore.h"
#include "model/SessionLoader.h"

#include <algorithm>

Store::Store(QString claudeProjectsRoot, QObject *parent)
    : QObject(parent)
    , m_claudeProjectsRoot(std::move(claudeProjectsRoot))
    , m_prices(PriceStore::loadPrices())
    , m_added(PriceStore::loadAdded())
{
}

Store::~Store()
{
    m_stop.request_stop();
}

std::optional<Project> Store::project(const QString &path) const
{
    const auto found = std::find_if(m_projects.cbegin(), m_projects.cend(),
                                    [&path](const Project &p) { return p.path == path; });
    if (found == m_projects.cend())
        return std::nullopt;
    return *found;
}

std::optional<Project> Store::selected() const
{
    return m_selection ? project(*m_selection) : std::nullopt;
}

void Store::setSelection(const std::optional<QString> &path)
{
    if (m_selection == path)
        return;
    m_selection = path;
    Q_EMIT selectionChanged();
}

void Store::setPrices(const QList<PriceRow> &prices)
{
    m_prices = prices;
    PriceStore::savePrices(m_prices);
    Q_EMIT pricesChanged();
}

void Store::reload()
{
    m_progress = std::make_shared<ReloadProgress>();
    setLoading(true);
    Background::run(
        this, m_stop.get_token(),
        [added = m_added, root = m_claudeProjectsRoot,
         progress = m_progress](const std::stop_token &stop) {
            return SessionLoader::load(added, root, stop, progress.get());
        },
        [this](LoadedProjects &&loaded) { apply(std::move(loaded)); });
}

void Store::addProject(const QString &path)
{
    if (!m_added.contains(path)) {
        m_added.append(path);
        PriceStore::saveAdded(m_added);
    }
    setSelection(path);
    reload();
}

void Store::removeProject(const Project &project)
{
    m_added.removeAll(project.path);
    PriceStore::saveAdded(m_added);
    if (m_selection == project.path)
        setSelection(std::nullopt);
    reload();
}

void Store::apply(LoadedProjects &&loaded)
{
    m_projects = std::move(loaded.projects);
    Q_EMIT projectsChanged();
    Background::destroy(std::exchange(m_sessions, std::move(loaded.sessions)));
    Q_EMIT sessionsChanged();
    repairSelection();
    setLoading(false);
    Q_EMIT reloadFinished();
}

void Store::repairSelection()
{
    if (selected())
        return;
    setSelection(m_projects.isEmpty() ? std::nullopt : std::optional(m_projects.constFirst().path));
}

void Store::setLoading(bool loading)
{
    if (m_loading == loading)
        return;
    m_loading = loading;
    Q_EMIT loadingChanged();
}
