// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

class ContextEditor;
class FindBar;
class QPushButton;
class TextLabel;
class WarningBar;
struct OpenedText;

/// The right side of the Context tab: a file's name, the number of its words, the button that saves
/// it, and its text.
class EditorPane : public QWidget {
    Q_OBJECT
public:
    explicit EditorPane(QWidget *parent = nullptr);

    ContextEditor *editor() const { return m_editor; }

    /// Shows a file. `problem` says why its text is empty although it exists; it may be empty.
    void open(const QString &label, OpenedText opened, const QString &problem);
    /// The line that tells how the last save went; an empty one for nothing.
    void setStatus(const QString &status);
    /// Whether the text may be changed; not so while another file is on its way.
    void setEditable(bool editable);
    /// Whether a save is under way, so that there can be no other one.
    void setSaving(bool saving);
    /// Tells that this text is on the disk now.
    void setSaved(const QString &text);

Q_SIGNALS:
    void saveRequested();

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    QWidget *buildToolBar();
    void connectSignals();
    void refresh();

    TextLabel *m_label = nullptr;
    TextLabel *m_words = nullptr;
    TextLabel *m_status = nullptr;
    QPushButton *m_saveButton = nullptr;
    WarningBar *m_warning = nullptr;
    ContextEditor *m_editor = nullptr;
    FindBar *m_findBar = nullptr;
    bool m_saving = false;
};
