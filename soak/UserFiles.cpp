// SPDX-License-Identifier: GPL-3.0-or-later

// What the user does to the instruction files and the price table.

#include "Finding.h"
#include "Patience.h"
#include "User.h"
#include "context/ContextEditor.h"
#include "context/ContextListModel.h"
#include "model/PriceStore.h"
#include "support/Input.h"
#include "support/PriceEditorPage.h"

#include <QDialog>
#include <QFileInfo>
#include <QLabel>
#include <QPushButton>

namespace {

constexpr int tooLong = 2000;

} // namespace

/// Opens one of the instruction files of the project, which need not exist.
User::OpenFile User::openInstructions()
{
    openTab(0); // so that what an earlier step left unsaved is thrown away
    openTab(4);
    settle();
    auto *list = find<QListView>(detail(), QStringLiteral("contextFiles"));
    const auto *model = qobject_cast<const ContextListModel *>(list->model());
    int row = 0;
    do
        row = below(model->rowCount());
    while (!model->file(model->index(row, 0)));
    const QModelIndex index = model->index(row, 0);
    const QString path = model->file(index)->path;
    tell(QFileInfo(path).fileName());
    list->scrollTo(index);
    Input::clickCell(list, row);
    settle();
    const QByteArray content = readFile(path);
    require(find<ContextEditor>(detail())->toPlainText().toUtf8() == content,
            QStringLiteral("not the text of ") + path + QStringLiteral(" is shown"));
    return {path, content};
}

/// Types something into one of them, and gives what it would be if it were saved.
User::OpenFile User::typeInstructions()
{
    OpenFile file = openInstructions();
    auto *editor = find<ContextEditor>(detail());
    Input::click(editor->viewport());
    if (file.content.size() > tooLong) {
        Input::key(Qt::Key_A, Qt::ControlModifier);
        file.content.clear();
    } else {
        Input::key(Qt::Key_End, Qt::ControlModifier);
    }
    const QString typed = letters(1 + below(40)) + u'x';
    Input::type(typed);
    file.content += typed.toLatin1();
    require(editor->toPlainText().toUtf8() == file.content,
            QStringLiteral("not what was typed is shown"));
    return file;
}

void User::editInstructions()
{
    const OpenFile typed = typeInstructions();
    if (below(3) == 0) // thrown away with the next look at a file
        return;
    tell(QStringLiteral("saves"));
    Input::key(Qt::Key_S, Qt::ControlModifier);
    // A button that is pressed by its shortcut takes a moment.
    const auto *save = find<QPushButton>(detail(), QStringLiteral("save"));
    require(QTest::qWaitFor([save] { return !save->isEnabled(); }, patience),
            QStringLiteral("saving does not begin: ") + typed.path);
    settle();
    require(find<QLabel>(detail(), QStringLiteral("status"))->text() == u"Saved",
            QStringLiteral("nothing says that it is saved: ") + typed.path);
    m_scratch.expect(typed.path, typed.content);
}

void User::searchInstructions()
{
    const OpenFile file = openInstructions();
    const auto *editor = find<ContextEditor>(detail());
    Input::click(editor->viewport());
    Input::key(Qt::Key_F, Qt::ControlModifier);
    const QString wanted = u'a' + letters(below(2)).trimmed();
    Input::type(wanted);
    for (int i = below(4); i > 0; --i)
        Input::key(Qt::Key_F3, below(2) == 0 ? Qt::NoModifier : Qt::ShiftModifier);
    const QString selected = editor->textCursor().selectedText();
    const bool isFound = QString::fromUtf8(file.content).contains(wanted, Qt::CaseInsensitive);
    require(selected.compare(isFound ? wanted : QString(), Qt::CaseInsensitive) == 0,
            QStringLiteral("looked for %1 and found %2").arg(wanted, selected));
    Input::key(Qt::Key_Escape);
    require(editor->toPlainText().toUtf8() == file.content &&
                !find<QPushButton>(detail(), QStringLiteral("save"))->isEnabled(),
            QStringLiteral("looking for something has changed ") + file.path);
}

void User::editPrices()
{
    openTab(0);
    const QList<PriceRow> before = m_window->store().prices();
    const PriceEditorPage page(m_window->openPrices());
    changePrices(page);
    if (below(3) == 0) {
        tell(QStringLiteral("but does not"));
        if (below(2) == 0)
            Input::key(Qt::Key_Escape);
        else
            page.click("Cancel");
        awaitNoDialog();
        require(m_window->store().prices() == before,
                QStringLiteral("prices changed although nothing was saved"));
        return;
    }
    const QList<QStringList> shown = page.texts();
    page.click("Save");
    awaitNoDialog();
    const QList<PriceRow> now = m_window->store().prices();
    QList<QStringList> saved;
    for (const PriceRow &row : now)
        saved.append({row.key, QString::number(row.input), QString::number(row.output),
                      QString::number(row.cacheWrite), QString::number(row.cacheRead)});
    require(saved == shown, QStringLiteral("other prices were saved than were shown"));
    const QString path = m_scratch.home().support(QStringLiteral("prices.json"));
    m_scratch.expect(path, PriceStore::encodePrices(now).value_or(QByteArray()));
}

/// So that the table always fits on the screen.
void User::changePrices(const PriceEditorPage &page)
{
    const int rows = page.rowCount();
    const int action = below(6);
    if (action == 0)
        page.click("Reset to Defaults");
    else if (action == 1 && rows < 8)
        page.click("Add Row");
    else if (action == 2 && rows > 2)
        Input::click(page.deleteButton(below(rows)));
    QTest::qWait(1);
    page.edit(below(page.rowCount()), PriceEditorPage::Input, QString::number(below(100)));
}
