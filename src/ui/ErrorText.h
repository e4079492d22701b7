// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPlainTextEdit>

/// What a tool said when it failed: red, as plain text, wrapped, selectable, and scrolling when it
/// is long. It takes no room while there is nothing to say.
class ErrorText : public QPlainTextEdit {
    Q_OBJECT
public:
    /// Grows with its text up to that many lines.
    explicit ErrorText(int mostLines, QWidget *parent = nullptr);

    /// Shows a text, of which only the end when it is very long; hides when there is none.
    void setError(const QString &text);

protected:
    bool event(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void updateColors();
    void fitHeight();

    const int m_mostLines;
};
