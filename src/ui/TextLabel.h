// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/Fonts.h"

#include <QLabel>

/// A label for text from anywhere: it never takes it for markup, follows palette and font changes,
/// and either wraps it (inside a word where it must) or shortens it, so that no text can widen a
/// layout. Shortened text shows whole in the tooltip; text() is always the whole.
class TextLabel : public QLabel {
    Q_OBJECT
public:
    enum class Tone { Primary, Secondary, Error, Warning };
    enum class Overflow { ElideHead, ElideTail, Wrap };

    struct Style {
        TextStyle size = TextStyle::Body;
        bool bold = false;
        Tone tone = Tone::Primary;
        Overflow overflow = Overflow::ElideTail;
    };

    TextLabel(const QString &text, const Style &style, QWidget *parent = nullptr);

    Tone tone() const { return m_style.tone; }
    void setTone(Tone tone);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    int heightForWidth(int width) const override;

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    bool wraps() const { return m_style.overflow == Overflow::Wrap; }
    QColor color() const;
    QString broken() const;
    QString elided(int width) const;
    QSize wrappedSize(int width) const;

    Style m_style;
};
