// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

class QDialog;

/// Lets the Copy key and the context menu of a question copy a text that the question is about:
/// what its own labels show is broken into lines that no path has.
void addCopyAction(QDialog *dialog, const QString &title, const QString &text);
