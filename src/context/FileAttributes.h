// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// Gives an open file the extended attributes of another one, and takes all further ones from it.
/// Access control lists are among them. False when it may not have or give them all; those given
/// until then stay.
bool copyAttributes(int from, int to);
