// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class DiffDocument;
class QString;

#include <QtGlobal>

/// What assistive technology is told of a DiffView: a list with an item for every row, of which
/// only those exist that somebody has asked for.
namespace DiffViewAccessible {

/// Lets Qt find the interface for a DiffView. Can be called any number of times.
void install();

/// A row in words: on each side that has a line its number, what happened to it, and its text.
QString rowText(const DiffDocument &document, qsizetype row);

} // namespace DiffViewAccessible
