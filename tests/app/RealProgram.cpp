// SPDX-License-Identifier: GPL-3.0-or-later
#include "RealProgram.h"

#include <QDir>

RealProgram::RealProgram(const PrivateHome &home, const QProcessEnvironment &environment)
    : m_environment(environment)
{
    const QString runtime = home.path(QStringLiteral("runtime"));
    if (!QDir().mkpath(runtime) ||
        !QFile::setPermissions(runtime, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner))
        qFatal("no folder for what runs");
    setVariable(QStringLiteral("XDG_RUNTIME_DIR"), runtime);
    setVariable(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), QStringLiteral("unix:path=/nowhere"));
    setVariable(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    setVariable(QStringLiteral("QT_PLUGIN_PATH"), QStringLiteral(PLUGINS));
    setVariable(QStringLiteral("QT_QPA_GENERIC_PLUGINS"), QStringLiteral("KeyPresser:stdin"));
    setProcessChannelMode(QProcess::ForwardedChannels);
}

RealProgram::~RealProgram()
{
    kill();
    waitForFinished(-1);
}

void RealProgram::setVariable(const QString &name, const QString &value)
{
    m_environment.insert(name, value);
}

void RealProgram::pressKeys(const QString &combinations)
{
    setVariable(QStringLiteral("QT_QPA_GENERIC_PLUGINS"),
                QStringLiteral("KeyPresser:") + combinations);
}

void RealProgram::perform(const QStringList &steps)
{
    write((steps.join(u'\n') + u'\n').toUtf8());
}

bool RealProgram::begin()
{
    setProcessEnvironment(m_environment);
    start(QStringLiteral(PROGRAM), QStringList());
    return waitForStarted(60'000);
}

void preload(QProcessEnvironment &environment, const QString &library)
{
    environment.insert(QStringLiteral("LD_PRELOAD"), library);
    // A sanitizer otherwise wants to be the first library of its program.
    environment.insert(QStringLiteral("ASAN_OPTIONS"),
                       QStringLiteral("verify_asan_link_order=0:detect_leaks=0"));
}

QString addProject(const PrivateHome &home)
{
    QString folder = home.path(QStringLiteral("project"));
    if (!QDir().mkpath(folder))
        qFatal("no folder for the project");
    writeFile(home.support(QStringLiteral("projects.json")), "[\"" + folder.toUtf8() + "\"]");
    return folder;
}
