// SPDX-License-Identifier: GPL-3.0-or-later

// The least that any window of this shape has to do before its first painting.

#include "start/FirstPaint.h"

#include <QListWidget>
#include <QMainWindow>
#include <QSplitter>
#include <QTabWidget>

int main(int argc, char **argv)
{
    const FirstPaintApplication application(argc, argv);
    QMainWindow window;
    auto *splitter = new QSplitter(&window);
    splitter->addWidget(new QListWidget);
    auto *tabs = new QTabWidget;
    for (int i = 1; i <= 5; ++i)
        tabs->addTab(new QWidget, QStringLiteral("Tab %1").arg(i));
    splitter->addWidget(tabs);
    window.setCentralWidget(splitter);
    window.resize(1000, 640);
    window.show();
    return QApplication::exec();
}
