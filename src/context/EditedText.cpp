// SPDX-License-Identifier: GPL-3.0-or-later
#include "context/EditedText.h"

#include "context/FileText.h"

namespace {

bool isSpace(QChar unit)
{
    return unit.isSpace() || unit.unicode() == crLf;
}

/// How many words begin at one of the units from `begin` up to `end`.
qint64 wordStarts(QStringView text, qsizetype begin, qsizetype end)
{
    qint64 count = 0;
    bool afterSpace = begin == 0 || isSpace(text[begin - 1]);
    for (qsizetype i = begin; i < end; ++i) {
        const bool space = isSpace(text[i]);
        count += afterSpace && !space;
        afterSpace = space;
    }
    return count;
}

/// Whether a word begins at a unit depends on that unit and the one before it, so a change reaches
/// one unit further than itself.
qint64 wordStartsTouched(QStringView text, qsizetype position, qsizetype length)
{
    return wordStarts(text, position, qMin(position + length + 1, text.size()));
}

} // namespace

qint64 countWords(QStringView text)
{
    return wordStarts(text, 0, text.size());
}

EditedText::EditedText(const QString &text) : m_text(text), m_saved(text), m_words(countWords(text))
{
    // A copy of its own with room to grow, so that the first key does not pay for it.
    m_text.reserve(text.size() + text.size() / 8 + 1024);
}

void EditedText::replace(qsizetype position, qsizetype removed, QStringView added)
{
    m_words -= wordStartsTouched(m_text, position, removed);
    m_text.replace(position, removed, added.data(), added.size());
    m_words += wordStartsTouched(m_text, position, added.size());
}
