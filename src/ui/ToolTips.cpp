// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/ToolTips.h"

#include "model/Format.h"

QString plainToolTip(const QString &text)
{
    constexpr qsizetype longest = 4000;
    if (text.isEmpty())
        return text;
    const QString shown = text.size() > longest ? beginningOf(text, longest) + QChar(0x2026) : text;
    // Rich text, because a plain tooltip is never broken into lines.
    return QStringLiteral("<span style=\"white-space:pre-wrap\">%1</span>")
        .arg(shown.toHtmlEscaped());
}
