// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/Colors.h"

#include <algorithm>
#include <cmath>

namespace {

bool isDark(const QPalette &palette)
{
    return palette.color(QPalette::Base).lightnessF() < 0.5F;
}

double linear(float share)
{
    return share <= 0.04045F ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
}

double luminance(const QColor &color)
{
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

} // namespace

namespace Colors {

double contrast(const QColor &a, const QColor &b)
{
    const auto [dark, light] = std::minmax({luminance(a), luminance(b)});
    return (light + 0.05) / (dark + 0.05);
}

QColor mixed(const QColor &a, const QColor &b, float shareOfA)
{
    const auto mix = [shareOfA](float x, float y) { return x * shareOfA + y * (1 - shareOfA); };
    return QColor::fromRgbF(mix(a.redF(), b.redF()), mix(a.greenF(), b.greenF()),
                            mix(a.blueF(), b.blueF()));
}

QColor secondaryText(const QPalette &palette, QPalette::ColorRole text,
                     QPalette::ColorRole background)
{
    // Two thirds keep a contrast of at least 4.5 to 1 with black on white and white on black.
    return mixed(palette.color(text), palette.color(background), 0.66F);
}

QColor hue(Hue hue, const QPalette &palette)
{
    const bool dark = isDark(palette);
    switch (hue) {
    case Hue::Blue:
        return dark ? QColor(0x6c, 0xb0, 0xff) : QColor(0x0a, 0x60, 0xc8);
    case Hue::Orange:
        return dark ? QColor(0xff, 0xae, 0x57) : QColor(0xa8, 0x4c, 0x00);
    case Hue::Green:
        return dark ? QColor(0x6c, 0xd4, 0x87) : QColor(0x1c, 0x72, 0x30);
    case Hue::Red:
        return dark ? QColor(0xff, 0x8a, 0x80) : QColor(0xbe, 0x28, 0x20);
    }
    Q_UNREACHABLE();
}

QColor fill(Hue hue, const QPalette &palette)
{
    if (hue == Hue::Orange && !isDark(palette))
        return QColor(0xd6, 0x64, 0x00); // 3 to 1 on a light grey
    return Colors::hue(hue, palette);
}

QColor tint(Hue hue, const QPalette &palette, float opacity)
{
    QColor color = Colors::hue(hue, palette);
    color.setAlphaF(opacity);
    return color;
}

QColor grayTint(const QPalette &palette, float opacity)
{
    QColor color = mixed(palette.color(QPalette::Text), palette.color(QPalette::Base), 0.5F);
    color.setAlphaF(opacity);
    return color;
}

QPalette outlined(QPalette palette, double enough)
{
    constexpr double wanted = 3.6; // styles vary a little
    const QColor window = palette.color(QPalette::Window);
    const auto contrastOf = [&](const QColor &outlining) {
        const QColor outline = outlining.darker(140);
        return std::min(contrast(outline, window),
                        contrast(outline, palette.color(QPalette::Base)));
    };
    if (contrastOf(window) >= enough)
        return palette;
    QColor outlining = window;
    for (float share = 0.1F; share < 1 && contrastOf(outlining) < wanted; share += 0.05F)
        outlining = mixed(palette.color(QPalette::WindowText), window, share);
    palette.setColor(QPalette::Window, outlining);
    return palette;
}

QColor focus(const QPalette &palette)
{
    QColor color = palette.color(QPalette::Highlight);
    const auto isSeen = [&] {
        return contrast(color, palette.color(QPalette::Window)) >= 3 &&
               contrast(color, palette.color(QPalette::Base)) >= 3;
    };
    for (int step = 0; step < 10 && !isSeen(); ++step)
        color = mixed(palette.color(QPalette::WindowText), color, 0.2F);
    return color;
}

QColor separator(const QPalette &palette)
{
    return mixed(palette.color(QPalette::WindowText), palette.color(QPalette::Window), 0.12F);
}

} // namespace Colors
