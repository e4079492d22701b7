// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/Look.h"

#include "../../demo/DarkPalette.h"

#include <QApplication>
#include <QFont>
#include <QStyle>

#include <array>

namespace {

using FourByFour = std::array<std::array<int, 4>, 4>;
/// The product of two in the field of four elements, where the sum is the exclusive or.
constexpr FourByFour products{{{0, 0, 0, 0}, {0, 1, 2, 3}, {0, 2, 3, 1}, {0, 3, 1, 2}}};

/// Two colours and nothing between them.
QPalette starkPalette(const QColor &text, const QColor &ground, const QColor &highlight,
                      const QColor &disabled)
{
    QPalette palette(text, ground, text, text, Qt::gray, text, text, ground, ground);
    palette.setColor(QPalette::AlternateBase, ground);
    palette.setColor(QPalette::Highlight, highlight);
    palette.setColor(QPalette::HighlightedText, ground);
    for (const QPalette::ColorRole role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, disabled);
    return palette;
}

} // namespace

QPalette paletteOf(Look::Colors colors)
{
    switch (colors) {
    case Look::Colors::Light:
        return QApplication::style()->standardPalette();
    case Look::Colors::Dark:
        return darkPalette();
    case Look::Colors::Black:
        return starkPalette(Qt::white, Qt::black, QColor(0x1a, 0xeb, 0xff),
                            QColor(0x3f, 0xf2, 0x3f));
    case Look::Colors::White:
        return starkPalette(Qt::black, Qt::white, QColor(0x37, 0, 0x6e), QColor(0x60, 0, 0));
    }
    Q_UNREACHABLE();
}

QString Look::name() const
{
    static const QStringList names{QStringLiteral("light"), QStringLiteral("dark"),
                                   QStringLiteral("black"), QStringLiteral("white")};
    return QStringLiteral("%1 %2pt %3 %4")
        .arg(names.at(int(colors)))
        .arg(points)
        .arg(direction == Qt::LeftToRight ? QStringLiteral("ltr") : QStringLiteral("rtl"),
             locale.bcp47Name());
}

void Look::apply() const
{
    QLocale::setDefault(locale);
    QApplication::setFont(QFont(QStringLiteral("DejaVu Sans"), points));
    QGuiApplication::setLayoutDirection(direction);
    QApplication::setPalette(paletteOf(colors));
}

QList<Look> looksAtScale(int n)
{
    constexpr std::array points{10, 16, 8, 16};
    constexpr std::array directions{Qt::LeftToRight, Qt::RightToLeft, Qt::LeftToRight,
                                    Qt::RightToLeft};
    const std::array locales{QLocale(QLocale::English, QLocale::UnitedStates),
                             QLocale(QLocale::German, QLocale::Germany),
                             QLocale(QLocale::Arabic, QLocale::Egypt),
                             QLocale(QLocale::German, QLocale::Germany)};
    QList<Look> looks;
    for (int i = 0; i < 4; ++i) {
        // An orthogonal array of strength two.
        const auto column = [n, i](int k) { return size_t(n ^ products[size_t(k)][size_t(i)]); };
        looks.append({.points = points[column(1)],
                      .direction = directions[column(2)],
                      .locale = locales[column(3)],
                      .colors = Look::Colors(i)});
    }
    return looks;
}
