// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/PrivateHome.h"

#include <QTest>

/// By how much the memory of this program has grown at most since this was made.
class MemoryPeak {
public:
    MemoryPeak()
    {
        QFile file(QStringLiteral("/proc/self/clear_refs"));
        if (!file.open(QIODevice::WriteOnly) || file.write("5") != 1) // forgets the peak until now
            qFatal("the peak cannot be forgotten");
    }

    /// In megabytes.
    qint64 megabytes() const { return (of("VmHWM:") - m_before) / 1024; }

private:
    static qint64 of(const QByteArray &name)
    {
        const QList<QByteArray> lines = readFile(QStringLiteral("/proc/self/status")).split('\n');
        for (const QByteArray &line : lines) {
            if (line.startsWith(name))
                return line.mid(name.size()).chopped(2).trimmed().toLongLong(); // without "kB"
        }
        qFatal("no %s", name.constData());
    }

    const qint64 m_before = of("VmRSS:");
};

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool hasMemoryPeak = false;
#else
constexpr bool hasMemoryPeak = true;
#endif

#define SKIP_WITHOUT_MEMORY_PEAK()                                                                 \
    if (!hasMemoryPeak)                                                                            \
    QSKIP("a sanitizer keeps what has been freed, and much besides")
