// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "corpus/Corpus.h"

#include <QCommandLineParser>
#include <QJsonObject>

/// Adds the options that say what logs to write, to be read with corpusShape().
void addCorpusOptions(QCommandLineParser &parser);

/// The logs asked for on the command line; without options 1 GB in 800 logs, one of 200 MB.
corpus::Shape corpusShape(const QCommandLineParser &parser);

/// The same for the JSON of a report.
QJsonObject toJson(const corpus::Shape &shape);
