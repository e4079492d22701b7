// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/BusySign.h"

#include "ui/Spinner.h"

namespace {

constexpr int delayMilliseconds = 150;

} // namespace

BusySign::BusySign(QWidget *parent) : QWidget(parent), m_spinner(new Spinner(this))
{
    setObjectName(QStringLiteral("busySign"));
    m_spinner->setAccessibleName(QStringLiteral("Working"));
    m_spinner->hide();
    setFixedSize(m_spinner->size());
    m_delay.setSingleShot(true);
    m_delay.setInterval(delayMilliseconds);
    connect(&m_delay, &QTimer::timeout, m_spinner, &QWidget::show);
}

void BusySign::setBusy(bool busy)
{
    if (!busy) {
        m_delay.stop();
        m_spinner->hide();
    } else if (!m_delay.isActive() && m_spinner->isHidden()) {
        m_delay.start();
    }
}

bool BusySign::isSpinning() const
{
    return !m_spinner->isHidden();
}
