// SPDX-License-Identifier: GPL-3.0-or-later
#include "review/GitPath.h"

#include "support/TestMain.h"

class GitPathTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void plainPathsStayPlainAtTheTop_data();
    void plainPathsStayPlainAtTheTop();
    void patternsAreTakenLiterally_data();
    void patternsAreTakenLiterally();
    void pathsAreFromTheTopInASubFolder();
    void fromTheProjectsFolder_data();
    void fromTheProjectsFolder();
};

void GitPathTest::plainPathsStayPlainAtTheTop_data()
{
    QTest::addColumn<QString>("path");
    for (const QString &path :
         {QStringLiteral("f"), QStringLiteral("a/b c"), QStringLiteral("-dash"),
          QStringLiteral("--"), QStringLiteral("a:b"), QStringLiteral("{a,b}"),
          QStringLiteral("!x"), QStringLiteral("]"), QStringLiteral("a\nb"),
          QStringLiteral("\u00e9"), QStringLiteral("\"q\""), QStringLiteral("nested/")})
        QTest::newRow(qPrintable(path)) << path;
}

void GitPathTest::plainPathsStayPlainAtTheTop()
{
    QFETCH(const QString, path);
    QCOMPARE(GitPath::pathspec(path, {}), path);
}

void GitPathTest::patternsAreTakenLiterally_data()
{
    QTest::addColumn<QString>("path");
    for (const QString &path :
         {QStringLiteral("*"), QStringLiteral("a/*.md"), QStringLiteral("what?"),
          QStringLiteral("pages/[id].tsx"), QStringLiteral("back\\slash"), QStringLiteral(":odd"),
          QStringLiteral(":(top)x"), QStringLiteral(":")})
        QTest::newRow(qPrintable(path)) << path;
}

void GitPathTest::patternsAreTakenLiterally()
{
    QFETCH(const QString, path);
    QCOMPARE(GitPath::pathspec(path, {}), QStringLiteral(":(top,literal)") + path);
    QCOMPARE(GitPath::pathspec(path, QStringLiteral("sub/")),
             QStringLiteral(":(top,literal)") + path);
}

void GitPathTest::pathsAreFromTheTopInASubFolder()
{
    QCOMPARE(GitPath::pathspec(QStringLiteral("sub/f"), QStringLiteral("sub/")),
             QStringLiteral(":(top,literal)sub/f"));
    QCOMPARE(GitPath::pathspec(QStringLiteral("f"), QStringLiteral("sub/")),
             QStringLiteral(":(top,literal)f"));
}

void GitPathTest::fromTheProjectsFolder_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("prefix");
    QTest::addColumn<QString>("argument");
    const auto row = [](const char *path, const char *prefix, const char *argument) {
        QTest::addRow("%s in %s", path, prefix)
            << QString::fromLatin1(path) << QString::fromLatin1(prefix)
            << QString::fromLatin1(argument);
    };
    row("f", "", "f");
    row("*", "", "*");
    row("-", "", "./-");
    row("-dash", "", "-dash");
    row("a/-", "", "a/-");
    row("sub/f", "sub/", "f");
    row("sub/-", "sub/", "./-");
    row("sub/sub/f", "sub/", "sub/f");
    row("f", "sub/", "../f");
    row("-", "sub/", "../-");
    row("sub2/f", "sub/", "../sub2/f");
    row("a/f", "a/b/", "../../a/f");
}

void GitPathTest::fromTheProjectsFolder()
{
    QFETCH(const QString, path);
    QFETCH(const QString, prefix);
    QTEST(GitPath::fromProject(path, prefix), "argument");
}

PLINTHAR_TEST_MAIN(GitPathTest)
#include "GitPathTest.moc"
