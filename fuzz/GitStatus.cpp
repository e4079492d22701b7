// SPDX-License-Identifier: GPL-3.0-or-later
// A list of changes that was written from known files parses back to these files; and whatever
// else is taken for a list, what was found in it can be written and found again.

#include "review/GitStatus.h"

#include "Choices.h"
#include "Property.h"
#include "Target.h"

#include <QStringList>

#include <algorithm>
#include <array>

namespace {

constexpr std::array<char16_t, 10> columns{u' ', u'M', u'T', u'A', u'D',
                                           u'R', u'C', u'U', u'?', u'!'};

bool hasSource(const GitFile &file)
{
    return QStringLiteral("RC").contains(file.x) || QStringLiteral("RC").contains(file.y);
}

/// As `git status --porcelain=v1 -z` prints it.
QString written(const QList<GitFile> &files, const QString &source)
{
    QString text;
    for (const GitFile &file : files) {
        text += QString(file.x) + file.y + u' ' + file.path + QChar(QChar::Null);
        if (hasSource(file))
            text += source + QChar(QChar::Null);
    }
    return text;
}

QString described(const QList<GitFile> &files)
{
    QStringList texts;
    for (const GitFile &file : files)
        texts.append(QStringLiteral("%1%2 \"%3\"").arg(file.x).arg(file.y).arg(file.path));
    return texts.join(u'\n');
}

void checkText(const QString &text)
{
    const QList<GitFile> files = parseStatus(text);
    qsizetype units = 0;
    for (const GitFile &file : files) {
        holds(!file.path.isEmpty(), "every file has a path");
        holds(!file.path.contains(QChar::Null), "no path goes on in the next one");
        holds(text.contains(file.path), "no path is made up");
        holds(file.badge().size() <= 2, "a badge is short");
        units += file.path.size() + 3;
    }
    holds(units <= text.size() + 1, "no part of the text is used twice");
    // Git's columns are ASCII. Behind others, a path that begins with a combining character is one
    // character with the blank before it.
    const bool gits = std::all_of(files.begin(), files.end(), [](const GitFile &file) {
        return file.x.unicode() < 0x80 && file.y.unicode() < 0x80 && file.x != u'\r' &&
               file.y != u'\r';
    });
    if (gits)
        same(described(parseStatus(written(files, QStringLiteral("s")))), described(files),
             "what was found is found again");
}

void checkFiles(Choices choices)
{
    QList<GitFile> files;
    while (!choices.atEnd()) {
        GitFile file;
        file.x = choices.oneOf(columns);
        file.y = choices.oneOf(columns);
        file.path = choices.textWithout(QChar::Null);
        if (!file.path.isEmpty())
            files.append(file);
    }
    // Which would be a file by itself.
    const QString source = QStringLiteral("?? source");
    same(described(parseStatus(written(files, source))), described(files), "the files come back");
}

} // namespace

namespace Target {

void check(const QByteArray &input)
{
    checkText(QString::fromUtf8(input));
    checkFiles(Choices(input));
}

QByteArrayList seeds()
{
    const auto list = [](const char *text) { return QByteArray(text).replace('|', '\0'); };
    return {list(" M a|?? b c|A  d|"),
            list("R  new|old| R new|old|C  x|y|"),
            list("?? \xcc\x81|UU \xf0\x9f\x98\x80/|"),
            list("??|M |R |old|"),
            list("\xc3\xa9M a|\r\n M|M\r\n a|"),
            list("a\xcc\x81M a|\xf0\x9f\x98\x80  b|"),
            QByteArray("\1\1\3a/b\5\0\2xy\10\10\1\\", 12)};
}

QByteArrayList words()
{
    return {QByteArray(" M a\0", 5),
            QByteArray("R  b\0a\0", 7),
            "?? ",
            QByteArray(1, '\0'),
            "\xcc\x81",
            "\xf0\x9f\x98\x80",
            "\xe2\x80\x8d",
            "\r\n"};
}

} // namespace Target
