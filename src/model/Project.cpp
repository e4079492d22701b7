// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/Project.h"

#include "model/Files.h"

QString Project::name() const
{
    return lastPathComponent(path).toString();
}

size_t qHash(const Project &project, size_t seed)
{
    return qHashMulti(seed, project.path, project.claudeDir.has_value(),
                      project.claudeDir.value_or(QString()), project.added);
}

QJsonObject toJson(const Project &project)
{
    QJsonObject object{{QStringLiteral("path"), project.path},
                       {QStringLiteral("added"), project.added}};
    if (project.claudeDir)
        object.insert(u"claudeDir", *project.claudeDir);
    return object;
}

std::optional<Project> projectFromJson(const QJsonObject &object)
{
    const QJsonValue path = object.value(u"path");
    const QJsonValue added = object.value(u"added");
    const QJsonValue claudeDir = object.value(u"claudeDir");
    if (!path.isString() || !added.isBool())
        return std::nullopt;
    Project project{path.toString(), std::nullopt, added.toBool()};
    if (claudeDir.isString())
        project.claudeDir = claudeDir.toString();
    else if (!claudeDir.isUndefined() && !claudeDir.isNull())
        return std::nullopt;
    return project;
}
