// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/Colors.h"

#include "support/GuiTestMain.h"

#include <cmath>

namespace {

double linear(double share)
{
    return share <= 0.04045 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
}

double luminance(const QColor &color)
{
    return 0.2126 * linear(double(color.redF())) + 0.7152 * linear(double(color.greenF())) +
           0.0722 * linear(double(color.blueF()));
}

/// Contrast of text and background as the web's accessibility guidelines define it.
double contrast(const QColor &a, const QColor &b)
{
    const double light = std::max(luminance(a), luminance(b));
    const double dark = std::min(luminance(a), luminance(b));
    return (light + 0.05) / (dark + 0.05);
}

QPalette paletteOf(const QColor &text, const QColor &window, const QColor &base)
{
    QPalette palette;
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text})
        palette.setColor(role, text);
    palette.setColor(QPalette::Window, window);
    palette.setColor(QPalette::Base, base);
    return palette;
}

void addPalettes()
{
    QTest::addColumn<QPalette>("palette");
    QTest::newRow("light") << paletteOf(Qt::black, QColor(0xef, 0xef, 0xef), Qt::white);
    QTest::newRow("light and soft")
        << paletteOf(QColor(0x23, 0x26, 0x29), QColor(0xef, 0xf0, 0xf1), QColor(0xfc, 0xfc, 0xfc));
    QTest::newRow("dark") << paletteOf(Qt::white, QColor(0x32, 0x32, 0x32),
                                       QColor(0x24, 0x24, 0x24));
    QTest::newRow("dark and soft")
        << paletteOf(QColor(0xfc, 0xfc, 0xfc), QColor(0x2a, 0x2e, 0x32), QColor(0x1b, 0x1e, 0x20));
    QTest::newRow("high contrast") << paletteOf(Qt::white, Qt::black, Qt::black);
}

constexpr double enough = 4.5;

} // namespace

class ColorsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theMeasureItself()
    {
        QVERIFY(qAbs(contrast(Qt::black, Qt::white) - 21) < 0.001);
        QVERIFY(qAbs(contrast(Qt::white, QColor(0x76, 0x76, 0x76)) - 4.54) < 0.01);
    }

    void secondaryTextIsReadable_data() { addPalettes(); }

    void secondaryTextIsReadable()
    {
        QFETCH(QPalette, palette);
        const QColor onWindow = Colors::secondaryText(palette);
        QVERIFY(contrast(onWindow, palette.color(QPalette::Window)) >= enough);
        const QColor onBase = Colors::secondaryText(palette, QPalette::Text, QPalette::Base);
        QVERIFY(contrast(onBase, palette.color(QPalette::Base)) >= enough);
    }

    void secondaryTextStandsBack_data() { addPalettes(); }

    void secondaryTextStandsBack()
    {
        QFETCH(QPalette, palette);
        const QColor window = palette.color(QPalette::Window);
        QVERIFY(contrast(Colors::secondaryText(palette), window) <
                0.8 * contrast(palette.color(QPalette::WindowText), window));
    }

    void huesAreReadable_data() { addPalettes(); }

    void huesAreReadable()
    {
        QFETCH(QPalette, palette);
        using Colors::Hue;
        for (const Hue hue : {Hue::Blue, Hue::Orange, Hue::Green, Hue::Red}) {
            const QColor color = Colors::hue(hue, palette);
            for (const QPalette::ColorRole role : {QPalette::Window, QPalette::Base}) {
                const double ratio = contrast(color, palette.color(role));
                QVERIFY2(ratio >= enough, qPrintable(u"%1: %2"_qs.arg(int(hue)).arg(ratio)));
            }
        }
    }

    void fillsAreSeen_data() { addPalettes(); }

    void fillsAreSeen()
    {
        QFETCH(QPalette, palette);
        using Colors::Hue;
        for (const Hue hue : {Hue::Blue, Hue::Orange, Hue::Green, Hue::Red}) {
            const QColor color = Colors::fill(hue, palette);
            QCOMPARE(color.hue() / 15, Colors::hue(hue, palette).hue() / 15);
            for (const QPalette::ColorRole role : {QPalette::Window, QPalette::Base})
                QVERIFY(contrast(color, palette.color(role)) >= 3);
        }
    }

    void huesDiffer_data() { addPalettes(); }

    void huesDiffer()
    {
        QFETCH(QPalette, palette);
        using Colors::Hue;
        QSet<int> angles;
        for (const Hue hue : {Hue::Blue, Hue::Orange, Hue::Green, Hue::Red})
            angles.insert(Colors::hue(hue, palette).hue() / 15);
        QCOMPARE(angles.size(), 4);
    }

    void theFocusIsSeen_data() { addPalettes(); }

    void theFocusIsSeen()
    {
        QFETCH(QPalette, palette);
        for (const QColor &highlight :
             {QColor(0x30, 0x8c, 0xc6), QColor(0x1a, 0xeb, 0xff), QColor(0x37, 0, 0x6e)}) {
            palette.setColor(QPalette::Highlight, highlight);
            for (const QPalette::ColorRole role : {QPalette::Window, QPalette::Base})
                QVERIFY(contrast(Colors::focus(palette), palette.color(role)) >= 3);
        }
    }

    void theMeasureIsTheSame()
    {
        const QColor one(0x30, 0x8c, 0xc6);
        const QColor other(0xef, 0xf0, 0xf1);
        QVERIFY(qAbs(Colors::contrast(one, other) - contrast(one, other)) < 0.001);
        QCOMPARE(Colors::contrast(one, other), Colors::contrast(other, one));
    }

    void theSeparatorIsFaint_data() { addPalettes(); }

    void theSeparatorIsFaint()
    {
        QFETCH(QPalette, palette);
        const double ratio = contrast(Colors::separator(palette), palette.color(QPalette::Window));
        QVERIFY(ratio > 1.1);
        QVERIFY(ratio < 2.5);
    }
};

PLINTHAR_GUI_TEST_MAIN(ColorsTest)
#include "ColorsTest.moc"
