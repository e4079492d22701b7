// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QPointer>

/// Draws a frame around whatever the keyboard has moved the focus to, in every window of the
/// program. The signs that styles draw are often a tint, or nothing where a row is selected.
class FocusRing : public QObject {
    Q_OBJECT
public:
    explicit FocusRing(QObject *parent);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void follow(QWidget *widget, Qt::FocusReason reason);

    QPointer<QWidget> m_frame;
    bool m_byKeyboard = false;
};
