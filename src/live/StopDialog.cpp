// SPDX-License-Identifier: GPL-3.0-or-later
#include "live/StopDialog.h"

#include "ui/Colors.h"
#include "ui/Fonts.h"

#include <QLabel>
#include <QPushButton>

namespace {

constexpr int textWidth = 360; // most folders stand on one or two lines
constexpr int buttonPadding = 10;

} // namespace

StopDialog::StopDialog(const AgentProcess &agent, QWidget *parent) : QMessageBox(parent)
{
    setObjectName(QStringLiteral("stopDialog"));
    setWindowModality(Qt::WindowModal);
    const QString title = QStringLiteral("Stop %1?").arg(agent.agent);
    setWindowTitle(title);
    setText(title);
    setInformativeText(
        QStringLiteral("%1 in %2 will be asked to terminate.").arg(agent.agent, agent.folder));
    setUpLabels(title);

    QPushButton *stop = addButton(QStringLiteral("Send SIGTERM to PID %1").arg(agent.pid),
                                  QMessageBox::DestructiveRole);
    stop->setObjectName(QStringLiteral("sendSigterm"));
    stop->setMinimumWidth(stop->sizeHint().width() + 2 * buttonPadding);
    QPalette red;
    red.setColor(QPalette::ButtonText, Colors::hue(Colors::Hue::Red, palette()));
    stop->setPalette(red);
    connect(this, &QDialog::finished, this,
            [this, stop] { Q_EMIT answered(clickedButton() == stop); });
    addButton(QMessageBox::Cancel);
    setDefaultButton(QMessageBox::Cancel);
    setEscapeButton(QMessageBox::Cancel);
}

void StopDialog::setUpLabels(const QString &title)
{
    const QList<QLabel *> labels = findChildren<QLabel *>();
    for (QLabel *label : labels) {
        // A folder may look like markup, and setTextFormat() leaves the informative text out.
        label->setTextFormat(Qt::PlainText);
        if (label->text() == title)
            label->setFont(textFont(TextStyle::Headline, true));
        else if (!label->text().isEmpty())
            label->setMinimumWidth(textWidth);
    }
}
