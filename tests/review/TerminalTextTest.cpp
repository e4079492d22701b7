// SPDX-License-Identifier: GPL-3.0-or-later
#include "review/TerminalText.h"

#include "support/TestMain.h"

class TerminalTextTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void leavesText_data();
    void leavesText();
};

void TerminalTextTest::leavesText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("plain");
    const auto row = [](const char *name, const QString &text, const QString &plain) {
        QTest::newRow(name) << text << plain;
    };
    const auto same = [&](const char *name, const QString &text) { row(name, text, text); };
    same("empty", QString());
    same("text", QStringLiteral("error: \u00e9 \u65e5\u672c \U0001F600\n\tat line 3\n"));
    same("brackets", QStringLiteral("[31m is no code [0m"));
    row("colours", QStringLiteral("\x1b[31mred\x1b[0m \x1b[1;38;5;208mbold\x1b[m"),
        QStringLiteral("red bold"));
    row("true colour with colons", QStringLiteral("\x1b[38:2::255:0:0mred\x1b[0m"),
        QStringLiteral("red"));
    row("link ended by a bell", QStringLiteral("\x1b]8;;https://example.org\atext\x1b]8;;\a!"),
        QStringLiteral("text!"));
    row("link ended by a string terminator",
        QStringLiteral("\x1b]8;;https://example.org\x1b\\text\x1b]8;;\x1b\\!"),
        QStringLiteral("text!"));
    row("title", QStringLiteral("\x1b]0;title\atext"), QStringLiteral("text"));
    row("cursor and erasing", QStringLiteral("\x1b[2K\x1b[1Gtext\x1b[?25l\x1b[?25h"),
        QStringLiteral("text"));
    row("other sequences",
        QStringLiteral("\x1b(B\x1b=\x1b"
                       "7text\x1b"
                       "8\x1b>\x1b"
                       "c"),
        QStringLiteral("text"));
    row("eight-bit introducer", QStringLiteral("\u009b31mred\u009b0m"), QStringLiteral("red"));
    row("device string", QStringLiteral("\x1bPq#0;2\x1b\\text"), QStringLiteral("text"));
    row("sequence cut at the end", QStringLiteral("text\x1b[31"), QStringLiteral("text"));
    row("escape at the end", QStringLiteral("text\x1b"), QStringLiteral("text"));
    row("sequence cut by a line", QStringLiteral("a\x1b[31\nb"), QStringLiteral("a\nb"));
    row("string without end", QStringLiteral("a\x1b]8;;b\nc"), QStringLiteral("a8;;b\nc"));
    row("sequence in a sequence", QStringLiteral("\x1b[3\x1b[31mred"), QStringLiteral("red"));
    row("line ends", QStringLiteral("a\r\nb\rc\n"), QStringLiteral("a\nb\nc\n"));
    row("controls", QStringLiteral("a\ab\bc\u0000d\u007fe\u0085f\vg\f"), QStringLiteral("abcdefg"));
}

void TerminalTextTest::leavesText()
{
    QFETCH(const QString, text);
    QTEST(withoutEscapeCodes(text), "plain");
}

PLINTHAR_TEST_MAIN(TerminalTextTest)
#include "TerminalTextTest.moc"
