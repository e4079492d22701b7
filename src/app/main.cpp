// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Environment.h"
#include "app/PlintharApp.h"

#include <QApplication>

int main(int argc, char **argv)
{
    prepareEnvironment();
    const QApplication application(argc, argv);
    PlintharApp plinthar;
    plinthar.show();
    return QApplication::exec();
}
