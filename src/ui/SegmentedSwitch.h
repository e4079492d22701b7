// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>
#include <QWidget>

class QButtonGroup;

/// A choice of one out of a few, side by side in one frame. The segments are exclusive buttons:
/// Tab goes to the chosen one, the arrow keys choose another.
class SegmentedSwitch : public QWidget {
    Q_OBJECT
public:
    /// The first one is chosen. Labels that are too long are shortened, and whole in the tooltip.
    explicit SegmentedSwitch(const QStringList &labels, QWidget *parent = nullptr);

    int current() const;
    void setCurrent(int segment);

Q_SIGNALS:
    /// Another segment was chosen, by whomever.
    void currentChanged(int segment);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QButtonGroup *m_segments;
};
