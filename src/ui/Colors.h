// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QPalette>

/// The one place for colours. All of them come from the palette, so that light, dark and
/// high-contrast palettes work without being told apart.
namespace Colors {

/// How well two colours can be told apart, from 1 to 21, as the web's accessibility guidelines
/// measure it. Text needs 4.5, signs and outlines 3.
double contrast(const QColor &a, const QColor &b);

/// Two colours, mixed.
QColor mixed(const QColor &a, const QColor &b, float shareOfA);

/// For text that comes second: the palette's text colour, moved towards its background.
QColor secondaryText(const QPalette &palette, QPalette::ColorRole text = QPalette::WindowText,
                     QPalette::ColorRole background = QPalette::Window);

/// The colours that mean something.
enum class Hue { Blue, Orange, Green, Red };

/// A hue as text is readable in it on the palette's window and base colours, be they light or dark.
QColor hue(Hue hue, const QPalette &palette);

/// A hue for areas such as the bars of a chart. It needs less contrast than text, at which an
/// orange on a light ground would be a brown.
QColor fill(Hue hue, const QPalette &palette);

/// A hue as a background that lets what is below it shine through: the text on it stays readable.
QColor tint(Hue hue, const QPalette &palette, float opacity);

/// The same without a hue.
QColor grayTint(const QPalette &palette, float opacity);

/// A palette with which a style outlines a control so that it is seen. Styles darken the window's
/// colour for it, which on a dark window leaves nothing to be seen. Where their outline has that
/// contrast already, nothing changes.
QPalette outlined(QPalette palette, double enough = 3);

/// For the frame around what has the focus: the highlight, moved away from the ground as far as
/// needed to be seen on it.
QColor focus(const QPalette &palette);

/// For hairlines between the areas of a screen.
QColor separator(const QPalette &palette);

} // namespace Colors
