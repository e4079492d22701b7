// SPDX-License-Identifier: GPL-3.0-or-later

// The program as its main() makes it, until its first painting.

#include "app/PlintharApp.h"
#include "start/FirstPaint.h"

int main(int argc, char **argv)
{
    const FirstPaintApplication application(argc, argv);
    PlintharApp plinthar;
    plinthar.show();
    return QApplication::exec();
}
