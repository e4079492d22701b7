// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/TextLabel.h"

/// A label whose text one may want to take elsewhere, such as a path or what the system said of a
/// failure. A click or the Tab key selects the whole of it, however much shows; the Copy key and a
/// context menu copy it.
class CopyableLabel : public TextLabel {
    Q_OBJECT
public:
    CopyableLabel(const QString &text, const Style &style, QWidget *parent = nullptr);

    /// For a label that at times shows what is not worth copying. Then it takes no focus.
    void setCopyable(bool copyable);

protected:
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    bool isCopyable() const { return focusPolicy() != Qt::NoFocus; }
    void copy() const;
};
