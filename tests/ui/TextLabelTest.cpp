// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/TextLabel.h"

#include "support/Input.h"
#include "support/WindowTestMain.h"
#include "ui/Colors.h"
#include "ui/ToolTips.h"

#include <QVBoxLayout>

namespace {

using Overflow = TextLabel::Overflow;

const QString words = u"some words that go on "_qs.repeated(20).trimmed();
const QString path = u"/folder"_qs.repeated(60);

/// A label of that size on the screen.
std::unique_ptr<TextLabel> shownLabel(const QString &text, Overflow overflow, const QSize &size)
{
    auto label = std::make_unique<TextLabel>(text, TextLabel::Style{.overflow = overflow});
    label->resize(size);
    label->show();
    if (!QTest::qWaitForWindowExposed(label.get()))
        qFatal("the label does not show");
    return label;
}

QImage pictureOf(const QString &text, Overflow overflow, const QSize &size = QSize(200, 20))
{
    return shownLabel(text, overflow, size)->grab().toImage();
}

} // namespace

class TextLabelTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void textIsAlwaysTheWhole()
    {
        for (const Overflow overflow : {Overflow::ElideHead, Overflow::ElideTail, Overflow::Wrap}) {
            const auto label = shownLabel(path, overflow, QSize(100, 20));
            QCOMPARE(label->text(), path);
        }
    }

    /// Texts that differ only where they are cut look the same.
    void cutsTheHead()
    {
        const QImage picture = pictureOf(u"/x"_qs + path + u"/a"_qs, Overflow::ElideHead);
        QCOMPARE(pictureOf(u"/y"_qs + path + u"/a"_qs, Overflow::ElideHead), picture);
        QVERIFY(pictureOf(u"/x"_qs + path + u"/b"_qs, Overflow::ElideHead) != picture);
    }

    void cutsTheTail()
    {
        const QImage picture = pictureOf(u"/x"_qs + path + u"/a"_qs, Overflow::ElideTail);
        QCOMPARE(pictureOf(u"/x"_qs + path + u"/b"_qs, Overflow::ElideTail), picture);
        QVERIFY(pictureOf(u"/y"_qs + path + u"/a"_qs, Overflow::ElideTail) != picture);
    }

    void asksForTheRoomItsTextNeeds()
    {
        TextLabel label(u"short"_qs, {});
        const int wanted = label.fontMetrics().horizontalAdvance(u"short"_qs);
        QVERIFY(label.sizeHint().width() >= wanted);
        QVERIFY(label.sizeHint().width() <= wanted + 2);
        label.resize(label.sizeHint());
        QCOMPARE(Input::toolTipAt(&label, QPoint(1, 1)), QString());
    }

    void noTextWidensALayout_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("words") << words;
        QTest::newRow("path") << path;
    }

    void noTextWidensALayout()
    {
        QFETCH(QString, text);
        for (const Overflow overflow : {Overflow::ElideHead, Overflow::ElideTail, Overflow::Wrap}) {
            QWidget window;
            auto *layout = new QVBoxLayout(&window);
            layout->addWidget(new TextLabel(text, {.overflow = overflow}));
            QVERIFY(window.minimumSizeHint().width() < 120);
        }
    }

    void wrapsIntoTheHeightForItsWidth_data() { noTextWidensALayout_data(); }

    void wrapsIntoTheHeightForItsWidth()
    {
        QFETCH(QString, text);
        TextLabel label(text, {.overflow = Overflow::Wrap});
        QVERIFY(label.hasHeightForWidth());
        const int line = label.fontMetrics().height();
        int before = 0;
        for (const int width : {2000, 400, 200, 100}) {
            const int height = label.heightForWidth(width);
            const int fewest = label.fontMetrics().horizontalAdvance(text) / width;
            QVERIFY(height >= fewest * line);
            QVERIFY(height <= (fewest * 2 + 2) * line);
            QVERIFY(height > before);
            before = height;
        }
    }

    /// A layout asks for the height at the width it has to give, which may be more than the label
    /// takes.
    void neverAsksForTheHeightOfMoreThanItsMaximumWidth()
    {
        TextLabel label(words, {.overflow = Overflow::Wrap});
        label.setMaximumWidth(200);
        QCOMPARE(label.heightForWidth(1000), label.heightForWidth(200));
        QCOMPARE(label.sizeHint().height(), label.heightForWidth(200));
    }

    void elidedTextTakesOneLine()
    {
        TextLabel label(u"one\ntwo"_qs, {});
        QVERIFY(!label.hasHeightForWidth());
        QCOMPARE(label.sizeHint().height(), label.fontMetrics().height());
    }

    void wrappedTextIsSeenToItsEnd()
    {
        TextLabel measure(words, {.overflow = Overflow::Wrap});
        const QSize size(200, measure.heightForWidth(200));
        QVERIFY(pictureOf(words + u"."_qs, Overflow::Wrap, size) !=
                pictureOf(words + u"-"_qs, Overflow::Wrap, size));
    }

    void onlyCutTextHasATooltip()
    {
        const auto wide = shownLabel(words, Overflow::ElideTail, QSize(5000, 20));
        QCOMPARE(Input::toolTipAt(wide.get(), QPoint(5, 5)), QString());
        const auto wrapped = shownLabel(words, Overflow::Wrap, QSize(100, 400));
        QCOMPARE(Input::toolTipAt(wrapped.get(), QPoint(5, 5)), QString());
        const auto narrow = shownLabel(words, Overflow::ElideTail, QSize(100, 20));
        QCOMPARE(Input::toolTipAt(narrow.get(), QPoint(5, 5)), plainToolTip(words));
        narrow->resize(5000, 20);
        QCOMPARE(Input::toolTipAt(narrow.get(), QPoint(5, 5)), QString());
    }

    void aTooltipOfItsOwnComesFirst()
    {
        const auto label = shownLabel(words, Overflow::ElideTail, QSize(100, 20));
        label->setToolTip(u"own"_qs);
        QCOMPARE(Input::toolTipAt(label.get(), QPoint(5, 5)), u"own"_qs);
    }

    void markupIsShownAsText()
    {
        const QString text = u"<b>bold</b> &amp; &x"_qs;
        for (const Overflow overflow : {Overflow::ElideTail, Overflow::Wrap}) {
            TextLabel label(text, {.overflow = overflow});
            QVERIFY(label.sizeHint().width() >= label.fontMetrics().horizontalAdvance(text));
            QVERIFY(pictureOf(text, overflow, QSize(300, 20)) !=
                    pictureOf(u"bold & x"_qs, overflow, QSize(300, 20)));
        }
    }

    void takesTheRoomOfNewText()
    {
        TextLabel label(u"short"_qs, {});
        label.setText(u"not so short any more"_qs);
        QVERIFY(label.sizeHint().width() >=
                label.fontMetrics().horizontalAdvance(u"not so short any more"_qs));
    }

    void aNewToneIsPaintedAtOnce()
    {
        const auto label = shownLabel(u"MMMM"_qs, Overflow::ElideTail, QSize(200, 20));
        const QColor orange = Colors::hue(Colors::Hue::Orange, label->palette());
        const auto hasOrange = [&] {
            const QImage image = label->grab().toImage();
            for (int y = 0; y < image.height(); ++y) {
                for (int x = 0; x < image.width(); ++x) {
                    if (image.pixelColor(x, y).rgb() == orange.rgb())
                        return true;
                }
            }
            return false;
        };
        QVERIFY(!hasOrange());
        label->setTone(TextLabel::Tone::Warning);
        QCOMPARE(label->tone(), TextLabel::Tone::Warning);
        QVERIFY(hasOrange());
        label->setTone(TextLabel::Tone::Secondary);
        QVERIFY(!hasOrange());
    }

    void followsTheUsersFont()
    {
        TextLabel label(u"text"_qs, {.size = TextStyle::Title3, .bold = true});
        label.show();
        const QFont before = QApplication::font();
        QFont larger = before;
        larger.setPointSizeF(before.pointSizeF() * 2);
        const qreal size = label.font().pointSizeF();
        QApplication::setFont(larger);
        QTRY_COMPARE(label.font().pointSizeF(), 2 * size);
        QVERIFY(label.font().bold());
        QApplication::setFont(before);
        QTRY_COMPARE(label.font().pointSizeF(), size);
    }
};

PLINTHAR_WINDOW_TEST_MAIN(TextLabelTest)
#include "TextLabelTest.moc"
