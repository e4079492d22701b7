// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class BarChart;

/// Has charts tell assistive technology their bars, one by one. Any number of calls does.
void installBarChartAccessibility();

/// Tells that the keys have come to a bar.
void tellFocusedBar(BarChart *chart, int bar);
