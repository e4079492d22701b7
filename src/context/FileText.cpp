// SPDX-License-Identifier: GPL-3.0-or-later
#include "context/FileText.h"

#include <QStringDecoder>

namespace {

constexpr QByteArrayView byteOrderMark("\xef\xbb\xbf");

/// The break that occurs most often; of equally frequent ones the first in this order.
char16_t commonBreak(const QString &text)
{
    char16_t common = u'\n';
    qsizetype most = 0;
    for (const char16_t unit : {u'\n', crLf, u'\r'}) {
        const qsizetype count = text.count(QChar(unit));
        if (count > most) {
            most = count;
            common = unit;
        }
    }
    return common;
}

} // namespace

std::optional<FileText> decodeText(const QByteArray &bytes)
{
    FileText file;
    file.byteOrderMark = bytes.startsWith(byteOrderMark);
    const auto rest = QByteArrayView(bytes).sliced(file.byteOrderMark ? byteOrderMark.size() : 0);
    // Stateless reports a sequence that the end cuts off, ConvertInitialBom keeps a second mark.
    QStringDecoder decode(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless |
                                                    QStringDecoder::Flag::ConvertInitialBom);
    file.text = decode(rest);
    if (decode.hasError())
        return std::nullopt;
    file.text.replace(QStringLiteral("\r\n"), QString(QChar(crLf)));
    file.newLine = commonBreak(file.text);
    return file;
}

QByteArray encodeText(const FileText &file)
{
    QString text = file.text;
    text.replace(QChar(crLf), QStringLiteral("\r\n"));
    return (file.byteOrderMark ? byteOrderMark.toByteArray() : QByteArray()) + text.toUtf8();
}
