// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QTimer>
#include <QWidget>

/// A small turning wheel: something is going on, and nobody knows how long it takes. It turns only
/// while it is visible.
class Spinner : public QWidget {
    Q_OBJECT
public:
    explicit Spinner(QWidget *parent = nullptr);

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    QTimer m_timer;
    int m_step = 0;
};
