// SPDX-License-Identifier: GPL-3.0-or-later

// A plain program instead of one of Google Benchmark's: what counts here is a ratio of two
// measurements in the same round, which that library does not compute, and the memory of a process
// that does nothing but one reload.

#include "model/SessionLoader.h"
#include "reload/OtherReaders.h"
#include "support/BenchOptions.h"
#include "support/CorpusOptions.h"
#include "support/Figures.h"
#include "support/Memory.h"
#include "support/ScratchHome.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QProcess>
#include <QThread>

#include <cstdio>

namespace {

using OtherReaders::Sums;

constexpr double mostTimesQtJson = 0.1;
constexpr double mostMegabytes = 30;

/// What one process needed for one piece of work, in bytes.
struct MemoryUse {
    qint64 peak = 0;
    qint64 results = 0;
};

/// The child's side: does one reload, or nothing, and says what it took.
int reportMemory(const QString &projects, bool reload)
{
    SessionMap sessions;
    if (reload)
        sessions = SessionLoader::load({}, projects).sessions;
    const qint64 peak = peakMemory();
    std::printf("%lld %lld\n", static_cast<long long>(peak),
                static_cast<long long>(sizeOf(sessions)));
    return 0;
}

std::optional<MemoryUse> memoryOf(const QString &work, const QString &projects)
{
    QProcess child;
    child.start(QCoreApplication::applicationFilePath(), {work, projects});
    if (!child.waitForFinished(-1) || child.exitCode() != 0)
        return std::nullopt;
    const QList<QByteArray> numbers = child.readAllStandardOutput().trimmed().split(' ');
    if (numbers.size() != 2)
        return std::nullopt;
    return MemoryUse{numbers[0].toLongLong(), numbers[1].toLongLong()};
}

/// One reader's times, round by round, in seconds.
struct Times {
    Series wall;
    Series cpu;

    void add(const Elapsed &elapsed)
    {
        wall.push_back(elapsed.wall);
        cpu.push_back(elapsed.cpu);
    }
};

struct Readers {
    Times plain;
    Times reload;
    Times qtJson;
};

bool check(const char *reader, const Sums &found, const Sums &wanted)
{
    if (found == wanted)
        return true;
    std::fprintf(stderr, "%s found %llu sessions, %llu turns, %llu records and %llu tokens\n",
                 reader, static_cast<unsigned long long>(found.sessions),
                 static_cast<unsigned long long>(found.turns),
                 static_cast<unsigned long long>(found.records),
                 static_cast<unsigned long long>(found.tokens));
    return false;
}

/// Runs the three readers in turn. Nothing when one of them found something else than what the
/// logs were written to hold: a reader that is wrong is not worth timing.
std::optional<Readers> runRounds(const QString &projects, const corpus::Truth &truth, int rounds,
                                 int qtJsonRounds)
{
    const Sums wanted{truth.sessions, truth.turns, truth.records, truth.tokens};
    const auto logs = OtherReaders::logsBelow(projects.toStdString());
    (void)OtherReaders::readPlainly(logs); // warms the cache
    Readers times;
    for (int round = 0; round < rounds; ++round) {
        std::uint64_t bytes = 0;
        times.plain.add(elapsed([&] { bytes = OtherReaders::readPlainly(logs); }));
        LoadedProjects loaded;
        times.reload.add(elapsed([&] { loaded = SessionLoader::load({}, projects); }));
        if (bytes != truth.bytes ||
            !check("the reload", OtherReaders::sumsOf(loaded.sessions), wanted))
            return std::nullopt;
        if (round >= qtJsonRounds)
            continue;
        Sums found;
        times.qtJson.add(elapsed([&] { found = OtherReaders::readWithQtJson(logs); }));
        if (!check("QJsonDocument", found, wanted))
            return std::nullopt;
    }
    return times;
}

void addSpeed(Report &report, const QString &what, const Times &times, std::uint64_t bytes)
{
    const auto perByte = [bytes](double seconds) {
        return seconds * 1e9 / static_cast<double>(bytes);
    };
    const double best = perByte(least(times.wall));
    report.add({.what = what,
                .comparedWith = QStringLiteral("(%1 GB/s at best)").arg(1 / best, 0, 'f', 2),
                .unit = QStringLiteral("ns/B"),
                .best = best,
                .usual = perByte(median(times.wall))});
}

void addTimes(Report &report, const Readers &times, std::uint64_t bytes,
              std::optional<double> mostTimesPlainRead)
{
    const QString reload = QStringLiteral("reload");
    const QString plain = QStringLiteral("plain read of the same files");
    const QString qtJson = QStringLiteral("QJsonDocument per line");
    const QString cpuTime = QStringLiteral("reload, CPU time");
    addSpeed(report, plain, times.plain, bytes);
    addSpeed(report, reload, times.reload, bytes);
    if (!times.qtJson.wall.empty())
        addSpeed(report, qtJson, times.qtJson, bytes);
    report.add(ratio(reload, times.reload.wall, plain, times.plain.wall, mostTimesPlainRead));
    report.add(ratio(cpuTime, times.reload.cpu, plain, times.plain.cpu));
    if (times.qtJson.wall.empty())
        return;
    report.add(ratio(reload, times.reload.wall, qtJson, times.qtJson.wall, mostTimesQtJson));
    report.add(ratio(cpuTime, times.reload.cpu, qtJson, times.qtJson.cpu));
}

/// Measures a few processes, since how much two threads overlap differs from one to the next.
bool addMemory(Report &report, const QString &projects)
{
    constexpr int processes = 5;
    constexpr double megabyte = 1e6;
    Series above;
    MemoryUse last;
    for (int i = 0; i < processes; ++i) {
        const auto idle = memoryOf(QStringLiteral("--idle"), projects);
        const auto reload = memoryOf(QStringLiteral("--reload"), projects);
        if (!idle || !reload)
            return false;
        above.push_back(static_cast<double>(reload->peak - idle->peak - reload->results) /
                        megabyte);
        last = *reload;
    }
    report.add({.what = QStringLiteral("peak memory without the results"),
                .comparedWith = QStringLiteral("minus an idle process"),
                .unit = QStringLiteral("MB"),
                .best = least(above),
                .usual = median(above),
                .target = mostMegabytes});
    report.addDetail(QStringLiteral("peakBytes"), last.peak);
    report.addDetail(QStringLiteral("resultBytes"), last.results);
    return true;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    if (arguments.size() == 3 && arguments[1] == QStringLiteral("--reload"))
        return reportMemory(arguments[2], true);
    if (arguments.size() == 3 && arguments[1] == QStringLiteral("--idle"))
        return reportMemory(arguments[2], false);

    BenchOptions options(QStringLiteral("Measures how fast session logs are read."));

    addCorpusOptions(options);
    options.addNumber(QStringLiteral("rounds"), QStringLiteral("Rounds."), 9);
    options.addNumber(QStringLiteral("qt-json-rounds"),
                      QStringLiteral("Of these, with QJsonDocument."), 3);
    options.addNumber(
        QStringLiteral("target"),
        QStringLiteral("How many times a plain read the reload may take; 0 for no target."), 5);
    options.process(application);

    const ScratchHome home;
    home.enter();
    const corpus::Shape shape = corpusShape(options);
    const corpus::Truth truth = corpus::write(home.claudeProjects().toStdString(), shape);
    const auto times =
        runRounds(home.claudeProjects(), truth, int(options.number(QStringLiteral("rounds"))),
                  int(options.number(QStringLiteral("qt-json-rounds"))));
    Report report(QStringLiteral("Reload of %1 MB in %2 logs on %3 threads, lines of up to %4 "
                                 "bytes, %5 % of the text CJK")
                      .arg(truth.bytes / 1'000'000)
                      .arg(truth.sessions)
                      .arg(QThread::idealThreadCount())
                      .arg(shape.longestLine)
                      .arg(shape.cjkPercent));
    report.addDetail(QStringLiteral("corpus"), toJson(shape));
    if (!times)
        return 1;
    const double target = double(options.number(QStringLiteral("target")));
    addTimes(report, *times, truth.bytes, target > 0 ? std::optional(target) : std::nullopt);
    if (!addMemory(report, home.claudeProjects()))
        return 1;
    return options.finish(report);
}
