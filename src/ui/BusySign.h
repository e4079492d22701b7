// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QTimer>
#include <QWidget>

class Spinner;

/// A place for a Spinner that appears only when something takes long enough to be wondered about.
/// It takes the same room either way.
class BusySign : public QWidget {
    Q_OBJECT
public:
    explicit BusySign(QWidget *parent = nullptr);

    void setBusy(bool busy);
    bool isSpinning() const;

private:
    Spinner *m_spinner;
    QTimer m_delay;
};
