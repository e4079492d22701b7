// SPDX-License-Identifier: GPL-3.0-or-later
#include "User.h"

#include "Finding.h"
#include "app/ProjectListModel.h"
#include "gui/LiveScreen.h"
#include "model/Background.h"
#include "model/PriceStore.h"
#include "support/Input.h"

#include <QApplication>
#include <QPixmapCache>

namespace {

constexpr int patience = 60'000;

} // namespace

User::User(Scratch &scratch, quint64 seed) : m_scratch(scratch), m_seed(seed)
{
    openWindow();
}

User::~User() = default;

const std::vector<User::Deed> &User::deeds()
{
    static const std::vector<Deed> all{
        {"changes the project", &User::changeProject, 6},
        {"changes the tab", &User::changeTab, 12},
        {"refreshes", &User::refresh, 10},
        {"changes the window's size", &User::resize, 4},
        {"closes the window and opens it again", &User::reopen, 1},
        {"adds or removes a project", &User::addOrRemoveProject, 3},
        {"stops an agent", &User::stopAgent, 3},
        {"edits a file of a repository", &User::editInRepository, 14},
        {"approves", &User::approve, 8},
        {"rejects", &User::reject, 8},
        {"commits", &User::commit, 3},
        {"edits instructions", &User::editInstructions, 6},
        {"edits the prices", &User::editPrices, 3},
    };
    return all;
}

void User::step(qint64 number, const std::function<void(const QString &)> &tell)
{
    const quint32 seeds[] = {quint32(m_seed), quint32(m_seed >> 32), quint32(number)};
    m_random = QRandomGenerator(seeds);
    int weights = 0;
    for (const Deed &deed : deeds())
        weights += deed.weight;
    int left = below(weights);
    for (const Deed &deed : deeds()) {
        left -= deed.weight;
        if (left < 0) {
            tell(QString::fromLatin1(deed.name));
            (this->*deed.run)();
            break;
        }
    }
    QTest::qWait(1 + below(30));
    requireAgents();
}

void User::rest()
{
    m_agents.clear();
    if (m_spareIsAdded)
        addOrRemoveProject();
    openProject(m_scratch.projects().at(1));
    openProject(m_scratch.projects().constFirst());
    openTab(0);
    m_window->view().resize(1000, 640);
    m_window->reload();
    settle();
    QPixmapCache::clear();
    QTest::qWait(200);
    settle();
}

QString User::letters(int count)
{
    QString text;
    for (int i = 0; i < count; ++i)
        text += QLatin1Char(char(below(5) == 0 ? ' ' : 'a' + below(26)));
    return text;
}

void User::openWindow()
{
    m_window = std::make_unique<Window>(m_scratch.home());
    m_window->view().resize(1000, 640);
    m_window->load();
}

void User::focus()
{
    ContentView &view = m_window->view();
    view.activateWindow();
    const auto hasFocus = [&view] { return QGuiApplication::focusWindow() == view.windowHandle(); };
    require(QTest::qWaitFor(hasFocus, patience), QStringLiteral("the window gets no focus"));
}

/// Waits until nothing is under way. A result may start the next work.
void User::settle()
{
    for (int i = 0; i < 4; ++i) {
        const bool done = Background::savingPool().waitForDone(patience) &&
                          Background::pool().waitForDone(patience);
        require(done, QStringLiteral("background work does not end"));
        QTest::qWait(1);
    }
}

void User::openTab(int tab)
{
    focus();
    Input::key(Qt::Key(Qt::Key_1 + tab), Qt::ControlModifier);
    require(m_window->tabs()->currentIndex() == tab, QStringLiteral("the tab is not shown"));
}

int User::rowOf(const QString &folder) const
{
    const QAbstractItemModel *model = m_window->projects()->model();
    for (int row = 0; row < model->rowCount(); ++row) {
        if (model->index(row, 0).data(ProjectListModel::PathRole).toString() == folder)
            return row;
    }
    return -1;
}

void User::openProject(const QString &folder)
{
    focus();
    const int row = rowOf(folder);
    require(row >= 0, QStringLiteral("not in the list of projects: ") + folder);
    QListView *list = m_window->projects();
    list->scrollTo(list->model()->index(row, 0));
    Input::clickCell(list, row);
    require(m_window->store().selection() == folder,
            QStringLiteral("not the project that was clicked on"));
}

void User::requireAgents() const
{
    for (const auto &agent : m_agents)
        require(agent->isRunning(), QStringLiteral("an agent ended that nobody stopped"));
}

void User::changeProject()
{
    const QStringList &projects = m_scratch.projects();
    openProject(projects.at(below(int(projects.size()))));
}

void User::changeTab()
{
    openTab(below(5));
}

void User::refresh()
{
    focus();
    for (int i = below(3); i >= 0; --i) {
        Input::key(Qt::Key_F5);
        QTest::qWait(below(20));
    }
}

void User::resize()
{
    m_window->view().resize(900 + below(300), 600 + below(300));
}

void User::reopen()
{
    m_window->destroy();
    openWindow();
}

void User::addOrRemoveProject()
{
    const QString &spare = m_scratch.spareFolder();
    QStringList added = m_scratch.projects();
    focus();
    if (m_spareIsAdded) {
        m_window->projects()->scrollToBottom();
        chooseEntry(m_window->menuOf(rowOf(spare)), QStringLiteral("Remove from list"));
    } else {
        m_window->store().addProject(spare);
        added.append(spare);
    }
    m_spareIsAdded = !m_spareIsAdded;
    const auto isThere = [this, &spare] { return (rowOf(spare) >= 0) == m_spareIsAdded; };
    require(QTest::qWaitFor(isThere, patience),
            QStringLiteral("the list of projects does not follow"));
    (void)detail();
    m_scratch.expect(m_scratch.home().support(QStringLiteral("projects.json")),
                     PriceStore::encodeAdded(added));
}

void User::stopAgent()
{
    const QStringList names{QStringLiteral("claude"), QStringLiteral("codex"),
                            QStringLiteral("gemini")};
    const QByteArray temporary = qgetenv("TMPDIR");
    qputenv("TMPDIR", m_scratch.neighbourFolder().toUtf8()); // they need files of their own
    while (m_agents.size() < 3) {
        const QString name = names.at(below(3));
        const QString folder = m_scratch.projects().at(below(int(m_scratch.projects().size())));
        m_agents.push_back(std::make_unique<AgentDouble>(name, folder));
    }
    qputenv("TMPDIR", temporary);

    openTab(1);
    const LiveScreen::Parts live(find<LiveView>(detail()));
    const auto chosen = m_agents.begin() + below(int(m_agents.size()));
    AgentDouble &agent = **chosen;
    if (live.onlyProject->isChecked())
        QTest::mouseClick(live.onlyProject, Qt::LeftButton, {}, QPoint(8, 8));
    require(QTest::qWaitFor([&] { return live.shows(agent.pid()); }, patience),
            QStringLiteral("an agent is not shown"));
    require(live.askToStop(agent), QStringLiteral("no question, or about another process"));
    requireAgents();
    if (below(3) == 0) {
        QTest::keyClick(live.dialog(), Qt::Key_Escape);
        return;
    }
    require(live.confirm(agent), QStringLiteral("the question is about another process"));
    require(QTest::qWaitFor([&] { return !agent.isRunning(); }, patience),
            QStringLiteral("an agent does not stop"));
    m_agents.erase(chosen);
}
