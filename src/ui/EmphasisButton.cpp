// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/EmphasisButton.h"

#include "ui/Colors.h"
#include "ui/TextLine.h"

#include <QStyleOptionButton>
#include <QStylePainter>

#include <algorithm>

namespace {

constexpr double readable = 4.5;
constexpr int mostSteps = 40;

/// The lightest shade that styles are seen to give a button of that colour.
QColor shaded(const QColor &button)
{
    float hue = 0;
    float saturation = 0;
    float value = 0;
    button.getHsvF(&hue, &saturation, &value);
    return QColor::fromHsvF(std::max(hue, 0.0F), saturation * 0.75F, std::min(value * 1.4F, 1.0F));
}

double contrastOn(const QColor &button, const QColor &text)
{
    return std::min(Colors::contrast(text, button), Colors::contrast(text, shaded(button)));
}

bool isLighter(const QColor &a, const QColor &b)
{
    return Colors::contrast(a, Qt::black) > Colors::contrast(b, Qt::black);
}

/// The colour, darker or lighter, as a button on which the text can be read.
QColor buttonFor(const QColor &text, QColor button)
{
    const bool dark = isLighter(text, button);
    for (int step = 0; step < mostSteps && contrastOn(button, text) < readable; ++step)
        button = dark ? button.darker(105) : button.lighter(105);
    return button;
}

/// The colour, lighter or darker, as a text that can be read on the button.
QColor textFor(const QColor &button, QColor text)
{
    const bool light = isLighter(text, button);
    for (int step = 0; step < mostSteps && contrastOn(button, text) < readable; ++step)
        text = Colors::mixed(text, light ? Qt::white : Qt::black, 0.9F);
    return text;
}

} // namespace

EmphasisButton::EmphasisButton(Emphasis emphasis, const QString &text, QWidget *parent)
    : QPushButton(text, parent)
    , m_emphasis(emphasis)
{
}

EmphasisButton::EmphasisButton(const QString &text, QWidget *parent)
    : EmphasisButton(Emphasis::None, text, parent)
{
}

void EmphasisButton::paintEvent(QPaintEvent *)
{
    // In a window from right to left an ellipsis would stand before English text, and styles would
    // move the text away from its icon.
    QStylePainter painter(this);
    painter.setLayoutDirection(directionOf(text()));
    QStyleOptionButton option;
    initStyleOption(&option);
    painter.drawControl(QStyle::CE_PushButton, option);
}

void EmphasisButton::initStyleOption(QStyleOptionButton *option) const
{
    QPushButton::initStyleOption(option);
    QPalette &colors = option->palette;
    constexpr double faint = 1.3; // will do, since the text shows where the button is
    colors = Colors::outlined(colors, faint);
    if (!isEnabled()) // then it looks like any other button
        return;
    switch (m_emphasis) {
    case Emphasis::None:
        break;
    case Emphasis::Prominent:
        colors.setColor(QPalette::Button, buttonFor(colors.color(QPalette::HighlightedText),
                                                    colors.color(QPalette::Highlight)));
        colors.setColor(QPalette::ButtonText, colors.color(QPalette::HighlightedText));
        break;
    case Emphasis::Destructive:
        colors.setColor(QPalette::ButtonText, textFor(colors.color(QPalette::Button),
                                                      Colors::hue(Colors::Hue::Red, colors)));
        break;
    }
}
