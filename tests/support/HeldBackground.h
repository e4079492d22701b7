// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/Background.h"

#include <QSemaphore>

#include <memory>

/// While it lives, no work of a pool begins: what is started waits its turn. That makes "in the
/// middle of a reload" last as long as a test wants.
class HeldBackground {
public:
    explicit HeldBackground(QThreadPool &pool = Background::pool())
        : m_threads(pool.maxThreadCount())
    {
        // Work of the test before must not be in the way.
        pool.waitForDone();
        for (int i = 0; i < m_threads; ++i)
            pool.start([gate = m_gate] { gate->acquire(); });
    }

    ~HeldBackground() { m_gate->release(m_threads); }

    HeldBackground(const HeldBackground &) = delete;
    HeldBackground &operator=(const HeldBackground &) = delete;

private:
    const int m_threads;
    const std::shared_ptr<QSemaphore> m_gate = std::make_shared<QSemaphore>();
};
