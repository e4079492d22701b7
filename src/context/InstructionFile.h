// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "context/FileText.h"

/// What reading an instruction file gives. A file that cannot be shown gives an empty text and the
/// reason as a sentence or two; a missing one gives an empty text and no reason.
struct InstructionText {
    FileText file;
    QString problem;
};

/// Reads a file whole. Only a regular file is opened, so that nothing can hang or be disturbed.
InstructionText readInstructions(const QString &path);

/// Makes the bytes the content of the file, and missing folders on the way to it. A symbolic link
/// stays and the file that it leads to changes; mode, owner, access lists and other attributes, and
/// further names of the file stay. The old content stays whole when this fails. Returns the
/// system's text for the error, in one line, or nothing when all went well.
std::optional<QString> saveInstructions(const QString &path, const QByteArray &bytes);
