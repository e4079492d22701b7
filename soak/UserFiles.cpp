// SPDX-License-Identifier: GPL-3.0-or-later

// What the user does to the instruction files and the price table.

#include "Finding.h"
#include "User.h"
#include "context/ContextEditor.h"
#include "context/ContextListModel.h"
#include "model/PriceStore.h"
#include "support/Input.h"
#include "support/PriceEditorPage.h"

#include <QAbstractButton>
#include <QLabel>
#include <QPushButton>

namespace {

constexpr int patience = 60'000;

} // namespace

void User::editInstructions()
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
    list->scrollTo(index);
    Input::clickCell(list, row);
    settle();

    auto *editor = find<ContextEditor>(detail());
    const QByteArray before = readFile(path);
    require(editor->toPlainText().toUtf8() == before,
            QStringLiteral("not the text of ") + path + QStringLiteral(" is shown"));
    Input::click(editor->viewport());
    const bool isLong = before.size() > 2000;
    if (isLong)
        Input::key(Qt::Key_A, Qt::ControlModifier);
    else
        editor->moveCursor(QTextCursor::End);
    const QString typed = letters(1 + below(40)) + u'x';
    Input::type(typed);
    if (below(3) == 0) // thrown away with the next look at a file
        return;
    Input::key(Qt::Key_S, Qt::ControlModifier);
    // A button that is pressed by its shortcut takes a moment.
    const auto *save = find<QPushButton>(detail(), QStringLiteral("save"));
    require(QTest::qWaitFor([save] { return !save->isEnabled(); }, patience),
            QStringLiteral("saving does not begin: ") + path);
    settle();
    require(find<QLabel>(detail(), QStringLiteral("status"))->text() == u"Saved",
            QStringLiteral("nothing says that it is saved: ") + path);
    m_scratch.expect(path, (isLong ? QByteArray() : before) + typed.toLatin1());
}

void User::editPrices()
{
    openTab(0);
    const PriceEditorPage page(m_window->openPrices());
    page.edit(below(page.rowCount()), PriceEditorPage::Input, QString::number(below(100)));
    const QList<PriceRow> before = m_window->store().prices();
    if (below(3) == 0) {
        Input::key(Qt::Key_Escape);
        require(m_window->store().prices() == before,
                QStringLiteral("prices changed although nothing was saved"));
        return;
    }
    page.click("Save");
    const QString path = m_scratch.home().support(QStringLiteral("prices.json"));
    m_scratch.expectAsItIs(path);
    require(PriceStore::decodePrices(readFile(path)) == m_window->store().prices(),
            QStringLiteral("the price table on the disk is not the one in the window"));
}
