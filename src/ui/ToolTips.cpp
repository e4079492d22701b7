// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/ToolTips.h"

#include "ui/ForeignText.h"

QString plainToolTip(const QString &text)
{
    if (text.isEmpty())
        return text;
    // Rich text, because a plain tooltip is never broken into lines.
    return QStringLiteral("<span style=\"white-space:pre-wrap\">%1</span>")
        .arg(ForeignText::lines(text).toHtmlEscaped());
}
