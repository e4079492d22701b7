// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPushButton>

/// A push button that says with its colours what pressing it means, and is to be seen as a button
/// in every palette. The colours come from the palette at the moment of painting.
class EmphasisButton : public QPushButton {
    Q_OBJECT
public:
    enum class Emphasis {
        None,
        Prominent,  ///< what one comes here to do
        Destructive ///< something that cannot be taken back
    };

    explicit EmphasisButton(const QString &text, QWidget *parent = nullptr);
    EmphasisButton(Emphasis emphasis, const QString &text, QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;
    void initStyleOption(QStyleOptionButton *option) const override;

private:
    const Emphasis m_emphasis;
};
