// SPDX-License-Identifier: GPL-3.0-or-later
#include "context/FindBar.h"

#include "context/ContextEditor.h"
#include "ui/Outlined.h"
#include "ui/TextLabel.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QToolButton>

namespace {

constexpr int padding = 10;
constexpr int fieldWidth = 220;

QString withKey(const char16_t *text, QKeySequence::StandardKey key)
{
    return QStringLiteral("%1 (%2)").arg(QString::fromUtf16(text),
                                         QKeySequence(key).toString(QKeySequence::NativeText));
}

QToolButton *makeButton(const char16_t *name, const char16_t *text, const QString &toolTip,
                        QWidget *parent)
{
    auto *button = new QToolButton(parent);
    button->setObjectName(QString::fromUtf16(name));
    button->setText(QString::fromUtf16(text));
    button->setToolTip(toolTip);
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::StrongFocus);
    return button;
}

} // namespace

FindBar::FindBar(ContextEditor *editor, QWidget *parent)
    : QWidget(parent)
    , m_editor(editor)
    , m_field(new OutlinedLineEdit(this))
    , m_message(new TextLabel(
          QString(), {.size = TextStyle::Caption, .tone = TextLabel::Tone::Secondary}, this))
{
    setObjectName(QStringLiteral("findBar"));
    m_field->setObjectName(QStringLiteral("findField"));
    m_field->setAccessibleName(QStringLiteral("Find in the text"));
    m_field->setPlaceholderText(QStringLiteral("Find"));
    m_field->setClearButtonEnabled(true);
    m_field->setMaximumWidth(fieldWidth);
    m_message->setObjectName(QStringLiteral("findMessage"));
    auto *previous = makeButton(u"findPrevious", u"Previous",
                                withKey(u"Previous match", QKeySequence::FindPrevious), this);
    auto *next =
        makeButton(u"findNext", u"Next", withKey(u"Next match", QKeySequence::FindNext), this);
    m_done = makeButton(u"findDone", u"Done", QStringLiteral("Close the find bar (Esc)"), this);
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(padding, padding / 2, padding, padding / 2);
    layout->addWidget(m_field, 1);
    layout->addWidget(previous);
    layout->addWidget(next);
    layout->addWidget(m_message, 1);
    layout->addWidget(m_done);
    hide();
    connect(m_field, &QLineEdit::textEdited, this, &FindBar::findTyped);
    connect(previous, &QToolButton::clicked, this, &FindBar::findPrevious);
    connect(next, &QToolButton::clicked, this, &FindBar::findNext);
    connect(m_done, &QToolButton::clicked, this, &FindBar::finish);
}

void FindBar::start()
{
    const QString selected = m_editor->textCursor().selectedText();
    if (!selected.isEmpty() && !selected.contains(QChar::ParagraphSeparator))
        m_field->setText(selected);
    m_message->clear();
    show();
    m_field->setFocus(Qt::ShortcutFocusReason);
    m_field->selectAll();
}

void FindBar::finish()
{
    hide();
    m_editor->setFocus(Qt::OtherFocusReason);
}

QWidget *FindBar::lastStop() const
{
    return m_done;
}

void FindBar::clearMessage()
{
    m_message->clear();
}

void FindBar::keyPressEvent(QKeyEvent *event)
{
    if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter)
        QWidget::keyPressEvent(event);
    else if (event->modifiers() & Qt::ShiftModifier)
        findPrevious();
    else
        findNext();
}

void FindBar::findNext()
{
    if (m_field->text().isEmpty())
        start();
    else
        findFrom(m_editor->textCursor().selectionEnd());
}

/// Stays at the match under way as long as it fits what is typed.
void FindBar::findTyped()
{
    findFrom(m_editor->textCursor().selectionStart());
}

void FindBar::findFrom(qsizetype position)
{
    const QString &text = m_editor->edited().text();
    const QString wanted = m_field->text();
    const qsizetype found = text.indexOf(wanted, position, Qt::CaseInsensitive);
    if (found >= 0)
        select(found, QString());
    else
        select(text.indexOf(wanted, 0, Qt::CaseInsensitive),
               QStringLiteral("Continued at the top"));
}

void FindBar::findPrevious()
{
    if (m_field->text().isEmpty()) {
        start();
        return;
    }
    const QString &text = m_editor->edited().text();
    const QString wanted = m_field->text();
    const qsizetype before = m_editor->textCursor().selectionStart() - 1;
    const qsizetype found = before < 0 ? -1 : text.lastIndexOf(wanted, before, Qt::CaseInsensitive);
    if (found >= 0)
        select(found, QString());
    else
        select(text.lastIndexOf(wanted, -1, Qt::CaseInsensitive),
               QStringLiteral("Continued at the bottom"));
}

void FindBar::select(qsizetype position, const QString &message)
{
    const qsizetype length = m_field->text().size();
    QTextCursor cursor = m_editor->textCursor();
    if (length == 0 || position < 0) {
        cursor.setPosition(cursor.selectionStart());
        m_message->setText(length == 0 ? QString() : QStringLiteral("No matches"));
    } else {
        cursor.setPosition(int(position));
        cursor.setPosition(int(position + length), QTextCursor::KeepAnchor);
        m_message->setText(message);
    }
    m_editor->setTextCursor(cursor);
}
