// SPDX-License-Identifier: GPL-3.0-or-later
#include "review/GitCommand.h"

ShellResult runGit(const QString &projectPath, const QStringList &arguments,
                   const std::stop_token &stop)
{
    return runProcess(QStringLiteral("/usr/bin/git"),
                      QStringList{QStringLiteral("-C"), projectPath} + arguments, std::nullopt,
                      std::nullopt, stop);
}
