// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// The Stop buttons of the Live tab for assistive technology: a cell of a table can be selected,
/// but Qt offers nobody to press what is painted in it. So there is a button for every row, beside
/// the table, that tells which agent it is about.
namespace StopButtons {

/// Lets the buttons be found in every LiveView.
void install();

} // namespace StopButtons
