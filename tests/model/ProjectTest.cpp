// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/Project.h"

#include "support/Describe.h"
#include "support/TestMain.h"

#include <QJsonDocument>

namespace {

QJsonObject object(const QByteArray &json)
{
    return QJsonDocument::fromJson(json).object();
}

} // namespace

class ProjectTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void nameIsTheLastPathComponent_data();
    void nameIsTheLastPathComponent();
    void encodesItsFieldNamesAsKeys();
    void withoutLogFolderEncodesWithoutTheKeyAndDecodesBackToAbsent();
    void survivesEncodingAndDecoding_data();
    void survivesEncodingAndDecoding();
    void decodingRefuses_data();
    void decodingRefuses();
    void nullLogFolderDecodesToAbsent();
    void equalityAndHashCompareAllThreeFields();
};

void ProjectTest::nameIsTheLastPathComponent_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("name");
    QTest::newRow("usual") << u"/Users/dev/my-app"_qs << u"my-app"_qs;
    QTest::newRow("one component") << u"/tmp"_qs << u"tmp"_qs;
    QTest::newRow("slash at the end") << u"/Users/dev/site/"_qs << u"site"_qs;
    QTest::newRow("slashes at the end") << u"/Users/dev/site//"_qs << u"site"_qs;
    QTest::newRow("root") << u"/"_qs << u"/"_qs;
    QTest::newRow("slashes only") << u"//"_qs << u"/"_qs;
    QTest::newRow("empty") << QString() << QString();
    QTest::newRow("relative") << u"site"_qs << u"site"_qs;
    QTest::newRow("hidden") << u"/home/dev/.config"_qs << u".config"_qs;
    QTest::newRow("backslash is no separator") << u"/home/a\\b"_qs << u"a\\b"_qs;
    QTest::newRow("not ASCII") << u"/home/Übung/日本 語"_qs << u"日本 語"_qs;
}

void ProjectTest::nameIsTheLastPathComponent()
{
    QFETCH(QString, path);
    QTEST((Project{path, std::nullopt, false}).name(), "name");
}

void ProjectTest::encodesItsFieldNamesAsKeys()
{
    const QJsonObject json = toJson(Project{u"/a/b"_qs, u"/logs/-a-b"_qs, true});
    QCOMPARE(json, object(R"({"path":"/a/b","claudeDir":"/logs/-a-b","added":true})"));
}

void ProjectTest::withoutLogFolderEncodesWithoutTheKeyAndDecodesBackToAbsent()
{
    const QJsonObject json = toJson(Project{u"/a/b"_qs, std::nullopt, true});
    QCOMPARE(json.keys(), QStringList({u"added"_qs, u"path"_qs}));
    const std::optional<Project> decoded = projectFromJson(json);
    QVERIFY(decoded);
    QVERIFY(!decoded->claudeDir.has_value());
}

void ProjectTest::survivesEncodingAndDecoding_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("claudeDir");
    QTest::addColumn<bool>("added");
    QTest::newRow("added") << u"/a/b"_qs << u"/logs/-a-b"_qs << true;
    QTest::newRow("discovered") << u"/a/b"_qs << u"/logs/-a-b"_qs << false;
    QTest::newRow("empty texts") << u""_qs << u""_qs << false;
    QTest::newRow("signs") << u"/a \"b\"\\\n\t/\u0001"_qs << u"/ü/😀/e\u0301"_qs << true;
}

void ProjectTest::survivesEncodingAndDecoding()
{
    QFETCH(QString, path);
    QFETCH(QString, claudeDir);
    QFETCH(bool, added);
    const Project project{path, claudeDir, added};
    const QByteArray text = QJsonDocument(toJson(project)).toJson();
    QCOMPARE(describe(projectFromJson(object(text))), describe(project));
}

void ProjectTest::decodingRefuses_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::newRow("no path") << QByteArray(R"({"added":true})");
    QTest::newRow("no added") << QByteArray(R"({"path":"/a"})");
    QTest::newRow("path is a number") << QByteArray(R"({"path":1,"added":true})");
    QTest::newRow("path is null") << QByteArray(R"({"path":null,"added":true})");
    QTest::newRow("added is a text") << QByteArray(R"({"path":"/a","added":"true"})");
    QTest::newRow("added is a number") << QByteArray(R"({"path":"/a","added":1})");
    QTest::newRow("log folder is a number")
        << QByteArray(R"({"path":"/a","added":true,"claudeDir":1})");
    QTest::newRow("nothing in it") << QByteArray("{}");
}

void ProjectTest::decodingRefuses()
{
    QFETCH(QByteArray, json);
    QCOMPARE(describe(projectFromJson(object(json))), u"nothing"_qs);
}

void ProjectTest::nullLogFolderDecodesToAbsent()
{
    const auto project = projectFromJson(object(R"({"path":"/a","added":true,"claudeDir":null})"));
    QVERIFY(project);
    QVERIFY(!project->claudeDir.has_value());
}

void ProjectTest::equalityAndHashCompareAllThreeFields()
{
    const Project project{u"/a"_qs, u"/logs"_qs, true};
    const QList<Project> others{{u"/b"_qs, u"/logs"_qs, true},
                                {u"/a"_qs, u"/other"_qs, true},
                                {u"/a"_qs, std::nullopt, true},
                                {u"/a"_qs, u""_qs, true},
                                {u"/a"_qs, u"/logs"_qs, false}};
    QVERIFY(project == Project(project));
    QCOMPARE(qHash(project), qHash(Project(project)));
    for (const Project &other : others) {
        QVERIFY2(project != other, qPrintable(describe(other)));
        QVERIFY2(qHash(project) != qHash(other), qPrintable(describe(other)));
    }
    QVERIFY(qHash(others[2]) != qHash(others[3]));
}

PLINTHAR_TEST_MAIN(ProjectTest)
#include "ProjectTest.moc"
