// SPDX-License-Identifier: GPL-3.0-or-later
#include "review/Commit.h"

#include "review/GitCommand.h"
#include "review/TerminalText.h"

#include <QDir>
#include <QFile>
#include <QSaveFile>
#include <QUuid>

namespace {

/// A file of the system's temporary folder that is gone with its owner.
class MessageFile {
public:
    explicit MessageFile(const QString &message)
        : m_path(QDir::tempPath() + QStringLiteral("/plinthar-msg-") +
                 QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper() +
                 QStringLiteral(".txt"))
    {
        // When this fails, git says that the file is missing.
        QSaveFile file(m_path);
        if (!file.open(QIODevice::WriteOnly))
            return;
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner); // the folder is everyone's
        file.write((message + u'\n').toUtf8());
        file.commit();
    }
    ~MessageFile() { QFile::remove(m_path); }
    MessageFile(const MessageFile &) = delete;
    MessageFile &operator=(const MessageFile &) = delete;

    const QString &path() const { return m_path; }

private:
    QString m_path;
};

} // namespace

QString commitTrailer()
{
    return QStringLiteral("Agent-assisted: true");
}

QString commitMessage(const QString &typed)
{
    const QString message = typed.trimmed();
    if (message.endsWith(commitTrailer()))
        return message;
    return message + QStringLiteral("\n\n") + commitTrailer();
}

std::optional<QString> commit(const QString &projectPath, const QString &typed)
{
    const MessageFile message(commitMessage(typed));
    const ShellResult result =
        runGit(projectPath, {QStringLiteral("commit"), QStringLiteral("-F"), message.path()});
    if (result.status == 0)
        return std::nullopt;
    const QString error = withoutEscapeCodes(result.err);
    return error.isEmpty() ? withoutEscapeCodes(result.out) : error;
}
