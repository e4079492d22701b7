// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/TextCells.h"

#include <QTextBoundaryFinder>

#include <algorithm>
#include <array>
#include <iterator>

namespace {

constexpr qsizetype tabWidth = 8;
/// No picture needs more characters. What is longer is a pile of marks that would take for ever.
constexpr qsizetype longestCluster = 64;
/// How far clusters are looked for at a time.
constexpr qsizetype lookAhead = 256;
/// Runs are laid out as a whole; short ones keep the error small that a font with other widths
/// makes inside of them.
constexpr qsizetype longestRun = 64;

struct Range {
    char32_t first;
    char32_t last;
};

/// Characters that take two columns: those that Unicode calls wide or full-width, roughly by block.
constexpr std::array wideRanges{
    Range{0x1100, 0x115f},   Range{0x231a, 0x231b},   Range{0x23e9, 0x23ec},
    Range{0x23f0, 0x23f0},   Range{0x23f3, 0x23f3},   Range{0x25fd, 0x25fe},
    Range{0x2614, 0x2615},   Range{0x2648, 0x2653},   Range{0x267f, 0x267f},
    Range{0x2693, 0x2693},   Range{0x26a1, 0x26a1},   Range{0x26aa, 0x26ab},
    Range{0x26bd, 0x26be},   Range{0x26c4, 0x26c5},   Range{0x26ce, 0x26ce},
    Range{0x26d4, 0x26d4},   Range{0x26ea, 0x26ea},   Range{0x26f2, 0x26f3},
    Range{0x26f5, 0x26f5},   Range{0x26fa, 0x26fa},   Range{0x26fd, 0x26fd},
    Range{0x2705, 0x2705},   Range{0x270a, 0x270b},   Range{0x2728, 0x2728},
    Range{0x274c, 0x274c},   Range{0x274e, 0x274e},   Range{0x2753, 0x2755},
    Range{0x2757, 0x2757},   Range{0x2795, 0x2797},   Range{0x27b0, 0x27b0},
    Range{0x27bf, 0x27bf},   Range{0x2b1b, 0x2b1c},   Range{0x2b50, 0x2b50},
    Range{0x2b55, 0x2b55},   Range{0x2e80, 0x303e},   Range{0x3041, 0xa4cf},
    Range{0xa960, 0xa97f},   Range{0xac00, 0xd7a3},   Range{0xf900, 0xfaff},
    Range{0xfe10, 0xfe19},   Range{0xfe30, 0xfe6f},   Range{0xff01, 0xff60},
    Range{0xffe0, 0xffe6},   Range{0x16fe0, 0x18dff}, Range{0x1b000, 0x1b2ff},
    Range{0x1f004, 0x1f004}, Range{0x1f0cf, 0x1f0cf}, Range{0x1f18e, 0x1f18e},
    Range{0x1f191, 0x1f19a}, Range{0x1f1e6, 0x1f320}, Range{0x1f32d, 0x1f335},
    Range{0x1f337, 0x1f37c}, Range{0x1f37e, 0x1f393}, Range{0x1f3a0, 0x1f3ca},
    Range{0x1f3cf, 0x1f3d3}, Range{0x1f3e0, 0x1f3f0}, Range{0x1f3f4, 0x1f3f4},
    Range{0x1f3f8, 0x1f43e}, Range{0x1f440, 0x1f440}, Range{0x1f442, 0x1f4fc},
    Range{0x1f4ff, 0x1f53d}, Range{0x1f54b, 0x1f567}, Range{0x1f57a, 0x1f57a},
    Range{0x1f595, 0x1f596}, Range{0x1f5a4, 0x1f5a4}, Range{0x1f5fb, 0x1f64f},
    Range{0x1f680, 0x1f6c5}, Range{0x1f6cc, 0x1f6cc}, Range{0x1f6d0, 0x1f6d7},
    Range{0x1f6dc, 0x1f6df}, Range{0x1f6eb, 0x1f6ec}, Range{0x1f6f4, 0x1f6fc},
    Range{0x1f7e0, 0x1f7eb}, Range{0x1f7f0, 0x1f7f0}, Range{0x1f90c, 0x1f9ff},
    Range{0x1fa70, 0x1faff}, Range{0x20000, 0x3fffd}};

bool isWide(char32_t character)
{
    const auto range =
        std::lower_bound(wideRanges.begin(), wideRanges.end(), character,
                         [](const Range &candidate, char32_t c) { return candidate.last < c; });
    return range != wideRanges.end() && range->first <= character;
}

struct Name {
    char32_t character;
    const char *text;
};

constexpr std::array names{
    Name{0x7f, "DEL"},   Name{0x85, "NEL"},    Name{0xad, "SHY"},   Name{0x61c, "ALM"},
    Name{0x200b, "ZWS"}, Name{0x200c, "ZWNJ"}, Name{0x200d, "ZWJ"}, Name{0x200e, "LRM"},
    Name{0x200f, "RLM"}, Name{0x2028, "LS"},   Name{0x2029, "PS"},  Name{0x202a, "LRE"},
    Name{0x202b, "RLE"}, Name{0x202c, "PDF"},  Name{0x202d, "LRO"}, Name{0x202e, "RLO"},
    Name{0x2060, "WJ"},  Name{0x2066, "LRI"},  Name{0x2067, "RLI"}, Name{0x2068, "FSI"},
    Name{0x2069, "PDI"}, Name{0xfeff, "BOM"}};

constexpr std::array<const char *, 0x20> controlNames{
    "NUL", "SOH", "STX", "ETX", "EOT", "ENQ", "ACK", "BEL", "BS",  "TAB", "LF",
    "VT",  "FF",  "CR",  "SO",  "SI",  "DLE", "DC1", "DC2", "DC3", "DC4", "NAK",
    "SYN", "ETB", "CAN", "EM",  "SUB", "ESC", "FS",  "GS",  "RS",  "US"};

bool isAscii(QChar character)
{
    return character.unicode() < 0x80;
}

bool isPlainCharacter(QChar character)
{
    return character.unicode() >= 0x20 && character.unicode() < 0x7f;
}

/// The character at the beginning of the text, which may be half of one.
char32_t firstOf(QStringView text)
{
    if (text.size() > 1 && text[0].isHighSurrogate() && text[1].isLowSurrogate())
        return QChar::surrogateToUcs4(text[0], text[1]);
    return text[0].unicode();
}

qsizetype unitsOf(char32_t character)
{
    return QChar::requiresSurrogates(character) ? 2 : 1;
}

bool isSign(char32_t character)
{
    switch (QChar::category(character)) {
    case QChar::Other_Control:
    case QChar::Other_Surrogate:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return true;
    case QChar::Other_Format:
        // Arabic number signs and the like are of this category and have a shape.
        return character < 0x600 || character > 0x605;
    default:
        return false;
    }
}

/// Scripts whose letters depend on their neighbours.
bool isShaped(char32_t character)
{
    const QChar::Direction direction = QChar::direction(character);
    if (direction == QChar::DirR || direction == QChar::DirAL)
        return true;
    const QChar::Script script = QChar::script(character);
    return (script >= QChar::Script_Hebrew && script <= QChar::Script_Sinhala) ||
           script == QChar::Script_Tibetan || script == QChar::Script_Myanmar ||
           script == QChar::Script_Khmer || script == QChar::Script_Mongolian;
}

bool isRightToLeft(char32_t character)
{
    const QChar::Direction direction = QChar::direction(character);
    return direction == QChar::DirR || direction == QChar::DirAL;
}

bool isPictographic(QStringView cluster, char32_t first)
{
    constexpr QChar emojiPresentation(0xfe0f);
    return first >= 0x1f000 || cluster.contains(emojiPresentation);
}

/// How much of a cluster can be drawn as one: where it hides a character that is no mark, up to
/// that. Only emoji and shaped scripts are made with such.
qsizetype withoutHidden(QStringView cluster, char32_t first)
{
    if (isPictographic(cluster, first) || isShaped(first))
        return cluster.size();
    for (qsizetype i = unitsOf(first); i < cluster.size();) {
        const char32_t character = firstOf(cluster.sliced(i));
        if (isSign(character))
            return i;
        i += unitsOf(character);
    }
    return cluster.size();
}

bool canJoin(const TextRun &run, const TextCell &cell)
{
    if (run.kind != cell.kind)
        return false;
    switch (cell.kind) {
    case CellKind::Plain:
    case CellKind::Blank:
        return true;
    case CellKind::Narrow:
    case CellKind::Wide:
    case CellKind::Shaped:
        return run.end - run.begin < longestRun;
    case CellKind::Joined:
    case CellKind::Sign:
        return false;
    }
    Q_UNREACHABLE();
}

void join(TextRun &run, const TextRun &next)
{
    run.end = next.end;
    run.columns += next.columns;
}

/// Puts runs of one script together that only blanks stand between, since words are set side by
/// side in the direction of their script.
QList<TextRun> withWordsJoined(const QList<TextRun> &runs, QStringView text)
{
    QList<TextRun> joined;
    for (qsizetype i = 0; i < runs.size(); ++i) {
        TextRun run = runs[i];
        while (run.kind == CellKind::Shaped && run.rightToLeft && i + 2 < runs.size()) {
            const TextRun &gap = runs[i + 1];
            const TextRun &next = runs[i + 2];
            const QStringView between = text.sliced(gap.begin, gap.end - gap.begin);
            if (next.kind != run.kind || next.rightToLeft != run.rightToLeft ||
                between.count(u' ') != between.size() || next.end - run.begin > 2 * longestRun)
                break;
            join(run, gap);
            join(run, next);
            i += 2;
        }
        joined.append(run);
    }
    return joined;
}

} // namespace

bool isPlain(QStringView text)
{
    // Without a way out in the middle, so that the compiler can take many at a time.
    bool plain = true;
    for (const QChar character : text)
        plain &= isPlainCharacter(character);
    return plain;
}

QString signName(char32_t character)
{
    if (character < controlNames.size())
        return QString::fromLatin1(controlNames[character]);
    const auto name = std::find_if(names.begin(), names.end(), [character](const Name &candidate) {
        return candidate.character == character;
    });
    if (name != names.end())
        return QString::fromLatin1(name->text);
    const int digits = character < 0x100 ? 2 : 4;
    return QString::number(static_cast<uint>(character), 16).toUpper().rightJustified(digits, u'0');
}

QString visibleText(const QString &text)
{
    if (isPlain(text))
        return text;
    QString visible;
    TextCells cells(text);
    while (const std::optional<TextCell> cell = cells.next()) {
        const QStringView characters =
            QStringView(text).sliced(cell->begin, cell->end - cell->begin);
        if (cell->kind == CellKind::Sign || cell->kind == CellKind::Blank)
            visible += u'[' + signName(firstOf(characters)) + u']';
        else
            visible += characters;
    }
    return visible;
}

std::optional<TextCell> TextCells::next()
{
    const qsizetype begin = m_place.offset;
    if (begin >= m_text.size())
        return std::nullopt;
    const QChar unit = m_text[begin];
    const bool alone = begin + 1 == m_text.size() || isAscii(m_text[begin + 1]);
    if (isPlainCharacter(unit) && alone)
        return made(begin + 1, 1, CellKind::Plain);
    if (unit == u'\t')
        return made(begin + 1, tabWidth - m_place.column % tabWidth, CellKind::Blank);

    const char32_t first = firstOf(m_text.sliced(begin));
    const qsizetype length = unitsOf(first);
    if (isSign(first)) // half a column on both sides of the name
        return made(begin + length, signName(first).size() + 1, CellKind::Sign);
    const QStringView cluster = m_text.sliced(begin, endOfCluster() - begin);
    const qsizetype size = withoutHidden(cluster, first);
    const bool emoji = size > length && isPictographic(cluster, first);
    const qsizetype columns = emoji || isWide(first) ? 2 : 1;
    if (isShaped(first))
        return made(begin + size, 1, CellKind::Shaped);
    if (size > length)
        return made(begin + size, columns, CellKind::Joined);
    if (isPlainCharacter(unit))
        return made(begin + size, 1, CellKind::Plain);
    return made(begin + size, columns, columns == 2 ? CellKind::Wide : CellKind::Narrow);
}

qsizetype TextCells::endOfCluster() const
{
    const qsizetype begin = m_place.offset;
    while (!m_boundaries.isEmpty() && m_boundaries.constLast() <= begin)
        m_boundaries.removeLast();
    if (m_boundaries.isEmpty()) {
        const qsizetype ahead = std::min(lookAhead, m_text.size() - begin);
        const QStringView window = m_text.sliced(begin, ahead);
        QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, window.data(), window.size());
        while (finder.toNextBoundary() > 0)
            m_boundaries.append(begin + finder.position());
        // The last cluster may go on behind the window.
        if (begin + ahead < m_text.size() && m_boundaries.size() > 1)
            m_boundaries.removeLast();
        std::reverse(m_boundaries.begin(), m_boundaries.end());
    }
    if (m_boundaries.isEmpty())
        return begin + 1;
    qsizetype end = std::min(m_boundaries.constLast(), begin + longestCluster);
    if (end < m_text.size() && m_text[end].isLowSurrogate() && m_text[end - 1].isHighSurrogate())
        ++end; // never between the halves of a character
    return end;
}

TextCell TextCells::made(qsizetype end, qsizetype columns, CellKind kind)
{
    const TextCell cell{m_place.offset, end, m_place.column, columns, kind};
    m_place = {end, m_place.column + columns};
    return cell;
}

QList<TextRun> textRuns(QStringView text, TextPlace from, qsizetype endColumn)
{
    QList<TextRun> runs;
    TextCells cells(text, from);
    bool inPhrase = false; // its end decides where its letters stand
    while (const std::optional<TextCell> cell = cells.next()) {
        const bool shaped = cell->kind == CellKind::Shaped;
        inPhrase = shaped || (inPhrase && text[cell->begin] == u' ');
        if (cell->column >= endColumn + (inPhrase ? 4 * longestRun : 0))
            break;
        const bool rightToLeft = shaped && isRightToLeft(firstOf(text.sliced(cell->begin)));
        const TextRun next{cell->begin,   cell->end,  cell->column,
                           cell->columns, cell->kind, rightToLeft};
        if (!runs.isEmpty() && runs.constLast().rightToLeft == rightToLeft &&
            canJoin(runs.constLast(), *cell))
            join(runs.last(), next);
        else
            runs.append(next);
    }
    return withWordsJoined(runs, text);
}
