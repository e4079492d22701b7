// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/ScratchHome.h"

#include <QDir>

#include <array>
#include <utility>

namespace {

constexpr std::array<std::pair<const char *, const char *>, 5> folders{
    {{"HOME", ""},
     {"XDG_DATA_HOME", "/.local/share"},
     {"XDG_CONFIG_HOME", "/.config"},
     {"XDG_CACHE_HOME", "/.cache"},
     {"GIT_CONFIG_GLOBAL", "/.gitconfig"}}};

} // namespace

ScratchHome::ScratchHome() : m_folder(QDir::tempPath() + QStringLiteral("/plinthar-bench-XXXXXX"))
{
}

QProcessEnvironment ScratchHome::environment() const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const auto &[name, below] : folders)
        environment.insert(QString::fromLatin1(name), m_folder.path() + QString::fromLatin1(below));
    // Qt would make such a folder itself and leave it.
    if (!environment.contains(QStringLiteral("XDG_RUNTIME_DIR")))
        environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), m_folder.path());
    return environment;
}

void ScratchHome::enter() const
{
    for (const auto &[name, below] : folders)
        qputenv(name, m_folder.path().toLocal8Bit() + below);
    if (!qEnvironmentVariableIsSet("XDG_RUNTIME_DIR"))
        qputenv("XDG_RUNTIME_DIR", m_folder.path().toLocal8Bit());
}
