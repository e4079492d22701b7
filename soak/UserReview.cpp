// SPDX-License-Identifier: GPL-3.0-or-later

// What the user does to the repositories, in the Review tab and beside the window.

#include "Finding.h"
#include "User.h"
#include "review/Commit.h"
#include "support/Input.h"

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QSet>

namespace {

const QString ours = QStringLiteral("ours/");

/// The rows with our files, by path.
QMap<QString, int> oursIn(const QAbstractItemModel *model)
{
    QMap<QString, int> rows;
    for (int row = 0; row < model->rowCount(); ++row) {
        const QString path = model->index(row, 0).data().toString();
        if (path.startsWith(ours))
            rows.insert(path, row);
    }
    return rows;
}

} // namespace

/// As an editor beside the window would.
void User::editInRepository()
{
    const QStringList repositories = m_scratch.repositories();
    for (int i = 1 + below(3); i > 0; --i) {
        const QString repository = repositories.at(below(int(repositories.size())));
        const QString path = ours + QString::number(below(8)) + QStringLiteral(".txt");
        const TrackedFile file = m_scratch.tracked(repository).value(path);
        const bool isStagedAsGone = file.head && !file.index;
        if (isStagedAsGone)
            continue; // git would list the path twice
        if (file.disk && below(4) == 0) {
            m_scratch.put(repository, path, std::nullopt);
            continue;
        }
        // Long enough never to be taken for another file that got a new name.
        QByteArray content = letters(40).toLatin1() + '\n';
        for (int line = 1 + below(below(10) == 0 ? 2000 : 20); line > 0; --line)
            content += letters(1 + below(60)).toLatin1() + '\n';
        m_scratch.put(repository, path, content);
    }
}

/// Shows the changes of a repository as they are now, and gives its folder.
QString User::openReview()
{
    const QStringList repositories = m_scratch.repositories();
    const QString repository = repositories.at(below(int(repositories.size())));
    openProject(repository);
    openTab(2);
    Input::key(Qt::Key_F5);
    settle();
    requireListed(repository);
    return repository;
}

/// Every changed file of ours stands in the list, and none that is not changed.
void User::requireListed(const QString &repository) const
{
    const auto *list = find<QListView>(detail(), QStringLiteral("changes"));
    const QStringList listed = oursIn(list->model()).keys();
    QStringList expected;
    const QMap<QString, TrackedFile> &files = m_scratch.tracked(repository);
    for (auto it = files.cbegin(); it != files.cend(); ++it) {
        if (it->isChanged())
            expected.append(it.key());
    }
    require(listed == expected, QStringLiteral("the list of changes holds %1 and should hold %2")
                                    .arg(listed.join(u' '), expected.join(u' ')));
}

/// Selects a changed file of ours with the mouse, if there is one.
std::optional<User::Chosen> User::choose(const QString &repository, bool toApprove)
{
    auto *list = find<QListView>(detail(), QStringLiteral("changes"));
    QList<Chosen> possible;
    const QMap<QString, int> rows = oursIn(list->model());
    for (auto it = rows.cbegin(); it != rows.cend(); ++it) {
        if (!toApprove || !m_scratch.tracked(repository)[it.key()].isWhollyStaged())
            possible.append({it.key(), it.value()});
    }
    if (possible.isEmpty())
        return {};
    const Chosen chosen = possible.at(below(int(possible.size())));
    list->scrollTo(list->model()->index(chosen.row, 0));
    Input::clickCell(list, chosen.row);
    settle();
    return chosen;
}

bool User::gitWorked() const
{
    const auto *error = find<QPlainTextEdit>(detail(), QStringLiteral("error"));
    if (!error->isVisible())
        return true;
    const QString text = error->toPlainText();
    require(text.contains(QStringLiteral("index.lock")), QStringLiteral("git failed: ") + text);
    return false;
}

void User::approve()
{
    const QString repository = openReview();
    const auto chosen = choose(repository, true);
    if (!chosen)
        return;
    Input::click(buttonOf(detail(), QStringLiteral("Approve")));
    settle();
    TrackedFile &file = m_scratch.tracked(repository)[chosen->path];
    if (gitWorked())
        file.index = file.disk;
    requireListed(repository);
}

void User::reject()
{
    const QString repository = openReview();
    const auto chosen = choose(repository, false);
    if (!chosen)
        return;
    Input::click(buttonOf(detail(), QStringLiteral("Reject")));
    auto *question = openDialog<QMessageBox>();
    if (below(4) == 0) {
        Input::key(Qt::Key_Escape);
        settle();
        return;
    }
    Input::click(buttonOf(question, QStringLiteral("Discard Changes")));
    settle();
    TrackedFile &file = m_scratch.tracked(repository)[chosen->path];
    if (gitWorked())
        file.disk = file.index = file.head;
    requireListed(repository);
}

void User::commit()
{
    const QString repository = openReview();
    QAbstractButton *button = buttonOf(detail(), QStringLiteral("Commit\u2026"));
    QMap<QString, TrackedFile> &files = m_scratch.tracked(repository);
    const bool isStaged = std::any_of(files.cbegin(), files.cend(),
                                      [](const TrackedFile &file) { return file.isStaged(); });
    require(button->isEnabled() || !isStaged, QStringLiteral("what is staged cannot be committed"));
    if (!button->isEnabled())
        return;
    Input::click(button);
    auto *sheet = openDialog<QDialog>();
    Input::type(u'a' + letters(30));
    if (below(4) == 0) {
        Input::key(Qt::Key_Escape);
        return;
    }
    Input::click(buttonOf(sheet, QStringLiteral("Commit")));
    settle();
    if (QApplication::activeModalWidget()) { // the neighbour was at it
        const auto *error = find<QPlainTextEdit>(sheet, QStringLiteral("error"));
        const QString text = error->toPlainText();
        require(text.contains(QStringLiteral(".lock")) ||
                    text.contains(QStringLiteral("cannot lock")),
                QStringLiteral("the commit failed: ") + text);
        Input::key(Qt::Key_Escape);
        return;
    }
    for (TrackedFile &file : files)
        file.head = file.index;
    requireListed(repository);
}
