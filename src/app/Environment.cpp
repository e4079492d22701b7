// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Environment.h"

#include <QByteArray>

void prepareEnvironment()
{
    // Without these a look at the status takes the index lock away from an agent that is
    // committing, and a question for a password waits for a terminal that is not there.
    qputenv("GIT_OPTIONAL_LOCKS", "0");
    qputenv("GIT_TERMINAL_PROMPT", "0");
    for (const char *name :
         {// Set by git for hooks and aliases: a window started from one would show and change that
          // repository, whatever project is selected.
          "GIT_DIR", "GIT_WORK_TREE", "GIT_INDEX_FILE", "GIT_PREFIX", "GIT_COMMON_DIR",
          "GIT_OBJECT_DIRECTORY", "GIT_ALTERNATE_OBJECT_DIRECTORIES", "GIT_NAMESPACE",
          // Change which files a path means.
          "GIT_LITERAL_PATHSPECS", "GIT_GLOB_PATHSPECS", "GIT_NOGLOB_PATHSPECS",
          "GIT_ICASE_PATHSPECS",
          // Change the text of a diff.
          "GIT_EXTERNAL_DIFF", "GIT_DIFF_OPTS",
          // Change what ps prints.
          "COLUMNS", "PS_FORMAT", "PS_PERSONALITY"})
        qunsetenv(name);
}
