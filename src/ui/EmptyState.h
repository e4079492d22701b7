// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

class CopyableLabel;
class TextLabel;

/// What a screen shows when it has nothing to show: a symbol, a title and a message in the middle
/// of all the space there is.
class EmptyState : public QWidget {
    Q_OBJECT
public:
    /// `icon` is the name of a symbol (see symbolIcon()).
    EmptyState(const QString &icon, const QString &title, const QString &message,
               QWidget *parent = nullptr);

    QString icon() const { return m_icon; }
    QString title() const;
    QString message() const;
    void setMessage(const QString &message);
    /// For a message that tells a path.
    void setMessageCopyable();

private:
    const QString m_icon;
    TextLabel *m_title;
    CopyableLabel *m_message;
};
