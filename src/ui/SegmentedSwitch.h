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

    /// Gives the switch a width, or more where the user's font needs it to show that segment whole.
    void setUsualWidth(int width, int segment);

    int current() const;
    void setCurrent(int segment);

Q_SIGNALS:
    /// Another segment was chosen, by whomever.
    void currentChanged(int segment);

protected:
    void changeEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void fitWidth();

    QButtonGroup *m_segments;
    int m_usualWidth = 0;
    int m_wholeSegment = -1;
};
