// SPDX-License-Identifier: GPL-3.0-or-later
#include "usage/PromptDelegate.h"

#include "ui/TextLine.h"
#include "usage/SessionsModel.h"

#include <QPainter>
#include <QTextLayout>

namespace {

/// The text as at most two lines of that width.
QStringList twoLines(const QString &text, const QFont &font, int width)
{
    QTextLayout layout(text, font);
    layout.setTextOption(QTextOption()); // breaks between words, and inside one that is too long
    layout.beginLayout();
    QTextLine first = layout.createLine();
    first.setLineWidth(width);
    layout.endLayout();
    const int length = first.textLength();
    const QString rest = text.mid(length).trimmed();
    if (rest.isEmpty())
        return {text};
    return {text.left(length), QFontMetrics(font).elidedText(rest, Qt::ElideRight, width)};
}

} // namespace

void PromptDelegate::paintText(QPainter *painter, const QRect &place,
                               const QModelIndex &index) const
{
    const QString prompt = index.data(SessionsModel::PreviewRole).toString();
    const QStringList lines = twoLines(prompt, painter->font(), place.width());
    const int lineHeight = painter->fontMetrics().lineSpacing();
    const int height = lineHeight * static_cast<int>(lines.size());
    QRect line(place.left(), place.top() + (place.height() - height) / 2, place.width(),
               lineHeight);
    for (const QString &text : lines) {
        drawTextLine(painter, line, Qt::AlignLeft | Qt::AlignVCenter, text, directionOf(prompt));
        line.translate(0, lineHeight);
    }
}
