// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

/// Lines of session logs, in the form in which Claude Code writes them.
namespace LogLines {

/// A prompt of the user. `time` is the timestamp as text; empty for a line without one.
QByteArray user(const QString &time, const QString &text, const QString &cwd = {});

/// Token counts: input, output, cache write, cache read.
struct Tokens {
    qint64 input = 0;
    qint64 output = 0;
    qint64 cacheWrite = 0;
    qint64 cacheRead = 0;
};

/// An answer of the assistant with its usage. Without an `id` the message has none.
QByteArray assistant(const QString &time, const QString &model, const Tokens &tokens,
                     const QString &id = {});

/// The lines as the content of a log: each with a line feed behind it.
QByteArray log(const QList<QByteArray> &lines);

} // namespace LogLines
