// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/TableView.h"

#include "support/Input.h"
#include "support/WindowTestMain.h"
#include "ui/CellDelegate.h"

#include <QAccessible>
#include <QClipboard>
#include <QHeaderView>
#include <QLineEdit>
#include <QMimeData>
#include <QStandardItemModel>
#include <QVBoxLayout>

namespace {

QList<QStandardItem *> rowOf(const QStringList &texts)
{
    QList<QStandardItem *> items;
    for (const QString &text : texts)
        items.append(new QStandardItem(text));
    return items;
}

/// A table between two fields in a window with the focus.
struct Shown {
    Shown()
    {
        auto *layout = new QVBoxLayout(&window);
        layout->addWidget(&before);
        layout->addWidget(&table);
        layout->addWidget(&after);
        table.setModel(&model);
        window.resize(500, 400);
        window.show();
        if (!QTest::qWaitForWindowActive(&window))
            qFatal("the window does not get the focus");
        table.setFocus();
    }

    QWidget window;
    QStandardItemModel model;
    QLineEdit before;
    TableView table;
    QLineEdit after;
};

QString clipboard()
{
    return QGuiApplication::clipboard()->text();
}

} // namespace

class TableViewTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { QGuiApplication::clipboard()->setText(u"before"_qs); }

    void aHeaderFitsIntoItsColumn()
    {
        Shown shown;
        const QStringList titles{u"Duration"_qs, u"Turns"_qs, u"Est. cost"_qs, u"Uptime"_qs,
                                 u"Wi"_qs.repeated(9)};
        shown.model.setHorizontalHeaderLabels(titles);
        const QHeaderView *header = shown.table.horizontalHeader();
        for (int points = 6; points <= 24; ++points) {
            QFont font = header->font();
            font.setPointSize(points);
            shown.table.horizontalHeader()->setFont(font);
            for (int column = 0; column < titles.size(); ++column) {
                shown.table.setFixedColumn(column, 0);
                const QRect cell(0, 0, header->sectionSize(column), 20);
                const int place = CellDelegate::textPlace(cell, column).width();
                QCOMPARE(header->fontMetrics().elidedText(titles[column], Qt::ElideRight, place),
                         titles[column]);
            }
        }
    }

    void aColumnGivesWayBeforeTheTableScrolls()
    {
        Shown shown;
        shown.model.setHorizontalHeaderLabels({u"A"_qs, u"B"_qs, u"C"_qs});
        shown.table.setFixedColumn(2, 100);
        const QString widest = u"Mi "_qs.repeated(10);
        shown.table.setResizableColumn(0, 60, 80, widest, u"MiMiMi"_qs);
        shown.table.setFlexibleColumn(1, 180);
        const QHeaderView *header = shown.table.horizontalHeader();
        const auto widthIn = [&](int window) {
            shown.window.resize(window, 400);
            shown.window.grab(); // which lays it out
            return header->sectionSize(0);
        };
        const int whole = widthIn(1000);
        QVERIFY(whole > shown.table.fontMetrics().horizontalAdvance(widest));
        const int around = 1000 - shown.table.viewport()->width();
        QCOMPARE(widthIn(around + 100 + 180 + whole), whole);
        QCOMPARE(widthIn(around + 100 + 180 + 90), 90);
        QCOMPARE(header->length(), shown.table.viewport()->width());
        QCOMPARE(widthIn(around + 100 + 180 + 60), 80);
        shown.table.horizontalHeader()->resizeSection(0, 120); // as the user does
        QCOMPARE(widthIn(1000), 120);
        QCOMPARE(widthIn(around + 100 + 180 + 90), 120);
    }

    void whatStandsLeftStandsRightFromRightToLeft()
    {
        const QRect cell(100, 0, 80, 20);
        QCOMPARE(CellDelegate::textPlace(cell, 0), QRect(110, 0, 64, 20));
        QCOMPARE(CellDelegate::textPlace(cell, 0, Qt::RightToLeft), QRect(106, 0, 64, 20));
    }

    void copiesWholeRowsInTheirOrder()
    {
        Shown shown;
        for (const QString &name : {u"a"_qs, u"b"_qs, u"c"_qs})
            shown.model.appendRow(rowOf({name, name.toUpper(), u"1"_qs}));
        Input::clickCell(&shown.table, 2, 1);
        Input::clickCell(&shown.table, 0, 2, {.modifiers = Qt::ControlModifier});
        Input::key(Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(clipboard(), u"a\tA\t1\nc\tC\t1\n"_qs);
        QCOMPARE(shown.table.selectedText(), clipboard());
    }

    void copiesATableForThoseWhoTakeOne()
    {
        Shown shown;
        shown.model.setHorizontalHeaderLabels({u"Name"_qs, u"Size"_qs, QString()});
        shown.model.appendRow(rowOf({u"a <b>& c"_qs, u"1"_qs, u"a button"_qs}));
        shown.model.appendRow(rowOf({u"two\nlines"_qs, u"2"_qs, u"a button"_qs}));
        shown.table.selectAll();
        Input::key(Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QGuiApplication::clipboard()->mimeData()->html(),
                 u"<table><tr><td>a &lt;b&gt;&amp; c</td><td>1</td></tr>"
                 "<tr><td>two lines</td><td>2</td></tr></table>"_qs);
        QCOMPARE(clipboard(), u"a <b>& c\t1\ntwo lines\t2\n"_qs);
    }

    void aCellIsCopiedOnOneLine()
    {
        Shown shown;
        shown.model.appendRow(rowOf({u" a\tb\nc\r\nd  e "_qs, u""_qs, u"<b>&"_qs}));
        Input::clickCell(&shown.table, 0);
        Input::key(Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(clipboard(), u"a b c d e\t\t<b>&\n"_qs);
    }

    void withoutASelectionTheClipboardStays()
    {
        Shown shown;
        shown.model.appendRow(rowOf({u"a"_qs}));
        QVERIFY(shown.table.currentIndex().isValid());
        Input::key(Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(clipboard(), u"before"_qs);
    }

    void hasACurrentRowAsSoonAsItHasRows()
    {
        Shown shown;
        QVERIFY(!shown.table.currentIndex().isValid());
        shown.model.appendRow(rowOf({u"a"_qs}));
        QCOMPARE(shown.table.currentIndex().row(), 0);
        shown.model.appendRow(rowOf({u"b"_qs}));
        QCOMPARE(shown.table.currentIndex().row(), 0);
        QVERIFY(!shown.table.selectionModel()->hasSelection());
    }

    void hasACurrentRowAfterAReset()
    {
        Shown shown;
        shown.model.appendRow(rowOf({u"a"_qs}));
        shown.model.clear();
        QVERIFY(!shown.table.currentIndex().isValid());
        shown.model.appendRow(rowOf({u"b"_qs}));
        QVERIFY(shown.table.currentIndex().isValid());
        QStandardItemModel filled;
        filled.appendRow(rowOf({u"c"_qs}));
        shown.table.setModel(&filled);
        QCOMPARE(shown.table.currentIndex().model(), &filled);
        shown.table.setModel(&shown.model);
    }

    void keepsACurrentRowWhenItsRowGoes()
    {
        Shown shown;
        for (const QString &name : {u"a"_qs, u"b"_qs, u"c"_qs})
            shown.model.appendRow(rowOf({name}));
        Input::clickCell(&shown.table, 2);
        shown.model.removeRow(2);
        QVERIFY(shown.table.currentIndex().isValid());
        shown.model.removeRows(0, 1);
        QVERIFY(shown.table.currentIndex().isValid());
    }

    void aClickSelectsTheWholeRow()
    {
        Shown shown;
        shown.model.appendRow(rowOf({u"a"_qs, u"b"_qs}));
        Input::clickCell(&shown.table, 0, 1);
        QCOMPARE(shown.table.selectionModel()->selectedIndexes().size(), 2);
    }

    void tabLeavesTheTable()
    {
        Shown shown;
        shown.model.appendRow(rowOf({u"a"_qs, u"b"_qs}));
        Input::key(Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), &shown.after);
        Input::key(Qt::Key_Backtab, Qt::ShiftModifier);
        QCOMPARE(QApplication::focusWidget(), &shown.table);
        Input::key(Qt::Key_Backtab, Qt::ShiftModifier);
        QCOMPARE(QApplication::focusWidget(), &shown.before);
    }

    void nothingCanBeEdited()
    {
        Shown shown;
        shown.model.appendRow(rowOf({u"a"_qs}));
        Input::key(Qt::Key_F2);
        Input::type(u"x"_qs);
        QCOMPARE(shown.model.item(0)->text(), u"a"_qs);
        QVERIFY(shown.table.findChildren<QLineEdit *>().isEmpty());
    }

    void rowsThatComeAndGoAboveDoNotMoveWhatIsSeen()
    {
        Shown shown;
        for (int i = 0; i < 100; ++i)
            shown.model.appendRow(rowOf({QString::number(i)}));
        QCoreApplication::processEvents();
        shown.table.scrollTo(shown.model.index(50, 0), QAbstractItemView::PositionAtTop);
        QCOMPARE(textAtTheTop(shown.table), u"50"_qs);
        shown.model.insertRow(10, rowOf({u"new"_qs}));
        shown.model.insertRow(0, rowOf({u"newer"_qs}));
        QCoreApplication::processEvents();
        QCOMPARE(textAtTheTop(shown.table), u"50"_qs);
        shown.model.removeRows(5, 10);
        QCoreApplication::processEvents();
        QCOMPARE(textAtTheTop(shown.table), u"50"_qs);
        shown.model.removeRows(60, 10);
        QCoreApplication::processEvents();
        QCOMPARE(textAtTheTop(shown.table), u"50"_qs);
    }

    /// As assistive technology does it.
    void theCurrentRowFollowsASelectionWithoutKeys()
    {
        Shown shown;
        for (const QString &text : {u"a"_qs, u"b"_qs, u"c"_qs})
            shown.model.appendRow(rowOf({text, text}));
        shown.table.setCurrentIndex(shown.model.index(0, 1));
        QAccessibleTableInterface *table =
            QAccessible::queryAccessibleInterface(&shown.table)->tableInterface();
        table->unselectRow(0);
        QVERIFY(table->selectRow(2));
        QCOMPARE(shown.table.currentIndex(), shown.model.index(2, 1));
        // One of two is not what the keys should be about all of a sudden.
        QVERIFY(table->selectRow(0));
        QCOMPARE(shown.table.currentIndex(), shown.model.index(2, 1));
    }

    void theCurrentRowStaysWhereCtrlTookItOut()
    {
        Shown shown;
        for (const QString &text : {u"a"_qs, u"b"_qs})
            shown.model.appendRow(rowOf({text, text}));
        shown.table.selectAll();
        Input::clickCell(&shown.table, 1, 0, {.modifiers = Qt::ControlModifier});
        QCOMPARE(shown.table.selectionModel()->selectedRows().size(), 1);
        QCOMPARE(shown.table.currentIndex().row(), 1);
    }

private:
    static QString textAtTheTop(const TableView &table)
    {
        return table.model()->index(table.rowAt(0), 0).data().toString();
    }
};

PLINTHAR_WINDOW_TEST_MAIN(TableViewTest)
#include "TableViewTest.moc"
