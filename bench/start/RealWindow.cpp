// SPDX-License-Identifier: GPL-3.0-or-later

// The program as its main() makes it, until its first painting; or, with the argument "filled",
// until the first one that shows what the sidebar has to show.

#include "app/PlintharApp.h"
#include "start/FirstPaint.h"

#include <QAbstractItemView>

#include <algorithm>
#include <cstring>

namespace {

/// Whether the list of projects has been filled, or has made room for the text that there are none.
bool isFilled()
{
    const QWidgetList widgets = QApplication::allWidgets();
    return std::any_of(widgets.cbegin(), widgets.cend(), [](const QWidget *widget) {
        const auto *list = qobject_cast<const QAbstractItemView *>(widget);
        return list && list->objectName() == QStringLiteral("projects") &&
               (list->model()->rowCount() > 0 || list->isHidden());
    });
}

} // namespace

int main(int argc, char **argv)
{
    FirstPaintApplication application(argc, argv);
    if (argc > 1 && std::strcmp(argv[1], "filled") == 0)
        application.waitFor(isFilled);
    PlintharApp plinthar;
    plinthar.show();
    return QApplication::exec();
}
