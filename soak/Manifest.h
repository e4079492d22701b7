// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>

#include <functional>

/// What lies in a folder: by relative path the permissions of every file and git's name for its
/// content. An empty folder is an entry too.
using Manifest = QMap<QString, QByteArray>;

/// Looks at all of a folder but what is left out, which is asked with relative paths.
Manifest takeManifest(const QString &folder, const std::function<bool(const QString &)> &leftOut);

/// The entry of a usual file whose content has this name.
QByteArray fileEntry(const QByteArray &objectName);

/// What is missing, new or different, for people; at most a few.
QStringList differences(const Manifest &expected, const Manifest &actual);
