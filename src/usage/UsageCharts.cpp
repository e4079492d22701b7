// SPDX-License-Identifier: GPL-3.0-or-later
#include "usage/UsageCharts.h"

#include "model/Format.h"
#include "usage/LocalDays.h"

#include <QRegularExpression>

namespace {

QString figuresOf(qint64 tokens, double cost, Measure measure, QLocale locale)
{
    locale.setNumberOptions(locale.numberOptions() & ~QLocale::OmitGroupSeparator);
    const QString count = tokens == 1 ? QStringLiteral("1 token")
                                      : QStringLiteral("%1 tokens").arg(locale.toString(tokens));
    const QStringList both = measure == Measure::Tokens ? QStringList{count, fmtCost(cost)}
                                                        : QStringList{fmtCost(cost), count};
    return both.join(QStringLiteral(" \u00b7 "));
}

/// Day and month as a locale writes them in a long date, with the month shortened: "MMM d".
QString axisDateFormat(const QLocale &locale)
{
    // From the first of the two to the last, with what belongs to that, such as a full stop. Three
    // or four "d" are the day of the week.
    static const QRegularExpression token(QStringLiteral("'[^']*'|d+|M+|y+|."));
    static const QRegularExpression ending(QStringLiteral("^[^\\s,\u060c\u3001'dMy()/-]+"));
    const QString whole = locale.dateFormat(QLocale::LongFormat);
    qsizetype begin = -1;
    qsizetype end = 0;
    for (auto found = token.globalMatch(whole); found.hasNext();) {
        const QRegularExpressionMatch match = found.next();
        const QString text = match.captured();
        if (!text.startsWith(u'M') && text != u"d" && text != u"dd")
            continue;
        if (begin < 0)
            begin = match.capturedStart();
        end = match.capturedEnd();
    }
    end += ending.match(whole.mid(end)).capturedLength();
    QString format = whole.mid(begin, end - begin);
    return format.replace(QStringLiteral("MMMM"), QStringLiteral("MMM"));
}

/// A name on one line: a folder's name may hold line feeds and worse.
QString onOneLine(QString name)
{
    for (QChar &character : name) {
        if (!character.isSurrogate() && (!character.isPrint() || character.isSpace()))
            character = QChar(QChar::Space);
    }
    return name;
}

UsageCharts::Days makeDays(const Usage &usage, bool all, const QTimeZone &zone,
                           const QLocale &locale)
{
    const QList<DayUsage> &days = usage.days(all);
    return {.isEmpty = usage.isEmpty(all),
            .total = totalOf(days),
            .tokens = dayChart(days, Measure::Tokens, zone, locale),
            .cost = dayChart(days, Measure::Cost, zone, locale)};
}

} // namespace

ChartContents dayChart(const QList<DayUsage> &days, Measure measure, const QTimeZone &zone,
                       const QLocale &locale)
{
    constexpr qint64 longestGap = 7;
    constexpr double shortened = 2;
    const QString format = axisDateFormat(locale);
    const QString farFormat = format + QStringLiteral(" yyyy");
    ChartContents chart;
    chart.bars.reserve(days.size());
    chart.labels.reserve(days.size());
    double place = 0;
    bool far = false;
    QDate before;
    for (const DayUsage &usage : days) {
        const QDate date = LocalDays::dateOf(usage.day, zone);
        if (before.isValid()) {
            const qint64 distance = before.daysTo(date);
            far = far || distance > longestGap;
            place += distance > longestGap ? shortened : static_cast<double>(distance);
        }
        before = date;
        chart.bars.append(
            {.place = place,
             .value = measure == Measure::Tokens ? static_cast<double>(usage.tokens) : usage.cost,
             .name = locale.toString(date, QLocale::LongFormat),
             .figures = figuresOf(usage.tokens, usage.cost, measure, locale)});
        chart.labels.append({place, locale.toString(date, far ? farFormat : format)});
    }
    return chart;
}

ChartContents projectChart(const QList<ProjectUsage> &projects, Measure measure,
                           const QLocale &locale)
{
    ChartContents chart;
    chart.bars.reserve(projects.size());
    QHash<QString, double> placeOfName;
    for (const ProjectUsage &usage : projects) {
        auto place = placeOfName.constFind(usage.name);
        if (place == placeOfName.cend()) {
            place = placeOfName.insert(usage.name, static_cast<double>(placeOfName.size()));
            chart.labels.append({*place, onOneLine(usage.name)});
        }
        chart.bars.append(
            {.place = *place,
             .value = measure == Measure::Tokens ? static_cast<double>(usage.tokens) : usage.cost,
             .name = usage.name,
             .figures = figuresOf(usage.tokens, usage.cost, measure, locale)});
    }
    return chart;
}

UsageCharts makeUsageCharts(const UsageInput &input, const QLocale &locale,
                            const std::stop_token &stop)
{
    const Usage usage = makeUsage(input, stop);
    if (stop.stop_requested())
        return {};
    return {.project = makeDays(usage, false, input.zone, locale),
            .all = makeDays(usage, true, input.zone, locale),
            .projectCount = usage.perProject.size(),
            .projectTokens = projectChart(usage.perProject, Measure::Tokens, locale),
            .projectCost = projectChart(usage.perProject, Measure::Cost, locale)};
}
