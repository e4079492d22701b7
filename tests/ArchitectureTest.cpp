// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TestMain.h"

#include <QDirIterator>
#include <QHash>
#include <QLibraryInfo>
#include <QRegularExpression>
#include <QSet>

#include <algorithm>
#include <optional>

/// The rules of the house that the compiler does not hold, checked on the text of the sources.

namespace {

/// What a library is, from what everything may use to what may use everything.
enum class Layer { Model, Logic, Ui, Screen, App };

struct Room {
    QString folder;
    Layer layer = Layer::App;
};

/// The files of a source folder, and which library each belongs to.
struct Sources {
    QString folder;
    QHash<QString, Room> roomOf; ///< by path inside the folder
};

/// The one way from feature to feature: Live runs its commands with Review's process runner.
const QString processRunner = u"review/RunProcess"_qs;

struct Exception {
    QString file;
    QString word;
};

/// Where waiting is right: on a worker thread, and at the very end of the program. And where
/// exiting is: in a child that could not become the program it was started for.
const QList<Exception> exceptions{{u"model/Background.cpp"_qs, u"waitForDone"_qs},
                                  {processRunner + u".cpp"_qs, u"waitFor"_qs},
                                  {processRunner + u".cpp"_qs, u"_exit"_qs},
                                  {u"app/main.cpp"_qs, u"exec"_qs}};

constexpr qsizetype longestFile = 450;

QString textOf(const QString &path)
{
    return QString::fromUtf8(readFile(path));
}

/// The files below a folder with these endings, as paths inside it.
QStringList filesBelow(const QString &folder, const QStringList &patterns)
{
    QStringList files;
    QDirIterator it(folder, patterns, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext())
        files.append(QDir(folder).relativeFilePath(it.next()));
    files.sort();
    return files;
}

Room roomOfLibrary(const QString &folder, const QString &library)
{
    if (folder == u"model")
        return {folder, Layer::Model};
    if (folder == u"ui")
        return {folder, Layer::Ui};
    if (folder == u"app")
        return {folder, Layer::App};
    return {folder, library.endsWith(u"_screen") ? Layer::Screen : Layer::Logic};
}

/// Reads which files the libraries are made of.
Sources sourcesIn(const QString &folder)
{
    static const QRegularExpression library(
        u"(?:plinthar_library|add_executable)\\(\\s*(\\w+)([^)]*)\\)"_qs);
    static const QRegularExpression source(u"[\\w/.]+\\.(?:cpp|h)\\b"_qs);
    Sources sources{folder, {}};
    for (const QString &list : filesBelow(folder, {u"CMakeLists.txt"_qs})) {
        const QString inFolder = list.section(u'/', 0, -2);
        const QString text = textOf(folder + u'/' + list);
        for (auto it = library.globalMatch(text); it.hasNext();) {
            const QRegularExpressionMatch made = it.next();
            const QString files = made.captured(2);
            for (auto file = source.globalMatch(files); file.hasNext();)
                sources.roomOf.insert(inFolder + u'/' + file.next().captured(),
                                      roomOfLibrary(inFolder, made.captured(1)));
        }
    }
    return sources;
}

QStringList codeFiles(const Sources &sources)
{
    return filesBelow(sources.folder, {u"*.h"_qs, u"*.cpp"_qs});
}

/// The text without its comments and without what stands in quotes.
QString codeOnly(QString text)
{
    static const QRegularExpression notCode(
        uR"(//[^\n]*|/\*.*?\*/|"(?:\\.|[^"\\\n])*"|'(?:\\.|[^'\\\n])+')"_qs,
        QRegularExpression::DotMatchesEverythingOption);
    return text.replace(notCode, u" "_qs);
}

bool isArrow(const Room &from, const Room &to, const QString &included)
{
    if (to.layer == Layer::Model || (from.folder == to.folder && from.layer == to.layer))
        return true;
    switch (from.layer) {
    case Layer::Model:
    case Layer::Ui:
        return false;
    case Layer::Logic:
        return from.folder == u"live" && included == processRunner + u".h"_qs;
    case Layer::Screen:
        return to.layer == Layer::Ui ||
               (to.layer == Layer::Logic &&
                (to.folder == from.folder ||
                 (from.folder == u"live" && included == processRunner + u".h"_qs)));
    case Layer::App:
        return true;
    }
    return false;
}

/// Whether a header is one of Qt's that needs a window system.
bool isOfAWindow(const QString &header)
{
    const QString headers = QLibraryInfo::path(QLibraryInfo::HeadersPath);
    for (const QString &module : {u"QtGui"_qs, u"QtWidgets"_qs, u"QtSvg"_qs}) {
        if (header.startsWith(module) || QFile::exists(headers + u'/' + module + u'/' + header))
            return true;
    }
    return false;
}

bool isLogic(const Room &room)
{
    return room.layer == Layer::Model || room.layer == Layer::Logic;
}

QStringList filesInNoLibrary(const Sources &sources)
{
    QStringList complaints;
    for (const QString &file : codeFiles(sources)) {
        if (!sources.roomOf.contains(file))
            complaints.append(file);
    }
    return complaints;
}

QStringList wrongArrows(const Sources &sources)
{
    static const QRegularExpression include(u"^\\s*#\\s*include\\s*[\"<]([^\">]+)[\">]"_qs,
                                            QRegularExpression::MultilineOption);
    QStringList complaints;
    for (const QString &file : codeFiles(sources)) {
        const Room from = sources.roomOf.value(file);
        const QString text = textOf(sources.folder + u'/' + file);
        for (auto it = include.globalMatch(text); it.hasNext();) {
            const QString included = it.next().captured(1);
            const auto to = sources.roomOf.constFind(included);
            const bool wrong = to == sources.roomOf.cend() ? isLogic(from) && isOfAWindow(included)
                                                           : !isArrow(from, *to, included);
            if (wrong)
                complaints.append(file + u" includes "_qs + included);
        }
    }
    return complaints;
}

bool isAllowed(const QString &file, const QString &found)
{
    return std::any_of(exceptions.cbegin(), exceptions.cend(), [&](const Exception &exception) {
        return exception.file == file && found.contains(exception.word);
    });
}

QStringList uses(const Sources &sources, const QRegularExpression &what, bool inLogicOnly)
{
    QStringList complaints;
    for (const QString &file : codeFiles(sources)) {
        if (inLogicOnly && !isLogic(sources.roomOf.value(file)))
            continue;
        const QString code = codeOnly(textOf(sources.folder + u'/' + file));
        for (auto it = what.globalMatch(code); it.hasNext();) {
            const QString found = it.next().captured();
            if (!isAllowed(file, found))
                complaints.append(file + u" uses "_qs + found);
        }
    }
    return complaints;
}

QStringList nestedLoops(const Sources &sources)
{
    static const QRegularExpression what(
        u"\\bQEventLoop\\b|\\bprocessEvents\\b|\\bwaitFor\\w+|(?:\\.|->|::)exec\\s*\\(|"
        "\\bQFileDialog::get\\w+|\\bQInputDialog::get\\w+|"
        "\\bQMessageBox::(?:about|critical|information|question|warning)\\b"_qs);
    return uses(sources, what, false);
}

QStringList printing(const Sources &sources)
{
    static const QRegularExpression what(
        u"\\bstd::c(?:out|err|log)\\b|\\b(?:f|v|vf)?printf\\b|\\bf?puts\\b|"
        "\\bq(?:Debug|Info|Warning|Critical|Fatal)\\b|\\b(?:std::|_)?exit\\s*\\(|\\babort\\s*\\("_qs);
    return uses(sources, what, true);
}

QStringList tooLong(const Sources &sources)
{
    QStringList complaints;
    for (const QString &file : codeFiles(sources)) {
        const qsizetype lines = textOf(sources.folder + u'/' + file).count(u'\n');
        if (lines > longestFile)
            complaints.append(u"%1 has %2 lines"_qs.arg(file).arg(lines));
    }
    return complaints;
}

QStringList withoutLicence(const QString &folder)
{
    QStringList complaints;
    for (const QString &file :
         filesBelow(folder, {u"*.h"_qs, u"*.cpp"_qs, u"*.cmake"_qs, u"CMakeLists.txt"_qs})) {
        const QString firstLine = textOf(folder + u'/' + file).section(u'\n', 0, 0);
        if (!firstLine.endsWith(u" SPDX-License-Identifier: GPL-3.0-or-later"))
            complaints.append(file);
    }
    return complaints;
}

/// A source folder with a file in it that breaks a rule, for the check to find.
class BadSources {
public:
    BadSources(const QString &file, const QByteArray &text)
    {
        add(u"model"_qs, {u"plinthar_model"_qs}, {u"Store"_qs});
        add(u"ui"_qs, {u"plinthar_ui"_qs}, {u"Icons"_qs});
        add(u"app"_qs, {u"plinthar_app"_qs}, {u"Main"_qs});
        for (const QString &feature : {u"review"_qs, u"live"_qs})
            add(feature, {u"plinthar_"_qs + feature, u"plinthar_%1_screen"_qs.arg(feature)},
                {u"Parser"_qs, u"View"_qs});
        writeFile(path(u"review/RunProcess.h"_qs), "");
        writeFile(path(file), text);
    }

    Sources sources() const
    {
        Sources sources = sourcesIn(m_folder.path());
        sources.roomOf.insert(u"review/RunProcess.h"_qs, {u"review"_qs, Layer::Logic});
        return sources;
    }
    QString folder() const { return m_folder.path(); }

private:
    QString path(const QString &inside) const { return m_folder.filePath(inside); }

    /// A folder with libraries of one file each.
    void add(const QString &folder, const QStringList &libraries, const QStringList &files) const
    {
        QByteArray list = "# SPDX-License-Identifier: GPL-3.0-or-later\n";
        for (qsizetype i = 0; i < libraries.size(); ++i) {
            list += u"plinthar_library(%1\n  SOURCES\n    %2.cpp %2.h\n  LINK Qt6::Core)\n"_qs
                        .arg(libraries[i], files[i])
                        .toUtf8();
            for (const QString &ending : {u".cpp"_qs, u".h"_qs})
                writeFile(path(folder + u'/' + files[i] + ending),
                          "// SPDX-License-Identifier: GPL-3.0-or-later\n");
        }
        writeFile(path(folder + u"/CMakeLists.txt"_qs), list);
    }

    QTemporaryDir m_folder;
};

} // namespace

/// As text, so that a failure names every offender.
#define VERIFY_NONE(complaints)                                                                    \
    do {                                                                                           \
        const QStringList all = complaints;                                                        \
        QVERIFY2(all.isEmpty(), qPrintable(u'\n' + all.join(u'\n')));                              \
    } while (false)

class ArchitectureTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(codeFiles(m_sources).size() > 50);
        QVERIFY(m_sources.roomOf.size() > 50);
    }

    void everyFileBelongsToALibrary() { VERIFY_NONE(filesInNoLibrary(m_sources)); }
    void everyIncludeFollowsTheArrows() { VERIFY_NONE(wrongArrows(m_sources)); }
    void nothingRunsALoopInsideTheLoop() { VERIFY_NONE(nestedLoops(m_sources)); }
    void logicDoesNotPrintOrExit() { VERIFY_NONE(printing(m_sources)); }
    void noFileIsTooLong() { VERIFY_NONE(tooLong(m_sources)); }

    void everyFileNamesItsLicence()
    {
        for (const char *folder : {"src", "tests", "bench", "fuzz", "cmake", "demo", "packaging"})
            VERIFY_NONE(withoutLicence(m_project + u'/' + QString::fromLatin1(folder)));
    }

    // The checks themselves

    void findsWrongArrows_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QByteArray>("include");
        QTest::addColumn<bool>("isWrong");
        const auto row = [](const char *file, const char *include, bool isWrong) {
            QTest::addRow("%s includes %s", file, include)
                << QString::fromLatin1(file) << QByteArray(include) << isWrong;
        };
        row("model/Store.cpp", "\"model/Store.h\"", false);
        row("model/Store.cpp", "<QList>", false);
        row("model/Store.cpp", "\"ui/Icons.h\"", true);
        row("model/Store.cpp", "\"review/Parser.h\"", true);
        row("model/Store.cpp", "<QColor>", true);
        row("model/Store.h", "<QtWidgets/QWidget>", true);
        row("ui/Icons.cpp", "\"model/Store.h\"", false);
        row("ui/Icons.cpp", "<QWidget>", false);
        row("ui/Icons.cpp", "\"review/Parser.h\"", true);
        row("ui/Icons.cpp", "\"app/Main.h\"", true);
        row("review/Parser.cpp", "\"model/Store.h\"", false);
        row("review/Parser.cpp", "\"review/Parser.h\"", false);
        row("review/Parser.cpp", "\"review/View.h\"", true);
        row("review/Parser.cpp", "\"ui/Icons.h\"", true);
        row("review/Parser.cpp", "<QWidget>", true);
        row("review/Parser.cpp", "\"live/Parser.h\"", true);
        row("review/View.cpp", "\"review/Parser.h\"", false);
        row("review/View.cpp", "\"ui/Icons.h\"", false);
        row("review/View.cpp", "\"model/Store.h\"", false);
        row("review/View.cpp", "\"live/View.h\"", true);
        row("review/View.cpp", "\"live/Parser.h\"", true);
        row("review/View.cpp", "\"app/Main.h\"", true);
        row("live/Parser.cpp", "\"review/RunProcess.h\"", false);
        row("live/Parser.cpp", "\"review/Parser.h\"", true);
        row("app/Main.cpp", "\"live/View.h\"", false);
        row("app/Main.cpp", "\"model/Store.h\"", false);
    }

    void findsWrongArrows()
    {
        QFETCH(QString, file);
        QFETCH(QByteArray, include);
        QFETCH(bool, isWrong);
        const BadSources bad(file, "#include " + include + "\n");
        QCOMPARE(wrongArrows(bad.sources()).size(), isWrong ? 1 : 0);
    }

    void findsForbiddenWords_data()
    {
        QTest::addColumn<QByteArray>("code");
        QTest::addColumn<int>("loops");
        QTest::addColumn<int>("prints");
        const auto row = [](const char *code, int loops, int prints) {
            QTest::newRow(code) << QByteArray(code) << loops << prints;
        };
        row("QEventLoop loop;", 1, 0);
        row("qApp->processEvents();", 1, 0);
        row("process.waitForFinished();", 1, 0);
        row("dialog.exec();", 1, 0);
        row("menu->exec(place);", 1, 0);
        row("QDialog::exec();", 1, 0);
        row("QMessageBox::question(this, a, b);", 1, 0);
        row("QFileDialog::getExistingDirectory(this);", 1, 0);
        row("std::cout << 1;", 0, 1);
        row("std::printf(\"x\");", 0, 1);
        row("qDebug() << 1;", 0, 1);
        row("qWarning(\"x\");", 0, 1);
        row("std::exit(1);", 0, 1);
        row("// QEventLoop and printf are not used", 0, 0);
        row("/* menu->exec() qDebug() */", 0, 0);
        row("const char *text = \"printf(1) \\\" dialog.exec()\";", 0, 0);
        row("execute(); exitCode(); fingerprintf; input.s", 0, 0);
    }

    void findsForbiddenWords()
    {
        QFETCH(QByteArray, code);
        QFETCH(int, loops);
        QFETCH(int, prints);
        const BadSources inLogic(u"review/Parser.cpp"_qs, code);
        QCOMPARE(nestedLoops(inLogic.sources()).size(), loops);
        QCOMPARE(printing(inLogic.sources()).size(), prints);
        const BadSources inScreen(u"review/View.cpp"_qs, code);
        QCOMPARE(nestedLoops(inScreen.sources()).size(), loops);
        QCOMPARE(printing(inScreen.sources()).size(), 0);
    }

    void findsTheRest()
    {
        const BadSources stray(u"review/Stray.cpp"_qs, "int i;\n");
        QCOMPARE(filesInNoLibrary(stray.sources()), (QStringList{u"review/Stray.cpp"_qs}));
        QVERIFY(withoutLicence(stray.folder()).contains(u"review/Stray.cpp"_qs));
        const BadSources endless(u"ui/Icons.cpp"_qs, QByteArray("\n").repeated(451));
        QCOMPARE(tooLong(endless.sources()), QStringList{u"ui/Icons.cpp has 451 lines"_qs});
        const BadSources fine(u"ui/Icons.cpp"_qs, QByteArray("\n").repeated(450));
        QVERIFY(tooLong(fine.sources()).isEmpty());
    }

private:
    const QString m_project = QStringLiteral(PLINTHAR_PROJECT_FOLDER);
    const Sources m_sources = sourcesIn(m_project + u"/src"_qs);
};

PLINTHAR_TEST_MAIN(ArchitectureTest)
#include "ArchitectureTest.moc"
