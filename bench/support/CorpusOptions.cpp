// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/CorpusOptions.h"

#include <cstdio>
#include <cstdlib>

namespace {

/// The option's value as a number. Ends the program when it is none.
std::uint64_t numberOf(const QCommandLineParser &parser, const QString &option)
{
    bool ok = false;
    const std::uint64_t number = parser.value(option).toULongLong(&ok);
    if (!ok) {
        std::fprintf(stderr, "--%s wants a number\n", qPrintable(option));
        std::exit(2);
    }
    return number;
}

} // namespace

void addCorpusOptions(QCommandLineParser &parser)
{
    const QString number = QStringLiteral("number");
    parser.addOptions({
        {QStringLiteral("seed"), QStringLiteral("Decides the content."), number,
         QStringLiteral("1")},
        {QStringLiteral("bytes"), QStringLiteral("Size of all logs."), number,
         QStringLiteral("1000000000")},
        {QStringLiteral("files"), QStringLiteral("Number of logs."), number, QStringLiteral("800")},
        {QStringLiteral("largest"), QStringLiteral("Size of the largest log; 0 leaves it open."),
         number, QStringLiteral("200000000")},
        {QStringLiteral("longest-line"), QStringLiteral("Size of the longest line."), number,
         QStringLiteral("1200000")},
        {QStringLiteral("cjk-percent"), QStringLiteral("Share of Chinese or Japanese text."),
         number, QStringLiteral("0")},
    });
}

corpus::Shape corpusShape(const QCommandLineParser &parser)
{
    return {.seed = numberOf(parser, QStringLiteral("seed")),
            .bytes = numberOf(parser, QStringLiteral("bytes")),
            .files = numberOf(parser, QStringLiteral("files")),
            .largest = numberOf(parser, QStringLiteral("largest")),
            .longestLine = numberOf(parser, QStringLiteral("longest-line")),
            .cjkPercent = static_cast<unsigned>(numberOf(parser, QStringLiteral("cjk-percent")))};
}

QJsonObject toJson(const corpus::Shape &shape)
{
    const auto number = [](std::uint64_t value) { return static_cast<qint64>(value); };
    return {{QStringLiteral("seed"), number(shape.seed)},
            {QStringLiteral("bytes"), number(shape.bytes)},
            {QStringLiteral("files"), number(shape.files)},
            {QStringLiteral("largest"), number(shape.largest)},
            {QStringLiteral("longestLine"), number(shape.longestLine)},
            {QStringLiteral("cjkPercent"), number(shape.cjkPercent)}};
}
