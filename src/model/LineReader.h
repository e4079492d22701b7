// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/Files.h"

#include <cstdlib>
#include <limits>
#include <memory>
#include <optional>
#include <string_view>

/// Hands out the lines of a file one by one, reading it in chunks into one buffer that is used
/// again for the next chunk and the next file. Memory follows the longest line, not the file.
class LineReader {
public:
    /// Readable bytes behind every line, as the JSON parser wants them.
    static constexpr qint64 padding = 64;
    /// A longer line (in bytes) is passed over. No log has one; without a bound a file of zeros
    /// would be taken into memory whole.
    static constexpr qint64 longestLine = qint64(1) << 30;
    /// Bytes per read. Measured: larger chunks fall out of the processor's cache.
    static constexpr qint64 defaultChunk = 256 * 1024;

    explicit LineReader(qint64 chunk = defaultChunk);

    /// Starts on a file, of which at most the first `limit` bytes are read. False when it is not
    /// a regular file or cannot be opened.
    bool open(const char *path, qint64 limit = std::numeric_limits<qint64>::max());

    /// Starts on a part of an open file: the lines whose first bytes lie in it. The file must
    /// outlive the reading.
    void open(const FileDescriptor &file, qint64 begin, qint64 end);

    /// The next line that is not empty, without its line feed; nothing at the end of the file and
    /// after a read error. The text stays valid until the next call.
    std::optional<std::string_view> next();

    /// Where in the file the line that next() gave begins.
    qint64 position() const { return m_position; }

    /// Goes on from another place of the file, of which `limit` bytes are read at most.
    void goTo(qint64 place, qint64 limit);

    /// Whether reading failed somewhere in the file.
    bool failed() const { return m_failed; }

private:
    bool fill();
    bool makeRoom();
    bool resize(qint64 capacity);

    struct Free {
        void operator()(char *bytes) const { std::free(bytes); }
    };

    const qint64 m_chunk;
    std::unique_ptr<char, Free> m_buffer; // m_capacity + padding bytes
    qint64 m_capacity = 0;
    qint64 m_begin = 0;   // where the next line begins
    qint64 m_scanned = 0; // up to here there is no line feed
    qint64 m_end = 0;     // end of what has been read
    FileDescriptor m_own;
    const FileDescriptor *m_file = &m_own;
    qint64 m_position = 0;  // of the line given last, in the file
    qint64 m_read = 0;      // up to here the file has been read
    qint64 m_stopAt = 0;    // a line that begins here belongs to another part
    qint64 m_left = 0;      // bytes of the file that may still be read
    bool m_tooLong = false; // the line under way is longer than a line may be
    bool m_atEnd = true;
    bool m_failed = false;
};
