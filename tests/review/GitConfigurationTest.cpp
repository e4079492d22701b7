// SPDX-License-Identifier: GPL-3.0-or-later

// Users configure git as they like. The same files are listed, and the same changes shown, whatever
// they have configured.

#include "app/Environment.h"
#include "review/DiffLoader.h"
#include "review/GitActions.h"
#include "review/GitStatus.h"
#include "review/Repository.h"
#include "support/TestMain.h"

#include <QTemporaryDir>

#include <memory>

namespace {

struct Configuration {
    QStringList settings;  ///< name=value
    QByteArray attributes; ///< .gitattributes, which is committed
};

/// The changed lines with their numbers, and how far the numbers of the unchanged differ.
QStringList changes(const LoadedDiff &diff)
{
    QStringList all;
    for (const DiffRow &row : diff.rows) {
        const auto *line = std::get_if<DiffLine>(&row.content);
        if (!line)
            continue;
        for (const DiffSide side : {OldSide, NewSide}) {
            const DiffCell &cell = (*line)[side];
            if (cell.kind == DiffKind::Removed || cell.kind == DiffKind::Added)
                all.append((side == OldSide ? u'-' : u'+') + QString::number(*cell.num) + u' ' +
                           cell.text.toString());
        }
    }
    all.sort(); // what belongs together depends on the algorithm
    return all;
}

} // namespace

Q_DECLARE_METATYPE(Configuration)

class GitConfigurationTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void sameFilesAndDiffs_data();
    void sameFilesAndDiffs();
    void outsideOfTheProjectsFolder();
    void secondRunOnlyWhenTheFirstCannotBeRead_data();
    void secondRunOnlyWhenTheFirstCannotBeRead();
    void textconvWithHunksIsShown();
    void textconvThatSaysNothingIsBelieved();
    void submoduleShownByItsFiles();
    void repositoryOfSomeoneElse();

private:
    void configure(const QStringList &settings) const
    {
        for (const QString &setting : settings)
            m_repository->git(
                {QStringLiteral("config"), setting.section(u'=', 0, 0), setting.section(u'=', 1)});
    }
    /// Makes a program that stands in for a diff.
    QString tool(const QByteArray &script) const
    {
        const Repository tools(m_folder->filePath(QStringLiteral("tools")));
        tools.write(QStringLiteral("tool"), "#!/bin/sh\n" + script);
        tools.makeExecutable(QStringLiteral("tool"));
        return tools.path(QStringLiteral("tool"));
    }
    void makeFiles(const QByteArray &attributes) const;

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<Repository> m_repository;
};

void GitConfigurationTest::initTestCase()
{
    prepareEnvironment();
    writeGitIdentity();
}

void GitConfigurationTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_repository = std::make_unique<Repository>(m_folder->filePath(QStringLiteral("repository")));
}

void GitConfigurationTest::cleanup()
{
    m_repository.reset();
    m_folder.reset();
}

/// A changed file with empty lines, one with a name beyond ASCII, an untracked one, a submodule.
void GitConfigurationTest::makeFiles(const QByteArray &attributes) const
{
    m_repository->write(QStringLiteral(".gitattributes"), attributes);
    m_repository->write(QStringLiteral("f.txt"), "one\n\ntwo\n\nthree\nfour\nfive\nsix\nseven\n");
    m_repository->write(QStringLiteral("\u00e9.txt"), "old\n");
    const Repository library(m_folder->filePath(QStringLiteral("library")));
    library.write(QStringLiteral("code"), "1\n");
    library.commitAll();
    m_repository->git({QStringLiteral("submodule"), QStringLiteral("--quiet"),
                       QStringLiteral("add"), library.path(), QStringLiteral("sub")});
    m_repository->commitAll();
    m_repository->write(QStringLiteral("f.txt"),
                        "one\n\ntwo!\n\nthree\nfour\nfive\nsix\nseven\neight\n");
    m_repository->write(QStringLiteral("\u00e9.txt"), "new\n");
    m_repository->write(QStringLiteral("new.txt"), "a\n\nb\n");
    const Repository checkout(m_repository->path(QStringLiteral("sub")));
    checkout.write(QStringLiteral("code"), "2\n");
    checkout.commitAll();
}

void GitConfigurationTest::sameFilesAndDiffs_data()
{
    QTest::addColumn<Configuration>("configuration");
    QTest::addColumn<QByteArray>("script");
    const auto row = [](const char *name, const QStringList &settings,
                        const QByteArray &attributes = {}, const QByteArray &script = {}) {
        QTest::newRow(name) << Configuration{settings, attributes} << script;
    };
    row("none", {});
    for (const char *setting : {"color.ui=always",
                                "color.diff=always",
                                "diff.noprefix=true",
                                "diff.mnemonicPrefix=true",
                                "diff.context=0",
                                "diff.context=100",
                                "diff.algorithm=patience",
                                "diff.algorithm=histogram",
                                "diff.algorithm=minimal",
                                "diff.submodule=log",
                                "diff.renames=copies",
                                "diff.renames=false",
                                "diff.suppressBlankEmpty=true",
                                "diff.interHunkContext=10",
                                "diff.indentHeuristic=false",
                                "diff.relative=true",
                                "diff.wsErrorHighlight=all",
                                "diff.colorMoved=zebra",
                                "diff.wordRegex=.",
                                "diff.dirstat=lines",
                                "diff.orderFile=/dev/null",
                                "diff.autoRefreshIndex=false",
                                "core.quotePath=true",
                                "core.quotePath=false",
                                "core.autocrlf=true",
                                "core.autocrlf=input",
                                "core.safecrlf=warn",
                                "core.pager=false",
                                "core.fileMode=false",
                                "core.untrackedCache=true",
                                "core.preloadIndex=false",
                                "status.showUntrackedFiles=no",
                                "status.relativePaths=true",
                                "status.relativePaths=false",
                                "status.short=true",
                                "status.branch=true",
                                "status.showStash=true",
                                "status.submoduleSummary=true",
                                "status.renames=copies",
                                "pager.diff=false",
                                "advice.statusHints=false"})
        row(setting, {QString::fromLatin1(setting)});
    row("colours without those of hunks",
        {QStringLiteral("color.ui=always"), QStringLiteral("color.diff.frag=normal"),
         QStringLiteral("color.diff.meta=normal")});
    row("colours and empty lines",
        {QStringLiteral("color.ui=always"), QStringLiteral("diff.suppressBlankEmpty=true")});
    row("another diff", {QStringLiteral("diff.external=%1")}, {}, "echo 'f.txt: 2 changes'\n");
    row("another diff that fails", {QStringLiteral("diff.external=%1")}, {}, "echo no; exit 1\n");
    row("another diff in colours and empty lines", {QStringLiteral("diff.external=%1")}, {},
        "printf '\\033[1mf.txt\\033[0m\\n\\n@@ none @@\\n'\n");
    row("driver of some files", {QStringLiteral("diff.mine.command=%1")}, "*.txt diff=mine\n",
        "echo 'changed'\n");
    row("function names of a driver", {QStringLiteral("diff.mine.xfuncname=^t.*$")},
        "*.txt diff=mine\n");
    row("attributes", {}, "*.txt text=auto\n");
}

void GitConfigurationTest::sameFilesAndDiffs()
{
    QFETCH(Configuration, configuration);
    QFETCH(const QByteArray, script);
    makeFiles(configuration.attributes);
    if (!script.isEmpty())
        configuration.settings[0] = configuration.settings[0].arg(tool(script));
    configure(configuration.settings);

    const GitSnapshot snapshot = gitStatusSnapshot(m_repository->path());
    QVERIFY(snapshot.isRepo && snapshot.hasHead);
    QCOMPARE(snapshot.files, (QList<GitFile>{{QStringLiteral("f.txt"), u' ', u'M'},
                                             {QStringLiteral("sub"), u' ', u'M'},
                                             {QStringLiteral("\u00e9.txt"), u' ', u'M'},
                                             {QStringLiteral("new.txt"), u'?', u'?'}}));
    const auto shown = [&](qsizetype file) {
        return changes(loadDiff(m_repository->path(), snapshot.files[file], true));
    };
    QCOMPARE(shown(0), (QStringList{QStringLiteral("+10 eight"), QStringLiteral("+3 two!"),
                                    QStringLiteral("-3 two")}));
    const QStringList submodule = shown(1);
    QCOMPARE(submodule.size(), 2);
    QVERIFY(submodule[0].startsWith(QStringLiteral("+1 Subproject commit ")));
    QVERIFY(submodule[1].startsWith(QStringLiteral("-1 Subproject commit ")));
    QCOMPARE(shown(2), (QStringList{QStringLiteral("+1 new"), QStringLiteral("-1 old")}));
    QCOMPARE(shown(3),
             (QStringList{QStringLiteral("+1 a"), QStringLiteral("+2 "), QStringLiteral("+3 b")}));

    QCOMPARE(approve(m_repository->path(), snapshot.files[3]).status, 0);
    QCOMPARE(reject(m_repository->path(), snapshot.files[0], true).status, 0);
    const QList<GitFile> after = gitStatusSnapshot(m_repository->path()).files;
    QVERIFY(find(after, QStringLiteral("f.txt")).path.isEmpty());
    QCOMPARE(find(after, QStringLiteral("new.txt")).x, u'A');
}

void GitConfigurationTest::outsideOfTheProjectsFolder()
{
    m_repository->write(QStringLiteral("out"), "old\n");
    m_repository->write(QStringLiteral("sub/in"), "old\n");
    m_repository->commitAll();
    m_repository->write(QStringLiteral("out"), "new\n");
    m_repository->write(QStringLiteral("sub/in"), "new\n");
    configure({QStringLiteral("diff.relative=true")});
    const QString sub = m_repository->path(QStringLiteral("sub"));
    for (const GitFile &file : gitStatusSnapshot(sub).files)
        QCOMPARE(changes(loadDiff(sub, file, true)).size(), 2);
}

void GitConfigurationTest::secondRunOnlyWhenTheFirstCannotBeRead_data()
{
    QTest::addColumn<QByteArray>("printed");
    QTest::addColumn<QStringList>("shown");
    const QStringList own{QStringLiteral("+1 new"), QStringLiteral("-1 old")};
    QTest::newRow("no hunk") << QByteArray("echo changed\n") << own;
    QTest::newRow("nothing") << QByteArray() << QStringList();
    QTest::newRow("a hunk") << QByteArray("echo '@@ -7 +7 @@'\necho -other\n")
                            << QStringList{QStringLiteral("-7 other")};
    QTest::newRow("a binary note") << QByteArray("echo 'Binary files differ'\n") << QStringList();
}

void GitConfigurationTest::secondRunOnlyWhenTheFirstCannotBeRead()
{
    QFETCH(const QByteArray, printed);
    m_repository->write(QStringLiteral("f"), "old\n");
    m_repository->commitAll();
    m_repository->write(QStringLiteral("f"), "new\n");
    configure({QStringLiteral("diff.external=") + tool(printed)});
    const GitFile file{QStringLiteral("f"), u' ', u'M'};
    QTEST(changes(loadDiff(m_repository->path(), file, true)), "shown");
}

/// What the user has git show instead of the text is what the user wants to see.
void GitConfigurationTest::textconvWithHunksIsShown()
{
    m_repository->write(QStringLiteral(".gitattributes"), "f diff=mine\n");
    m_repository->write(QStringLiteral("f"), "old\n");
    m_repository->commitAll();
    m_repository->write(QStringLiteral("f"), "new\n");
    configure({QStringLiteral("diff.mine.textconv=") + tool("tr a-z A-Z < \"$1\"\n")});
    const GitFile file{QStringLiteral("f"), u' ', u'M'};
    QCOMPARE(changes(loadDiff(m_repository->path(), file, true)),
             (QStringList{QStringLiteral("+1 NEW"), QStringLiteral("-1 OLD")}));
}

void GitConfigurationTest::textconvThatSaysNothingIsBelieved()
{
    m_repository->write(QStringLiteral(".gitattributes"), "f diff=mine\n");
    m_repository->write(QStringLiteral("f"), "old\n");
    m_repository->commitAll();
    m_repository->write(QStringLiteral("f"), "new\n");
    configure({QStringLiteral("diff.mine.textconv=") + tool("echo same\n")});
    const GitFile file{QStringLiteral("f"), u' ', u'M'};
    QCOMPARE(loadDiff(m_repository->path(), file, true), LoadedDiff());
}

void GitConfigurationTest::submoduleShownByItsFiles()
{
    makeFiles({});
    configure({QStringLiteral("diff.submodule=diff")});
    const GitFile file{QStringLiteral("sub"), u' ', u'M'};
    QCOMPARE(changes(loadDiff(m_repository->path(), file, true)),
             (QStringList{QStringLiteral("+1 2"), QStringLiteral("-1 1")}));
}

/// Git refuses to work there, so nothing is done either.
void GitConfigurationTest::repositoryOfSomeoneElse()
{
    m_repository->write(QStringLiteral("f"), "text\n");
    qputenv("GIT_TEST_ASSUME_DIFFERENT_OWNER", "1");
    const GitFile file{QStringLiteral("f"), u'?', u'?'};
    const GitSnapshot snapshot = gitStatusSnapshot(m_repository->path());
    const ShellResult approved = approve(m_repository->path(), file);
    const ShellResult rejected = reject(m_repository->path(), file, true);
    qunsetenv("GIT_TEST_ASSUME_DIFFERENT_OWNER");
    QCOMPARE(snapshot, GitSnapshot());
    for (const ShellResult &result : {approved, rejected})
        QVERIFY2(result.err.contains(QStringLiteral("safe.directory")), qPrintable(result.err));
    QCOMPARE(m_repository->state().status, (QMap<QByteArray, QByteArray>{{"f", "??"}}));
}

PLINTHAR_TEST_MAIN(GitConfigurationTest)
#include "GitConfigurationTest.moc"
