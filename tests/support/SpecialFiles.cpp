// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/SpecialFiles.h"

#include <QDir>
#include <QFile>

#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr uid_t nobody = 65534;

void require(bool done, const QString &path)
{
    if (!done)
        qFatal("cannot make %s", qPrintable(path));
}

} // namespace

QStringList specialFiles()
{
    return {QStringLiteral("fifo"),   QStringLiteral("socket"),   QStringLiteral("device"),
            QStringLiteral("folder"), QStringLiteral("dangling"), QStringLiteral("loop"),
            QStringLiteral("failing")};
}

void makeSpecialFiles(const QString &folder, const QString &extension)
{
    const auto path = [&](const char *name) {
        return folder + u'/' + QString::fromLatin1(name) + extension;
    };
    const auto node = [&](const char *name, mode_t kind) {
        require(::mknod(QFile::encodeName(path(name)).constData(), kind | 0600, 0) == 0,
                path(name));
    };
    const auto link = [&](const char *name, const QString &target) {
        require(QFile::link(target, path(name)), path(name));
    };
    require(QDir().mkpath(folder), folder);
    node("fifo", S_IFIFO);
    node("socket", S_IFSOCK);
    link("device", QStringLiteral("/dev/zero"));
    require(QDir().mkpath(path("folder")), path("folder"));
    link("dangling", folder + QStringLiteral("/nowhere"));
    link("loop", path("loop"));
    link("failing", fileWithReadErrors());
}

QString fileWithReadErrors()
{
    return QStringLiteral("/proc/self/mem"); // nothing is mapped at address 0
}

Unprivileged::Unprivileged() : m_wasRoot(::geteuid() == 0)
{
    if (m_wasRoot && ::seteuid(nobody) != 0)
        qFatal("root cannot become nobody");
}

Unprivileged::~Unprivileged()
{
    if (m_wasRoot && ::seteuid(0) != 0)
        qFatal("nobody cannot become root again");
}
