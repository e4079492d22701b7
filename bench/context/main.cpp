// SPDX-License-Identifier: GPL-3.0-or-later

// What a key costs the interface thread in the editor of the Context tab, in a text of 5 MB. In the
// same round the same keys go to an editor that does nothing else, which is what Qt itself takes,
// and to one that counts all words anew for every key.

#include "context/ContextEditor.h"
#include "context/ContextView.h"
#include "support/BenchOptions.h"
#include "support/Figures.h"
#include "support/ScratchHome.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QKeyEvent>
#include <QListView>

#include <algorithm>
#include <cstdio>
#include <ctime>

namespace {

constexpr double mostMilliseconds = 4;
constexpr int keysPerPlace = 200;

/// Lines as instructions have them: of different lengths, the longest of some 200 characters.
QString instructions(qsizetype size)
{
    QString text;
    text.reserve(size + 300);
    for (int line = 0; text.size() < size; ++line) {
        text += line % 20 == 0 ? QStringLiteral("\n## Section %1\n\n").arg(line)
                               : QStringLiteral("- Rule %1:").arg(line);
        for (int word = (line * 7) % 30; word > 0; --word)
            text += QStringLiteral(" word");
        text += u'\n';
    }
    return text.first(size);
}

/// The milliseconds of the interface thread so far. Its own time and not the clock's: it waits for
/// nothing here, and what other programs take away would be the slowest keys.
double threadMilliseconds()
{
    timespec now = {};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) * 1e3 + double(now.tv_nsec) / 1e6;
}

/// The milliseconds that each key took: until the editor has taken it, and until it is painted.
struct KeyTimes {
    Series taken;
    Series painted;
};

void press(QWidget *editor, Qt::Key key, const QString &text, KeyTimes &times)
{
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier, text);
    const double begin = threadMilliseconds();
    QApplication::sendEvent(editor, &event);
    times.taken.push_back(threadMilliseconds() - begin);
    QApplication::processEvents();
    times.painted.push_back(threadMilliseconds() - begin);
}

/// Types words, lines and corrections at the beginning, in the middle and at the end.
void typeEverywhere(QPlainTextEdit *editor, KeyTimes &times)
{
    for (const int place : {0, 1, 2}) {
        QTextCursor cursor = editor->textCursor();
        cursor.setPosition(int(qint64(editor->document()->characterCount() - 1) * place / 2));
        editor->setTextCursor(cursor);
        QApplication::processEvents();
        for (int i = 0; i < keysPerPlace; ++i) {
            if (i % 40 == 39)
                press(editor, Qt::Key_Return, QStringLiteral("\r"), times);
            else if (i % 10 == 8)
                press(editor, Qt::Key_Backspace, QStringLiteral("\b"), times);
            else if (i % 6 == 5)
                press(editor, Qt::Key_Space, QStringLiteral(" "), times);
            else
                press(editor, Qt::Key_A, QStringLiteral("a"), times);
        }
    }
}

double share(Series values, double part)
{
    std::sort(values.begin(), values.end());
    return values[size_t(double(values.size() - 1) * part)];
}

Figure figure(const QString &what, const Series &keys, double part,
              std::optional<double> target = std::nullopt)
{
    // Of a share of all keys there is only one value, not a better and a worse round.
    const double value = share(keys, part);
    return {.what = what,
            .comparedWith = {},
            .unit = QStringLiteral("ms"),
            .best = value,
            .usual = value,
            .target = target};
}

void addFigures(Report &report, const QString &name, const KeyTimes &times,
                std::optional<double> target = std::nullopt)
{
    report.add(figure(name + QStringLiteral(", median key"), times.taken, 0.5));
    report.add(figure(name + QStringLiteral(", slowest of 100 keys"), times.taken, 0.99, target));
    report.add(figure(name + QStringLiteral(", slowest key"), times.taken, 1, target));
    report.add(figure(name + QStringLiteral(", median key, painted"), times.painted, 0.5));
    report.add(figure(name + QStringLiteral(", slowest key, painted"), times.painted, 1));
}

/// An editor with the same text and look, with nothing behind it.
class PlainEditor : public QPlainTextEdit {
public:
    PlainEditor(const QString &text, const QFont &font)
    {
        setFont(font);
        resize(740, 560);
        setPlainText(text);
        show();
    }
};

/// The times of the three editors, which got the same keys in every round.
struct Times {
    KeyTimes ours;
    KeyTimes bare;
    KeyTimes recounting;
};

/// Nothing when the editors do not agree at the end: one that is wrong is not worth timing.
std::optional<Times> runRounds(ContextEditor *editor, const QString &text, int rounds)
{
    PlainEditor plain(text, editor->font());
    PlainEditor counting(text, editor->font());
    qint64 words = 0;
    QObject::connect(&counting, &QPlainTextEdit::textChanged, &counting,
                     [&] { words = countWords(counting.document()->toRawText()); });
    Times times;
    for (int round = 0; round < rounds; ++round) {
        typeEverywhere(editor, times.ours);
        typeEverywhere(&plain, times.bare);
        typeEverywhere(&counting, times.recounting);
    }
    if (editor->edited().words() != words || editor->edited().text() != counting.toPlainText()) {
        std::fputs("the editors do not agree\n", stderr);
        return std::nullopt;
    }
    return times;
}

/// Makes a project with that text and waits until the screen shows it.
ContextEditor *openText(ContextView &view, const QString &project, const QString &text)
{
    QFile file(project + QStringLiteral("/CLAUDE.md"));
    if (!QDir().mkpath(project) || !file.open(QIODevice::WriteOnly) ||
        file.write(text.toUtf8()) < 0)
        return nullptr;
    file.close();
    view.resize(1000, 600);
    view.show();
    auto *editor = view.findChild<ContextEditor *>();
    while (editor->edited().size() != text.size())
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    return editor;
}

} // namespace

int main(int argc, char **argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const ScratchHome home;
    home.enter();
    QApplication application(argc, argv);
    BenchOptions options(QStringLiteral("Measures what a key costs in the editor."));
    options.addNumber(QStringLiteral("megabytes"), QStringLiteral("Size of the text."), 5);
    options.addNumber(QStringLiteral("rounds"), QStringLiteral("Rounds."), 5);
    options.process(application);

    const QString text =
        instructions(int(options.number(QStringLiteral("megabytes"))) * qsizetype(1'000'000));
    const QString project = QDir::homePath() + QStringLiteral("/project");
    ContextView view(Project{project, std::nullopt, true});
    ContextEditor *editor = openText(view, project, text);
    if (!editor)
        return 1;
    const auto times = runRounds(editor, text, int(options.number(QStringLiteral("rounds"))));
    if (!times)
        return 1;
    Report report(QStringLiteral("Keys in a text of %1 MB with %2 lines and %3 words")
                      .arg(text.size() / 1'000'000)
                      .arg(editor->document()->blockCount())
                      .arg(editor->edited().words()));
    addFigures(report, QStringLiteral("Context tab"), times->ours, mostMilliseconds);
    addFigures(report, QStringLiteral("bare editor"), times->bare);
    addFigures(report, QStringLiteral("counting all"), times->recounting);
    return options.finish(report);
}
