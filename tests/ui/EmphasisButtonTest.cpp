// SPDX-License-Identifier: GPL-3.0-or-later

// Buttons, fields and check boxes are seen, and what stands on them is read, in every palette.

#include "ui/EmphasisButton.h"

#include "support/GuiTestMain.h"
#include "ui/Outlined.h"

#include <QImage>
#include <QStyleFactory>

#include <algorithm>

namespace {

using Emphasis = EmphasisButton::Emphasis;

QPalette paletteOf(const QColor &text, const QColor &window, const QColor &button,
                   const QColor &highlight, const QColor &highlighted)
{
    QPalette palette(button, window);
    for (const QPalette::ColorRole role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(role, text);
    palette.setColor(QPalette::Base, window.lightness() < 128 ? window.darker(120) : Qt::white);
    palette.setColor(QPalette::Highlight, highlight);
    palette.setColor(QPalette::HighlightedText, highlighted);
    return palette;
}

void addPalettes()
{
    QTest::addColumn<QPalette>("palette");
    const QColor blue(0x30, 0x8c, 0xc6);
    QTest::newRow("light") << paletteOf(Qt::black, QColor(0xef, 0xef, 0xef),
                                        QColor(0xef, 0xef, 0xef), blue, Qt::white);
    QTest::newRow("dark") << paletteOf(QColor(0xe4, 0xe5, 0xe7), QColor(0x2b, 0x2d, 0x30),
                                       QColor(0x36, 0x38, 0x3c), blue, Qt::white);
    QTest::newRow("black") << paletteOf(Qt::white, Qt::black, Qt::black, QColor(0x1a, 0xeb, 0xff),
                                        Qt::black);
    QTest::newRow("white") << paletteOf(Qt::black, Qt::white, Qt::white, QColor(0x37, 0, 0x6e),
                                        Qt::white);
}

/// Picture of a widget on its ground, with room around it.
QImage pictureOf(QWidget *widget, const QPalette &palette)
{
    QWidget ground;
    ground.setPalette(palette);
    ground.resize(220, 80);
    widget->setParent(&ground);
    widget->setGeometry(20, 20, 180, 40);
    const QImage picture = ground.grab().toImage();
    widget->setParent(nullptr);
    return picture;
}

/// The greatest contrast in a place with the colour of its middle row's first pixel.
double mostContrast(const QImage &picture, const QRect &place)
{
    double most = 1;
    for (int y = place.top(); y <= place.bottom(); ++y) {
        const QColor ground = picture.pixelColor(place.left(), y);
        for (int x = place.left(); x <= place.right(); ++x)
            most = std::max(most, Colors::contrast(ground, picture.pixelColor(x, y)));
    }
    return most;
}

/// Of the edge at the left, halfway down.
double edgeContrast(const QImage &picture, int left)
{
    return mostContrast(picture, QRect(left - 5, 40, 10, 1));
}

} // namespace

class EmphasisButtonTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QApplication::setStyle(QStyleFactory::create(u"Fusion"_qs)); }

    void theTextIsRead_data() { addPalettes(); }

    void theTextIsRead()
    {
        QFETCH(const QPalette, palette);
        for (const Emphasis emphasis :
             {Emphasis::None, Emphasis::Prominent, Emphasis::Destructive}) {
            EmphasisButton button(emphasis, u"\u2588\u2588\u2588"_qs); // ink without soft edges
            const QImage picture = pictureOf(&button, palette);
            const double contrast = mostContrast(picture, QRect(30, 25, 160, 30));
            QVERIFY2(contrast >= 4.5, qPrintable(u"%1: %2"_qs.arg(int(emphasis)).arg(contrast)));
        }
    }

    void theEmphasisIsSeen_data() { addPalettes(); }

    void theEmphasisIsSeen()
    {
        QFETCH(const QPalette, palette);
        EmphasisButton plain(u"Go"_qs);
        EmphasisButton prominent(Emphasis::Prominent, u"Go"_qs);
        EmphasisButton destructive(Emphasis::Destructive, u"Go"_qs);
        const QImage usual = pictureOf(&plain, palette);
        QVERIFY(pictureOf(&prominent, palette) != usual);
        QVERIFY(pictureOf(&destructive, palette) != usual);
        prominent.setEnabled(false);
        plain.setEnabled(false);
        QCOMPARE(pictureOf(&prominent, palette), pictureOf(&plain, palette));
    }

    /// In a window from right to left an ellipsis would else stand before English text.
    void aButtonReadsTheSameInBothDirections()
    {
        EmphasisButton button(Emphasis::Prominent, u"Commit\u2026"_qs);
        const QImage usual = pictureOf(&button, QApplication::palette());
        QGuiApplication::setLayoutDirection(Qt::RightToLeft);
        const QImage mirrored = pictureOf(&button, QApplication::palette());
        QGuiApplication::setLayoutDirection(Qt::LeftToRight);
        QCOMPARE(mirrored, usual);
    }

    void theOutlineIsSeen_data() { addPalettes(); }

    void theOutlineIsSeen()
    {
        QFETCH(const QPalette, palette);
        OutlinedLineEdit field;
        const double ofField = edgeContrast(pictureOf(&field, palette), 20);
        QVERIFY2(ofField >= 3, qPrintable(QString::number(ofField)));
        OutlinedCheckBox box;
        const double ofBox = edgeContrast(pictureOf(&box, palette), 20);
        QVERIFY2(ofBox >= 3, qPrintable(QString::number(ofBox)));
        EmphasisButton button(u"Go"_qs);
        const double ofButton = edgeContrast(pictureOf(&button, palette), 20);
        QVERIFY2(ofButton >= 1.3, qPrintable(QString::number(ofButton)));
    }
};

PLINTHAR_GUI_TEST_MAIN(EmphasisButtonTest)
#include "EmphasisButtonTest.moc"
