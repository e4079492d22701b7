// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// How long the window may take for anything, in milliseconds.
constexpr int patience = 60'000;

/// How long an idle thread waits for work: short, so that the soak sees threads come and go.
constexpr int threadPatience = 500;
