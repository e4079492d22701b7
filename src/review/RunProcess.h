// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

#include <optional>
#include <stop_token>

/// What came out of a command.
struct ShellResult {
    /// The exit status, or the number of the signal that ended the command; -1 when it could not be
    /// started.
    qint32 status = -1;
    QString out;        ///< what it wrote to its standard output
    QString err;        ///< the same of its standard error; or why it could not be started
    bool isCut = false; ///< whether `out` is only the beginning of what it wrote

    bool operator==(const ShellResult &) const = default;
};

/// Runs a program to its end, however long that takes: for background threads of Qt's only, never
/// for the interface thread. `executable` is the path of a file: no shell, and nothing is searched
/// for. The program inherits the environment, and the working folder unless there is a `cwd`.
/// Without `input` its standard input is the null device. Bytes of its output that are not UTF-8
/// become U+FFFD. Returns when the program itself has ended, even if a program that it left behind
/// holds its output open.
///
/// When `stop` is requested the program, with those that it has started, is told to end (SIGTERM),
/// and is killed when it does not within a second; nothing is started when that has happened
/// before. Nor does it outlive the thread.
///
/// No more is kept than the first 64 MiB of its output and the last 16 MiB of its errors. One that
/// can be stopped is ended when its output is longer.
ShellResult runProcess(const QString &executable, const QStringList &arguments,
                       const std::optional<QString> &cwd = std::nullopt,
                       const std::optional<QString> &input = std::nullopt,
                       const std::stop_token &stop = {});
