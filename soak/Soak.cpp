// SPDX-License-Identifier: GPL-3.0-or-later

// Uses the real window at random while a second process gets in its way, checks after every step
// that only what was meant has changed, and at the end that nothing was kept.

#include "Finding.h"
#include "Footprint.h"
#include "NeighbourProcess.h"
#include "Patience.h"
#include "User.h"
#include "app/Environment.h"
#include "model/Background.h"
#include "support/WindowTestMain.h"

#include <QCommandLineParser>
#include <QElapsedTimer>
#include <QPixmapCache>

#include <csignal>
#include <cstdio>
#include <cstring>
#include <optional>
#include <unistd.h>

namespace {

constexpr int stepsBetweenRests = 100;
constexpr unsigned longestStep = 300; // seconds
/// What the last caches that fill themselves may still make of the memory in use.
constexpr qint64 memoryTolerance = 300'000;

/// Where the soak is, for what ends it without a word.
char position[200] = "at the start";

void tellPosition(int signal)
{
    const char *what = signal == SIGALRM ? "\nFOUND: a step does not end, " : "\nFOUND: a crash, ";
    (void)!::write(STDERR_FILENO, what, std::strlen(what));
    (void)!::write(STDERR_FILENO, position, std::strlen(position));
    (void)!::write(STDERR_FILENO, "\n", 1);
    ::_exit(1);
}

void catchSignals()
{
    for (const int signal : {SIGALRM, SIGSEGV, SIGABRT, SIGBUS, SIGFPE, SIGILL})
        std::signal(signal, tellPosition);
}

struct Options {
    double minutes = 1;
    qint64 steps = -1; ///< at most; any number when negative
    quint64 seed = 1;
    bool tells = false;
};

Options options(const QCoreApplication &application)
{
    QCommandLineParser parser;
    const QString number = QStringLiteral("number");
    parser.setApplicationDescription(
        QStringLiteral("Uses the window at random and looks for what goes wrong."));
    parser.addHelpOption();
    parser.addOptions(
        {{QStringLiteral("minutes"), QStringLiteral("How long."), number, QStringLiteral("1")},
         {QStringLiteral("steps"), QStringLiteral("At most so many steps."), number,
          QStringLiteral("-1")},
         {QStringLiteral("seed"), QStringLiteral("What the steps follow from."), number,
          QStringLiteral("1")},
         {QStringLiteral("verbose"), QStringLiteral("Tell every step.")}});
    parser.process(application);
    return {.minutes = parser.value(QStringLiteral("minutes")).toDouble(),
            .steps = parser.value(QStringLiteral("steps")).toLongLong(),
            .seed = parser.value(QStringLiteral("seed")).toULongLong(),
            .tells = parser.isSet(QStringLiteral("verbose"))};
}

class Soak {
public:
    explicit Soak(const Options &options)
        : m_options(options)
        , m_neighbour(m_scratch, options.seed)
        , m_user(m_scratch, options.seed)
    {
    }

    /// Throws a Finding.
    void run()
    {
        m_time.start();
        rest();
        while (!isOver()) {
            step();
            if (m_step % stepsBetweenRests != 0)
                continue;
            rest();
            if (!m_baseline && isHalfOver())
                m_baseline = m_now;
        }
        rest();
        compare();
        m_user.close();
        check();
        std::printf("%lld steps without a finding.\n", static_cast<long long>(m_step));
    }

private:
    double minutes() const { return double(m_time.elapsed()) / 60'000; }
    bool isOver() const { return minutes() >= m_options.minutes || m_step == m_options.steps; }
    bool isHalfOver() const
    {
        const bool bySteps = m_options.steps > 0 && m_step >= m_options.steps / 2;
        return bySteps || minutes() >= m_options.minutes / 2;
    }

    void step()
    {
        ++m_step;
        ::alarm(longestStep);
        m_user.step(m_step, [this](const QString &what) {
            setPosition(what);
            if (m_options.tells)
                std::printf("%s\n", position);
        });
        check();
    }

    void rest()
    {
        ::alarm(longestStep);
        setPosition(QStringLiteral("then a rest"));
        m_neighbour.rest();
        m_user.rest();
        check();
        m_now = Footprint::now();
        std::printf("%7.1f s, step %5lld: %s\n", double(m_time.elapsed()) / 1000,
                    static_cast<long long>(m_step), qPrintable(m_now.text()));
        std::fflush(stdout);
        m_neighbour.goOn();
    }

    void setPosition(const QString &what)
    {
        std::snprintf(position, sizeof position, "seed %llu, step %lld: %s",
                      static_cast<unsigned long long>(m_options.seed),
                      static_cast<long long>(m_step), qPrintable(what));
    }

    void check()
    {
        m_scratch.check();
        m_neighbour.check();
    }

    void compare() const
    {
        if (!m_baseline) {
            std::printf("Too short to say whether memory, descriptors and threads come back.\n");
            return;
        }
        const QStringList growth = m_now.growthSince(*m_baseline, memoryTolerance);
        require(growth.isEmpty(),
                QStringLiteral("something is kept:\n  ") + growth.join(QStringLiteral("\n  ")));
    }

    const Options m_options;
    Scratch m_scratch;
    NeighbourProcess m_neighbour;
    User m_user;
    QElapsedTimer m_time;
    qint64 m_step = 0;
    /// In the middle, when caches and glyphs have been filled.
    std::optional<Footprint> m_baseline;
    Footprint m_now;
};

} // namespace

int main(int argc, char **argv)
{
    const PrivateHome home; // for what is looked for before there is the scratch one
    prepareEnvironment();
    qputenv("LC_ALL", "C.UTF-8");
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    const WindowTestApplication application(argc, argv);
    QGuiApplication::setQuitOnLastWindowClosed(false);
    for (QThreadPool *threads : {&Background::pool(), &Background::savingPool()})
        threads->setExpiryTimeout(threadPatience);
    // Qt never forgets the name of a pixmap that it has kept, which looks like a leak of ours.
    QPixmapCache::setCacheLimit(0);
    const Options chosen = options(application);
    catchSignals();
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
    std::optional<Soak> soak;
    try {
        soak.emplace(chosen);
        soak->run();
        return 0;
    } catch (const Finding &finding) {
        std::fflush(stdout);
        std::fprintf(stderr, "\nFOUND: %s\n%s\n", position, qPrintable(finding.what));
        ::_exit(1); // and leaves everything where it is
    }
}
