// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "context/ContextDocument.h"
#include "context/EditedText.h"

#include <QPlainTextEdit>

/// A file's text, ready to be edited. Made beside the interface thread.
struct OpenedText {
    FileText file;
    EditedText text;
    std::unique_ptr<QTextDocument> document;

    static OpenedText make(const FileText &file, const ContextDocument::Style &style);
};

/// The editor for plain text. It shows every character as it is and gives back what it was given:
/// line breaks of all kinds, no-break spaces, NUL. What is typed, copied and pasted is treated
/// likewise.
class ContextEditor : public QPlainTextEdit {
    Q_OBJECT
public:
    explicit ContextEditor(QWidget *parent = nullptr);
    ~ContextEditor() override;

    /// What documents for this editor should look like.
    ContextDocument::Style documentStyle() const;

    /// Shows another text. What can be undone begins with it.
    void open(OpenedText opened);

    const EditedText &edited() const { return m_edited; }
    /// The text as it would be saved now.
    FileText fileText() const;
    void setSaved(const QString &text) { m_edited.setSaved(text); }

Q_SIGNALS:
    /// The text has changed.
    void changed();

protected:
    bool event(QEvent *event) override;
    bool focusNextPrevChild(bool next) override;
    void keyPressEvent(QKeyEvent *event) override;
    QMimeData *createMimeDataFromSelection() const override;
    bool canInsertFromMimeData(const QMimeData *source) const override;
    void insertFromMimeData(const QMimeData *source) override;

private:
    void takeChange(int position, int removed, int added);
    void takeBreak(int position);
    void useSystemFont();

    std::unique_ptr<QTextDocument> m_document;
    FileText m_file; ///< without its text
    EditedText m_edited;
};
