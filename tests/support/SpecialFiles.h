// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

/// The names that makeSpecialFiles() gives, without extension.
QStringList specialFiles();

/// Makes, in a folder, everything that may be named like a file and cannot be read as one, with
/// the extension given: a FIFO, a socket, a link to an endless device, a folder, a dangling link,
/// a link that leads to itself, and a regular file whose every read fails.
void makeSpecialFiles(const QString &folder, const QString &extension);

/// The path of a file that counts as a regular one, can be opened, and fails when it is read.
QString fileWithReadErrors();

/// While it lives, a program that runs as root has the rights of nobody, so that the permissions
/// of files hold for it as for everyone.
class Unprivileged {
public:
    Unprivileged();
    ~Unprivileged();
    Unprivileged(const Unprivileged &) = delete;
    Unprivileged &operator=(const Unprivileged &) = delete;

private:
    bool m_wasRoot;
};
