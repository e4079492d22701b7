// SPDX-License-Identifier: GPL-3.0-or-later
#include "context/ContextCatalogue.h"

#include "support/SpecialFiles.h"
#include "support/TestMain.h"

#include <QDir>
#include <QFile>

#include <fcntl.h>
#include <unistd.h>

namespace {

QString describe(const QList<ContextFile> &files)
{
    QString text;
    for (const ContextFile &file : files)
        text += QStringLiteral("%1 %2%3\n")
                    .arg(file.scope, file.path, file.exists ? QString() : QStringLiteral(" new"));
    return text;
}

} // namespace

class ContextCatalogueTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void aFreshProjectListsThreeFilesAndThreeOfTheHome();
    void everythingStandsInItsPlace();
    void ownFilesOfTheProjectAreListedOnlyWhenPresent();
    void rulesAreSortedAndHideDotFilesAndFolders();
    void rulesAreSortedByCodePoint();
    void homeFilesAreLabelledWithATilde();
    void aLabelIsCutByLengthAlone();
    void theHomeFolderAsProjectListsItsFileTwice();
    void namesAreNotNormalised();
    void namesThatAreNoUtf8AreLeftOut();
    void tenThousandRules();
    void anUnreadableRulesFolderAddsNothing();
    void anUnreadableRuleIsListed();
    void aFileInPlaceOfTheRulesFolderAddsNothing();
    void danglingLinksAreNotPresent();
    void linksCountAsWhatTheyLeadTo();
    void aFolderCountsAsPresent();
    void aFifoIsListedAndNotOpened();
    void looksOnlyThroughWhatItIsGiven();

private:
    QList<ContextFile> scan() const { return contextFiles(project(), home(), FileLook::disk()); }
    QString project(const char *name = "") const
    {
        return m_root->path(u"work/app"_qs) + QString::fromUtf8(name);
    }
    QString home(const char *name = "") const
    {
        return m_root->path(u"home"_qs) + QString::fromUtf8(name);
    }
    QStringList rules() const
    {
        QStringList names;
        for (const ContextFile &file : scan()) {
            if (file.path.startsWith(project("/.cursor/rules/")))
                names.append(file.path.mid(project("/.cursor/rules/").size()));
        }
        return names;
    }
    bool lists(const QString &path) const
    {
        const QList<ContextFile> files = scan();
        return std::any_of(files.begin(), files.end(),
                           [&](const ContextFile &file) { return file.path == path; });
    }

    std::unique_ptr<PrivateHome> m_root;
};

void ContextCatalogueTest::init()
{
    m_root.reset();
    m_root = std::make_unique<PrivateHome>();
    QVERIFY(QDir().mkpath(project()));
    QVERIFY(QDir().mkpath(home()));
}

void ContextCatalogueTest::aFreshProjectListsThreeFilesAndThreeOfTheHome()
{
    writeFile(home("/.codex/AGENTS.md"), "");
    const QList<ContextFile> expected{
        {project("/CLAUDE.md"), projectScope, false},
        {project("/AGENTS.md"), projectScope, false},
        {project("/GEMINI.md"), projectScope, false},
        {home("/.claude/CLAUDE.md"), homeScope, false},
        {home("/.codex/AGENTS.md"), homeScope, true},
        {home("/.gemini/GEMINI.md"), homeScope, false},
    };
    QCOMPARE(describe(scan()), describe(expected));
}

void ContextCatalogueTest::everythingStandsInItsPlace()
{
    QList<ContextFile> expected;
    for (const char *name : {"/CLAUDE.md", "/AGENTS.md", "/GEMINI.md", "/.claude/CLAUDE.md",
                             "/.cursorrules", "/.cursor/rules/a.mdc", "/.cursor/rules/b.mdc"})
        expected.append({project(name), projectScope, true});
    for (const char *name : {"/.claude/CLAUDE.md", "/.codex/AGENTS.md", "/.gemini/GEMINI.md",
                             "/CLAUDE.md", "/AGENTS.md", "/GEMINI.md", "/.cursor/rules/z"})
        expected.append({home(name), homeScope, true});
    for (const ContextFile &file : expected)
        writeFile(file.path, "x");
    writeFile(home("/.cursorrules"), "not one of the home folder's files");
    QCOMPARE(describe(scan()), describe(expected));
}

void ContextCatalogueTest::ownFilesOfTheProjectAreListedOnlyWhenPresent()
{
    for (const char *name : {"/.claude/CLAUDE.md", "/.cursorrules", "/.cursor/rules/x.mdc"}) {
        QVERIFY(!lists(project(name)));
        writeFile(project(name), "");
        QVERIFY(lists(project(name)));
        QVERIFY(QFile::remove(project(name)));
        QVERIFY(!lists(project(name)));
    }
}

void ContextCatalogueTest::rulesAreSortedAndHideDotFilesAndFolders()
{
    for (const char *name : {"b.mdc", "A.mdc", ".hidden", "x/inside.mdc"})
        writeFile(project("/.cursor/rules/") + QString::fromUtf8(name), "");
    QCOMPARE(rules(), QStringList({u"A.mdc"_qs, u"b.mdc"_qs}));
}

void ContextCatalogueTest::rulesAreSortedByCodePoint()
{
    // As UTF-16 units the emoji (d83d) would come before the full-width letter (ff21).
    const QStringList expected{u"0"_qs,      u"Z"_qs,      u"a"_qs,
                               u"\u00e4"_qs, u"\uff21"_qs, u"\U0001f600"_qs};
    for (const QString &name :
         {expected[5], expected[4], expected[3], expected[2], expected[1], expected[0]})
        writeFile(project("/.cursor/rules/") + name, "");
    QCOMPARE(rules(), expected);
}

void ContextCatalogueTest::homeFilesAreLabelledWithATilde()
{
    const QString dev = u"/Users/dev"_qs;
    QCOMPARE(label({u"/Users/dev/.codex/AGENTS.md"_qs, homeScope, true}, dev),
             u"~/.codex/AGENTS.md"_qs);
    QCOMPARE(label({u"/Users/dev/src/CLAUDE.md"_qs, projectScope, true}, dev),
             u"/Users/dev/src/CLAUDE.md"_qs);
}

void ContextCatalogueTest::aLabelIsCutByLengthAlone()
{
    QCOMPARE(label({u"/1234567/x"_qs, homeScope, true}, u"/Users/"_qs), u"~7/x"_qs);
    QCOMPARE(label({u"/x"_qs, homeScope, true}, u"/a/long/home"_qs), u"~"_qs);
    QCOMPARE(label({u"//.claude/CLAUDE.md"_qs, homeScope, true}, u"/"_qs),
             u"~/.claude/CLAUDE.md"_qs);
}

void ContextCatalogueTest::theHomeFolderAsProjectListsItsFileTwice()
{
    writeFile(home("/CLAUDE.md"), "");
    const QList<ContextFile> files = contextFiles(home(), home(), FileLook::disk());
    QCOMPARE(files.count({home("/CLAUDE.md"), projectScope, true}), 1);
    QCOMPARE(files.count({home("/CLAUDE.md"), homeScope, true}), 1);
    QVERIFY(files.contains({home("/AGENTS.md"), projectScope, false}));
    QVERIFY(!files.contains({home("/AGENTS.md"), homeScope, false}));
}

void ContextCatalogueTest::namesAreNotNormalised()
{
    const QList<ContextFile> files =
        contextFiles(project() + u"/../app/"_qs, home(), FileLook::disk());
    QCOMPARE(files.constFirst().path, project() + u"/../app//CLAUDE.md"_qs);
}

void ContextCatalogueTest::namesThatAreNoUtf8AreLeftOut()
{
    writeFile(project("/.cursor/rules/good.mdc"), "");
    const QByteArray bad = QFile::encodeName(project("/.cursor/rules/")) + "bad\xff.mdc";
    const int fd = ::open(bad.constData(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600);
    if (fd < 0)
        QSKIP("this file system takes only names in UTF-8");
    ::close(fd);
    // What the bad name would be shown as is a name of its own.
    writeFile(project("/.cursor/rules/bad\ufffd.mdc"), "");
    const QStringList found = rules();
    ::unlink(bad.constData()); // QTemporaryDir cannot
    QCOMPARE(found, QStringList({u"bad\ufffd.mdc"_qs, u"good.mdc"_qs}));
}

void ContextCatalogueTest::tenThousandRules()
{
    QStringList expected;
    for (int i = 0; i < 10'000; ++i) {
        expected.append(QStringLiteral("rule %1.mdc").arg(i, 5, 10, QChar(u'0')));
        writeFile(project("/.cursor/rules/") + expected.constLast(), "");
    }
    QVERIFY(rules() == expected);
}

void ContextCatalogueTest::anUnreadableRulesFolderAddsNothing()
{
    writeFile(project("/.cursor/rules/a.mdc"), "");
    QFile::setPermissions(m_root->path(), QFile::Permissions(0x7775));
    QFile::setPermissions(project("/.cursor/rules"), {});
    const Unprivileged meanwhile;
    QCOMPARE(rules(), QStringList());
    QCOMPARE(scan().size(), 6);
}

void ContextCatalogueTest::anUnreadableRuleIsListed()
{
    writeFile(project("/.cursor/rules/a.mdc"), "");
    QFile::setPermissions(m_root->path(), QFile::Permissions(0x7775));
    QFile::setPermissions(project("/.cursor/rules/a.mdc"), {});
    const Unprivileged meanwhile;
    QCOMPARE(rules(), QStringList(u"a.mdc"_qs));
}

void ContextCatalogueTest::aFileInPlaceOfTheRulesFolderAddsNothing()
{
    writeFile(project("/.cursor/rules"), "");
    QCOMPARE(scan().size(), 6);
}

void ContextCatalogueTest::danglingLinksAreNotPresent()
{
    QVERIFY(QDir().mkpath(project("/.cursor/rules")));
    for (const char *name : {"/CLAUDE.md", "/.cursorrules", "/.cursor/rules/a.mdc"})
        QVERIFY(QFile::link(m_root->path(u"nowhere"_qs), project(name)));
    const QList<ContextFile> files = scan();
    QCOMPARE(files.size(), 6);
    QVERIFY(!files.constFirst().exists);
}

void ContextCatalogueTest::linksCountAsWhatTheyLeadTo()
{
    writeFile(m_root->path(u"shared.md"_qs), "");
    QVERIFY(QDir().mkpath(project("/.cursor/rules")));
    QVERIFY(QFile::link(m_root->path(u"shared.md"_qs), project("/.cursor/rules/file")));
    QVERIFY(QFile::link(home(), project("/.cursor/rules/folder")));
    QVERIFY(QFile::link(m_root->path(u"shared.md"_qs), project("/AGENTS.md")));
    QCOMPARE(rules(), QStringList(u"file"_qs));
    QVERIFY(scan().contains({project("/AGENTS.md"), projectScope, true}));
}

void ContextCatalogueTest::aFolderCountsAsPresent()
{
    for (const char *name : {"/CLAUDE.md", "/.claude/CLAUDE.md", "/.cursorrules"})
        QVERIFY(QDir().mkpath(project(name)));
    const QList<ContextFile> files = scan();
    QVERIFY(files.contains({project("/CLAUDE.md"), projectScope, true}));
    QVERIFY(files.contains({project("/.claude/CLAUDE.md"), projectScope, true}));
    QVERIFY(files.contains({project("/.cursorrules"), projectScope, true}));
}

void ContextCatalogueTest::aFifoIsListedAndNotOpened()
{
    makeSpecialFiles(project("/.cursor/rules"), QString());
    QCOMPARE(rules(), QStringList({u"device"_qs, u"failing"_qs, u"fifo"_qs, u"socket"_qs}));
}

void ContextCatalogueTest::looksOnlyThroughWhatItIsGiven()
{
    QStringList looked;
    const FileLook look{[&](const QString &path) {
                            looked.append(path);
                            return path.endsWith(u"gone"_qs) ? FileKind::Missing : FileKind::Other;
                        },
                        [&](const QString &folder) {
                            looked.append(folder);
                            return QStringList{u"gone"_qs, u"b"_qs, u"a"_qs};
                        }};
    const QList<ContextFile> files = contextFiles(u"P"_qs, u"H"_qs, look);
    QCOMPARE(files.size(), 5 + 2 + 6 + 2);
    QCOMPARE(files.at(5).path, u"P/.cursor/rules/a"_qs);
    QVERIFY(looked.contains(u"H/.cursor/rules"_qs));
}

PLINTHAR_TEST_MAIN(ContextCatalogueTest)
#include "ContextCatalogueTest.moc"
