// SPDX-License-Identifier: GPL-3.0-or-later

// A plugin of the kind by which Qt reads keyboards: it presses one combination of keys in the
// program's window as soon as there is something to press it in.

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
        const QKeyCombination combination = QKeySequence(keys)[0];
        // Again and again, since the first may come before the window can use it.
        QObject::connect(timer, &QTimer::timeout, timer, [combination] {
            if (QWindow *window = QGuiApplication::focusWindow())
                QTest::keyClick(window, combination.key(), combination.keyboardModifiers());
        });
        timer->start(200);
        return timer;
    }
};

#include "KeyPresser.moc"
