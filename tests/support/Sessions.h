// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/LogLines.h"
#include "support/PrivateHome.h"

/// A session to be written as a log: one prompt and then the answers.
struct LoggedSession {
    QString project = {}; ///< the working folder
    QString id = QStringLiteral("session");
    QString start = QStringLiteral("2026-03-05T10:00:00.000Z");
    QString prompt = QStringLiteral("Hello");
    QList<QByteArray> answers = {};
};

/// Writes the session where Claude Code would, and gives the log's path.
QString writeSession(const PrivateHome &home, const LoggedSession &session);

/// Removes the log of that session.
void removeSession(const PrivateHome &home, const QString &project, const QString &id);

/// Makes folders of these names in the folder for added projects, and lists them as added by hand.
QStringList addByHand(const PrivateHome &home, const QStringList &names);
