// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/PlintharApp.h"

#include "support/HeldBackground.h"
#include "support/Sessions.h"
#include "support/Window.h"
#include "support/WindowTestMain.h"

#include <QTimer>

class PlintharAppTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void opensItsWindowAndLoads()
    {
        PlintharApp plinthar;
        QVERIFY(!plinthar.window().isVisible());
        plinthar.show();
        QVERIFY(QTest::qWaitForWindowExposed(&plinthar.window()));
        QTRY_VERIFY(labelWith(&plinthar.window(), u"No projects yet"_qs));
    }

    void saysWhoItIs()
    {
        const PlintharApp plinthar;
        QCOMPARE(QGuiApplication::desktopFileName(), u"io.github.plinthar.Plinthar"_qs);
        QVERIFY(!QGuiApplication::windowIcon().isNull());
    }

    void endsInTheMiddleOfAReload()
    {
        auto plinthar = std::make_unique<PlintharApp>();
        plinthar->show();
        QVERIFY(QTest::qWaitForWindowExposed(&plinthar->window()));
        const HeldBackground held;
        QCoreApplication::processEvents(); // the reload has been asked for and cannot begin
        plinthar.reset();
    }

    void closingTheWindowEndsTheProgram()
    {
        PlintharApp plinthar;
        plinthar.show();
        QVERIFY(QTest::qWaitForWindowExposed(&plinthar.window()));
        QTimer::singleShot(0, &plinthar.window(), &QWidget::close);
        QCOMPARE(QCoreApplication::exec(), 0);
    }
};

PLINTHAR_WINDOW_TEST_MAIN(PlintharAppTest)
#include "PlintharAppTest.moc"
