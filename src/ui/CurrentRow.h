// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QAbstractItemView;

/// Lets the current row of a view, which its keys are about, be the selected one also where a row
/// is selected without mouse or keys, as assistive technology does. To be called once for each
/// model that the view gets.
void letCurrentRowFollowSelection(QAbstractItemView *view);
