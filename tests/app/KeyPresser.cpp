// SPDX-License-Identifier: GPL-3.0-or-later

// A plugin of the kind by which Qt reads keyboards: it presses combinations of keys, separated by
// ";", in the program's window as soon as there is something to press them in.

#include <QGenericPlugin>
#include <QGuiApplication>
#include <QKeySequence>
#include <QTest>
#include <QTimer>
#include <QWindow>

class KeyPresser : public QGenericPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "keypresser.json")
public:
    QObject *create(const QString &, const QString &keys) override
    {
        auto *timer = new QTimer;
        const QStringList combinations = keys.split(u';');
        // Again and again, since the first may come before the window can use it.
        QObject::connect(timer, &QTimer::timeout, timer, [combinations, next = 0]() mutable {
            QWindow *window = QGuiApplication::focusWindow();
            if (!window)
                return;
            const QKeyCombination pressed = QKeySequence(combinations[next])[0];
            next = (next + 1) % int(combinations.size());
            QTest::keyClick(window, pressed.key(), pressed.keyboardModifiers());
        });
        timer->start(200);
        return timer;
    }
};

#include "KeyPresser.moc"
