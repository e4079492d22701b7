// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/Colors.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QStyleOption>

/// A control that is told from its ground by its outline alone, and is to be seen in every palette.
template <typename Control, typename Option>
class Outlined : public Control {
public:
    using Control::Control;

protected:
    void initStyleOption(Option *option) const override
    {
        Control::initStyleOption(option);
        option->palette = Colors::outlined(option->palette);
    }
};

using OutlinedCheckBox = Outlined<QCheckBox, QStyleOptionButton>;
using OutlinedLineEdit = Outlined<QLineEdit, QStyleOptionFrame>;
