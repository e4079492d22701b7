// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/FilledHome.h"

#include "review/Repository.h"
#include "support/LogLines.h"
#include "support/Sessions.h"

#include <QDateTime>

namespace {

void writeChanges(const QString &project)
{
    writeGitIdentity();
    const Repository repository(project);
    repository.write(QStringLiteral("src/tides.ts"),
                     "const hour = 3600;\n\nexport { hour }; // (of the tide)\n");
    repository.write(QStringLiteral("notes.md"), "One\n");
    repository.commitAll();
    repository.write(QStringLiteral("src/tides.ts"),
                     "const hour = 3_600_000;\n\nexport { hour }; // (of the tide)\n");
    repository.write(QStringLiteral("notes.md"), "Two: \"three\", four.\n");
    repository.git({QStringLiteral("add"), QStringLiteral("notes.md")});
    repository.write(QStringLiteral("CLAUDE.md"), "# Harbour\n\nTides and berths.\n");
}

void writeSessions(const PrivateHome &home, const QString &project)
{
    const QDateTime now = QDateTime::currentDateTimeUtc();
    for (int day = 1; day < 20; ++day) {
        const QDateTime start = now.addDays(-day);
        const auto written = [](const QDateTime &time) { return time.toString(Qt::ISODate); };
        const QByteArray answer =
            LogLines::assistant(written(start.addSecs(1234)), QStringLiteral("claude-opus-4"),
                                {.input = 87 * day,
                                 .output = 9876 * day,
                                 .cacheWrite = 2345 * day,
                                 .cacheRead = 54'321});
        writeSession(home, {.project = project,
                            .id = QString::number(day),
                            .start = written(start),
                            .prompt = QStringLiteral("Translate the strings of the tide table into "
                                                     "Japanese, please."),
                            .answers = {answer}});
    }
}

} // namespace

FilledHome::FilledHome()
{
    const QString project = addByHand(m_home, {QStringLiteral("harbour")}).constFirst();
    writeChanges(project);
    writeSessions(m_home, project);
    m_agent = std::make_unique<AgentDouble>(QStringLiteral("claude"), project);
}
