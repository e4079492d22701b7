// SPDX-License-Identifier: GPL-3.0-or-later
#include "context/ContextDocument.h"

#include <QPlainTextDocumentLayout>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextLayout>

namespace {

constexpr int margin = 10; // in line with what stands above the editor
constexpr int breakProperty = QTextFormat::UserProperty + 1;

QTextBlockFormat blockFormat(char16_t lineBreak, char16_t newLine)
{
    QTextBlockFormat format;
    if (lineBreak != newLine)
        format.setProperty(breakProperty, int(lineBreak));
    return format;
}

char16_t breakBefore(const QTextBlock &block, char16_t newLine)
{
    const QVariant property = block.blockFormat().property(breakProperty);
    return property.isValid() ? char16_t(property.toInt()) : newLine;
}

void fill(QTextDocument &document, const FileText &file)
{
    QTextCursor cursor(&document);
    cursor.beginEditBlock();
    char16_t lastBreak = file.newLine;
    QString run; // text in which all breaks are of the last kind, which a new paragraph inherits
    run.reserve(file.text.size());
    for (const QChar unit : file.text) {
        if (!isLineBreak(unit.unicode())) {
            run += unit;
        } else if (unit.unicode() == lastBreak) {
            run += u'\n';
        } else {
            lastBreak = unit.unicode();
            cursor.insertText(run);
            cursor.insertBlock(blockFormat(lastBreak, file.newLine));
            run.resize(0);
        }
    }
    cursor.insertText(run);
    cursor.endEditBlock();
}

/// Qt keeps what it has loaded of a font for each thread, and gives it up when the thread ends. A
/// text that has been laid out holds on to it all the same, and would use it on the next thread.
/// Only the first paragraph is laid out by a document that nobody has shown.
void forgetFonts(QTextDocument &document)
{
    QTextLayout *layout = document.firstBlock().layout();
    layout->setFont(layout->font());
}

} // namespace

namespace ContextDocument {

std::unique_ptr<QTextDocument> make(const FileText &file, const Style &style)
{
    auto document = std::make_unique<QTextDocument>();
    document->setUndoRedoEnabled(false);
    document->setDocumentLayout(new QPlainTextDocumentLayout(document.get()));
    document->setDefaultFont(style.font);
    document->setDocumentMargin(margin);
    QTextOption option = document->defaultTextOption();
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    option.setTabStopDistance(style.tabWidth);
    document->setDefaultTextOption(option);
    fill(*document, file);
    document->setUndoRedoEnabled(true);
    forgetFonts(*document);
    document->moveToThread(nullptr);
    return document;
}

QString text(const QTextDocument &document, int position, int length, char16_t newLine)
{
    QTextCursor cursor(const_cast<QTextDocument *>(&document)); // only reads
    cursor.setPosition(position);
    cursor.setPosition(position + length, QTextCursor::KeepAnchor);
    QString text = cursor.selectedText();
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t unit = text.at(i).unicode();
        if (unit == QChar::ParagraphSeparator)
            text[i] = breakBefore(document.findBlock(position + int(i) + 1), newLine);
        else if (unit == crLf)
            text[i] = QChar::ReplacementCharacter; // half a character, pasted from somewhere
    }
    return text;
}

} // namespace ContextDocument
