// SPDX-License-Identifier: GPL-3.0-or-later
#include "live/StopDialog.h"

#include "ui/CopyAction.h"
#include "ui/EmphasisButton.h"
#include "ui/Fonts.h"
#include "ui/ForeignText.h"
#include "ui/TextLine.h"

#include <QLabel>

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
    setInformativeText(QStringLiteral("%1 in %2 will be asked to terminate.")
                           .arg(agent.agent, ForeignText::breakable(agent.folder)));
    setUpLabels(title);
    alignLabels(this);
    if (agent.folder.startsWith(u'/')) // it may not be known
        addCopyAction(this, QStringLiteral("Copy Folder"), agent.folder);

    auto *stop = new EmphasisButton(EmphasisButton::Emphasis::Destructive,
                                    QStringLiteral("Send SIGTERM to PID %1").arg(agent.pid), this);
    stop->setObjectName(QStringLiteral("sendSigterm"));
    stop->setAutoDefault(false);
    stop->setMinimumWidth(stop->sizeHint().width() + 2 * buttonPadding);
    addButton(stop, QMessageBox::DestructiveRole);
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
