// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/LogLines.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

QByteArray line(QJsonObject object, const QString &time)
{
    if (!time.isEmpty())
        object.insert(u"timestamp", time);
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

} // namespace

namespace LogLines {

QByteArray user(const QString &time, const QString &text, const QString &cwd)
{
    QJsonObject object{
        {QStringLiteral("type"), QStringLiteral("user")},
        {QStringLiteral("message"), QJsonObject{{QStringLiteral("role"), QStringLiteral("user")},
                                                {QStringLiteral("content"), text}}}};
    if (!cwd.isEmpty())
        object.insert(u"cwd", cwd);
    return line(object, time);
}

QByteArray assistant(const QString &time, const QString &model, const Tokens &tokens,
                     const QString &id)
{
    QJsonObject message{
        {QStringLiteral("role"), QStringLiteral("assistant")},
        {QStringLiteral("model"), model},
        {QStringLiteral("usage"),
         QJsonObject{{QStringLiteral("input_tokens"), tokens.input},
                     {QStringLiteral("output_tokens"), tokens.output},
                     {QStringLiteral("cache_creation_input_tokens"), tokens.cacheWrite},
                     {QStringLiteral("cache_read_input_tokens"), tokens.cacheRead}}}};
    if (!id.isEmpty())
        message.insert(u"id", id);
    return line(QJsonObject{{QStringLiteral("type"), QStringLiteral("assistant")},
                            {QStringLiteral("message"), message}},
                time);
}

QByteArray log(const QList<QByteArray> &lines)
{
    QByteArray bytes;
    for (const QByteArray &one : lines)
        bytes += one + '\n';
    return bytes;
}

} // namespace LogLines
