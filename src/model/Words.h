// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringView>

/// Takes the next word off the beginning of the rest of a line: what stands between blanks. Empty
/// when there is none.
inline QStringView takeWord(QStringView &rest)
{
    qsizetype begin = 0;
    while (begin < rest.size() && rest[begin] == u' ')
        ++begin;
    qsizetype end = begin;
    while (end < rest.size() && rest[end] != u' ')
        ++end;
    const QStringView word = rest.mid(begin, end - begin);
    rest = rest.mid(end);
    return word;
}
