// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>
#include <QStringList>

class QWidget;

/// Looks at a window as a demanding eye would.
namespace Looks {

/// What is wrong with what is to be seen of a window: texts that are cut, widgets that overlap,
/// texts and signs that can hardly be told from their ground.
QStringList faults(QWidget *window);

/// How many pixels of that part of two pictures of a window can be told apart well.
int changedPixels(const QImage &before, const QImage &after, const QRect &part);

} // namespace Looks
