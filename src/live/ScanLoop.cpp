// SPDX-License-Identifier: GPL-3.0-or-later
#include "live/ScanLoop.h"

#include "live/ProcessScanner.h"
#include "model/Background.h"

Scan scanMachine(const std::stop_token &stop)
{
    Scan scan;
    scan.agents = ProcessScanner::scan({}, &scan.at, stop);
    return scan;
}

ScanLoop::ScanLoop(Scanner scanner, QObject *parent)
    : QObject(parent)
    , m_scanner(std::move(scanner))
{
    m_pause.setSingleShot(true);
    m_pause.setTimerType(Qt::PreciseTimer); // never less than the two seconds
    m_pause.setInterval(std::chrono::seconds(2));
    connect(&m_pause, &QTimer::timeout, this, &ScanLoop::scan);
}

ScanLoop::~ScanLoop()
{
    m_stop.request_stop();
}

void ScanLoop::start()
{
    if (m_started)
        return;
    m_started = true;
    m_stop = std::stop_source();
    if (!m_scanning)
        scan();
}

void ScanLoop::stop()
{
    m_started = false;
    m_stop.request_stop();
    m_pause.stop();
}

void ScanLoop::scanNow()
{
    if (m_started && !m_scanning)
        scan();
}

void ScanLoop::scan()
{
    m_pause.stop();
    m_scanning = true;
    Background::run(
        this, m_stop.get_token(),
        [scanner = m_scanner](const std::stop_token &token) {
            if (token.stop_requested()) // it may have waited for a thread
                return Scan();
            return scanner(token);
        },
        [this, stop = m_stop.get_token()](const Scan &scan) { take(scan, stop); });
}

void ScanLoop::take(const Scan &result, const std::stop_token &stop)
{
    m_scanning = false;
    if (!m_started)
        return;
    if (stop.stop_requested()) // stopped and started again meanwhile
        return scan();
    m_pause.start();
    Q_EMIT scanned(result);
}
