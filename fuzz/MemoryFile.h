// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Property.h"
#include "model/Files.h"

#include <sys/mman.h>
#include <unistd.h>

/// A regular file that no disk knows of, for code that wants one thousands of times a second.
class MemoryFile {
public:
    explicit MemoryFile(const QByteArray &content)
        : m_file(::memfd_create("input", MFD_CLOEXEC))
        , m_path(QStringLiteral("/proc/self/fd/%1").arg(m_file.get()).toStdString())
    {
        holds(::write(m_file.get(), content.constData(), size_t(content.size())) == content.size(),
              "the file is written");
    }

    const FileDescriptor &descriptor() const { return m_file; }
    const std::string &path() const { return m_path; }

private:
    FileDescriptor m_file;
    std::string m_path;
};
