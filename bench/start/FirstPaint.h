// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QApplication>

#include <functional>
#include <utility>

/// An application that ends with the first painting of its window for which a condition held when
/// it began, and prints when that was: the nanoseconds of the monotonic clock at which the painted
/// window had been handed over.
class FirstPaintApplication : public QApplication {
public:
    using QApplication::QApplication;

    /// Without a condition every painting will do.
    void waitFor(std::function<bool()> condition) { m_condition = std::move(condition); }

    bool notify(QObject *receiver, QEvent *event) override;

private:
    std::function<bool()> m_condition = [] { return true; };
    int m_depth = 0;
    bool m_painted = false;
};
