// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QTest>

/// Texts that mean something else to a reader than they are, and as what they have to be shown.
namespace HostileTexts {

/// The columns "text" and "seen": characters that are not to be seen, and the names in their place.
inline void addUnseen()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("seen");
    QTest::newRow("right-to-left override")
        << u"report\u202egpj.exe"_qs << u"report[RLO]gpj.exe"_qs;
    QTest::newRow("isolates") << u"\u2067a\u2069 b"_qs << u"[RLI]a[PDI] b"_qs;
    QTest::newRow("escape sequence") << u"x\033[2Jy"_qs << u"x[ESC][2Jy"_qs;
    QTest::newRow("nothing wide") << u"a\u200b\u200bb"_qs << u"a[ZWS][ZWS]b"_qs;
}

/// The columns "text" and "taken": what looks like markup, and what it would be shown as if it were
/// taken for that.
inline void addMarkup()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("taken");
    QTest::newRow("bold") << u"a <b>word</b> b"_qs << u"a word b"_qs;
    QTest::newRow("image") << u"<img src=file:///etc/hostname> x"_qs << u" x"_qs;
    QTest::newRow("entity") << u"a &amp; b"_qs << u"a & b"_qs;
    QTest::newRow("mnemonic") << u"a &b &&c"_qs << u"a b &c"_qs;
}

/// The text as a name of a file, which can have no slash.
inline QString asName(QString text)
{
    return text.remove(u'/');
}

} // namespace HostileTexts
