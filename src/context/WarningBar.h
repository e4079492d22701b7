// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

/// A line over the editor that warns of something, on a tint of its own colour.
class WarningBar : public QWidget {
    Q_OBJECT
public:
    explicit WarningBar(const QString &text, QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QWidget *m_label;
};
