// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFontMetrics>
#include <QString>

/// Text that others have written (prompts, paths, names of models, what tools print), made fit to
/// be shown: characters that are not to be seen, or that would move others, are named in brackets;
/// and it is cut before it is laid out, so that no length makes a painting slow.
namespace ForeignText {

/// As much of the text as one line of that width (in pixels) holds, with an ellipsis in place of
/// the rest.
QString line(const QString &text, const QFontMetrics &metrics, int width,
             Qt::TextElideMode elide = Qt::ElideRight);

/// The beginning of the text, or its end when it is elided on the left, line by line, for what
/// breaks lines by itself.
QString lines(const QString &text, qsizetype mostCharacters = 4000,
              Qt::TextElideMode elide = Qt::ElideRight);

/// The beginning of the text in one line, for a window's title.
QString title(const QString &text);

/// The same for a label of Qt's, which breaks lines at blanks only: with places at which a long
/// word may be broken.
QString breakable(const QString &text);

} // namespace ForeignText
