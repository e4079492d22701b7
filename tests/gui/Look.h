// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QLocale>
#include <QPalette>

/// What a desktop settles for its programs, most of it at any time.
struct Look {
    enum class Colors { Light, Dark, Black, White }; // the last two are of high contrast

    int points = 10;
    Qt::LayoutDirection direction = Qt::LeftToRight;
    QLocale locale = QLocale(QLocale::English, QLocale::UnitedStates);
    Colors colors = Colors::Light;

    /// In words, as the name of a test's data.
    QString name() const;
    /// Gives it to the program as a desktop would. The language is settled for what is made later.
    void apply() const;
};

/// For a program that has the nth of four scales: looks of which, over all four scales, any two of
/// size, direction, language, colours and scale come together in every way.
QList<Look> looksAtScale(int n);

QPalette paletteOf(Look::Colors colors);
