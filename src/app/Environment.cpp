// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Environment.h"

#include <QByteArray>

void prepareEnvironment()
{
    // Without these a look at the status takes the index lock away from an agent that is
    // committing, and a question for a password waits for a terminal that is not there.
    qputenv("GIT_OPTIONAL_LOCKS", "0");
    qputenv("GIT_TERMINAL_PROMPT", "0");
    // Set by git for hooks and aliases: a window started from one would show another repository.
    for (const char *name : {"GIT_DIR", "GIT_WORK_TREE", "GIT_INDEX_FILE", "GIT_PREFIX"})
        qunsetenv(name);
    qunsetenv("GIT_EXTERNAL_DIFF"); // replaces the text of every diff
    // These change what ps prints.
    for (const char *name : {"COLUMNS", "PS_FORMAT", "PS_PERSONALITY"})
        qunsetenv(name);
}
