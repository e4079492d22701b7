// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

class QObject;

/// Shows a file or folder, selected, in the desktop's file manager. Where there is none that can
/// be asked over D-Bus, the folder around it is opened instead. Returns at once; `context` is an
/// object that lives on the interface thread.
void revealInFileManager(const QString &path, QObject *context);
