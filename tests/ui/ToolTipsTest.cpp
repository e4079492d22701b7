// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/ToolTips.h"

#include "support/GuiTestMain.h"
#include "support/ToolTipText.h"

class ToolTipsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void showsTheTextAsItStands_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("plain") << u"plain"_qs;
        QTest::newRow("tags") << u"a <b>c</b> <script>x</script>"_qs;
        QTest::newRow("whole document") << u"<html><body>x</body></html>"_qs;
        QTest::newRow("closes the span") << u"</span><h1>x"_qs;
        QTest::newRow("entities") << u"&amp; &lt; &#65; & \" '"_qs;
        QTest::newRow("lines") << u"one\n\n two\nthree"_qs;
        QTest::newRow("blanks") << u"a    b\tc"_qs;
        QTest::newRow("place markers") << u"%1 %2 %L1"_qs;
        QTest::newRow("other scripts") << u"\u05e9\u05dc\u05d5\u05dd \u4e2d\u6587 \U0001f600"_qs;
    }

    void showsTheTextAsItStands()
    {
        QFETCH(QString, text);
        QCOMPARE(shownText(plainToolTip(text)), text);
        QVERIFY(Qt::mightBeRichText(plainToolTip(text))); // or it would never be broken into lines
    }

    void nothingStaysNothing() { QCOMPARE(plainToolTip(QString()), QString()); }

    void cutsWhatNoScreenHolds()
    {
        const QString text = shownText(plainToolTip(u"x"_qs.repeated(1'000'000)));
        QVERIFY(text.size() > 1'000 && text.size() < 10'000);
        QVERIFY(text.endsWith(u'\u2026'));
        const QString fits = u"x"_qs.repeated(1'000);
        QCOMPARE(shownText(plainToolTip(fits)), fits);
    }

    void doesNotCutACharacterInTwo()
    {
        for (const int before : {0, 1}) {
            const QString text = u"x"_qs.repeated(before) + u"\U0001f600"_qs.repeated(5'000);
            QVERIFY(shownText(plainToolTip(text)).isValidUtf16());
        }
    }
};

PLINTHAR_GUI_TEST_MAIN(ToolTipsTest)
#include "ToolTipsTest.moc"
