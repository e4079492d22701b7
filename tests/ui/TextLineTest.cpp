// SPDX-License-Identifier: GPL-3.0-or-later

// In a window from right to left, English text stands at the right and still reads as English.

#include "ui/TextLine.h"

#include "review/DiffParser.h"
#include "review/DiffView.h"
#include "support/WindowTestMain.h"
#include "ui/TextLabel.h"
#include "ui/ToolTips.h"

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QToolTip>

#include <algorithm>

namespace {

const QString arabic = u"\u0645\u0631\u062d\u0628\u0627 (1)."_qs;

QImage drawn(const QString &text, Qt::LayoutDirection window, Qt::Alignment alignment)
{
    QImage image(300, 30, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setLayoutDirection(window);
    drawTextLine(&painter, image.rect(), alignment, text, directionOf(text));
    return image;
}

/// The widget as a window of that direction shows it.
QImage shown(QWidget &widget, Qt::LayoutDirection direction)
{
    QGuiApplication::setLayoutDirection(direction);
    widget.resize(320, 60);
    return widget.grab().toImage();
}

} // namespace

class TextLineTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { QGuiApplication::setLayoutDirection(Qt::LeftToRight); }

    void theTextDecidesWhichWayItRuns_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("full stop") << u"The end."_qs;
        QTest::newRow("number first") << u"13 changed"_qs;
        QTest::newRow("path") << u"/home/code"_qs;
        QTest::newRow("ellipsis first") << u"\u2026code/(x)"_qs;
        QTest::newRow("no letters") << u"-1 +2"_qs;
        QTest::newRow("Arabic") << arabic;
    }

    void theTextDecidesWhichWayItRuns()
    {
        QFETCH(const QString, text);
        const QImage right = drawn(text, Qt::LeftToRight, Qt::AlignRight);
        QCOMPARE(drawn(text, Qt::RightToLeft, Qt::AlignLeft), right);
        QCOMPARE(drawn(text, Qt::RightToLeft, Qt::AlignRight),
                 drawn(text, Qt::LeftToRight, Qt::AlignLeft));
        QVERIFY(right != drawn(text, Qt::LeftToRight, Qt::AlignLeft));
    }

    void onlyTheStartOfAMegabyteIsLookedAt()
    {
        QCOMPARE(directionOf(arabic + QString(1'000'000, u'-')), Qt::RightToLeft);
        QCOMPARE(directionOf(QString(1'000'000, u'-') + arabic), Qt::LeftToRight);
    }

    void aLabelStandsAtTheOtherSide_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<TextLabel::Overflow>("overflow");
        const QString text = u"(One) sentence, and another one."_qs;
        QTest::newRow("one line") << text << TextLabel::Overflow::ElideTail;
        QTest::newRow("a path") << u"/home/code/"_qs << TextLabel::Overflow::ElideHead;
        QTest::newRow("wrapped") << text.repeated(3) << TextLabel::Overflow::Wrap;
        QTest::newRow("wrapped Arabic") << arabic.repeated(20) << TextLabel::Overflow::Wrap;
    }

    void aLabelStandsAtTheOtherSide()
    {
        QFETCH(const QString, text);
        QFETCH(const TextLabel::Overflow, overflow);
        TextLabel label(text, {.overflow = overflow});
        TextLabel right(text, {.overflow = overflow});
        right.setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        QCOMPARE(shown(label, Qt::RightToLeft), shown(right, Qt::LeftToRight));
    }

    void aToolTipReadsTheSame_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("of the program") << u"Look for changes again (F5)"_qs;
        QTest::newRow("from outside") << plainToolTip(u"/home/code/(one)."_qs);
    }

    void aToolTipReadsTheSame()
    {
        QFETCH(const QString, text);
        const auto toolTip = [&](Qt::LayoutDirection direction) {
            QGuiApplication::setLayoutDirection(direction);
            QWidget widget;
            QToolTip::showText(QPoint(), text, &widget);
            const QWidgetList windows = QApplication::topLevelWidgets();
            const auto tip = std::find_if(windows.begin(), windows.end(), [](QWidget *window) {
                return window->inherits("QTipLabel") && window->isVisible();
            });
            const QImage image = tip == windows.end() ? QImage() : (*tip)->grab().toImage();
            QToolTip::hideText();
            delete (tip == windows.end() ? nullptr : *tip);
            return image;
        };
        const QImage usual = toolTip(Qt::LeftToRight);
        QVERIFY(!usual.isNull());
        QCOMPARE(toolTip(Qt::RightToLeft), usual);
    }

    void aDiffReadsTheSame()
    {
        DiffView diff;
        diff.setDocument(std::make_shared<DiffDocument>(DiffParser::parse(
            u"@@ -1,2 +1,2 @@ main()\n \"a\": (b);\n-return { c };\n+\treturn { d };\n"_qs)));
        diff.resize(900, 300);
        diff.show();
        QVERIFY(QTest::qWaitForWindowExposed(&diff));
        const QImage usual = diff.viewport()->grab().toImage();
        QGuiApplication::setLayoutDirection(Qt::RightToLeft);
        QCOMPARE(diff.viewport()->grab().toImage(), usual);
        QCOMPARE(diff.viewport()->mapTo(&diff, QPoint()), QPoint());
    }
};

PLINTHAR_WINDOW_TEST_MAIN(TextLineTest)
#include "TextLineTest.moc"
