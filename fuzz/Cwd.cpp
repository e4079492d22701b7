// SPDX-License-Identifier: GPL-3.0-or-later
// The folder that a log names is the one in the first line that names one, in its first 256 KiB.

#include "Choices.h"
#include "MemoryFile.h"
#include "SlowReader.h"
#include "Target.h"
#include "model/SessionParser.h"
#include "support/Describe.h"
#include "support/LogLines.h"

namespace {

constexpr qsizetype head = 262'144;

} // namespace

namespace Target {

/// The first three bytes say how much of the rest lies in the part that is read.
void check(const QByteArray &input)
{
    Choices choices(input);
    const bool nearTheEnd = choices.below(4) == 1;
    const qsizetype inside = choices.below(65'536);
    QByteArray log = input.mid(3);
    if (nearTheEnd)
        log.prepend(QByteArray(head - 1 - inside % (log.size() + 2), 'x') + '\n');
    const MemoryFile file(log);
    const auto found = SessionParser::cwd(file.path());
    bool sure = true;
    const auto slowly = SlowReader::cwd(log.left(head), sure);
    if (sure)
        same(describe(found), describe(slowly), "the folder is the one named first");
    holds(!found || log.left(head).contains("cwd") || log.contains('\\'),
          "no folder without its key");
}

QByteArrayList seeds()
{
    const QString folder = QStringLiteral("/home/x/é");
    const QByteArray prompt = LogLines::user({}, QStringLiteral("prompt"), folder);
    QByteArrayList seeds;
    for (const QByteArray &start : {QByteArray(3, '\0'), QByteArray("\1\0\0", 3),
                                    QByteArray("\1\0\20", 3), QByteArray("\1\1\0", 3)}) {
        seeds.append(start + LogLines::log({prompt, prompt}));
        seeds.append(start + "{\"cwd\":1}\n{\"cwd\":\"/tmp\\/a\\ud83d\"}");
        seeds.append(start + prompt.chopped(2) + "\n{\"message\":{\"cwd\":\"/no\"}}\r\n" + prompt);
    }
    return seeds;
}

QByteArrayList words()
{
    return {"\"cwd\":\"/", "{\"cwd\":\"/a\"}", "{\"cwd\":null}\n", "\\u0063wd", "\n",
            "}",           "\\ud83d"};
}

} // namespace Target
