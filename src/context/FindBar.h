// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

class ContextEditor;
class QLineEdit;
class QToolButton;
class TextLabel;

/// A slim bar that looks for plain text in the editor, upper and lower case alike. It is hidden
/// until it is asked for, and Escape hides it again.
class FindBar : public QWidget {
    Q_OBJECT
public:
    explicit FindBar(ContextEditor *editor, QWidget *parent = nullptr);

    /// Shows the bar and looks for what is selected, if that is part of one line.
    void start();
    /// Hides the bar and gives the keyboard back to the editor.
    void finish();
    /// Drops what was told about a text that is no longer there.
    void clearMessage();
    void findNext();
    void findPrevious();
    /// Where Tab comes last in the bar.
    QWidget *lastStop() const;

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    void findTyped();
    void findFrom(qsizetype position);
    void select(qsizetype position, const QString &message);

    ContextEditor *m_editor;
    QLineEdit *m_field;
    TextLabel *m_message;
    QToolButton *m_done = nullptr;
};
