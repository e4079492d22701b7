// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/Session.h"

#include <QJsonObject>
#include <QJsonValue>

#include <optional>

/// The session log read in the slowest, most obvious way: whole lines, Qt's JSON, regular
/// expressions. It shares no code with the reader that it is held against.
namespace SlowReader {

/// What a line is.
struct Line {
    enum class Kind {
        Object,
        NotJson,
        Unsure ///< Qt's parser is no judge of it: too deep, or a number that a double cannot hold
    };
    Kind kind = Kind::NotJson;
    QJsonObject object = {};
};

Line line(const QByteArray &bytes);

/// A text out of Qt's JSON, in which lone surrogates can stand, as the model has it.
QString text(const QString &json);

/// What a user typed, out of a message's content.
std::optional<QString> promptText(const QJsonValue &content);

/// A date with a time and its distance from UTC, with or without fractional seconds.
enum class Fraction { Wanted, Unwanted };
std::optional<TimePoint> date(const QString &text, Fraction fraction);

/// What a whole log says. `sure` becomes false when the log holds a line of which Qt is no judge.
std::optional<Session> session(const QByteArray &log, const QString &id, TimePoint now, bool &sure);

/// The folder that a log names first.
std::optional<QString> cwd(const QByteArray &log, bool &sure);

} // namespace SlowReader
