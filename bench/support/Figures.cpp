// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/Figures.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>
#include <cstdio>

namespace {

QString cell(const QString &text, qsizetype width)
{
    return text.leftJustified(width) + QStringLiteral("  ");
}

QString number(double value)
{
    return QString::number(value, 'f', value < 10 ? 2 : 1).rightJustified(9);
}

QString row(const Figure &figure)
{
    QString text = cell(figure.what, 50) + number(figure.best) + number(figure.usual) +
                   QStringLiteral("  ") + cell(figure.unit, 5) + cell(figure.comparedWith, 30);
    if (figure.target) {
        text +=
            QStringLiteral("at most ") + QString::number(*figure.target) +
            (figure.best <= *figure.target ? QStringLiteral("  met") : QStringLiteral("  MISSED"));
    }
    return text;
}

QJsonObject toJson(const Figure &figure)
{
    QJsonObject json{{QStringLiteral("what"), figure.what},
                     {QStringLiteral("comparedWith"), figure.comparedWith},
                     {QStringLiteral("unit"), figure.unit},
                     {QStringLiteral("best"), figure.best},
                     {QStringLiteral("median"), figure.usual}};
    if (figure.target)
        json[QStringLiteral("target")] = *figure.target;
    return json;
}

Figure figureOf(const QJsonObject &json)
{
    Figure figure{.what = json[QStringLiteral("what")].toString(),
                  .comparedWith = json[QStringLiteral("comparedWith")].toString(),
                  .unit = json[QStringLiteral("unit")].toString(),
                  .best = json[QStringLiteral("best")].toDouble(),
                  .usual = json[QStringLiteral("median")].toDouble()};
    if (json.contains(QStringLiteral("target")))
        figure.target = json[QStringLiteral("target")].toDouble();
    return figure;
}

} // namespace

double least(const Series &values)
{
    return values.empty() ? 0 : *std::min_element(values.begin(), values.end());
}

double median(Series values)
{
    if (values.empty())
        return 0;
    std::sort(values.begin(), values.end());
    const size_t middle = values.size() / 2;
    return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

Series perRound(const Series &of, const Series &to)
{
    Series result;
    for (size_t i = 0; i < std::min(of.size(), to.size()); ++i)
        result.push_back(of[i] / to[i]);
    return result;
}

Figure ratio(const QString &what, const Series &of, const QString &comparedWith, const Series &to,
             std::optional<double> target)
{
    return {.what = what,
            .comparedWith = comparedWith,
            .unit = QStringLiteral("times"),
            .best = least(of) / least(to),
            .usual = median(perRound(of, to)),
            .target = target};
}

void Report::printTable(const std::vector<Report> &reports)
{
    QString text = QLatin1Char('\n') + cell(QStringLiteral("what"), 50) +
                   QStringLiteral("     best   median  ") + cell(QStringLiteral("unit"), 5) +
                   cell(QStringLiteral("compared with"), 30) + QStringLiteral("target\n");
    for (const Report &report : reports) {
        text += QLatin1Char('\n') + report.m_name + QLatin1Char('\n');
        for (const Figure &figure : report.m_figures)
            text += row(figure).trimmed() + QLatin1Char('\n');
    }
    std::fputs(text.toUtf8().constData(), stdout);
}

bool Report::writeJson(const QString &path) const
{
    if (path.isEmpty())
        return true;
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(QJsonDocument(toJson()).toJson()) > 0;
}

QJsonObject Report::toJson() const
{
    QJsonArray figures;
    for (const Figure &figure : m_figures)
        figures.append(::toJson(figure));
    return {{QStringLiteral("name"), m_name},
            {QStringLiteral("figures"), figures},
            {QStringLiteral("details"), m_details}};
}

Report Report::fromJson(const QJsonObject &json)
{
    Report report(json[QStringLiteral("name")].toString());
    report.m_details = json[QStringLiteral("details")].toObject();
    const QJsonArray figures = json[QStringLiteral("figures")].toArray();
    for (const QJsonValue &value : figures)
        report.add(figureOf(value.toObject()));
    return report;
}
