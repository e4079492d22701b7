// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Scratch.h"
#include "support/AgentDouble.h"
#include "support/Window.h"

#include <QPalette>
#include <QRandomGenerator>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

class PriceEditorPage;

/// Somebody who uses the window with mouse and keys, and who says of every step what it may change.
/// What a step does follows from the seed, the number of the step and the steps before it.
class User {
public:
    User(Scratch &scratch, quint64 seed);
    ~User();

    /// Takes one step and throws a Finding when the window does not show what it should. `tell`
    /// gets what is about to be done, in more and more detail.
    void step(qint64 number, const std::function<void(const QString &)> &tell);
    /// Brings the window where it was at first, with nothing under way.
    void rest();
    /// Closes the window, as at the end of the program.
    void close();

private:
    struct Deed {
        const char *name;
        void (User::*run)();
        int weight;
    };
    static const std::vector<Deed> &deeds();
    struct Agent {
        std::unique_ptr<AgentDouble> process;
        QString folder;
    };
    /// A changed file of a repository, and where it stands in the window's list.
    struct Chosen {
        QString repository;
        QString path;
        int row = 0;
    };
    /// An instruction file that is open, and its content.
    struct OpenFile {
        QString path;
        QByteArray content;
    };

    // What the deeds are made of.
    int below(int count) { return int(m_random.bounded(count)); }
    QString letters(int count);
    void tell(const QString &detail);
    QWidget *detail() const { return m_window->detail(); }
    void openWindow();
    void focus();
    void awaitNoDialog();
    void settle();
    void openTab(int tab);
    void openProject(const QString &folder);
    int rowOf(const QString &folder) const;

    // The window.
    void changeProject();
    void changeTab();
    void refresh();
    void resize();
    void changeColors();
    void changeScope();
    void addOrRemoveProject();
    bool addSpareFolder();
    void reopen();
    void closeWhileApproving();
    void closeWhileRejecting();
    void closeWhileSaving();

    // The agents.
    void startAgents();
    void requireAgents() const;
    void stopAgent();
    void showOnlyProject();

    // The repositories.
    void editInRepository();
    void approve();
    void reject();
    void commit();
    QString openReview();
    void requireListed(const QString &repository) const;
    std::optional<Chosen> choose(bool toApprove);
    TrackedFile &tracked(const Chosen &chosen);
    bool gitWorked();
    void requireCommitted(const QString &repository, const QString &subject) const;

    // The instruction files and the prices.
    OpenFile openInstructions();
    OpenFile typeInstructions();
    void editInstructions();
    void searchInstructions();
    void editPrices();
    void changePrices(const PriceEditorPage &page);

    Scratch &m_scratch;
    const quint64 m_seed;
    const QPalette m_palette;
    QRandomGenerator m_random;
    QString m_told;
    std::function<void(const QString &)> m_tell;
    std::unique_ptr<Window> m_window;
    std::vector<Agent> m_agents;
    bool m_spareIsAdded = false;
};
