// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/PrivateHome.h"

#include <QTest>

/// The main function of a test program without a window: before anything else it gets a private
/// home and a fixed language.
#define PLINTHAR_TEST_MAIN_WITH(Application, TestClass)                                            \
    int main(int argc, char **argv)                                                                \
    {                                                                                              \
        const PrivateHome home;                                                                    \
        qputenv("LC_ALL", "C.UTF-8");                                                              \
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));                     \
        Application application(argc, argv);                                                       \
        TestClass test;                                                                            \
        return QTest::qExec(&test, argc, argv);                                                    \
    }

#define PLINTHAR_TEST_MAIN(TestClass) PLINTHAR_TEST_MAIN_WITH(QCoreApplication, TestClass)
