// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QTextDocument>

/// What a tooltip with that text shows to its reader.
inline QString shownText(const QString &toolTip)
{
    if (!Qt::mightBeRichText(toolTip))
        return toolTip;
    QTextDocument document;
    document.setHtml(toolTip);
    return document.toPlainText();
}
