// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QIcon>
#include <QPalette>
#include <QStringView>

/// The symbol `:/icons/<name>.svg` in the colour that the application's palette has for `role` at
/// the moment of painting, so a change of palette needs no new icon. Nothing is read or rendered
/// before the first painting. `QIcon::name()` is the symbol's name. A name that does not exist is a
/// mistake of the program: it asserts, and without assertions the icon is null.
QIcon symbolIcon(QStringView name, QPalette::ColorRole role = QPalette::WindowText);

/// The same in a fixed colour, for symbols whose colour is a message. Disabled and selected they
/// still take the palette's colours, or they would be hard to see on a selected row.
QIcon symbolIcon(QStringView name, const QColor &color);

/// The program's own icon in its own colours.
QIcon applicationIcon();
