// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QApplication>

/// An application that ends with the first painting of its window, and prints when that was: the
/// nanoseconds of the monotonic clock at which the painted window had been handed over.
class FirstPaintApplication : public QApplication {
public:
    using QApplication::QApplication;

    bool notify(QObject *receiver, QEvent *event) override;

private:
    int m_depth = 0;
    bool m_painted = false;
};
