// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

/// A hairline between two areas of a screen.
class Separator : public QWidget {
    Q_OBJECT
public:
    explicit Separator(Qt::Orientation orientation, QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;
};
