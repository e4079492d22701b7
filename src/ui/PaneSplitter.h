// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSplitter>

/// Two panes beside one another, divided by a hairline that can be dragged. Neither can be dragged
/// away, and the second one takes the room that a larger window gives.
class PaneSplitter : public QSplitter {
    Q_OBJECT
public:
    /// The widths are those to begin with.
    PaneSplitter(QWidget *first, int firstWidth, QWidget *second, int secondWidth, QWidget *parent);

protected:
    QSplitterHandle *createHandle() override;
};
