// SPDX-License-Identifier: GPL-3.0-or-later
#include "usage/PriceEditor.h"

#include "model/PriceStore.h"
#include "support/Input.h"
#include "support/PriceEditorPage.h"
#include "support/Sessions.h"
#include "support/Window.h"
#include "support/WindowTestMain.h"
#include "usage/PriceRowEditor.h"

#include <QApplication>
#include <QDir>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QScopeGuard>
#include <QScrollArea>
#include <QSignalSpy>
#include <QToolButton>

namespace {

using Page = PriceEditorPage;

const QStringList opusRow{u"opus"_qs, u"15"_qs, u"75"_qs, u"18.75"_qs, u"1.5"_qs};
const QStringList sonnetRow{u"sonnet"_qs, u"3"_qs, u"15"_qs, u"3.75"_qs, u"0.3"_qs};
const QStringList haikuRow{u"haiku"_qs, u"1"_qs, u"5"_qs, u"1.25"_qs, u"0.1"_qs};
const QStringList defaultRow{u"default"_qs, u"3"_qs, u"15"_qs, u"3.75"_qs, u"0.3"_qs};
const QList<QStringList> defaultRows{opusRow, sonnetRow, haikuRow, defaultRow};

PriceRow priceRow(const QString &key, double input = 1)
{
    return {.key = key, .input = input, .output = 2, .cacheWrite = 3, .cacheRead = 4};
}

QStringList keysOf(const QList<PriceRow> &rows)
{
    QStringList keys;
    for (const PriceRow &row : rows)
        keys.append(row.key);
    return keys;
}

/// Counts the keys that a widget is given.
class KeyCounter : public QObject {
public:
    explicit KeyCounter(QWidget *widget) { widget->installEventFilter(this); }

    int count = 0;

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        count += event->type() == QEvent::KeyPress;
        return false;
    }
};

QRect placeIn(const QWidget *ancestor, const QWidget *widget)
{
    return {widget->mapTo(ancestor, QPoint(0, 0)), widget->size()};
}

} // namespace

class PriceEditorTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_home = std::make_unique<PrivateHome>();
        writeSession(*m_home, {.project = u"/w/a"_qs,
                               .answers = {LogLines::assistant(u"2026-03-05T10:00:01.000Z"_qs,
                                                               u"claude-opus-4"_qs,
                                                               {.input = 1'000'000}, u"m1"_qs)}});
        restart();
    }

    void cleanup()
    {
        m_window.reset();
        m_home.reset();
        QLocale::setDefault(m_english);
    }

    // What it shows

    void showsTheStoresPrices() { QCOMPARE(open().texts(), defaultRows); }

    void hasItsTextsInOrder()
    {
        const Page page = open();
        QCOMPARE(page.dialog()->windowTitle(), u"Price Table"_qs);
        QVERIFY(page.dialog()->isModal());
        const QStringList texts{
            u"Price Table"_qs,
            u"USD per million tokens. A row applies when its key appears in the model name; "
            "\u201cdefault\u201d is the fallback."_qs,
            u"Key"_qs, u"Stored in Application Support/Plinthar"_qs};
        int bottom = 0;
        for (const QString &text : texts) {
            const QLabel *label = labelWith(page.dialog(), text);
            QVERIFY2(label, qPrintable(text));
            const QRect place = placeIn(page.dialog(), label);
            QVERIFY2(place.top() >= bottom, qPrintable(text));
            QVERIFY2(place.width() >= label->fontMetrics().averageCharWidth(), qPrintable(text));
            bottom = place.bottom();
        }
    }

    void theTitlesStandOverTheFields()
    {
        const Page page = open();
        const QList<int> widths{110, 80, 80, 80, 80};
        const QStringList titles{u"Key"_qs, u"Input"_qs, u"Output"_qs, u"Cache write"_qs,
                                 u"Cache read"_qs};
        for (int column = 0; column < Page::ColumnCount; ++column) {
            const QLabel *title = labelWith(page.dialog(), titles[column]);
            QVERIFY(title && title->font().bold());
            const QRect field = placeIn(page.dialog(), page.field(0, Page::Column(column)));
            QCOMPARE(field.width(), widths[column]);
            QCOMPARE(placeIn(page.dialog(), title).left(), field.left());
        }
        QCOMPARE(page.field(0, Page::Key)->placeholderText(), u"key"_qs);
    }

    void largeTitlesDoNotRunIntoEachOther()
    {
        const QFont usual = QApplication::font();
        const auto restore = qScopeGuard([&] { QApplication::setFont(usual); });
        QFont large = usual;
        large.setPointSize(16);
        QApplication::setFont(large);
        const Page page = open();
        for (const QString &text : {u"Cache write"_qs, u"Cache read"_qs}) {
            const QLabel *title = labelWith(page.dialog(), text);
            QVERIFY(title->sizeHint().width() <= title->width() - PriceRowEditor::spacing);
        }
    }

    void isLaidOutWithItsPaddings()
    {
        const Page page = open();
        QCOMPARE(page.dialog()->layout()->contentsMargins(), QMargins(20, 20, 20, 20));
        QCOMPARE(page.dialog()->layout()->spacing(), 10);
        for (int row = 1; row < page.rowCount(); ++row) {
            const QWidget *above = page.field(row - 1, Page::Key)->parentWidget();
            const QWidget *below = page.field(row, Page::Key)->parentWidget();
            QCOMPARE(below->geometry().top() - above->geometry().bottom(), 11);
        }
    }

    void theFooterHasItsOrder()
    {
        const Page page = open();
        const QList<QWidget *> footer{
            page.button("Add Row"), page.button("Reset to Defaults"),
            labelWith(page.dialog(), u"Stored in Application Support/Plinthar"_qs),
            page.button("Cancel"), page.button("Save")};
        int right = 0;
        for (const QWidget *widget : footer) {
            const QRect place = placeIn(page.dialog(), widget);
            QVERIFY(place.left() > right);
            right = place.right();
        }
        QCOMPARE(right, page.dialog()->width() - 21);
        QVERIFY(qobject_cast<QPushButton *>(page.button("Save"))->isDefault());
    }

    void allOfADefaultTableIsSeenAtOnce()
    {
        const Page page = open();
        const QWidget *viewport = find<QScrollArea>(page.dialog())->viewport();
        for (int row = 0; row < page.rowCount(); ++row) {
            const QRect place = placeIn(page.dialog(), page.deleteButton(row));
            QVERIFY(placeIn(page.dialog(), viewport).contains(place));
        }
    }

    void everyFieldAndButtonHasAName()
    {
        const Page page = open();
        page.edit(1, Page::Key, {});
        const QList<QStringList> names{
            {u"Key of opus"_qs, u"Input price of opus"_qs, u"Output price of opus"_qs,
             u"Cache write price of opus"_qs, u"Cache read price of opus"_qs},
            {u"Key of row without key"_qs, u"Input price of row without key"_qs,
             u"Output price of row without key"_qs, u"Cache write price of row without key"_qs,
             u"Cache read price of row without key"_qs}};
        for (int row = 0; row < 2; ++row) {
            for (int column = 0; column < Page::ColumnCount; ++column)
                QCOMPARE(page.field(row, Page::Column(column))->accessibleName(),
                         names[row][column]);
        }
        QCOMPARE(page.deleteButton(0)->accessibleName(), u"Delete opus"_qs);
        QCOMPARE(page.deleteButton(0)->icon().name(), u"minus.circle"_qs);
        page.edit(0, Page::Key, u"new"_qs);
        QCOMPARE(page.deleteButton(0)->accessibleName(), u"Delete new"_qs);
        QCOMPARE(page.field(0, Page::Output)->accessibleName(), u"Output price of new"_qs);
    }

    void theTabKeyWalksFromTopToBottom()
    {
        const Page page = open();
        QWidgetList expected;
        for (int row = 0; row < page.rowCount(); ++row) {
            for (int column = 0; column < Page::ColumnCount; ++column)
                expected.append(page.field(row, Page::Column(column)));
            expected.append(page.deleteButton(row));
        }
        for (const char *text : {"Add Row", "Reset to Defaults", "Cancel", "Save"})
            expected.append(page.button(text));
        QCOMPARE(QApplication::focusWidget(), expected.constFirst());
        QWidgetList reached;
        for (qsizetype i = 0; i < expected.size(); ++i) {
            reached.append(QApplication::focusWidget());
            Input::key(Qt::Key_Tab);
        }
        QCOMPARE(reached, expected);
        QCOMPARE(QApplication::focusWidget(), expected.constFirst());
    }

    void theTabKeyReachesAnAddedRowAfterTheOthers()
    {
        const Page page = open();
        page.click("Add Row");
        page.deleteButton(3)->setFocus();
        Input::key(Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), page.field(4, Page::Key));
        page.deleteButton(4)->setFocus();
        Input::key(Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), page.button("Add Row"));
    }

    // Save

    void savesIntoStoreScreenAndFile()
    {
        QCOMPARE(m_window->summary(), u"1 sessions \u00b7 $15.00 estimated"_qs);
        const Page page = open();
        page.edit(0, Page::Input, u"2.5"_qs);
        page.edit(0, Page::Key, u"opus-4"_qs);
        QCOMPARE(m_window->summary(), u"1 sessions \u00b7 $15.00 estimated"_qs);
        page.click("Save");
        QTRY_VERIFY(!QApplication::activeModalWidget());
        QCOMPARE(m_window->summary(), u"1 sessions \u00b7 $2.50 estimated"_qs);
        PriceRow expected = PriceStore::defaults().constFirst();
        expected.key = u"opus-4"_qs;
        expected.input = 2.5;
        QCOMPARE(m_window->store().prices().constFirst(), expected);
        QCOMPARE(m_window->store().prices().sliced(1), PriceStore::defaults().sliced(1));
        QCOMPARE(PriceStore::decodePrices(pricesFile()), m_window->store().prices());
    }

    void writesTheFileCompactly()
    {
        const QUuid id(u"{0a1b2c3d-0000-4000-8000-00000000abcd}"_qs);
        PriceRow row = priceRow(u"a/b"_qs, 0.1);
        row.id = id;
        m_window->store().setPrices({row});
        QFile::remove(m_home->support(u"prices.json"_qs));
        open().click("Save");
        QCOMPARE(pricesFile(),
                 QByteArray(R"([{"cacheRead":4,"cacheWrite":3,)"
                            R"("id":"0A1B2C3D-0000-4000-8000-00000000ABCD","input":0.1,)"
                            R"("key":"a\/b","output":2}])"));
    }

    void savingWithoutAChangeStillWrites()
    {
        QVERIFY(!QFile::exists(m_home->support(u"prices.json"_qs)));
        open().click("Save");
        QCOMPARE(PriceStore::decodePrices(pricesFile()), PriceStore::defaults());
    }

    void savedPricesAreThereAfterARestart()
    {
        const Page page = open();
        page.edit(2, Page::CacheRead, u"0.125"_qs);
        page.click("Save");
        restart();
        QCOMPARE(m_window->store().prices()[2].cacheRead, 0.125);
        QCOMPARE(open().texts(2),
                 (QStringList{u"haiku"_qs, u"1"_qs, u"5"_qs, u"1.25"_qs, u"0.125"_qs}));
    }

    void anUnwritableSupportFolderKeepsThePricesForThisRun()
    {
        QDir(m_home->support()).removeRecursively();
        writeFile(m_home->support(), "in the way");
        const Page page = open();
        page.edit(0, Page::Input, u"7"_qs);
        page.click("Save");
        QTRY_VERIFY(!QApplication::activeModalWidget());
        QCOMPARE(m_window->store().prices()[0].input, 7.0);
        QCOMPARE(m_window->summary(), u"1 sessions \u00b7 $7.00 estimated"_qs);
        QCOMPARE(readFile(m_home->support()), QByteArray("in the way"));
        QCOMPARE(open().texts(0)[Page::Input], u"7"_qs);
    }

    void returnSavesWhereverTheFocusIs_data()
    {
        QTest::addColumn<QString>("place");
        QTest::addColumn<int>("key");
        for (const char *place : {"Key", "Input", "Cache read", "Delete", "Add Row",
                                  "Reset to Defaults", "Cancel", "Save", "nothing"}) {
            QTest::addRow("Return on %s", place)
                << QString::fromLatin1(place) << int(Qt::Key_Return);
            QTest::addRow("Enter on %s", place) << QString::fromLatin1(place) << int(Qt::Key_Enter);
        }
    }

    void returnSavesWhereverTheFocusIs()
    {
        QFETCH(QString, place);
        QFETCH(int, key);
        const Page page = open();
        page.edit(1, Page::Input, u"4"_qs);
        focus(page, place);
        Input::key(Qt::Key(key));
        QTRY_VERIFY(!QApplication::activeModalWidget());
        QCOMPARE(m_window->store().prices().size(), 4);
        QCOMPARE(m_window->store().prices()[1].input, 4.0);
        QCOMPARE(PriceStore::decodePrices(pricesFile()), m_window->store().prices());
    }

    /// Under some desktops' themes (GNOME's is one) Return presses the button that has the focus.
    void returnNeverReachesAButton_data()
    {
        QTest::addColumn<QString>("place");
        for (const char *place : {"Delete", "Add Row", "Reset to Defaults", "Cancel"})
            QTest::newRow(place) << QString::fromLatin1(place);
    }

    void returnNeverReachesAButton()
    {
        QFETCH(QString, place);
        const Page page = open();
        focus(page, place);
        const KeyCounter keys(QApplication::focusWidget());
        Input::key(Qt::Key_Return);
        QCOMPARE(keys.count, 0);
        QTRY_VERIFY(!QApplication::activeModalWidget());
    }

    void returnInAFieldWithBadTextSavesTheGoodValue()
    {
        const Page page = open();
        page.edit(0, Page::Input, u"abc"_qs);
        Input::key(Qt::Key_Return);
        QTRY_VERIFY(!QApplication::activeModalWidget());
        QCOMPARE(m_window->store().prices(), PriceStore::defaults());
    }

    void spaceStillPressesTheButtonWithTheFocus()
    {
        const Page page = open();
        page.button("Add Row")->setFocus();
        Input::key(Qt::Key_Space);
        QCOMPARE(page.rowCount(), 5);
        page.deleteButton(0)->setFocus();
        Input::key(Qt::Key_Space);
        QCOMPARE(page.rowCount(), 4);
        QCOMPARE(page.texts(0), sonnetRow);
    }

    // Every other way out

    void everyOtherWayOutChangesNothing_data()
    {
        QTest::addColumn<QString>("way");
        for (const char *way : {"Cancel", "Escape", "close"})
            QTest::newRow(way) << QString::fromLatin1(way);
    }

    void everyOtherWayOutChangesNothing()
    {
        QFETCH(QString, way);
        QSignalSpy changed(&m_window->store(), &Store::pricesChanged);
        const Page page = open();
        page.edit(0, Page::Input, u"99"_qs);
        Input::click(page.deleteButton(3));
        page.click("Add Row");
        leave(page, way);
        QTRY_VERIFY(!QApplication::activeModalWidget());
        QCOMPARE(changed.size(), 0);
        QCOMPARE(m_window->store().prices(), PriceStore::defaults());
        QVERIFY(!QFile::exists(m_home->support(u"prices.json"_qs)));
        QCOMPARE(m_window->summary(), u"1 sessions \u00b7 $15.00 estimated"_qs);
        QCOMPARE(open().texts(), defaultRows);
    }

    void isDeletedWhenItCloses()
    {
        const QPointer<QDialog> dialog = open().dialog();
        Input::key(Qt::Key_Escape);
        QTRY_VERIFY(!dialog);
    }

    void goesAwayWithItsProject()
    {
        const QPointer<QDialog> dialog = open().dialog();
        m_window->store().setSelection(std::nullopt);
        QTRY_VERIFY(!dialog);
        QVERIFY(!QApplication::activeModalWidget());
        QCOMPARE(m_window->store().prices(), PriceStore::defaults());
    }

    // Rows

    void addRowAppendsAStartingPoint()
    {
        const Page page = open();
        page.click("Add Row");
        QCOMPARE(page.rowCount(), 5);
        QCOMPARE(page.texts(4),
                 (QStringList{u"model"_qs, u"3"_qs, u"15"_qs, u"3.75"_qs, u"0.3"_qs}));
        QCOMPARE(m_window->store().prices().size(), 4);
        Input::type(u"gpt"_qs); // the new key is ready to be replaced
        page.click("Save");
        const PriceRow added = m_window->store().prices().constLast();
        QCOMPARE(added.key, u"gpt"_qs);
        QCOMPARE(added.input, 3.0);
        QCOMPARE(added.output, 15.0);
        QCOMPARE(added.cacheWrite, 3.75);
        QCOMPARE(added.cacheRead, 0.3);
    }

    void addedRowsHaveTheirOwnIds()
    {
        const Page page = open();
        page.click("Add Row");
        page.click("Add Row");
        page.click("Save");
        QSet<QUuid> ids;
        for (const PriceRow &row : m_window->store().prices()) {
            QVERIFY(!row.id.isNull());
            ids.insert(row.id);
        }
        QCOMPARE(ids.size(), 6);
    }

    void anAddedRowScrollsIntoView()
    {
        const Page page = open();
        for (int i = 0; i < 20; ++i)
            page.click("Add Row");
        const QWidget *viewport = find<QScrollArea>(page.dialog())->viewport();
        QTRY_VERIFY(placeIn(page.dialog(), viewport)
                        .contains(placeIn(page.dialog(), page.field(23, Page::Key))));
        QVERIFY(page.field(23, Page::Key)->hasFocus());
        QVERIFY(page.dialog()->height() < 700);
    }

    void deletesJustThatRow()
    {
        const Page page = open();
        Input::click(page.deleteButton(1));
        QCOMPARE(page.texts(), (QList<QStringList>{opusRow, haikuRow, defaultRow}));
        QCOMPARE(m_window->store().prices().size(), 4);
        page.click("Save");
        QCOMPARE(keysOf(m_window->store().prices()),
                 (QStringList{u"opus"_qs, u"haiku"_qs, u"default"_qs}));
    }

    void deletingEveryRowSavesAnEmptyTable()
    {
        const Page page = open();
        for (int row = 3; row >= 0; --row)
            Input::click(page.deleteButton(row));
        QCOMPARE(page.rowCount(), 0);
        page.click("Save");
        QVERIFY(m_window->store().prices().isEmpty());
        QCOMPARE(pricesFile(), QByteArray("[]"));
        QCOMPARE(m_window->summary(), u"1 sessions \u00b7 $3.00 estimated"_qs);
    }

    void anEmptyTableCanBeOpenedAndFilled()
    {
        m_window->store().setPrices({});
        const Page page = open();
        QCOMPARE(page.rowCount(), 0);
        page.click("Add Row");
        page.click("Save");
        QCOMPARE(keysOf(m_window->store().prices()), QStringList{u"model"_qs});
    }

    void rowsWithTheSameKeyStayInTheirOrder()
    {
        const Page page = open();
        page.edit(1, Page::Key, u"opus"_qs);
        page.edit(2, Page::Key, {});
        page.edit(3, Page::Key, u"Zz"_qs);
        page.click("Save");
        QCOMPARE(keysOf(m_window->store().prices()),
                 (QStringList{u"opus"_qs, u"opus"_qs, QString(), u"Zz"_qs}));
        QCOMPARE(PriceStore::loadPrices(), m_window->store().prices());
    }

    void rowsWithTheSameIdAreDeletedTogether()
    {
        PriceRow first = priceRow(u"first"_qs);
        PriceRow twin = priceRow(u"twin"_qs);
        twin.id = first.id;
        m_window->store().setPrices({first, priceRow(u"other"_qs), twin});
        const Page page = open();
        Input::click(page.deleteButton(2));
        QCOMPARE(page.rowCount(), 1);
        QCOMPARE(page.texts(0)[0], u"other"_qs);
    }

    void aRowCanBeDeletedAndAddedAgain()
    {
        const Page page = open();
        for (int i = 0; i < 3; ++i) {
            Input::click(page.deleteButton(page.rowCount() - 1));
            page.click("Add Row");
        }
        QCOMPARE(page.texts().sliced(0, 3), (QList<QStringList>{opusRow, sonnetRow, haikuRow}));
        QCOMPARE(page.texts(3)[0], u"model"_qs);
    }

    // Reset

    void resetBringsTheDefaultsIntoTheCopyOnly()
    {
        const QList<PriceRow> before{priceRow(u"x"_qs), priceRow(u"y"_qs)};
        m_window->store().setPrices(before);
        const Page page = open();
        page.click("Reset to Defaults");
        QCOMPARE(page.texts(), defaultRows);
        QCOMPARE(m_window->store().prices(), before);
        page.click("Cancel");
        QTRY_VERIFY(!QApplication::activeModalWidget());
        QCOMPARE(m_window->store().prices(), before);
        QCOMPARE(PriceStore::loadPrices(), before);
    }

    void resetAndSaveStoresTheDefaults()
    {
        m_window->store().setPrices({priceRow(u"x"_qs)});
        const Page page = open();
        page.click("Reset to Defaults");
        page.click("Save");
        QCOMPARE(m_window->store().prices(), PriceStore::defaults());
    }

    // Numbers

    void takesNumbersOfTheLocale_data()
    {
        QTest::addColumn<QLocale>("locale");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<double>("value");
        QTest::addColumn<QString>("shown");
        QTest::newRow("en whole") << m_english << u"12"_qs << 12.0 << u"12"_qs;
        QTest::newRow("en fraction") << m_english << u"1.25"_qs << 1.25 << u"1.25"_qs;
        QTest::newRow("en no leading zero") << m_english << u".5"_qs << 0.5 << u"0.5"_qs;
        QTest::newRow("en small") << m_english << u"0.0001"_qs << 0.0001 << u"0.0001"_qs;
        QTest::newRow("en grouping") << m_english << u"1,234.5"_qs << 1234.5 << u"1,234.5"_qs;
        QTest::newRow("en grouping is shown")
            << m_english << u"1234567"_qs << 1234567.0 << u"1,234,567"_qs;
        QTest::newRow("en blanks around") << m_english << u"  2.5 "_qs << 2.5 << u"2.5"_qs;
        QTest::newRow("en negative") << m_english << u"-1.5"_qs << -1.5 << u"-1.5"_qs;
        QTest::newRow("en zero") << m_english << u"0"_qs << 0.0 << u"0"_qs;
        QTest::newRow("de fraction") << m_german << u"1,25"_qs << 1.25 << u"1,25"_qs;
        QTest::newRow("de grouping") << m_german << u"1.234,5"_qs << 1234.5 << u"1.234,5"_qs;
        QTest::newRow("de grouping is shown")
            << m_german << u"1234567,25"_qs << 1234567.25 << u"1.234.567,25"_qs;
        QTest::newRow("de thousand") << m_german << u"1.500"_qs << 1500.0 << u"1.500"_qs;
    }

    void takesNumbersOfTheLocale()
    {
        QFETCH(QLocale, locale);
        QFETCH(QString, typed);
        QFETCH(double, value);
        QFETCH(QString, shown);
        const Page page = openIn(locale);
        page.edit(0, Page::Input, typed);
        Input::key(Qt::Key_Tab);
        QCOMPARE(page.texts(0)[Page::Input], shown);
        page.click("Save");
        QCOMPARE(m_window->store().prices()[0].input, value);
        QCOMPARE(PriceStore::loadPrices()[0].input, value);
    }

    void textThatIsNoNumberChangesNothing_data()
    {
        QTest::addColumn<QLocale>("locale");
        QTest::addColumn<QString>("typed");
        QTest::newRow("letters") << m_english << u"abc"_qs;
        QTest::newRow("nothing") << m_english << QString();
        QTest::newRow("blanks") << m_english << u"  "_qs;
        QTest::newRow("infinite") << m_english << u"inf"_qs;
        QTest::newRow("minus infinite") << m_english << u"-inf"_qs;
        QTest::newRow("not a number") << m_english << u"nan"_qs;
        QTest::newRow("letters before") << m_english << u"x5"_qs;
        QTest::newRow("sign only") << m_english << u"-"_qs;
        QTest::newRow("point only") << m_english << u"."_qs;
        QTest::newRow("dollar") << m_english << u"$5"_qs;
        QTest::newRow("de infinite") << m_german << u"inf"_qs;
    }

    void textThatIsNoNumberChangesNothing()
    {
        QFETCH(QLocale, locale);
        QFETCH(QString, typed);
        const Page page = openIn(locale);
        page.edit(0, Page::CacheWrite, typed);
        Input::key(Qt::Key_Tab);
        QCOMPARE(page.texts(0)[Page::CacheWrite], locale.toString(18.75, 'f', 2));
        page.click("Save");
        QCOMPARE(m_window->store().prices(), PriceStore::defaults());
    }

    /// What was typed as a whole is no number, although its beginning was one for a moment.
    void aNumberWithSomethingBehindItChangesNothing_data()
    {
        QTest::addColumn<QLocale>("locale");
        QTest::addColumn<QString>("typed");
        QTest::newRow("letters behind") << m_english << u"5x"_qs;
        QTest::newRow("two points") << m_english << u"1.2.3"_qs;
        QTest::newRow("too large") << m_english << u"1e999"_qs;
        QTest::newRow("a comma in English") << m_english << u"1,5"_qs;
        QTest::newRow("a point in German") << m_german << u"1.5"_qs;
    }

    void aNumberWithSomethingBehindItChangesNothing()
    {
        QFETCH(QLocale, locale);
        QFETCH(QString, typed);
        const Page page = openIn(locale);
        page.edit(0, Page::CacheWrite, typed);
        page.click("Save");
        QCOMPARE(m_window->store().prices()[0].cacheWrite, 18.75);
    }

    void showsGermanNumbers()
    {
        const Page page = openIn(m_german);
        QCOMPARE(page.texts(0),
                 (QStringList{u"opus"_qs, u"15"_qs, u"75"_qs, u"18,75"_qs, u"1,5"_qs}));
    }

    void followsTheLocaleWhileOpen()
    {
        const Page page = open();
        page.edit(1, Page::Input, u"1234.5"_qs);
        page.dialog()->setLocale(m_german);
        QCOMPARE(page.texts(0)[Page::CacheWrite], u"18,75"_qs);
        QCOMPARE(page.texts(1)[Page::Input], u"1.234,5"_qs);
        page.edit(0, Page::CacheWrite, u"2,25"_qs);
        page.dialog()->setLocale(m_english);
        QCOMPARE(page.texts(0)[Page::CacheWrite], u"2.25"_qs);
        page.click("Save");
        QCOMPARE(m_window->store().prices()[0].cacheWrite, 2.25);
        QCOMPARE(m_window->store().prices()[1].input, 1234.5);
    }

    void showingANumberDoesNotChangeIt()
    {
        PriceRow row = priceRow(u"exact"_qs, 0.1 + 0.2);
        row.output = 1.0 / 3;
        row.cacheWrite = 1e-7;
        row.cacheRead = 123456789.123456789;
        m_window->store().setPrices({row});
        const Page page = open();
        for (const Page::Column column : {Page::Input, Page::Output, Page::CacheWrite})
            Input::click(page.field(0, column)); // into the field and out again
        page.click("Save");
        QCOMPARE(m_window->store().prices(), QList{row});
    }

    void aKeyIsTakenAsItStands()
    {
        const Page page = open();
        page.edit(0, Page::Key, u" <b>&\"\\ "_qs);
        page.click("Save");
        QCOMPARE(m_window->store().prices()[0].key, u" <b>&\"\\ "_qs);
        QCOMPARE(PriceStore::loadPrices()[0].key, u" <b>&\"\\ "_qs);
    }

private:
    void restart()
    {
        m_window.reset();
        m_window = std::make_unique<Window>(*m_home);
        m_window->load();
    }

    Page open() { return Page(m_window->openPrices()); }

    /// Opens it in another language.
    Page openIn(const QLocale &locale)
    {
        QLocale::setDefault(locale);
        return open();
    }

    QByteArray pricesFile() const { return readFile(m_home->support(u"prices.json"_qs)); }

    static void focus(const Page &page, const QString &place)
    {
        if (place == u"Key")
            page.field(2, Page::Key)->setFocus();
        else if (place == u"Input")
            page.field(2, Page::Input)->setFocus();
        else if (place == u"Cache read")
            page.field(2, Page::CacheRead)->setFocus();
        else if (place == u"Delete")
            page.deleteButton(2)->setFocus();
        else if (place == u"nothing")
            QApplication::focusWidget()->clearFocus();
        else
            buttonOf(page.dialog(), place)->setFocus();
    }

    static void leave(const Page &page, const QString &way)
    {
        if (way == u"Cancel")
            page.click("Cancel");
        else if (way == u"Escape")
            Input::key(Qt::Key_Escape);
        else
            page.dialog()->close();
    }

    const QLocale m_english{QLocale::English, QLocale::UnitedStates};
    const QLocale m_german{QLocale::German, QLocale::Germany};
    std::unique_ptr<PrivateHome> m_home;
    std::unique_ptr<Window> m_window;
};

PLINTHAR_WINDOW_TEST_MAIN(PriceEditorTest)
#include "PriceEditorTest.moc"
