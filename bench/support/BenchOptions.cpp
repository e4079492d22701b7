// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/BenchOptions.h"

BenchOptions::BenchOptions(const QString &description)
{
    setApplicationDescription(description);
    addHelpOption();
    addOption({QStringLiteral("json"), QStringLiteral("Where to write the figures."),
               QStringLiteral("file")});
}

void BenchOptions::addNumber(const QString &name, const QString &description, qint64 usual)
{
    addOption({name, description, QStringLiteral("number"), QString::number(usual)});
}

int BenchOptions::finish(const Report &report) const
{
    report.print();
    return report.writeJson(value(QStringLiteral("json"))) ? 0 : 1;
}
