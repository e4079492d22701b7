// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/RowModel.h"

#include "support/TestMain.h"

#include <QAbstractItemModelTester>
#include <QRandomGenerator>
#include <QSignalSpy>

#include <optional>

namespace {

struct Item {
    QString id;
    int value = 0;

    const QString &key() const { return id; }
    bool operator==(const Item &) const = default;
};

class ItemModel : public RowModel<Item> {
public:
    int columnCount(const QModelIndex &parent = {}) const override
    {
        return parent.isValid() ? 0 : 2;
    }

    QVariant data(const QModelIndex &index, int role) const override
    {
        if (!index.isValid() || role != Qt::DisplayRole)
            return {};
        const Item &item = rows().at(index.row());
        return index.column() == 0 ? QVariant(item.id) : QVariant(item.value);
    }
};

/// A list written as its keys, each with a value of its own for every list.
QList<Item> items(const QString &keys)
{
    static int value = 0;
    QList<Item> list;
    for (const QChar key : keys)
        list.append({QString(key), ++value});
    return list;
}

QList<Item> numbered(int count, const QString &prefix = {})
{
    QList<Item> list;
    for (int i = 0; i < count; ++i)
        list.append({prefix + QString::number(i), i});
    return list;
}

/// A model under the eyes of Qt's own tester, with a handle on every cell from before the change.
class Watched {
public:
    explicit Watched(const QList<Item> &rows)
    {
        model.setRows(rows);
        for (int row = 0; row < model.rowCount(); ++row) {
            for (int column = 0; column < model.columnCount(); ++column)
                m_handles.append({rows[row].id, column, model.index(row, column)});
        }
    }

    /// What is wrong after the change to these rows; nothing if all is well.
    std::optional<QString> complaint(const QList<Item> &next) const
    {
        if (model.rows() != next)
            return QStringLiteral("other rows");
        for (const Handle &handle : m_handles) {
            const auto place = std::find_if(next.cbegin(), next.cend(), [&handle](const Item &i) {
                return i.id == handle.key;
            });
            if ((place != next.cend()) != handle.index.isValid())
                return QStringLiteral("the handle of %1 is lost or left over").arg(handle.key);
            if (handle.index.isValid() && (handle.index.row() != place - next.cbegin() ||
                                           handle.index.column() != handle.column))
                return QStringLiteral("the handle of %1 points elsewhere").arg(handle.key);
        }
        return std::nullopt;
    }

    ItemModel model;

private:
    struct Handle {
        QString key;
        int column;
        QPersistentModelIndex index;
    };

    QAbstractItemModelTester m_tester{&model,
                                      QAbstractItemModelTester::FailureReportingMode::QtTest};
    QList<Handle> m_handles;
};

#define VERIFY_FOLLOWS(watched, next)                                                              \
    do {                                                                                           \
        const auto complaint = (watched).complaint(next);                                          \
        QVERIFY2(!complaint, qPrintable(complaint.value_or(QString())));                           \
    } while (false)

/// Some of the old rows in the old or in another order, with runs of new ones between them.
QList<Item> randomNext(QRandomGenerator &random, QList<Item> rows)
{
    static int fresh = 0;
    const int removals = random.bounded(4);
    for (int i = 0; i < removals && !rows.isEmpty(); ++i) {
        const auto at = random.bounded(rows.size());
        rows.remove(at, 1 + random.bounded(rows.size() - at));
    }
    const int swaps = random.bounded(2) * random.bounded(6);
    for (int i = 0; i < swaps && !rows.isEmpty(); ++i)
        rows.swapItemsAt(random.bounded(rows.size()), random.bounded(rows.size()));
    const int insertions = random.bounded(4);
    for (int i = 0; i < insertions; ++i) {
        const auto at = random.bounded(rows.size() + 1);
        const int length = 1 + random.bounded(5);
        for (int j = 0; j < length; ++j)
            rows.insert(at, {QStringLiteral("n%1").arg(++fresh), 0});
    }
    for (Item &item : rows)
        item.value = random.bounded(1000);
    return rows;
}

} // namespace

class RowModelTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void merges_data()
    {
        QTest::addColumn<QString>("before");
        QTest::addColumn<QString>("after");
        QTest::newRow("nothing to nothing") << u""_qs << u""_qs;
        QTest::newRow("filled") << u""_qs << u"abc"_qs;
        QTest::newRow("emptied") << u"abc"_qs << u""_qs;
        QTest::newRow("the same") << u"abc"_qs << u"abc"_qs;
        QTest::newRow("one in front") << u"abc"_qs << u"Xabc"_qs;
        QTest::newRow("one inside") << u"abc"_qs << u"abXc"_qs;
        QTest::newRow("one behind") << u"abc"_qs << u"abcX"_qs;
        QTest::newRow("runs everywhere") << u"abc"_qs << u"XYaZbUVWcT"_qs;
        QTest::newRow("first gone") << u"abc"_qs << u"bc"_qs;
        QTest::newRow("middle gone") << u"abc"_qs << u"ac"_qs;
        QTest::newRow("last gone") << u"abc"_qs << u"ab"_qs;
        QTest::newRow("runs gone") << u"abcdefgh"_qs << u"cf"_qs;
        QTest::newRow("all others") << u"abc"_qs << u"XYZ"_qs;
        QTest::newRow("turned round") << u"abcd"_qs << u"dcba"_qs;
        QTest::newRow("last to first") << u"abcd"_qs << u"dabc"_qs;
        QTest::newRow("gone, moved and new") << u"abcdef"_qs << u"fXbYda"_qs;
    }

    void merges()
    {
        QFETCH(QString, before);
        QFETCH(QString, after);
        const QList<Item> old = items(before);
        const QList<Item> next = items(after);
        Watched watched(old);
        const QSignalSpy reset(&watched.model, &QAbstractItemModel::modelReset);
        watched.model.setRows(next);
        VERIFY_FOLLOWS(watched, next);
        QCOMPARE(reset.size(), 0);
    }

    void tellsOfEveryChangedValue()
    {
        Watched watched(items(u"abc"_qs));
        QSignalSpy changed(&watched.model, &QAbstractItemModel::dataChanged);
        watched.model.setRows(items(u"abc"_qs));
        QCOMPARE(changed.size(), 1);
        QCOMPARE(changed[0][0].toModelIndex(), watched.model.index(0, 0));
        QCOMPARE(changed[0][1].toModelIndex(), watched.model.index(2, 1));
    }

    void tellsOfNothingElse()
    {
        QList<Item> rows = numbered(100);
        Watched watched(rows);
        QSignalSpy changed(&watched.model, &QAbstractItemModel::dataChanged);
        watched.model.setRows(rows);
        QCOMPARE(changed.size(), 0);

        for (const int row : {0, 40, 41, 99})
            rows[row].value = -1;
        rows.insert(7, {u"new"_qs, 1});
        rows.removeAt(60);
        watched.model.setRows(rows);
        VERIFY_FOLLOWS(watched, rows);
        QStringList told;
        for (const QList<QVariant> &each : std::as_const(changed))
            told += QStringLiteral("%1-%2")
                        .arg(each[0].toModelIndex().row())
                        .arg(each[1].toModelIndex().row());
        QCOMPARE(told.join(u' '), u"0-0 41-42 99-99"_qs);
    }

    void aRunOfRowsIsOneStep()
    {
        Watched watched(items(u"abcdef"_qs));
        QSignalSpy inserted(&watched.model, &QAbstractItemModel::rowsInserted);
        QSignalSpy removed(&watched.model, &QAbstractItemModel::rowsRemoved);
        const QSignalSpy moved(&watched.model, &QAbstractItemModel::layoutChanged);
        const QList<Item> next = items(u"XYZadefUV"_qs);
        watched.model.setRows(next);
        VERIFY_FOLLOWS(watched, next);
        QCOMPARE(removed.size(), 1);
        QCOMPARE(inserted.size(), 2);
        QCOMPARE(moved.size(), 0);
    }

    void keysThatOccurTwiceDoNoHarm_data()
    {
        QTest::addColumn<QString>("before");
        QTest::addColumn<QString>("after");
        QTest::newRow("afterwards") << u"abc"_qs << u"aba"_qs;
        QTest::newRow("before") << u"aba"_qs << u"abc"_qs;
        QTest::newRow("both") << u"aab"_qs << u"abb"_qs;
        QTest::newRow("all the same") << u"aa"_qs << u"aaaa"_qs;
        QTest::newRow("amid others") << u"xabcy"_qs << u"zbabw"_qs;
        QTest::newRow("like the one behind") << u"a"_qs << u"baa"_qs;
    }

    void keysThatOccurTwiceDoNoHarm()
    {
        QFETCH(QString, before);
        QFETCH(QString, after);
        Watched watched(items(before));
        // What a view that only follows the signals takes for the number of rows.
        qsizetype followed = before.size();
        connect(&watched.model, &QAbstractItemModel::rowsInserted, this,
                [&](const QModelIndex &, int first, int last) { followed += last - first + 1; });
        connect(&watched.model, &QAbstractItemModel::rowsRemoved, this,
                [&](const QModelIndex &, int first, int last) { followed -= last - first + 1; });
        connect(&watched.model, &QAbstractItemModel::modelReset, this,
                [&] { followed = watched.model.rowCount(); });
        const QList<Item> next = items(after);
        watched.model.setRows(next);
        QCOMPARE(watched.model.rows(), next);
        QCOMPARE(followed, next.size());
    }

    void randomMergesWithKeysThatOccurTwice()
    {
        QRandomGenerator random(7);
        const auto list = [&random] {
            QString keys;
            for (int i = random.bounded(12); i > 0; --i)
                keys += QChar(u'a' + random.bounded(6));
            return items(keys);
        };
        Watched watched({});
        for (int round = 0; round < 2'000; ++round) {
            const QList<Item> next = list();
            watched.model.setRows(next);
            QCOMPARE(watched.model.rows(), next);
        }
    }

    void aFewRunsAreFollowedAndVeryManyStartOver_data()
    {
        QTest::addColumn<int>("runs");
        QTest::addColumn<int>("resets");
        QTest::newRow("fifty") << 50 << 0;
        QTest::newRow("a thousand") << 1000 << 1;
    }

    void aFewRunsAreFollowedAndVeryManyStartOver()
    {
        QFETCH(int, runs);
        QFETCH(int, resets);
        const QList<Item> old = numbered(3 * runs);
        QList<Item> next;
        for (int i = 0; i < old.size(); ++i) {
            next.append(old[i]);
            if (i % 3 == 0)
                next.append({u"new"_qs + QString::number(i), 1});
        }
        Watched watched(old);
        const QSignalSpy reset(&watched.model, &QAbstractItemModel::modelReset);
        watched.model.setRows(next);
        QCOMPARE(watched.model.rows(), next);
        QCOMPARE(reset.size(), resets);
    }

    void oneLongRunIsNotManyRuns()
    {
        Watched watched(numbered(2'000));
        const QSignalSpy reset(&watched.model, &QAbstractItemModel::modelReset);
        const QList<Item> next = numbered(5'000, u"x"_qs) + numbered(2'000);
        watched.model.setRows(next);
        QCOMPARE(watched.model.rows(), next);
        QCOMPARE(reset.size(), 0);
    }

    void randomMerges()
    {
        QRandomGenerator random(20260305);
        QList<Item> rows = numbered(20);
        for (int round = 0; round < 400; ++round) {
            const QList<Item> next = randomNext(random, rows);
            Watched watched(rows);
            const QSignalSpy reset(&watched.model, &QAbstractItemModel::modelReset);
            watched.model.setRows(next);
            VERIFY_FOLLOWS(watched, next);
            QCOMPARE(reset.size(), 0);
            rows = next.size() > 60 ? next.first(20) : next;
        }
    }
};

PLINTHAR_TEST_MAIN(RowModelTest)
#include "RowModelTest.moc"
