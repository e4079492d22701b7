// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/LineReader.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace {

/// A buffer that one huge line made larger than this (in bytes) is given back after it.
constexpr qint64 mostKept = qint64(4) << 20;

} // namespace

LineReader::LineReader(qint64 chunk) : m_chunk(chunk) {}

bool LineReader::open(const char *path, qint64 limit)
{
    m_own = openRegularFile(path);
    m_file = &m_own;
    m_failed = false;
    m_stopAt = std::numeric_limits<qint64>::max();
    goTo(0, limit);
    m_atEnd = !m_own.isOpen();
    return m_own.isOpen();
}

void LineReader::open(const FileDescriptor &file, qint64 begin, qint64 end)
{
    m_own = FileDescriptor();
    m_file = &file;
    m_failed = false;
    m_stopAt = end;
    // The line that the byte before belongs to is passed over, like one that is too long.
    goTo(std::max<qint64>(begin - 1, 0), std::numeric_limits<qint64>::max());
    m_tooLong = begin > 0;
}

void LineReader::goTo(qint64 place, qint64 limit)
{
    m_left = limit;
    m_read = m_position = place;
    m_begin = m_scanned = m_end = 0;
    m_tooLong = false;
    m_atEnd = m_failed;
}

std::optional<std::string_view> LineReader::next()
{
    while (m_read - m_end + m_begin < m_stopAt) {
        const char *bytes = m_buffer.get();
        const void *found = m_scanned < m_end ? std::memchr(bytes + m_scanned, '\n',
                                                            static_cast<size_t>(m_end - m_scanned))
                                              : nullptr;
        if (!found && !m_atEnd) {
            m_scanned = m_end;
            m_atEnd = !fill();
            continue;
        }
        if (m_failed || (!found && m_begin == m_end))
            return std::nullopt;
        const qint64 end = found ? static_cast<const char *>(found) - bytes : m_end;
        const std::string_view line(bytes + m_begin, static_cast<size_t>(end - m_begin));
        m_position = m_read - m_end + m_begin;
        m_begin = m_scanned = found ? end + 1 : m_end;
        const bool restOfTooLong = std::exchange(m_tooLong, false);
        if (!line.empty() && !restOfTooLong)
            return line;
    }
    return std::nullopt;
}

/// Reads once more behind what is there. False at the end of the file and on an error.
bool LineReader::fill()
{
    m_tooLong = m_tooLong || !makeRoom();
    if (m_tooLong) {
        // Nobody will see this line: forget what there is of it.
        m_begin = m_end;
        m_failed = !makeRoom();
    }
    if (m_failed)
        return false;
    const qint64 count =
        readSomeAt(*m_file, m_read, m_buffer.get() + m_end, std::min(m_capacity - m_end, m_left));
    m_failed = count < 0;
    if (count <= 0)
        return false;
    m_left -= count;
    m_read += count;
    m_end += count;
    return true;
}

/// Moves the line under way to the front of the buffer, which grows when that line fills it. False
/// when the line is too long or there is no memory for it.
bool LineReader::makeRoom()
{
    const qint64 kept = m_end - m_begin;
    if (kept > 0 && m_begin > 0)
        std::memmove(m_buffer.get(), m_buffer.get() + m_begin, static_cast<size_t>(kept));
    m_begin = 0;
    m_scanned = m_end = kept;
    const bool tooLarge = m_capacity > mostKept && kept < m_chunk;
    if (m_capacity == 0 || tooLarge)
        return resize(m_chunk);
    if (kept < m_capacity)
        return true;
    return kept < longestLine && resize(std::min(kept * 2, longestLine));
}

bool LineReader::resize(qint64 capacity)
{
    void *bytes = std::realloc(m_buffer.get(), static_cast<size_t>(capacity + padding));
    if (!bytes)
        return false;
    (void)m_buffer.release();
    m_buffer.reset(static_cast<char *>(bytes));
    m_capacity = capacity;
    return true;
}
