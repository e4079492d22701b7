// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/EmptyState.h"

#include "support/Window.h"
#include "support/WindowTestMain.h"

#include <QLabel>

namespace {

const QString heading = u"Nothing here"_qs;
const QString shortMessage = u"Try again."_qs;
const QString longMessage = u"This is a sentence that goes on. "_qs.repeated(6).trimmed();

/// The bounds of everything that is painted in a widget on its plain background.
QRect inkOf(QWidget *widget)
{
    const QImage image = widget->grab().toImage();
    const QRgb background = image.pixel(0, 0);
    QRect ink;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixel(x, y) != background)
                ink |= QRect(x, y, 1, 1);
        }
    }
    return ink;
}

/// Shows an empty state in a window of that size.
class Shown : public EmptyState {
public:
    Shown(const QString &message, const QSize &size = QSize(800, 500),
          const QString &symbol = u"tray"_qs)
        : EmptyState(symbol, heading, message)
    {
        resize(size);
        show();
        if (!QTest::qWaitForWindowExposed(this))
            qFatal("the window does not show");
    }

    QLabel *label(const QString &text) const { return labelWith(this, text); }
    /// The symbol is the one thing that is no label.
    QWidget *symbol() const
    {
        for (QWidget *child : findChildren<QWidget *>()) {
            if (!qobject_cast<QLabel *>(child))
                return child;
        }
        qFatal("no symbol");
    }
};

int linesOf(const QLabel *label)
{
    return qRound(label->height() / QFontMetricsF(label->font()).height());
}

} // namespace

class EmptyStateTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void keepsWhatItIsMadeOf()
    {
        EmptyState state(u"tray"_qs, heading, longMessage);
        QCOMPARE(state.icon(), u"tray"_qs);
        QCOMPARE(state.title(), heading);
        QCOMPARE(state.message(), longMessage);
        state.setMessage(shortMessage);
        QCOMPARE(state.message(), shortMessage);
    }

    void theSymbolIs40PointsHigh()
    {
        const Shown state(shortMessage);
        QCOMPARE(state.symbol()->size(), QSize(40, 40));
        const QRect ink = inkOf(state.symbol());
        QVERIFY(ink.width() > 25);
        QVERIFY(ink.height() > 20);
    }

    void anotherNameIsAnotherSymbol()
    {
        const Shown a(shortMessage, QSize(800, 500), u"tray"_qs);
        const Shown b(shortMessage, QSize(800, 500), u"rectangle.stack"_qs);
        QVERIFY(a.symbol()->grab().toImage() != b.symbol()->grab().toImage());
    }

    void stacksItsPartsTenPointsApart()
    {
        const Shown state(shortMessage);
        const QRect symbol = state.symbol()->geometry();
        const QRect title = state.label(heading)->geometry();
        const QRect message = state.label(shortMessage)->geometry();
        QCOMPARE(title.top() - symbol.bottom() - 1, 10);
        QCOMPARE(message.top() - title.bottom() - 1, 10);
        QVERIFY(state.label(heading)->font().bold());
        QVERIFY(state.label(heading)->font().pointSizeF() > state.font().pointSizeF());
        QCOMPARE(state.label(shortMessage)->font().pointSizeF(), state.font().pointSizeF());
    }

    void isInTheMiddleWhateverTheSize_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::newRow("small") << QSize(420, 260);
        QTest::newRow("usual") << QSize(750, 500);
        QTest::newRow("large") << QSize(1900, 1100);
        QTest::newRow("upright") << QSize(420, 1000);
    }

    void isInTheMiddleWhateverTheSize()
    {
        QFETCH(QSize, size);
        const Shown state(longMessage, size);
        const QRect all = state.symbol()->geometry() | state.label(longMessage)->geometry();
        QVERIFY(qAbs(all.center().y() - state.rect().center().y()) <= 1);
        for (const QWidget *part : {state.symbol(), static_cast<QWidget *>(state.label(heading)),
                                    static_cast<QWidget *>(state.label(longMessage))})
            QVERIFY(qAbs(part->geometry().center().x() - state.rect().center().x()) <= 1);
        QVERIFY(state.maximumWidth() >= QWIDGETSIZE_MAX &&
                state.maximumHeight() >= QWIDGETSIZE_MAX);
    }

    void aShortMessageIsCentredOnOneLine()
    {
        const Shown state(shortMessage);
        QCOMPARE(linesOf(state.label(shortMessage)), 1);
        const QRect ink = inkOf(state.label(shortMessage));
        const QRect place = state.label(shortMessage)->rect();
        QVERIFY(qAbs(ink.center().x() - place.center().x()) <= 2);
    }

    void aLongMessageWrapsWithin380()
    {
        const Shown state(longMessage);
        const QLabel *label = state.label(longMessage);
        QVERIFY(label->width() <= 380);
        QVERIFY(label->width() > 300);
        const int wanted = label->fontMetrics().horizontalAdvance(longMessage) / 380 + 1;
        QVERIFY(linesOf(label) >= wanted);
        QVERIFY(linesOf(label) <= wanted + 1);
    }

    void theLinesOfALongMessageAreCentred()
    {
        // A long line and a very short one, which stands in the middle of the label.
        const QString message = u"word "_qs.repeated(12) + u"\nxx"_qs;
        Shown state(message.trimmed());
        QLabel *label = state.label(message.trimmed());
        const QRect lastLine(0, label->height() - label->fontMetrics().height(), label->width(),
                             label->fontMetrics().height());
        const QImage image = label->grab(lastLine).toImage();
        QRect ink;
        for (int x = 0; x < image.width(); ++x) {
            for (int y = 0; y < image.height(); ++y) {
                if (image.pixel(x, y) != image.pixel(0, 0))
                    ink |= QRect(x, y, 1, 1);
            }
        }
        QVERIFY(!ink.isEmpty());
        QVERIFY(ink.width() < 40);
        QVERIFY(qAbs(ink.center().x() - label->width() / 2) <= 2);
    }

    void aLongPathWithoutBlanksDoesNotWidenIt()
    {
        const QString path = u"/averylongfoldername"_qs.repeated(30);
        const Shown state(path, QSize(500, 500));
        QCOMPARE(state.width(), 500);
        QVERIFY(state.minimumSizeHint().width() < 450);
        QVERIFY(state.label(path)->width() <= 380);
        QVERIFY(linesOf(state.label(path)) > 5);
    }

    void allOfALongMessageIsSeen()
    {
        const Shown state(longMessage);
        const QLabel *label = state.label(longMessage);
        QCOMPARE(label->height(), label->heightForWidth(label->width()));
    }

    void markupIsShownAsText()
    {
        const QString message = u"a <b>bold</b> &amp; <img src='x'>"_qs;
        const Shown state(message);
        const QLabel *label = state.label(message);
        QVERIFY(label);
        QCOMPARE(label->textFormat(), Qt::PlainText);
        QVERIFY(label->width() >= label->fontMetrics().horizontalAdvance(message));
    }

    void aNewMessageTakesItsPlace()
    {
        Shown state(shortMessage);
        state.setMessage(longMessage);
        QTRY_VERIFY(linesOf(state.label(longMessage)) > 2);
        const QLabel *label = state.label(longMessage);
        QTRY_VERIFY(qAbs(label->geometry().center().x() - state.rect().center().x()) <= 1);
        state.setMessage(QString());
        QTRY_VERIFY(!label->isVisible());
    }

    void followsThePalette()
    {
        Shown state(shortMessage);
        const QImage light = state.symbol()->grab().toImage();
        const QPalette before = QApplication::palette();
        QPalette dark = before;
        dark.setColor(QPalette::Window, QColor(30, 30, 30));
        dark.setColor(QPalette::WindowText, QColor(230, 230, 230));
        QApplication::setPalette(dark);
        QTRY_COMPARE(state.palette().color(QPalette::Window), QColor(30, 30, 30));
        const QImage symbol = state.symbol()->grab().toImage();
        const QImage text = state.label(shortMessage)->grab().toImage();
        QApplication::setPalette(before);
        QVERIFY(symbol != light);
        QCOMPARE(symbol.pixelColor(0, 0), QColor(30, 30, 30));
        int brightest = 0;
        for (int y = 0; y < text.height(); ++y) {
            for (int x = 0; x < text.width(); ++x)
                brightest = qMax(brightest, qGray(text.pixel(x, y)));
        }
        QVERIFY(brightest > 120);
        QVERIFY(brightest < 230);
    }
};

PLINTHAR_WINDOW_TEST_MAIN(EmptyStateTest)
#include "EmptyStateTest.moc"
