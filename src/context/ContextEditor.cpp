// SPDX-License-Identifier: GPL-3.0-or-later
#include "context/ContextEditor.h"

#include "ui/Fonts.h"

#include <QFontDatabase>
#include <QKeyEvent>
#include <QMimeData>
#include <QTextBlock>
#include <QTextDocument>

namespace {

constexpr int tabColumns = 4;

} // namespace

OpenedText OpenedText::make(const FileText &file, const ContextDocument::Style &style)
{
    return {{{}, file.byteOrderMark, file.newLine},
            EditedText(file.text),
            ContextDocument::make(file, style)};
}

ContextEditor::ContextEditor(QWidget *parent) : QPlainTextEdit(parent)
{
    setObjectName(QStringLiteral("editor"));
    setFrameShape(QFrame::NoFrame);
    useSystemFont();
    open(OpenedText::make({}, documentStyle()));
}

ContextEditor::~ContextEditor()
{
    // The document goes before the editor's base does, which would still use it.
    disconnect(m_document.get(), nullptr, this, nullptr);
    setDocument(nullptr);
}

ContextDocument::Style ContextEditor::documentStyle() const
{
    return {font(), tabColumns * QFontMetricsF(font()).horizontalAdvance(u' ')};
}

void ContextEditor::open(OpenedText opened)
{
    opened.document->moveToThread(thread());
    setDocument(opened.document.get());
    m_document = std::move(opened.document); // the old one is no longer shown
    m_file = std::move(opened.file);
    m_edited = std::move(opened.text);
    connect(m_document.get(), &QTextDocument::contentsChange, this, &ContextEditor::takeChange);
}

FileText ContextEditor::fileText() const
{
    FileText file = m_file;
    // Not shared, or the next key would have to copy the text that is edited.
    file.text = QString(m_edited.text().constData(), m_edited.size());
    return file;
}

void ContextEditor::takeChange(int position, int removed, int added)
{
    // Qt counts the end of the last paragraph too when a change reaches it.
    const auto oldSize = int(m_edited.size());
    const int size = m_document->characterCount() - 1;
    removed = qMin(removed, oldSize - position);
    added = qMin(added, size - position);
    if (position > oldSize || oldSize - removed + added != size) {
        position = 0;
        removed = oldSize;
        added = size;
    }
    m_edited.replace(position, removed,
                     ContextDocument::text(*m_document, position, added, m_file.newLine));
    // When paragraphs are joined, the break beside the removed one may be the one that stays.
    const QTextBlock last = m_document->findBlock(position + added);
    takeBreak(m_document->findBlock(position).position() - 1);
    takeBreak(last.position() + last.length() - 1);
    Q_EMIT changed();
}

/// Takes the line break at a place from the document.
void ContextEditor::takeBreak(int position)
{
    if (position < 0 || position >= m_edited.size())
        return;
    const QString now = ContextDocument::text(*m_document, position, 1, m_file.newLine);
    if (now != m_edited.text().at(position))
        m_edited.replace(position, 1, now);
}

bool ContextEditor::event(QEvent *event)
{
    if (event->type() == QEvent::ApplicationFontChange)
        useSystemFont();
    return QPlainTextEdit::event(event);
}

void ContextEditor::useSystemFont()
{
    // The system's font for code in the size of all other text, so that both grow together.
    QFont mono = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    const QFont usual = textFont(TextStyle::Body);
    if (usual.pointSizeF() > 0)
        mono.setPointSizeF(usual.pointSizeF());
    else
        mono.setPixelSize(usual.pixelSize());
    setFont(mono);
    setTabStopDistance(documentStyle().tabWidth);
}

bool ContextEditor::focusNextPrevChild(bool next)
{
    // Tab writes one. With no key that leads out, who has no mouse could not leave the text.
    return next ? QPlainTextEdit::focusNextPrevChild(next) : QWidget::focusNextPrevChild(next);
}

void ContextEditor::keyPressEvent(QKeyEvent *event)
{
    // Qt would put a U+2028 into the text, which no agent takes for a new line.
    if (event->matches(QKeySequence::InsertLineSeparator)) {
        if (!isReadOnly()) {
            textCursor().insertBlock();
            ensureCursorVisible();
        }
        return;
    }
    QPlainTextEdit::keyPressEvent(event);
}

QMimeData *ContextEditor::createMimeDataFromSelection() const
{
    // Qt's own would turn no-break spaces into blanks and U+2028 into line feeds.
    QString text = textCursor().selectedText();
    text.replace(QChar::ParagraphSeparator, u'\n');
    auto *mime = new QMimeData;
    mime->setText(text);
    return mime;
}

bool ContextEditor::canInsertFromMimeData(const QMimeData *source) const
{
    return source->hasText();
}

void ContextEditor::insertFromMimeData(const QMimeData *source)
{
    if (isReadOnly() || !source->hasText())
        return;
    textCursor().insertText(source->text());
    ensureCursorVisible();
}
