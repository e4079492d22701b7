// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QPalette>

/// The one place for colours. All of them come from the palette, so that light, dark and
/// high-contrast palettes work without being told apart.
namespace Colors {

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

/// For hairlines between the areas of a screen.
QColor separator(const QPalette &palette);

} // namespace Colors
