// SPDX-License-Identifier: GPL-3.0-or-later
#include "Footprint.h"

#include "support/PrivateHome.h"

#include <QApplication>
#include <QDir>
#include <QWidget>

#include <malloc.h>
#include <numeric>
#include <unistd.h>

namespace {

int entriesIn(const QString &folder)
{
    return int(
        QDir(folder).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size());
}

int childrenOfAllThreads()
{
    const QString threads = QStringLiteral("/proc/self/task/");
    qsizetype count = 0;
    for (const QString &thread : QDir(threads).entryList(QDir::Dirs | QDir::NoDotAndDotDot))
        count += readFile(threads + thread + QStringLiteral("/children"))
                     .simplified()
                     .split(' ')
                     .removeIf([](const QByteArray &pid) { return !pid.isEmpty(); });
    return int(count);
}

} // namespace

Footprint Footprint::now()
{
    ::malloc_trim(0);
    const struct mallinfo2 info = ::mallinfo2();
    Footprint now;
    now.memory = qint64(info.uordblks + info.hblkhd);
    now.resident = readFile(QStringLiteral("/proc/self/statm")).split(' ').value(1).toLongLong() *
                   ::sysconf(_SC_PAGESIZE);
    for (const QWidget *widget : QApplication::allWidgets()) {
        if (widget->windowType() != Qt::Desktop) // Qt's own, made when it is needed first
            ++now.widgets[QString::fromLatin1(widget->metaObject()->className())];
    }
    now.descriptors = entriesIn(QStringLiteral("/proc/self/fd"));
    now.threads = entriesIn(QStringLiteral("/proc/self/task"));
    now.children = childrenOfAllThreads();
    return now;
}

QString Footprint::text() const
{
    return QStringLiteral("%1 kB in use, %2 kB resident, %3 widgets, %4 descriptors, %5 threads, "
                          "%6 children")
        .arg(memory / 1000)
        .arg(resident / 1000)
        .arg(std::accumulate(widgets.cbegin(), widgets.cend(), 0))
        .arg(descriptors)
        .arg(threads)
        .arg(children);
}

QStringList Footprint::growthSince(const Footprint &before, qint64 memoryTolerance) const
{
    QStringList growth;
    const auto add = [&growth](const QString &what, qint64 first, qint64 last) {
        growth.append(
            QStringLiteral("%1: %2 at first, %3 at the end").arg(what).arg(first).arg(last));
    };
    if (memory > before.memory + memoryTolerance)
        add(QStringLiteral("bytes of memory"), before.memory, memory);
    if (descriptors > before.descriptors)
        add(QStringLiteral("descriptors"), before.descriptors, descriptors);
    if (threads > before.threads)
        add(QStringLiteral("threads"), before.threads, threads);
    if (children > before.children)
        add(QStringLiteral("children"), before.children, children);
    for (auto it = widgets.cbegin(); it != widgets.cend(); ++it) {
        const int first = before.widgets.value(it.key());
        if (*it > first)
            add(it.key(), first, *it);
    }
    return growth;
}
