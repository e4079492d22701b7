// SPDX-License-Identifier: GPL-3.0-or-later

// What the user does to the repositories, in the Review tab and beside the window.

#include "Finding.h"
#include "Patience.h"
#include "User.h"
#include "review/Commit.h"
#include "review/Repository.h"
#include "support/Input.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFileInfo>
#include <QMessageBox>
#include <QPlainTextEdit>

namespace {

const QString ours = QStringLiteral("ours/");
constexpr int fileCount = 8;

QString fileName(int number)
{
    return ours + QString::number(number) + QStringLiteral(".txt");
}

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
        const QString path = fileName(below(fileCount));
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
std::optional<User::Chosen> User::choose(bool toApprove)
{
    const QString repository = openReview();
    auto *list = find<QListView>(detail(), QStringLiteral("changes"));
    const QMap<QString, int> rows = oursIn(list->model());
    // By name, so that it is the same one whatever became of the others.
    const int first = below(fileCount);
    for (int i = 0; i < fileCount; ++i) {
        const QString path = fileName((first + i) % fileCount);
        const Chosen chosen{repository, path, rows.value(path, -1)};
        if (chosen.row < 0 || (toApprove && tracked(chosen).isWhollyStaged()))
            continue;
        tell(QFileInfo(repository).fileName() + u'/' + path);
        list->scrollTo(list->model()->index(chosen.row, 0));
        Input::clickCell(list, chosen.row);
        settle();
        return chosen;
    }
    return {};
}

TrackedFile &User::tracked(const Chosen &chosen)
{
    return m_scratch.tracked(chosen.repository)[chosen.path];
}

/// Whether git did what it was told. When it could not, since the neighbour was at it, the window
/// says so.
bool User::gitWorked()
{
    const auto *error = find<QPlainTextEdit>(detail(), QStringLiteral("error"));
    if (!error->isVisible())
        return true;
    const QString text = error->toPlainText();
    require(text.contains(QStringLiteral("index.lock")), QStringLiteral("git failed: ") + text);
    tell(QStringLiteral("which a lock prevented"));
    return false;
}

void User::approve()
{
    const auto chosen = choose(true);
    if (!chosen)
        return;
    Input::click(buttonOf(detail(), QStringLiteral("Approve")));
    settle();
    TrackedFile &file = tracked(*chosen);
    if (gitWorked())
        file.index = file.disk;
    requireListed(chosen->repository);
}

void User::reject()
{
    const auto chosen = choose(false);
    if (!chosen)
        return;
    Input::click(buttonOf(detail(), QStringLiteral("Reject")));
    auto *question = openDialog<QMessageBox>();
    if (below(4) == 0) {
        tell(QStringLiteral("no"));
        Input::key(Qt::Key_Escape);
        awaitNoDialog();
        settle();
        return requireListed(chosen->repository);
    }
    tell(QStringLiteral("yes"));
    Input::click(buttonOf(question, QStringLiteral("Discard Changes")));
    settle();
    TrackedFile &file = tracked(*chosen);
    if (gitWorked())
        file.disk = file.index = file.head;
    requireListed(chosen->repository);
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
    const QString subject = u'a' + letters(30).simplified();
    Input::type(subject);
    if (below(4) == 0) {
        tell(QStringLiteral("but does not"));
        Input::key(Qt::Key_Escape);
        return awaitNoDialog();
    }
    tell(QFileInfo(repository).fileName());
    Input::click(buttonOf(sheet, QStringLiteral("Commit")));
    settle();
    if (QApplication::activeModalWidget()) { // the neighbour was at it
        const QString text = find<QPlainTextEdit>(sheet, QStringLiteral("error"))->toPlainText();
        // It may have committed what was staged of its own.
        const bool isAllGone = !isStaged && text.contains(QStringLiteral("to commit"));
        require(isAllGone || text.contains(QStringLiteral(".lock")) ||
                    text.contains(QStringLiteral("cannot lock")),
                QStringLiteral("the commit failed: ") + text);
        tell(QStringLiteral("which the neighbour prevented"));
        Input::key(Qt::Key_Escape);
        return awaitNoDialog();
    }
    for (TrackedFile &file : files)
        file.head = file.index;
    requireCommitted(repository, subject);
    requireListed(repository);
}

void User::requireCommitted(const QString &repository, const QString &subject) const
{
    // The neighbour may have committed since.
    const QByteArray log = git(
        repository, {QStringLiteral("log"), QStringLiteral("-n30"), QStringLiteral("--format=%B")});
    const QString message = subject + QStringLiteral("\n\n") + commitTrailer();
    require(log.contains(message.toUtf8()),
            QStringLiteral("no commit has this message: ") + subject);
}
