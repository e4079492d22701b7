// SPDX-License-Identifier: GPL-3.0-or-later
#include "live/StopDialog.h"

#include "ui/Colors.h"

#include <QLabel>
#include <QPushButton>

StopDialog::StopDialog(const AgentProcess &agent, QWidget *parent) : QMessageBox(parent)
{
    setObjectName(QStringLiteral("stopDialog"));
    setWindowModality(Qt::WindowModal);
    const QString title = QStringLiteral("Stop %1?").arg(agent.agent);
    setWindowTitle(title);
    setText(title);
    setInformativeText(
        QStringLiteral("%1 in %2 will be asked to terminate.").arg(agent.agent, agent.folder));
    // A folder may look like markup, and setTextFormat() leaves the informative text out.
    const QList<QLabel *> labels = findChildren<QLabel *>();
    for (QLabel *label : labels)
        label->setTextFormat(Qt::PlainText);

    QPushButton *stop = addButton(QStringLiteral("Send SIGTERM to PID %1").arg(agent.pid),
                                  QMessageBox::DestructiveRole);
    stop->setObjectName(QStringLiteral("sendSigterm"));
    QPalette red;
    red.setColor(QPalette::ButtonText, Colors::hue(Colors::Hue::Red, palette()));
    stop->setPalette(red);
    connect(this, &QDialog::finished, this,
            [this, stop] { Q_EMIT answered(clickedButton() == stop); });
    addButton(QMessageBox::Cancel);
    setDefaultButton(QMessageBox::Cancel);
    setEscapeButton(QMessageBox::Cancel);
}
