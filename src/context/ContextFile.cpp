// SPDX-License-Identifier: GPL-3.0-or-later
#include "context/ContextFile.h"

QString label(const ContextFile &file, const QString &home)
{
    return file.scope == homeScope ? u'~' + file.path.mid(home.size()) : file.path;
}
