// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/EmptyState.h"

#include "ui/Colors.h"
#include "ui/CopyableLabel.h"
#include "ui/Icons.h"

#include <QPainter>
#include <QVBoxLayout>

namespace {

constexpr int symbolSize = 40;
constexpr int spacing = 10;
constexpr int padding = 16;
constexpr int widestMessage = 380;

/// The symbol in the secondary colour. It repeats what the title says, so it has no name.
class Symbol : public QWidget {
public:
    Symbol(const QString &name, QWidget *parent) : QWidget(parent), m_name(name)
    {
        setFixedSize(symbolSize, symbolSize);
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        symbolIcon(m_name, Colors::secondaryText(palette())).paint(&painter, rect());
    }

private:
    const QString m_name;
};

} // namespace

EmptyState::EmptyState(const QString &icon, const QString &title, const QString &message,
                       QWidget *parent)
    : QWidget(parent)
    , m_icon(icon)
    , m_title(new TextLabel(
          title, {.size = TextStyle::Title3, .bold = true, .overflow = TextLabel::Overflow::Wrap},
          this))
    , m_message(new CopyableLabel(
          message, {.tone = TextLabel::Tone::Secondary, .overflow = TextLabel::Overflow::Wrap},
          this))
{
    setObjectName(QStringLiteral("emptyState"));
    for (TextLabel *label : {m_title, static_cast<TextLabel *>(m_message)}) {
        label->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
        label->setMaximumWidth(widestMessage);
    }
    m_message->setVisible(!message.isEmpty());
    m_message->setCopyable(false);

    auto *stack = new QVBoxLayout(this);
    stack->setContentsMargins(padding, padding, padding, padding);
    stack->setSpacing(spacing);
    stack->addStretch();
    stack->addWidget(new Symbol(icon, this), 0, Qt::AlignHCenter);
    stack->addWidget(m_title, 0, Qt::AlignHCenter);
    stack->addWidget(m_message, 0, Qt::AlignHCenter);
    stack->addStretch();
}

QString EmptyState::title() const
{
    return m_title->text();
}

QString EmptyState::message() const
{
    return m_message->text();
}

void EmptyState::setMessage(const QString &message)
{
    m_message->setText(message);
    m_message->setVisible(!message.isEmpty());
}

void EmptyState::setMessageCopyable()
{
    m_message->setCopyable(true);
}
