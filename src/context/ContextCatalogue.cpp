// SPDX-License-Identifier: GPL-3.0-or-later
#include "context/ContextCatalogue.h"

#include <algorithm>

namespace {

/// A UTF-16 unit as a number that sorts like the code points: surrogates behind everything else.
char16_t rank(QChar unit)
{
    constexpr char16_t firstSurrogate = 0xd800;
    constexpr char16_t behindSurrogates = 0xe000;
    const char16_t code = unit.unicode();
    if (code < firstSurrogate)
        return code;
    return code < behindSurrogates ? char16_t(code + 0x2000) : char16_t(code - 0x800);
}

bool inCodePointOrder(const QString &a, const QString &b)
{
    return std::lexicographical_compare(a.cbegin(), a.cend(), b.cbegin(), b.cend(),
                                        [](QChar x, QChar y) { return rank(x) < rank(y); });
}

/// Collects files one after another.
class Collector {
public:
    explicit Collector(const FileLook &look) : m_look(look) {}

    void add(const QString &path, const QString &scope)
    {
        m_files.append({path, scope, m_look.kindOf(path) != FileKind::Missing});
    }

    void addIfPresent(const QString &path, const QString &scope)
    {
        if (m_look.kindOf(path) != FileKind::Missing)
            m_files.append({path, scope, true});
    }

    /// Every visible file of a folder with Cursor's rules, whatever it is called.
    void addRules(const QString &folder, const QString &scope)
    {
        QStringList names = m_look.namesIn(folder);
        std::sort(names.begin(), names.end(), inCodePointOrder);
        for (const QString &name : std::as_const(names)) {
            const QString path = folder + u'/' + name;
            if (!name.startsWith(u'.') && m_look.kindOf(path) == FileKind::Other)
                m_files.append({path, scope, true});
        }
    }

    QList<ContextFile> take() { return std::move(m_files); }

private:
    const FileLook &m_look;
    QList<ContextFile> m_files;
};

} // namespace

QList<ContextFile> contextFiles(const QString &project, const QString &home, const FileLook &look)
{
    Collector files(look);
    for (const auto *name : {u"/CLAUDE.md", u"/AGENTS.md", u"/GEMINI.md"})
        files.add(project + QString::fromUtf16(name), projectScope);
    for (const auto *name : {u"/.claude/CLAUDE.md", u"/.cursorrules"})
        files.addIfPresent(project + QString::fromUtf16(name), projectScope);
    files.addRules(project + QStringLiteral("/.cursor/rules"), projectScope);

    for (const auto *name : {u"/.claude/CLAUDE.md", u"/.codex/AGENTS.md", u"/.gemini/GEMINI.md"})
        files.add(home + QString::fromUtf16(name), homeScope);
    for (const auto *name : {u"/CLAUDE.md", u"/AGENTS.md", u"/GEMINI.md"})
        files.addIfPresent(home + QString::fromUtf16(name), homeScope);
    files.addRules(home + QStringLiteral("/.cursor/rules"), homeScope);
    return files.take();
}
