// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Scratch.h"
#include "support/AgentDouble.h"
#include "support/Window.h"

#include <QRandomGenerator>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

/// Somebody who uses the window with mouse and keys, and who says of every step what it may change.
/// What a step does follows from the seed, the number of the step and the steps before it.
class User {
public:
    User(Scratch &scratch, quint64 seed);
    ~User();

    /// Takes one step and throws a Finding when the window does not show what it should. `tell`
    /// gets what is about to be done.
    void step(qint64 number, const std::function<void(const QString &)> &tell);
    /// Brings the window where it was at first, with nothing under way.
    void rest();

private:
    struct Deed {
        const char *name;
        void (User::*run)();
        int weight;
    };
    static const std::vector<Deed> &deeds();
    /// A changed file of a repository, and where it stands in the window's list.
    struct Chosen {
        QString path;
        int row = 0;
    };

    int below(int count) { return int(m_random.bounded(count)); }
    QString letters(int count);
    QWidget *detail() const { return m_window->detail(); }

    void openWindow();
    void focus();
    void settle();
    void openTab(int tab);
    void openProject(const QString &folder);
    int rowOf(const QString &folder) const;
    void requireAgents() const;

    void changeProject();
    void changeTab();
    void refresh();
    void resize();
    void reopen();
    void addOrRemoveProject();
    void stopAgent();

    void editInRepository();
    void approve();
    void reject();
    void commit();
    QString openReview();
    void requireListed(const QString &repository) const;
    std::optional<Chosen> choose(const QString &repository, bool toApprove);
    /// Whether git did what it was told. When it could not, since the neighbour was at it, false.
    bool gitWorked() const;

    void editInstructions();
    void editPrices();

    Scratch &m_scratch;
    const quint64 m_seed;
    QRandomGenerator m_random;
    std::unique_ptr<Window> m_window;
    std::vector<std::unique_ptr<AgentDouble>> m_agents;
    bool m_spareIsAdded = false;
};
