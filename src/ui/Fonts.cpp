// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/Fonts.h"

#include <QApplication>
#include <QFontDatabase>
#include <QFontMetricsF>

#include <algorithm>
#include <optional>

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

bool hasEqualDigits(const QFont &font)
{
    const QFontMetricsF metrics(font);
    constexpr QStringView digits = u"123456789";
    return std::all_of(digits.cbegin(), digits.cend(), [&metrics](QChar digit) {
        return qFuzzyCompare(metrics.horizontalAdvance(digit), metrics.horizontalAdvance(u'0'));
    });
}

QFont numberFontFor(const QFont &font)
{
    if (hasEqualDigits(font))
        return font;
    QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    if (font.pointSizeF() > 0)
        fixed.setPointSizeF(font.pointSizeF());
    else
        fixed.setPixelSize(font.pixelSize());
    return fixed;
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

QFont numberFont()
{
    // Every cell asks, and the answer changes only with the font.
    static QFont measured;
    static std::optional<QFont> answer;
    const QFont font = QApplication::font();
    if (!answer || font != measured) {
        measured = font;
        answer = numberFontFor(font);
    }
    return *answer;
}

QFont monospacedFont(TextStyle style, bool bold)
{
    QFont font = textFont(style, bold);
    font.setFamilies({QFontDatabase::systemFont(QFontDatabase::FixedFont).family(),
                      QStringLiteral("monospace")});
    font.setStyleHint(QFont::Monospace);
    font.setFixedPitch(true);
    return font;
}
