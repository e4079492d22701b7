// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/ErrorText.h"

#include "ui/Colors.h"
#include "ui/Fonts.h"
#include "ui/ForeignText.h"

#include <QAbstractTextDocumentLayout>
#include <QEvent>
#include <QTextBlock>
#include <QTextLayout>

#include <algorithm>

namespace {

/// A tool that prints for minutes says at the end why it failed.
constexpr qsizetype mostCharacters = 50'000;

} // namespace

ErrorText::ErrorText(int mostLines, QWidget *parent)
    : QPlainTextEdit(parent)
    , m_mostLines(mostLines)
{
    setObjectName(QStringLiteral("error"));
    setAccessibleName(QStringLiteral("Error"));
    setReadOnly(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setTabChangesFocus(true);
    setFrameShape(QFrame::NoFrame);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    viewport()->setAutoFillBackground(false);
    document()->setDocumentMargin(0);
    setFont(textFont(TextStyle::Caption));
    updateColors();
    hide();
}

void ErrorText::setError(const QString &text)
{
    setPlainText(ForeignText::lines(text, mostCharacters, Qt::ElideLeft));
    setVisible(!text.isEmpty());
    fitHeight();
}

bool ErrorText::event(QEvent *event)
{
    if (event->type() == QEvent::ApplicationFontChange) {
        setFont(textFont(TextStyle::Caption));
        fitHeight();
    }
    if (event->type() == QEvent::ApplicationPaletteChange)
        updateColors();
    return QPlainTextEdit::event(event);
}

void ErrorText::resizeEvent(QResizeEvent *event)
{
    QPlainTextEdit::resizeEvent(event);
    fitHeight();
}

void ErrorText::updateColors()
{
    QPalette colors;
    colors.setColor(QPalette::Text, Colors::hue(Colors::Hue::Red, colors));
    setPalette(colors);
}

void ErrorText::fitHeight()
{
    // The wrapped lines, of which only as many are counted as can show.
    int lines = 0;
    for (QTextBlock block = document()->begin(); block.isValid() && lines < m_mostLines;
         block = block.next()) {
        document()->documentLayout()->blockBoundingRect(block); // lays it out
        lines += std::max(1, block.layout()->lineCount());
    }
    setFixedHeight(std::clamp(lines, 1, m_mostLines) * fontMetrics().lineSpacing() + 2);
}
