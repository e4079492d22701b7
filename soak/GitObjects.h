// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

/// Paths with the names that git gives to their contents.
using GitObjects = QMap<QString, QByteArray>;

/// The name that git gives a content.
QByteArray objectName(const QByteArray &content);

/// What the index, or HEAD, of a repository holds in a folder of it.
GitObjects objectsInIndex(const QString &repository, const QString &folder);
GitObjects objectsInHead(const QString &repository, const QString &folder);
