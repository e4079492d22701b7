// SPDX-License-Identifier: GPL-3.0-or-later
#include "usage/StartText.h"

#include <QDateTime>
#include <QRegularExpression>

QString mediumDateTimeFormat(const QLocale &locale)
{
    static const QRegularExpression dayOfWeek(
        QStringLiteral("\\(d{3,4}\\)|[\\s,.\u060c]*d{3,4}\\s*$|d{3,4}[\\s,.\u060c]*"));
    static const QRegularExpression seconds(QStringLiteral("[:.\\s]*s+"));
    QString date = locale.dateFormat(QLocale::LongFormat);
    date.remove(dayOfWeek).replace(QStringLiteral("MMMM"), QStringLiteral("MMM"));
    QString time = locale.timeFormat(QLocale::ShortFormat);
    time.remove(seconds);
    return date.trimmed() + QStringLiteral(", ") + time;
}

QString startText(TimePoint start, const QLocale &locale, const QString &format)
{
    const auto time = QDateTime::fromMSecsSinceEpoch(start.time_since_epoch().count());
    return locale.toString(time, format);
}
