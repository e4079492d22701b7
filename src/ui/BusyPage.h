// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

/// Stands in the place of a screen's contents until they are known: a spinner, and what is being
/// waited for.
class BusyPage : public QWidget {
    Q_OBJECT
public:
    /// Without a text there is the spinner alone.
    explicit BusyPage(const QString &text = {}, QWidget *parent = nullptr);
};
