// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// QCustomPlot's header is written with short keywords that this program does without.
#define signals Q_SIGNALS
#define foreach Q_FOREACH
#include <qcustomplot.h>
#undef foreach
#undef signals
