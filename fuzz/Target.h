// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QByteArrayList>

/// What each target defines, in a file of its own. The fuzzer and the replay are linked to it.
namespace Target {

/// Holds what is promised about one piece of code against an input of any bytes. Throws a Broken
/// where the promise does not hold.
void check(const QByteArray &input);

/// Inputs to start from, of every kind that the code tells apart.
QByteArrayList seeds();

/// Words that matter to the code, for the fuzzer to write into its inputs.
QByteArrayList words();

} // namespace Target
