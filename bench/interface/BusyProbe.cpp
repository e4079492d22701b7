// SPDX-License-Identifier: GPL-3.0-or-later
#include "interface/BusyProbe.h"

#include <QEventLoop>
#include <QTimer>

#include <algorithm>
#include <csignal>
#include <ctime>
#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>

namespace {

double now(clockid_t clock)
{
    timespec time = {};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

struct Recorder {
    bool recording = false;
    BusyProbe::Stretch began;
    std::vector<BusyProbe::Stretch> stretches;

    void begin() { began = {now(CLOCK_MONOTONIC), now(CLOCK_THREAD_CPUTIME_ID)}; }
    void end()
    {
        stretches.push_back(
            {now(CLOCK_MONOTONIC) - began.wall, now(CLOCK_THREAD_CPUTIME_ID) - began.cpu});
    }
};

thread_local Recorder recorder;

} // namespace

// The C library's function, put before it by being in the program itself.
extern "C" int ppoll(pollfd *descriptors, nfds_t count, const timespec *timeout,
                     const sigset_t *mask)
{
    if (recorder.recording)
        recorder.end();
    timespec left = timeout ? *timeout : timespec(); // the kernel writes to it
    const long result = syscall(SYS_ppoll, descriptors, count, timeout ? &left : nullptr, mask,
                                static_cast<size_t>(_NSIG / 8));
    if (recorder.recording)
        recorder.begin();
    return static_cast<int>(result);
}

namespace BusyProbe {

void prepare()
{
    qputenv("QT_NO_GLIB", "1");
}

void start()
{
    recorder.stretches.clear();
    recorder.recording = true;
    recorder.begin();
}

std::vector<Stretch> stop()
{
    recorder.end();
    recorder.recording = false;
    return std::exchange(recorder.stretches, {});
}

Stretch longest(const std::vector<Stretch> &stretches)
{
    Stretch longest;
    for (const Stretch &stretch : stretches) {
        longest.wall = std::max(longest.wall, stretch.wall);
        longest.cpu = std::max(longest.cpu, stretch.cpu);
    }
    return longest;
}

bool works()
{
    constexpr double busy = 0.03;
    QEventLoop loop;
    QTimer::singleShot(50, &loop, [&loop] {
        const double end = now(CLOCK_MONOTONIC) + busy;
        while (now(CLOCK_MONOTONIC) < end) {
        }
        QTimer::singleShot(50, &loop, &QEventLoop::quit);
    });
    start();
    loop.exec();
    const std::vector<Stretch> stretches = stop();
    return std::count_if(stretches.begin(), stretches.end(),
                         [](const Stretch &stretch) { return stretch.wall >= busy; }) == 1;
}

} // namespace BusyProbe
