// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/Fonts.h"

#include <QApplication>

namespace {

qreal scaleOf(TextStyle style)
{
    switch (style) {
    case TextStyle::Title2:
        return 1.35;
    case TextStyle::Title3:
        return 1.2;
    case TextStyle::Headline:
        return 1.05;
    case TextStyle::Body:
        return 1;
    case TextStyle::Callout:
        return 0.95;
    case TextStyle::Caption:
        return 0.9;
    case TextStyle::Caption2:
        return 0.85;
    }
    Q_UNREACHABLE();
}

} // namespace

QFont textFont(TextStyle style, bool bold)
{
    QFont font = QApplication::font();
    // A font is sized either in points or in pixels; the other one reads as -1.
    if (font.pointSizeF() > 0)
        font.setPointSizeF(font.pointSizeF() * scaleOf(style));
    else
        font.setPixelSize(qRound(font.pixelSize() * scaleOf(style)));
    font.setBold(bold);
    return font;
}
