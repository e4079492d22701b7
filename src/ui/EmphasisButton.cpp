// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/EmphasisButton.h"

#include "ui/Colors.h"

#include <QStyleOptionButton>

EmphasisButton::EmphasisButton(Emphasis emphasis, const QString &text, QWidget *parent)
    : QPushButton(text, parent)
    , m_emphasis(emphasis)
{
}

void EmphasisButton::initStyleOption(QStyleOptionButton *option) const
{
    QPushButton::initStyleOption(option);
    if (!isEnabled()) // then it looks like any other button
        return;
    QPalette &colors = option->palette;
    switch (m_emphasis) {
    case Emphasis::Prominent:
        // Styles paint a button lighter than its colour, which would leave too little contrast.
        colors.setColor(QPalette::Button, colors.color(QPalette::Highlight).darker(130));
        colors.setColor(QPalette::ButtonText, colors.color(QPalette::HighlightedText));
        break;
    case Emphasis::Destructive:
        colors.setColor(QPalette::ButtonText, Colors::hue(Colors::Hue::Red, colors));
        break;
    }
}
