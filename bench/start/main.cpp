// SPDX-License-Identifier: GPL-3.0-or-later

// From the start of the process to the end of the first painting: the program beside a minimal
// window, in turn.

#include "corpus/Corpus.h"
#include "support/BenchOptions.h"
#include "support/Figures.h"
#include "support/ScratchHome.h"

#include <QCoreApplication>
#include <QProcess>

#include <array>
#include <cstdio>
#include <ctime>
#include <memory>

namespace {

constexpr double mostTimesMinimal = 1.3;
constexpr std::array<std::uint64_t, 3> logCounts{0, 100, 20'000};
constexpr std::uint64_t bytesPerLog = 5000;

qint64 nanoseconds()
{
    timespec time = {};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return qint64(time.tv_sec) * 1'000'000'000 + time.tv_nsec;
}

/// Seconds from just before a program is started to the painting it waits for; nothing when it
/// fails.
std::optional<double> startOf(const QString &program, const QStringList &arguments,
                              const ScratchHome &home, const QString &platform)
{
    QProcess child;
    QProcessEnvironment environment = home.environment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), platform);
    child.setProcessEnvironment(environment);
    child.setProgram(QCoreApplication::applicationDirPath() + u'/' + program);
    child.setArguments(arguments);
    const qint64 begin = nanoseconds();
    child.start();
    if (!child.waitForFinished(60'000) || child.exitCode() != 0)
        return std::nullopt;
    bool ok = false;
    const qint64 end = child.readAllStandardOutput().trimmed().toLongLong(&ok);
    return ok ? std::optional(static_cast<double>(end - begin) * 1e-9) : std::nullopt;
}

/// The starts with one number of logs on one platform.
struct Setting {
    QString platform;
    std::uint64_t logs = 0;
    std::shared_ptr<ScratchHome> home;
    Series real;
    Series filled;
    Series minimal;
};

std::vector<Setting> makeSettings()
{
    QStringList platforms{QStringLiteral("offscreen")};
    if (qEnvironmentVariableIsSet("DISPLAY"))
        platforms.append(QStringLiteral("xcb"));
    std::vector<Setting> settings;
    for (const std::uint64_t logs : logCounts) {
        const auto home = std::make_shared<ScratchHome>();
        if (logs > 0)
            corpus::write(home->claudeProjects().toStdString(),
                          {.bytes = logs * bytesPerLog, .files = logs});
        for (const QString &platform : platforms)
            settings.push_back({platform, logs, home, {}, {}, {}});
    }
    return settings;
}

bool runRound(std::vector<Setting> &settings)
{
    for (Setting &setting : settings) {
        const auto start = [&setting](const char *program, const QStringList &arguments = {}) {
            return startOf(QString::fromLatin1(program), arguments, *setting.home,
                           setting.platform);
        };
        const auto real = start("plinthar_bench_real_window");
        const auto filled = start("plinthar_bench_real_window", {QStringLiteral("filled")});
        const auto minimal = start("plinthar_bench_minimal_window");
        if (!real || !filled || !minimal) {
            std::fprintf(stderr, "a window did not paint on %s\n", qPrintable(setting.platform));
            return false;
        }
        setting.real.push_back(*real);
        setting.filled.push_back(*filled);
        setting.minimal.push_back(*minimal);
    }
    return true;
}

void addFigures(Report &report, const Setting &setting)
{
    const QString where = QStringLiteral("%1, %2 logs").arg(setting.platform).arg(setting.logs);
    const auto add = [&](const QString &what, const Series &seconds) {
        report.add({.what = what + where,
                    .comparedWith = {},
                    .unit = QStringLiteral("ms"),
                    .best = least(seconds) * 1000,
                    .usual = median(seconds) * 1000});
    };
    add(QStringLiteral("first paint, "), setting.real);
    add(QStringLiteral("sidebar filled, "), setting.filled);
    add(QStringLiteral("minimal window, "), setting.minimal);
    report.add(ratio(QStringLiteral("first paint, ") + where, setting.real,
                     QStringLiteral("minimal window"), setting.minimal, mostTimesMinimal));
    report.add(ratio(QStringLiteral("sidebar filled, ") + where, setting.filled,
                     QStringLiteral("minimal window"), setting.minimal));
}

/// Many logs against none, for the program.
void addIndependence(Report &report, const std::vector<Setting> &settings)
{
    for (const Setting &setting : settings) {
        for (const Setting &none : settings) {
            if (setting.logs == logCounts.back() && none.logs == 0 &&
                setting.platform == none.platform)
                report.add(ratio(QStringLiteral("first paint, %1, %2 logs")
                                     .arg(setting.platform)
                                     .arg(setting.logs),
                                 setting.real, QStringLiteral("the same without logs"), none.real));
        }
    }
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    BenchOptions options(QStringLiteral("Measures the time to the first painting."));
    options.addNumber(QStringLiteral("rounds"), QStringLiteral("Rounds."), 20);
    options.process(application);

    std::vector<Setting> settings = makeSettings();
    const int rounds = int(options.number(QStringLiteral("rounds")));
    for (int round = 0; round < rounds; ++round) {
        if (!runRound(settings))
            return 1;
    }
    Report report(QStringLiteral("Start to first paint, %1 rounds").arg(rounds));
    for (const Setting &setting : settings)
        addFigures(report, setting);
    addIndependence(report, settings);
    return options.finish(report);
}
