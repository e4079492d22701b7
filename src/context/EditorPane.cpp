// SPDX-License-Identifier: GPL-3.0-or-later
#include "context/EditorPane.h"

#include "context/ContextEditor.h"
#include "context/FindBar.h"
#include "context/WarningBar.h"
#include "ui/CopyableLabel.h"
#include "ui/EmphasisButton.h"
#include "ui/Separator.h"
#include "ui/ToolTips.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPushButton>
#include <QShortcut>

namespace {

constexpr int padding = 10;
constexpr qint64 mostWords = 2000;

} // namespace

EditorPane::EditorPane(QWidget *parent)
    : QWidget(parent)
    , m_warning(new WarningBar(
          QStringLiteral("Over 2,000 words \u2014 long context files use up tokens in every "
                         "session. Consider trimming."),
          this))
    , m_editor(new ContextEditor(this))
{
    m_warning->setObjectName(QStringLiteral("warning"));
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(buildToolBar()); // first, because Tab goes in the order of making
    m_findBar = new FindBar(m_editor, this);
    setTabOrder(m_findBar->lastStop(), m_editor); // which is older
    layout->addWidget(m_warning);
    layout->addWidget(new Separator(Qt::Horizontal, this));
    layout->addWidget(m_findBar);
    layout->addWidget(m_editor, 1);
    connectSignals();
    refresh();
}

QWidget *EditorPane::buildToolBar()
{
    auto *bar = new QWidget(this);
    m_label = new CopyableLabel(
        QString(),
        {.size = TextStyle::Headline, .bold = true, .overflow = TextLabel::Overflow::ElideHead},
        bar);
    m_label->setObjectName(QStringLiteral("fileLabel"));
    m_words = new TextLabel(QString(), {.tone = TextLabel::Tone::Secondary}, bar);
    m_words->setObjectName(QStringLiteral("wordCount"));
    m_words->setToolTip(
        QStringLiteral("%1 finds in this file, %2 leaves the text")
            .arg(QKeySequence(QKeySequence::Find).toString(QKeySequence::NativeText),
                 QKeySequence(Qt::SHIFT | Qt::Key_Tab).toString(QKeySequence::NativeText)));
    m_words->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    m_status = new CopyableLabel(
        QString(), {.size = TextStyle::Caption, .tone = TextLabel::Tone::Secondary}, bar);
    m_status->setObjectName(QStringLiteral("status"));
    m_saveButton = new EmphasisButton(QStringLiteral("Save"), bar);
    m_saveButton->setObjectName(QStringLiteral("save"));
    m_saveButton->setShortcut(QKeySequence(QKeySequence::Save));
    m_saveButton->setToolTip(QStringLiteral("Save this file (%1)")
                                 .arg(m_saveButton->shortcut().toString(QKeySequence::NativeText)));
    auto *layout = new QHBoxLayout(bar);
    layout->setContentsMargins(padding, padding, padding, padding);
    layout->setSpacing(padding);
    layout->addWidget(m_label);
    layout->addWidget(m_words);
    layout->addStretch(1);
    layout->addWidget(m_status);
    layout->addWidget(m_saveButton);
    return bar;
}

void EditorPane::connectSignals()
{
    connect(m_editor, &ContextEditor::changed, this, &EditorPane::refresh);
    connect(m_saveButton, &QPushButton::clicked, this, &EditorPane::saveRequested);
    const auto onKey = [this](QKeySequence::StandardKey key, auto slot) {
        auto *shortcut = new QShortcut(key, this);
        shortcut->setContext(Qt::WindowShortcut);
        connect(shortcut, &QShortcut::activated, m_findBar, slot);
    };
    onKey(QKeySequence::Find, &FindBar::start);
    onKey(QKeySequence::FindNext, &FindBar::findNext);
    onKey(QKeySequence::FindPrevious, &FindBar::findPrevious);
}

void EditorPane::open(const QString &label, OpenedText opened, const QString &problem)
{
    m_label->setText(label);
    m_editor->setAccessibleName(label);
    m_editor->setAccessibleDescription(problem);
    m_editor->setToolTip(plainToolTip(problem));
    m_editor->open(std::move(opened));
    m_findBar->clearMessage();
    refresh();
}

void EditorPane::keyPressEvent(QKeyEvent *event)
{
    // From the bar itself as well as from the text.
    if (event->key() == Qt::Key_Escape && m_findBar->isVisible())
        m_findBar->finish();
    else
        QWidget::keyPressEvent(event);
}

void EditorPane::setStatus(const QString &status)
{
    m_status->setText(status);
    m_status->setVisible(!status.isEmpty());
}

void EditorPane::setEditable(bool editable)
{
    m_editor->setReadOnly(!editable);
    refresh();
}

void EditorPane::setSaving(bool saving)
{
    m_saving = saving;
    refresh();
}

void EditorPane::setSaved(const QString &text)
{
    m_editor->setSaved(text);
    refresh();
}

/// Shows what follows from the text.
void EditorPane::refresh()
{
    const EditedText &edited = m_editor->edited();
    const bool tooMany = edited.words() > mostWords;
    m_words->setText(QStringLiteral("%1 words").arg(edited.words()));
    m_words->setTone(tooMany ? TextLabel::Tone::Warning : TextLabel::Tone::Secondary);
    m_warning->setVisible(tooMany);
    m_saveButton->setEnabled(edited.isDirty() && !m_saving && !m_editor->isReadOnly());
}
