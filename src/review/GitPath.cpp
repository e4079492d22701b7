// SPDX-License-Identifier: GPL-3.0-or-later
#include "review/GitPath.h"

#include <algorithm>

namespace {

/// Whether git takes a pattern for anything else than the path of this name.
bool isPattern(const QString &path)
{
    static constexpr QStringView special = u"*?[\\";
    return path.startsWith(u':') || std::any_of(path.cbegin(), path.cend(), [](QChar character) {
               return special.contains(character);
           });
}

} // namespace

namespace GitPath {

QString pathspec(const QString &path, const QString &prefix)
{
    if (prefix.isEmpty() && !isPattern(path))
        return path;
    return QStringLiteral(":(top,literal)") + path;
}

QString nothingBelow(const QString &path)
{
    return QStringLiteral(":(top,exclude,literal)") + path + u'/';
}

QString fromProject(const QString &path, const QString &prefix)
{
    if (path.startsWith(prefix)) {
        const QString inside = path.mid(prefix.size());
        // A dash alone would mean the standard input.
        return inside == u"-" ? QStringLiteral("./-") : inside;
    }
    return QStringLiteral("../").repeated(prefix.count(u'/')) + path;
}

} // namespace GitPath
