// SPDX-License-Identifier: GPL-3.0-or-later
// The folders of known processes come back out of what lsof would print of them.

#include "Choices.h"
#include "Property.h"
#include "Target.h"
#include "live/ProcessScanner.h"

#include <QMap>

namespace {

QString described(const QHash<qint32, QString> &folders)
{
    QMap<qint32, QString> sorted;
    for (auto it = folders.cbegin(); it != folders.cend(); ++it)
        sorted.insert(it.key(), it.value());
    QString text;
    for (auto it = sorted.cbegin(); it != sorted.cend(); ++it)
        text += QStringLiteral("%1 \"%2\"\n").arg(it.key()).arg(it.value());
    return text;
}

void checkText(const QString &text)
{
    const QHash<qint32, QString> folders = ProcessScanner::parseLsof(text);
    const QStringList lines = text.split(u'\n');
    QList<AgentProcess> agents;
    for (auto it = folders.cbegin(); it != folders.cend(); ++it) {
        holds(lines.contains(u'n' + it.value()), "a folder is a line of the text");
        AgentProcess agent;
        agent.pid = it.key();
        agents.append(agent);
    }
    holds(folders.size() <= text.count(u'p'), "every process has its line");
    for (const AgentProcess &agent : ProcessScanner::withFolders(agents, folders)) {
        const QString folder = folders.value(agent.pid);
        const bool excuse = folder.contains(QStringLiteral(" (readlink: "));
        holds(agent.folder == folder || excuse, "an agent gets its folder");
    }
}

void checkProcesses(Choices choices)
{
    QString text;
    QHash<qint32, QString> expected;
    while (!choices.atEnd()) {
        const qint32 pid = choices.value<qint32>();
        const QString folder = u'/' + choices.textWithout(u'\n');
        expected.insert(pid, folder);
        text += QStringLiteral("p%1\nfcwd\nn%2\n").arg(pid).arg(folder);
    }
    same(described(ProcessScanner::parseLsof(text)), described(expected), "the folders come back");
}

} // namespace

namespace Target {

void check(const QByteArray &input)
{
    checkText(QString::fromUtf8(input));
    checkProcesses(Choices(input));
}

QByteArrayList seeds()
{
    return {"p1\nfcwd\nn/home/x\np2\nfcwd\nn/\n",
            "p1\nfcwd\nn/proc/1/cwd (readlink: Permission denied)\n",
            "n/nobody\np\nn/x\npx\nn/y\np99999999999\nn/z\n",
            "p-1\nn\np+2\nn/a\np+-3\nn/b\n",
            "p1\nn/a\nn/b\np1\nn/c",
            QByteArray("\1\0\0\0\3a/b\2\0\0\0\0", 13)};
}

QByteArrayList words()
{
    return {
        "\np", "\nfcwd", "\nn/", "p1\nfcwd\nn/a\n", "2147483648", "/proc/1/cwd (readlink: ", "+-"};
}

} // namespace Target
