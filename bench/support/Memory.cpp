// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/Memory.h"

#include <QFile>
#include <QSet>

namespace {

/// A value of /proc/self/status that is given in kB there.
qint64 statusValue(const QByteArray &key)
{
    QFile file(QStringLiteral("/proc/self/status"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray &line : file.readAll().split('\n')) {
        if (line.startsWith(key + ':'))
            return line.mid(key.size() + 1).replace("kB", "").trimmed().toLongLong() * 1024;
    }
    return 0;
}

class Measure {
public:
    void add(const QString &text)
    {
        if (text.capacity() == 0 || m_seen.contains(text.constData()))
            return;
        m_seen.insert(text.constData());
        m_bytes += header + (text.capacity() + 1) * qint64(sizeof(QChar));
    }

    template <typename Value>
    void addRoom(const QList<Value> &list)
    {
        m_bytes += header + list.capacity() * qint64(sizeof(Value));
    }

    qint64 bytes() const { return m_bytes; }

private:
    static constexpr qint64 header = sizeof(QArrayData);
    QSet<const QChar *> m_seen;
    qint64 m_bytes = 0;
};

} // namespace

qint64 peakMemory()
{
    return statusValue("VmHWM");
}

qint64 presentMemory()
{
    return statusValue("VmRSS");
}

qint64 sizeOf(const SessionMap &sessions)
{
    Measure measure;
    for (auto project = sessions.cbegin(); project != sessions.cend(); ++project) {
        measure.add(project.key());
        measure.addRoom(project.value());
        for (const Session &session : project.value()) {
            measure.add(session.id);
            measure.add(session.firstPrompt);
            measure.addRoom(session.records);
            for (const UsageRecord &record : session.records)
                measure.add(record.model);
        }
    }
    return measure.bytes();
}
