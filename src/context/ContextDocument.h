// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "context/FileText.h"

#include <QFont>

#include <memory>

class QTextDocument;

/// A file's text as a document for an editor, and back. A paragraph remembers the line break before
/// it where that is not the file's usual one, so the mixture of a file outlives editing, undo and
/// redo, and a new line gets the break of the line that it was made from.
namespace ContextDocument {

/// What the editor would give its document anyway. Giving it beforehand spares the interface
/// thread the work of laying everything out anew.
struct Style {
    QFont font;
    qreal tabWidth = 0;
};

/// Makes the document, on any thread: it belongs to none until it is moved to one.
std::unique_ptr<QTextDocument> make(const FileText &file, const Style &style);

/// Part of a document as it stands in a FileText::text whose usual break is `newLine`.
QString text(const QTextDocument &document, int position, int length, char16_t newLine);

} // namespace ContextDocument
