// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QJsonObject>
#include <QString>

#include <optional>

/// One project folder, as the sidebar lists it. Its identity is its path.
struct Project {
    QString path;                     ///< absolute path of the working folder, compared exactly
    std::optional<QString> claudeDir; ///< absolute path of the folder with its session logs, if any
    bool added = false;               ///< added by hand, rather than only found among the logs

    /// The last component of the path, which is what the project is called on screen.
    QString name() const;

    bool operator==(const Project &) const = default;
};

/// All three fields, so that a project that gained its log folder counts as another value.
size_t qHash(const Project &project, size_t seed = 0);

/// The project as a JSON object with its field names as keys; "claudeDir" only when there is one.
QJsonObject toJson(const Project &project);

/// The reverse of toJson(); nothing when "path" or "added" is missing or a value has a wrong type.
std::optional<Project> projectFromJson(const QJsonObject &object);
