// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/PriceStore.h"

#include "support/SpecialFiles.h"
#include "support/TestMain.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>

#include <limits>

namespace {

PriceRow row(const QString &key)
{
    return {QUuid::createUuid(), key, 1.5, 2, 0.1, 1.0 / 3};
}

const QByteArray goodRow = R"({"id":"0A1B2C3D-4E5F-4A6B-8C7D-9E0FA1B2C3D4","key":"a/b",)"
                           R"("input":1,"output":2.5,"cacheWrite":3,"cacheRead":4})";

void addBadFileRows()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("empty file") << QByteArray();
    QTest::newRow("not JSON") << QByteArray("prices");
    QTest::newRow("cut") << QByteArray("[");
    QTest::newRow("text behind") << QByteArray("[] []");
    QTest::newRow("object") << QByteArray(R"({"a":[]})");
    QTest::newRow("null") << QByteArray("null");
    QTest::newRow("array of numbers") << QByteArray("[1]");
    QTest::newRow("array of null") << QByteArray("[null]");
    QTest::newRow("array of arrays") << QByteArray("[[]]");
    QTest::newRow("bad UTF-8") << QByteArray("[\"\xff\"]");
    QTest::newRow("UTF-16") << QByteArray("\xff\xfe[\0]\0", 6);
}

} // namespace

class PriceStoreTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void folderIsMadeEveryTimeItIsAskedFor();
    void folderThatCannotBeMadeIsIgnored();
    void defaultTable();
    void defaultTableIsTheSameOnEveryCall();

    void missingPricesYieldTheDefaults();
    void badPricesYieldTheDefaults_data();
    void badPricesYieldTheDefaults();
    void specialFilesCountAsMissing_data();
    void specialFilesCountAsMissing();
    void filesThatMayNotBeReadAreIgnored();
    void hugeFilesAreIgnored_data();
    void hugeFilesAreIgnored();
    void goodPricesAreRead();
    void savedPricesAreReadBack();
    void pricesAreWrittenCompactly();
    void noRowsAreWrittenAsAnEmptyArray();
    void pricesThatAreNoNumbersAreNotWritten_data();
    void pricesThatAreNoNumbersAreNotWritten();

    void missingFoldersYieldNone();
    void badFoldersYieldNone_data();
    void badFoldersYieldNone();
    void bothFormsOfASlashAreRead();
    void foldersAreWrittenWithEscapedSlashes_data();
    void foldersAreWrittenWithEscapedSlashes();
    void savedFoldersReplaceABadFile();
    void filesAreWrittenInPlace();

private:
    QString pricesFile() const { return m_home->support(u"prices.json"_qs); }
    QString projectsFile() const { return m_home->support(u"projects.json"_qs); }

    std::unique_ptr<PrivateHome> m_home;
};

void PriceStoreTest::init()
{
    m_home.reset();
    m_home = std::make_unique<PrivateHome>();
}

void PriceStoreTest::folderIsMadeEveryTimeItIsAskedFor()
{
    for (int i = 0; i < 2; ++i) {
        QVERIFY(!QFileInfo::exists(m_home->path(u".local"_qs)));
        QCOMPARE(PriceStore::dir(), m_home->support());
        QVERIFY(QFileInfo(m_home->support()).isDir());
        QVERIFY(QDir(m_home->path(u".local"_qs)).removeRecursively());
    }
}

void PriceStoreTest::folderThatCannotBeMadeIsIgnored()
{
    writeFile(m_home->path(u".local"_qs), "a file in the way");
    QCOMPARE(PriceStore::dir(), m_home->support());
    PriceStore::savePrices({row(u"a"_qs)});
    PriceStore::saveAdded({u"/a"_qs});
    QVERIFY(PriceStore::loadPrices() == PriceStore::defaults());
    QVERIFY(PriceStore::loadAdded().isEmpty());
    QCOMPARE(readFile(m_home->path(u".local"_qs)), QByteArray("a file in the way"));
}

void PriceStoreTest::defaultTable()
{
    const QList<PriceRow> &rows = PriceStore::defaults();
    QList<PriceRow> expected{{QUuid(), u"opus"_qs, 15, 75, 18.75, 1.5},
                             {QUuid(), u"sonnet"_qs, 3, 15, 3.75, 0.3},
                             {QUuid(), u"haiku"_qs, 1, 5, 1.25, 0.1},
                             {QUuid(), u"default"_qs, 3, 15, 3.75, 0.3}};
    QCOMPARE(rows.size(), expected.size());
    QSet<QUuid> ids;
    for (qsizetype i = 0; i < rows.size(); ++i) {
        ids.insert(rows[i].id);
        expected[i].id = rows[i].id;
        QVERIFY2(rows[i] == expected[i], qPrintable(rows[i].key));
    }
    QCOMPARE(ids.size(), rows.size());
    QVERIFY(!ids.contains(QUuid()));
}

void PriceStoreTest::defaultTableIsTheSameOnEveryCall()
{
    const QList<PriceRow> first = PriceStore::defaults();
    QVERIFY(PriceStore::defaults() == first);
}

void PriceStoreTest::missingPricesYieldTheDefaults()
{
    QVERIFY(PriceStore::loadPrices() == PriceStore::defaults());
    QVERIFY(!QFileInfo::exists(pricesFile())); // nothing is written back
}

void PriceStoreTest::badPricesYieldTheDefaults_data()
{
    addBadFileRows();
    const auto bad = [](const char *before, const char *after) {
        return '[' + goodRow + ',' + QByteArray(goodRow).replace(before, after) + ']';
    };
    QTest::newRow("empty array") << QByteArray("[]");
    QTest::newRow("empty object among the rows") << '[' + goodRow + ",{}]";
    QTest::newRow("one row lacks cacheRead") << bad(",\"cacheRead\":4", "");
    QTest::newRow("one row lacks the id") << bad("\"id\"", "\"ID\"");
    QTest::newRow("one row has a price in quotes") << bad("2.5", "\"2.5\"");
    QTest::newRow("one row has a price null") << bad("2.5", "null");
    QTest::newRow("one row has a bad id") << bad("9E0FA1B2C3D4", "9E0FA1B2C3D");
    QTest::newRow("comma at the end") << '[' + goodRow + ",]";
    QTest::newRow("rows without an array") << goodRow;
}

void PriceStoreTest::badPricesYieldTheDefaults()
{
    QFETCH(QByteArray, content);
    writeFile(pricesFile(), content);
    QVERIFY(PriceStore::loadPrices() == PriceStore::defaults());
    QCOMPARE(readFile(pricesFile()), content); // the bad file is left alone
}

void PriceStoreTest::specialFilesCountAsMissing_data()
{
    QTest::addColumn<QString>("name");
    for (const QString &name : specialFiles())
        QTest::newRow(qPrintable(name)) << name;
}

void PriceStoreTest::specialFilesCountAsMissing()
{
    QFETCH(QString, name);
    makeSpecialFiles(m_home->support(), QString());
    QVERIFY(QFile::rename(m_home->support(name), pricesFile()));
    QVERIFY(PriceStore::loadPrices() == PriceStore::defaults());
    QVERIFY(QFile::rename(pricesFile(), projectsFile()));
    QVERIFY(PriceStore::loadAdded().isEmpty());
}

void PriceStoreTest::filesThatMayNotBeReadAreIgnored()
{
    PriceStore::savePrices({row(u"a"_qs)});
    PriceStore::saveAdded({u"/a"_qs});
    for (const QString &file : {pricesFile(), projectsFile()})
        QVERIFY(QFile::setPermissions(file, {}));
    QVERIFY(QFile::setPermissions(m_home->path(), QFile::Permissions(0x7755)));
    const Unprivileged unprivileged;
    QVERIFY(PriceStore::loadPrices() == PriceStore::defaults());
    QVERIFY(PriceStore::loadAdded().isEmpty());
    PriceStore::savePrices({row(u"b"_qs)});
    PriceStore::saveAdded({u"/b"_qs});
}

void PriceStoreTest::hugeFilesAreIgnored_data()
{
    constexpr qsizetype size = 100 << 20;
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("garbage") << QByteArray("\x07\xff{\"[").repeated(size / 5);
    QTest::newRow("what may be a table as far as one can see") << "[" + QByteArray(size, ' ') + "]";
    QTest::newRow("depth") << QByteArray(size, '[');
}

void PriceStoreTest::hugeFilesAreIgnored()
{
    QFETCH(QByteArray, content);
    for (const QString &file : {pricesFile(), projectsFile()})
        writeFile(file, content);
    QVERIFY(PriceStore::loadPrices() == PriceStore::defaults());
    QVERIFY(PriceStore::loadAdded().isEmpty());
    PriceStore::saveAdded({u"/a"_qs});
    QCOMPARE(PriceStore::loadAdded(), QStringList(u"/a"_qs));
    QCOMPARE(QFileInfo(pricesFile()).size(), content.size());
}

void PriceStoreTest::goodPricesAreRead()
{
    writeFile(pricesFile(),
              "\n [ " + goodRow + " , " + QByteArray(goodRow).replace("a/b", "a\\/c") + " ]\r\n");
    const QList<PriceRow> rows = PriceStore::loadPrices();
    const QUuid id(u"{0a1b2c3d-4e5f-4a6b-8c7d-9e0fa1b2c3d4}"_qs);
    QVERIFY(rows ==
            QList<PriceRow>({{id, u"a/b"_qs, 1, 2.5, 3, 4}, {id, u"a/c"_qs, 1, 2.5, 3, 4}}));
}

void PriceStoreTest::savedPricesAreReadBack()
{
    const QList<PriceRow> rows{row(u"z"_qs), row(u""_qs), row(u"a/\"\\\n😀"_qs), row(u"z"_qs)};
    PriceStore::savePrices(rows);
    QVERIFY(PriceStore::loadPrices() == rows);
}

void PriceStoreTest::pricesAreWrittenCompactly()
{
    PriceStore::savePrices({row(u"a/b c"_qs), row(u"d"_qs)});
    const QByteArray json = readFile(pricesFile());
    QVERIFY2(json.startsWith("[{\"") && json.endsWith("}]"), json.constData());
    QVERIFY2(json.contains(R"("key":"a\/b c")"), json.constData());
    QCOMPARE(json.count('\n'), 0);
    QCOMPARE(json.count(' '), 1); // the one in the key
}

void PriceStoreTest::noRowsAreWrittenAsAnEmptyArray()
{
    PriceStore::savePrices({row(u"a"_qs)});
    PriceStore::savePrices({});
    QCOMPARE(readFile(pricesFile()), QByteArray("[]"));
}

void PriceStoreTest::pricesThatAreNoNumbersAreNotWritten_data()
{
    QTest::addColumn<double>("price");
    QTest::newRow("infinity") << std::numeric_limits<double>::infinity();
    QTest::newRow("minus infinity") << -std::numeric_limits<double>::infinity();
    QTest::newRow("NaN") << std::numeric_limits<double>::quiet_NaN();
}

void PriceStoreTest::pricesThatAreNoNumbersAreNotWritten()
{
    QFETCH(double, price);
    for (double PriceRow::*field :
         {&PriceRow::input, &PriceRow::output, &PriceRow::cacheWrite, &PriceRow::cacheRead}) {
        writeFile(pricesFile(), "before");
        PriceRow bad = row(u"a"_qs);
        bad.*field = price;
        PriceStore::savePrices({row(u"good"_qs), bad});
        QCOMPARE(readFile(pricesFile()), QByteArray("before"));
    }
}

void PriceStoreTest::missingFoldersYieldNone()
{
    QVERIFY(PriceStore::loadAdded().isEmpty());
    QVERIFY(!QFileInfo::exists(projectsFile()));
}

void PriceStoreTest::badFoldersYieldNone_data()
{
    addBadFileRows();
    QTest::newRow("one is no text") << QByteArray(R"(["/a",1,"/b"])");
    QTest::newRow("text without an array") << QByteArray(R"("/a")");
}

void PriceStoreTest::badFoldersYieldNone()
{
    QFETCH(QByteArray, content);
    writeFile(projectsFile(), content);
    QVERIFY(PriceStore::loadAdded().isEmpty());
    QCOMPARE(readFile(projectsFile()), content);
}

void PriceStoreTest::bothFormsOfASlashAreRead()
{
    writeFile(projectsFile(), R"([ "/a/b", "\/c\/d" ])");
    QCOMPARE(PriceStore::loadAdded(), QStringList({u"/a/b"_qs, u"/c/d"_qs}));
}

void PriceStoreTest::foldersAreWrittenWithEscapedSlashes_data()
{
    QTest::addColumn<QStringList>("paths");
    QTest::addColumn<QByteArray>("json");
    QTest::newRow("none") << QStringList() << QByteArray("[]");
    QTest::newRow("two") << QStringList({u"/Users/dev/b"_qs, u"/tmp/a c"_qs})
                         << QByteArray(R"(["\/Users\/dev\/b","\/tmp\/a c"])");
    QTest::newRow("UTF-8") << QStringList(u"/ü/日本/😀"_qs) << QByteArray("[\"\\/ü\\/日本\\/😀\"]");
    QTest::newRow("quotes and backslashes")
        << QStringList(u"/a\"b\\/c"_qs) << QByteArray(R"(["\/a\"b\\\/c"])");
    QTest::newRow("line feed and tabulator")
        << QStringList(u"/a\nb\tc"_qs) << QByteArray(R"(["\/a\nb\tc"])");
}

void PriceStoreTest::foldersAreWrittenWithEscapedSlashes()
{
    QFETCH(QStringList, paths);
    PriceStore::saveAdded(paths);
    QTEST(readFile(projectsFile()), "json");
    QCOMPARE(PriceStore::loadAdded(), paths);
}

void PriceStoreTest::savedFoldersReplaceABadFile()
{
    writeFile(projectsFile(), R"({"some":"object that is longer than what replaces it"})");
    PriceStore::saveAdded({u"/a"_qs});
    QCOMPARE(readFile(projectsFile()), QByteArray(R"(["\/a"])"));
}

void PriceStoreTest::filesAreWrittenInPlace()
{
    const QString elsewhere = m_home->path(u"elsewhere.json"_qs);
    writeFile(elsewhere, "[]");
    QVERIFY(QDir().mkpath(m_home->support()));
    QVERIFY(QFile::link(elsewhere, projectsFile()));
    PriceStore::saveAdded({u"/a"_qs});
    QVERIFY(QFileInfo(projectsFile()).isSymLink());
    QCOMPARE(readFile(elsewhere), QByteArray(R"(["\/a"])"));
    QCOMPARE(QDir(m_home->support()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
             QStringList(u"projects.json"_qs));
}

PLINTHAR_TEST_MAIN(PriceStoreTest)
#include "PriceStoreTest.moc"
