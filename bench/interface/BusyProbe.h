// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

/// Watches how long the interface thread stays away from its event loop's wait for new events,
/// which is how long a click or a key may have to wait for it.
///
/// The signals awake() and aboutToBlock() of QAbstractEventDispatcher do not tell: Qt's dispatchers
/// deliver timers, sockets and window events between aboutToBlock() and the next awake(), so that
/// this work looks like waiting. The probe therefore stands at the wait itself: it takes the place
/// of ppoll(), in which Qt's own dispatcher (not GLib's) waits and nothing else does.
namespace BusyProbe {

/// One time away, in seconds.
struct Stretch {
    double wall = 0;
    double cpu = 0; ///< of this the thread was running
};

/// Makes Qt wait where the probe stands. To be called before the application object is made.
void prepare();

/// Starts to record what the calling thread does from now on.
void start();
/// Ends recording. The stretch that is under way is the last one.
std::vector<Stretch> stop();

/// The longest time of all by each clock, which need not be the same stretch.
Stretch longest(const std::vector<Stretch> &stretches);

/// Whether the probe sees a timer that is busy for a known time. Needs an application object.
bool works();

} // namespace BusyProbe
