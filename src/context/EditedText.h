// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// The number of words: of longest runs without white space. A line break of either kind in a
/// FileText is white space.
qint64 countWords(QStringView text);

/// A text that is being edited, beside the text that was last loaded or saved. How many words it
/// has and whether it differs is known at any time for the price of the change, not of the text.
class EditedText {
public:
    EditedText() = default;
    /// Both texts are this one. Counting takes its time, so make it beside the interface thread.
    explicit EditedText(const QString &text);

    const QString &text() const { return m_text; }
    qsizetype size() const { return m_text.size(); }
    qint64 words() const { return m_words; }
    /// Whether the text is another one than the saved text.
    bool isDirty() const { return m_text != m_saved; }

    /// Puts something in the place of `removed` units at `position`.
    void replace(qsizetype position, qsizetype removed, QStringView added);
    void setSaved(const QString &saved) { m_saved = saved; }

private:
    QString m_text;
    QString m_saved;
    qint64 m_words = 0;
};
