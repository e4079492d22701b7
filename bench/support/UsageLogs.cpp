// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/UsageLogs.h"

#include <QDateTime>
#include <QDir>
#include <QFile>

#include <array>

namespace {

const std::array<const char *, 3> models{"claude-opus-4-1", "claude-sonnet-4", "claude-haiku-4"};

QByteArray line(const QDateTime &time, int record, int session)
{
    const QByteArray number = QByteArray::number(record);
    return "{\"type\":\"assistant\",\"timestamp\":\"" +
           time.toString(Qt::ISODateWithMs).toLatin1() + "\",\"message\":{\"id\":\"" + number +
           "\",\"model\":\"" + models[size_t(session + record) % models.size()] +
           "\",\"usage\":{\"input_tokens\":" + QByteArray::number(record % 97) +
           ",\"output_tokens\":" + QByteArray::number(record % 1009) +
           ",\"cache_read_input_tokens\":" + QByteArray::number(record % 50'021) + "}}}\n";
}

bool writeLog(const QString &path, const QString &project, int records, int session)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    constexpr qint64 span = 35LL * 24 * 3600 * 1000; // ms
    const QDateTime begin = QDateTime::currentDateTimeUtc().addMSecs(session - span);
    QByteArray bytes = "{\"type\":\"user\",\"cwd\":\"" + project.toUtf8() +
                       "\",\"message\":{\"content\":\"Task " + QByteArray::number(session) +
                       "\"}}\n";
    for (int i = 0; i < records; ++i)
        bytes += line(begin.addMSecs(i * span / records), i, session);
    return file.write(bytes) == bytes.size();
}

} // namespace

bool UsageLogs::write(const QString &claudeProjects) const
{
    for (int i = 0; i < projects; ++i) {
        const QString name = QStringLiteral("project-%1").arg(i, 3, 10, QLatin1Char('0'));
        const QString folder = claudeProjects + QStringLiteral("/-code-") + name;
        if (!QDir().mkpath(folder))
            return false;
        for (int session = 0; session < sessions; ++session) {
            if (!writeLog(folder + QStringLiteral("/session-%1.jsonl").arg(session),
                          QStringLiteral("/code/") + name, records, i + session))
                return false;
        }
    }
    return true;
}
