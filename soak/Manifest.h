// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>

#include <functional>

/// What lies in a folder: by relative path the permissions and the content of every file, as a
/// short text. An empty folder is an entry too.
using Manifest = QMap<QString, QByteArray>;

/// Looks at all of a folder but what is left out, which is asked with relative paths.
Manifest takeManifest(const QString &folder, const std::function<bool(const QString &)> &leftOut);

/// The entry of a usual file with this content.
QByteArray fileEntry(const QByteArray &content);

/// What is missing, new or different, for people; at most a few.
QStringList differences(const Manifest &expected, const Manifest &actual);
