// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QEventLoop>
#include <QTimer>

/// Lets the event loop run until the condition holds, and a little longer for what follows from it.
template <typename Condition>
void runUntil(Condition condition)
{
    constexpr int often = 20;       // ms
    constexpr int afterwards = 300; // ms
    QEventLoop loop;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &loop, [&] {
        if (!condition())
            return;
        timer.stop();
        QTimer::singleShot(afterwards, &loop, &QEventLoop::quit);
    });
    timer.start(often);
    loop.exec();
}
