// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/FileManager.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDesktopServices>
#include <QFileInfo>
#include <QUrl>

namespace {

void openFolderAround(const QString &path)
{
    QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(path).path()));
}

} // namespace

void revealInFileManager(const QString &path, QObject *context)
{
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return openFolderAround(path);
    // freedesktop.org's file manager interface.
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.FileManager1"),
        QStringLiteral("/org/freedesktop/FileManager1"),
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
    const QString startupId;
    call << QStringList{QUrl::fromLocalFile(path).toString(QUrl::FullyEncoded)} << startupId;
    auto *answer = new QDBusPendingCallWatcher(bus.asyncCall(call), context);
    QObject::connect(answer, &QDBusPendingCallWatcher::finished, context, [answer, path] {
        if (answer->isError())
            openFolderAround(path);
        answer->deleteLater();
    });
}
