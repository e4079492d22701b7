// SPDX-License-Identifier: GPL-3.0-or-later
#include "User.h"

#include "Finding.h"
#include "Patience.h"
#include "app/ProjectListModel.h"
#include "model/Background.h"
#include "support/Input.h"

#include <QApplication>

User::User(Scratch &scratch, quint64 seed)
    : m_scratch(scratch)
    , m_seed(seed)
    , m_palette(QApplication::palette())
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
        {"changes the colours", &User::changeColors, 2},
        {"changes the scope of the charts", &User::changeScope, 4},
        {"adds or removes a project", &User::addOrRemoveProject, 3},
        {"closes the window and opens it again", &User::reopen, 2},
        {"closes the window while it approves", &User::closeWhileApproving, 2},
        {"closes the window while it rejects", &User::closeWhileRejecting, 2},
        {"closes the window while it saves", &User::closeWhileSaving, 2},
        {"stops an agent", &User::stopAgent, 3},
        {"shows the agents of one project", &User::showOnlyProject, 2},
        {"edits files of a repository", &User::editInRepository, 16},
        {"approves", &User::approve, 10},
        {"rejects", &User::reject, 8},
        {"commits", &User::commit, 8},
        {"edits instructions", &User::editInstructions, 6},
        {"searches in instructions", &User::searchInstructions, 4},
        {"edits the prices", &User::editPrices, 3},
    };
    return all;
}

void User::step(qint64 number, const std::function<void(const QString &)> &tell)
{
    const quint32 seeds[] = {quint32(m_seed), quint32(m_seed >> 32), quint32(number)};
    m_random = QRandomGenerator(seeds);
    m_tell = tell;
    m_told.clear();
    int weights = 0;
    for (const Deed &deed : deeds())
        weights += deed.weight;
    int left = below(weights);
    for (const Deed &deed : deeds()) {
        left -= deed.weight;
        if (left < 0) {
            this->tell(QString::fromLatin1(deed.name));
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
    QApplication::setPalette(m_palette);
    openProject(m_scratch.projects().at(1));
    openProject(m_scratch.projects().constFirst());
    openTab(0);
    m_window->view().resize(1000, 640);
    m_window->reload();
    settle();
    // Idle threads end by themselves.
    QTest::qWait(2 * threadPatience);
    settle();
}

void User::close()
{
    m_window->view().close();
    m_window->destroy();
    require(Background::finish(std::chrono::milliseconds(patience)),
            QStringLiteral("background work does not end with the window"));
    Background::finishSaving();
}

QString User::letters(int count)
{
    QString text;
    for (int i = 0; i < count; ++i)
        text += QLatin1Char(char(below(5) == 0 ? ' ' : 'a' + below(26)));
    return text;
}

void User::tell(const QString &detail)
{
    m_told += m_told.isEmpty() ? detail : QStringLiteral(", ") + detail;
    m_tell(m_told);
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

void User::awaitNoDialog()
{
    require(QTest::qWaitFor([] { return !QApplication::activeModalWidget(); }, patience),
            QStringLiteral("a dialog does not close"));
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
