// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPalette>

/// The colours of a dark desktop, for the pictures and for tests.
inline QPalette darkPalette()
{
    const QColor window(0x2b, 0x2d, 0x30);
    const QColor base(0x1f, 0x20, 0x23);
    const QColor text(0xe4, 0xe5, 0xe7);
    QPalette palette(text, window.lighter(125), window.lighter(160), window.darker(180),
                     window.lighter(140), text, text, base, window);
    palette.setColor(QPalette::AlternateBase, window);
    palette.setColor(QPalette::ToolTipBase, window);
    palette.setColor(QPalette::ToolTipText, text);
    palette.setColor(QPalette::Link, QColor(0x6c, 0xa9, 0xff));
    palette.setColor(QPalette::Highlight, QColor(0x2f, 0x65, 0xca));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::PlaceholderText, QColor(0x8b, 0x8e, 0x94));
    for (const QPalette::ColorRole role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, QColor(0x7a, 0x7d, 0x83));
    return palette;
}
