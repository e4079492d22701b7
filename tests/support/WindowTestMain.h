// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/GuiTestMain.h"

#include <QSettings>

/// A desktop that has nothing to offer: no session bus, no dialogs of its own, and one time zone.
class BareDesktop {
public:
    BareDesktop()
    {
        qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus");
        qputenv("TZ", "UTC");
        QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
        // Qt's own choosers remember where they were, in the home of the first test otherwise.
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope,
                           qEnvironmentVariable("XDG_CONFIG_HOME"));
    }
};

/// The application of a test that opens the program's own window.
class WindowTestApplication : private BareDesktop, public QApplication {
public:
    WindowTestApplication(int &argc, char **argv) : QApplication(argc, argv) {}
};

#define PLINTHAR_WINDOW_TEST_MAIN(TestClass)                                                       \
    PLINTHAR_TEST_MAIN_WITH(WindowTestApplication, TestClass)
