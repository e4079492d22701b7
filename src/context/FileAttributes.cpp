// SPDX-License-Identifier: GPL-3.0-or-later
#include "context/FileAttributes.h"

#include <QByteArray>
#include <QList>

#include <algorithm>
#include <cerrno>
#include <map>
#include <optional>
#include <sys/xattr.h>

namespace {

using Attributes = std::map<QByteArray, QByteArray>;

/// What a system call gives that tells how many bytes it has for a buffer of no size.
template <typename Call>
std::optional<QByteArray> allBytes(Call call)
{
    const ssize_t size = call(nullptr, 0);
    if (size < 0)
        return std::nullopt;
    QByteArray bytes(size, '\0');
    const ssize_t count = size == 0 ? 0 : call(bytes.data(), static_cast<size_t>(size));
    return count == size ? std::optional(bytes) : std::nullopt;
}

std::optional<Attributes> attributesOf(int file)
{
    const auto names =
        allBytes([&](char *to, size_t most) { return ::flistxattr(file, to, most); });
    if (!names)
        return errno == ENOTSUP ? std::optional(Attributes()) : std::nullopt;
    Attributes attributes;
    const QList<QByteArray> each = names->split('\0');
    for (const QByteArray &name : each) {
        if (name.isEmpty())
            continue;
        const auto value = allBytes(
            [&](char *to, size_t most) { return ::fgetxattr(file, name.constData(), to, most); });
        if (!value)
            return std::nullopt;
        attributes.emplace(name, *value);
    }
    return attributes;
}

} // namespace

bool copyAttributes(int from, int to)
{
    const auto wanted = attributesOf(from);
    const auto present = attributesOf(to);
    if (!wanted || !present)
        return false;
    // Those that are right are left alone, since some of them only the system may give.
    const auto isRight = [&](const auto &attribute) {
        const auto found = present->find(attribute.first);
        return found != present->end() && found->second == attribute.second;
    };
    const auto give = [&](const auto &attribute) {
        const auto &[name, value] = attribute;
        return isRight(attribute) || ::fsetxattr(to, name.constData(), value.constData(),
                                                 static_cast<size_t>(value.size()), 0) == 0;
    };
    const auto take = [&](const auto &attribute) {
        const QByteArray &name = attribute.first;
        return wanted->count(name) == 1 || ::fremovexattr(to, name.constData()) == 0;
    };
    return std::all_of(present->begin(), present->end(), take) &&
           std::all_of(wanted->begin(), wanted->end(), give);
}
