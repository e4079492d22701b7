// SPDX-License-Identifier: GPL-3.0-or-later

// One table of what several benchmarks measured, with the machine that they ran on.

#include "support/Figures.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSysInfo>
#include <QThread>

#include <cstdio>

namespace {

/// What follows the first "KEY : " in a file of /proc.
QString procValue(const QString &path, const QByteArray &key)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QList<QByteArray> lines = file.readAll().split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith(key))
            return QString::fromUtf8(line.mid(line.indexOf(':') + 1).trimmed());
    }
    return {};
}

QString machine()
{
    const QString memory = procValue(QStringLiteral("/proc/meminfo"), "MemTotal");
    return QStringLiteral("%1, %2 cores, %3 GB of memory, %4, Linux %5, Qt %6")
        .arg(procValue(QStringLiteral("/proc/cpuinfo"), "model name"))
        .arg(QThread::idealThreadCount())
        .arg(memory.section(QLatin1Char(' '), 0, 0).toLongLong() / 1'000'000)
        .arg(QSysInfo::prettyProductName(), QSysInfo::kernelVersion(),
             QString::fromLatin1(qVersion()));
}

/// The report in a file. Ends the program when there is none.
Report readReport(const QString &path)
{
    QFile file(path);
    const bool open = file.open(QIODevice::ReadOnly);
    const QJsonDocument json = open ? QJsonDocument::fromJson(file.readAll()) : QJsonDocument();
    if (!json.isObject()) {
        std::fprintf(stderr, "no figures in %s\n", qPrintable(path));
        std::exit(1);
    }
    return Report::fromJson(json.object());
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Prints what benchmarks wrote as one table."));
    parser.addHelpOption();
    parser.addOption({QStringLiteral("json"), QStringLiteral("Where to write all of it."),
                      QStringLiteral("file")});
    parser.addPositionalArgument(QStringLiteral("files"), QStringLiteral("Their JSON files."));
    parser.process(application);

    std::vector<Report> reports;
    QJsonArray json;
    const QStringList files = parser.positionalArguments();
    for (const QString &file : files) {
        reports.push_back(readReport(file));
        json.append(reports.back().toJson());
    }
    std::printf("\n%s\n", qPrintable(machine()));
    Report::printTable(reports);
    if (!parser.isSet(QStringLiteral("json")))
        return 0;
    QFile out(parser.value(QStringLiteral("json")));
    const QJsonObject all{{QStringLiteral("machine"), machine()},
                          {QStringLiteral("reports"), json}};
    return out.open(QIODevice::WriteOnly) && out.write(QJsonDocument(all).toJson()) > 0 ? 0 : 1;
}
