// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QTimer>
#include <QWidget>

class Store;
class TextLabel;

/// A line at the foot of its parent that tells how far a reload has come, when that takes long
/// enough for anybody to wonder. It lies over what is there, so nothing moves when it comes and
/// goes.
class ReloadFoot : public QWidget {
    Q_OBJECT
public:
    ReloadFoot(const Store &store, QWidget *parent);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void followReload();
    void tell();
    void place();

    const Store &m_store;
    TextLabel *m_label;
    QTimer m_timer;
};
