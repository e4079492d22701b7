// SPDX-License-Identifier: GPL-3.0-or-later
#include "live/AgentProcess.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <iterator>
#include <limits>

QList<AgentProcess> agentsInside(const QList<AgentProcess> &agents, const QString &folder)
{
    const QString below = folder + u'/';
    QList<AgentProcess> inside;
    std::copy_if(agents.cbegin(), agents.cend(), std::back_inserter(inside),
                 [&](const AgentProcess &agent) {
                     return agent.folder == folder || agent.folder.startsWith(below);
                 });
    return inside;
}

QString fmtCpu(double percent)
{
    // Not printf, which follows the locale, and not QString, which rounds in its own way. Room for
    // the sign, the point and the decimal beside all digits that a double can have.
    std::array<char, std::numeric_limits<double>::max_exponent10 + 8> text;
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), percent, std::chars_format::fixed, 1)
            .ptr;
    return QString::fromLatin1(text.data(), end - text.data()) + u'%';
}
