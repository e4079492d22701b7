// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ReloadFoot.h"

#include "model/ReloadProgress.h"
#include "model/Store.h"
#include "ui/Colors.h"
#include "ui/TextLabel.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLocale>
#include <QPainter>

namespace {

constexpr int padding = 8;
constexpr std::chrono::milliseconds notWorthTelling{150};
constexpr std::chrono::milliseconds often{100};

QString textOf(const ReloadProgress &progress)
{
    const QLocale locale;
    const qsizetype found = progress.logsFound;
    return found == 0 ? QStringLiteral("Looking for logs\u2026")
                      : QStringLiteral("%1 of %2 logs read")
                            .arg(locale.toString(progress.logsRead.load()), locale.toString(found));
}

} // namespace

ReloadFoot::ReloadFoot(const Store &store, QWidget *parent)
    : QWidget(parent)
    , m_store(store)
    , m_label(
          new TextLabel({}, {.size = TextStyle::Caption, .tone = TextLabel::Tone::Secondary}, this))
{
    setObjectName(QStringLiteral("reloadFoot"));
    hide();
    setAutoFillBackground(true);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    m_label->setObjectName(QStringLiteral("reloadProgress"));
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(padding, padding / 2, padding, padding / 2);
    layout->addWidget(m_label);
    parent->installEventFilter(this);
    connect(&m_timer, &QTimer::timeout, this, &ReloadFoot::tell);
    connect(&m_store, &Store::loadingChanged, this, &ReloadFoot::followReload);
}

void ReloadFoot::followReload()
{
    if (m_store.loading()) {
        m_timer.start(notWorthTelling);
        return;
    }
    m_timer.stop();
    hide();
}

void ReloadFoot::tell()
{
    m_timer.setInterval(often);
    m_label->setText(textOf(*m_store.progress()));
    place();
    raise();
    show();
}

void ReloadFoot::place()
{
    const int height = sizeHint().height();
    setGeometry(0, parentWidget()->height() - height, parentWidget()->width(), height);
}

bool ReloadFoot::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Resize)
        place();
    return QWidget::eventFilter(watched, event);
}

void ReloadFoot::paintEvent(QPaintEvent *)
{
    QPainter(this).fillRect(0, 0, width(), 1, Colors::separator(palette()));
}
