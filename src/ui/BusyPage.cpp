// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/BusyPage.h"

#include "ui/Spinner.h"
#include "ui/TextLabel.h"

#include <QVBoxLayout>

BusyPage::BusyPage(const QString &text, QWidget *parent) : QWidget(parent)
{
    setObjectName(QStringLiteral("busy"));
    auto *layout = new QVBoxLayout(this);
    layout->addStretch();
    layout->addWidget(new Spinner(this), 0, Qt::AlignHCenter);
    if (!text.isEmpty())
        layout->addWidget(new TextLabel(text, {.tone = TextLabel::Tone::Secondary}, this), 0,
                          Qt::AlignHCenter);
    layout->addStretch();
}
