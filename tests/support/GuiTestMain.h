// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/TestMain.h"

#include <QApplication>

/// As PLINTHAR_TEST_MAIN, for a test that opens windows.
#define PLINTHAR_GUI_TEST_MAIN(TestClass) PLINTHAR_TEST_MAIN_WITH(QApplication, TestClass)
