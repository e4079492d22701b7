// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/Figures.h"

#include <QCommandLineParser>

/// The command line of a benchmark: what it measures with, --help and --json.
class BenchOptions : public QCommandLineParser {
public:
    explicit BenchOptions(const QString &description);

    /// A number that can be given, and what it is otherwise.
    void addNumber(const QString &name, const QString &description, qint64 usual);
    qint64 number(const QString &name) const { return value(name).toLongLong(); }

    /// Prints the report and writes it to the file asked for. The program's exit code.
    int finish(const Report &report) const;
};
