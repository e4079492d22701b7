// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "live/AgentProcess.h"
#include "live/ProcessHandle.h"

#include <QObject>
#include <QTimer>

#include <functional>
#include <stop_token>

/// What one scan found.
struct Scan {
    QList<AgentProcess> agents;
    BootTicks at = 0; ///< by then the agents were there
};

/// Looks for what runs on this machine, until that is not wanted any more.
Scan scanMachine(const std::stop_token &stop);

/// Scans again and again in the background while it is started, two seconds after the end of the
/// scan before. Scans never overlap. Lives on the interface thread.
class ScanLoop : public QObject {
    Q_OBJECT
public:
    /// Called on background threads. What it returns when it has been told to stop is dropped.
    using Scanner = std::function<Scan(const std::stop_token &)>;

    explicit ScanLoop(Scanner scanner = scanMachine, QObject *parent = nullptr);
    ~ScanLoop() override;

    /// Scans, and goes on. When a scan from before a stop() is still under way, after its end.
    void start();
    /// The scan under way is told to stop, and its result is dropped.
    void stop();
    /// Does not wait for the two seconds to be over.
    void scanNow();

Q_SIGNALS:
    void scanned(const Scan &scan);

private:
    void scan();
    void take(const Scan &scan, const std::stop_token &stop);

    const Scanner m_scanner;
    QTimer m_pause;
    std::stop_source m_stop;
    bool m_started = false;
    bool m_scanning = false;
};
