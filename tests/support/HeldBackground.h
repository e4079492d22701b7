// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/Background.h"

#include <QSemaphore>

#include <memory>

/// While it lives, no background work begins: what is started waits its turn. That makes "in the
/// middle of a reload" last as long as a test wants.
class HeldBackground {
public:
    HeldBackground()
    {
        // Work of the test before must not be in the way.
        Background::pool().waitForDone();
        for (int i = 0; i < m_threads; ++i)
            Background::pool().start([gate = m_gate] { gate->acquire(); });
    }

    ~HeldBackground() { m_gate->release(m_threads); }

    HeldBackground(const HeldBackground &) = delete;
    HeldBackground &operator=(const HeldBackground &) = delete;

private:
    const int m_threads = Background::pool().maxThreadCount();
    const std::shared_ptr<QSemaphore> m_gate = std::make_shared<QSemaphore>();
};
