// SPDX-License-Identifier: GPL-3.0-or-later
// The name of a log folder is one name: of letters, digits and hyphens, one for every character of
// the path.

#include "Property.h"
#include "Target.h"
#include "model/Discovery.h"

#include <QTextBoundaryFinder>

namespace {

QStringList characters(const QString &text)
{
    QStringList found;
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    qsizetype begin = 0;
    for (qsizetype end = finder.toNextBoundary(); end > 0; end = finder.toNextBoundary()) {
        found.append(text.mid(begin, end - begin));
        begin = end;
    }
    return found;
}

bool beginsWithLetterOrNumber(const QString &character)
{
    // toUcs4() makes a replacement character of a lone surrogate, which is neither.
    return QChar::isLetterOrNumber(char32_t(character.toUcs4().first()));
}

void checkPath(const QString &path)
{
    const QString name = Discovery::encodeClaudeDir(path);
    QString expected;
    for (const QString &character : characters(path)) {
        const bool stays = beginsWithLetterOrNumber(character) && !character.contains(u'/');
        expected += stays ? character : QStringLiteral("-");
    }
    same(name, expected, "every character has its own");
    holds(name.size() <= path.size(), "no name is longer than its path");
    holds(!name.contains(u'/'), "a name is not a path");
}

} // namespace

namespace Target {

void check(const QByteArray &input)
{
    const QString path = QString::fromUtf8(input);
    checkPath(path);
    // And with lone surrogates, which a text from elsewhere may hold.
    checkPath(QString(reinterpret_cast<const QChar *>(input.constData()), input.size() / 2));
    // Every character of Latin-1 stands for itself, but for two ends of a line.
    const QString simple = QString::fromLatin1(input).remove(u'\r');
    const QString name = Discovery::encodeClaudeDir(simple);
    holds(name.size() == simple.size(), "a simple path keeps its length");
    for (const QChar unit : name)
        holds(unit == u'-' || unit.isLetterOrNumber(), "letters, digits and hyphens only");
}

QByteArrayList seeds()
{
    return {"/home/x/my project.2",
            "",
            "/\xc3\x9c"
            "bung/e\xcc\x81/\xe6\x97\xa5",
            "\r\n/\r/\n",
            "\xf0\x9f\x91\xa9\xe2\x80\x8d\xf0\x9f\x91\xa9\xf0\x9f\x91\x8d\xf0\x9f\x8f\xbd",
            "\xf0\x9f\x87\xa9\xf0\x9f\x87\xaa/\xf0\x9d\x92\x9c",
            "\xd8\x80/\xe0\xb5\x8e./\xe0\xa4\x95\xe0\xa4\xbf",
            "\xed\xa0\xbd/\xff"};
}

QByteArrayList words()
{
    return {"/",
            "\xcc\x81",
            "\xe2\x80\x8d",
            "\xef\xb8\x8f",
            "\r\n",
            "\xd8\x80",
            "\xe0\xb5\x8e",
            "\xf0\x9f\x87\xa9",
            "\xe1\x84\x80",
            "\xe1\x85\xa1",
            "\xe0\xb8\xb3",
            "\xf0\x9f\x98\x80",
            "\xf0\x9d\x92\x9c",
            "\xf0\x91\x82\xbd"};
}

} // namespace Target
