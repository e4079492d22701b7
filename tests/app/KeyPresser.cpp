// SPDX-License-Identifier: GPL-3.0-or-later

// A plugin of the kind by which Qt reads keyboards. It presses combinations of keys, separated by
// ";", in the program's window as soon as there is something to press them in, again and again. Or,
// for "stdin", it does once what the lines of the standard input say, each as soon as it can be
// done: "Ctrl+3;Ctrl+Q" presses keys, "click Save" clicks on a button, "await Save" only waits
// until that would be possible, and "type text" types into the editor that is to be seen.

#include <QAbstractButton>
#include <QApplication>
#include <QGenericPlugin>
#include <QKeySequence>
#include <QPlainTextEdit>
#include <QSocketNotifier>
#include <QTest>
#include <QTimer>
#include <QWindow>

#include <memory>
#include <unistd.h>

namespace {

bool press(const QStringList &combinations)
{
    for (const QString &combination : combinations) {
        QWindow *window = QGuiApplication::focusWindow();
        if (!window)
            return false;
        const QKeyCombination pressed = QKeySequence(combination)[0];
        QTest::keyClick(window, pressed.key(), pressed.keyboardModifiers());
    }
    return true;
}

/// What a user can reach of that type, if it is as it should be.
template <typename Widget, typename Condition>
Widget *reachable(Condition condition)
{
    const QWidgetList all = QApplication::allWidgets();
    for (QWidget *each : all) {
        auto *widget = qobject_cast<Widget *>(each);
        if (widget && widget->isVisible() && widget->isEnabled() &&
            widget->window() == QApplication::activeWindow() && condition(*widget))
            return widget;
    }
    return nullptr;
}

bool click(const QString &text, bool really)
{
    auto *button = reachable<QAbstractButton>(
        [&text](const QAbstractButton &candidate) { return candidate.text() == text; });
    if (button && really)
        QTest::mouseClick(button, Qt::LeftButton);
    return button;
}

bool type(const QString &text)
{
    auto *editor = reachable<QPlainTextEdit>(
        [](const QPlainTextEdit &candidate) { return !candidate.isReadOnly(); });
    if (editor) {
        editor->setFocus();
        QTest::keyClicks(editor, text);
    }
    return editor;
}

/// Where there is no window manager, nobody gives the focus back when a dialog has been closed.
bool haveFocus()
{
    if (!QGuiApplication::focusWindow()) {
        const QWindowList windows = QGuiApplication::topLevelWindows();
        for (QWindow *window : windows) {
            if (window->isVisible())
                window->requestActivate();
        }
    }
    return QGuiApplication::focusWindow();
}

bool perform(const QString &line)
{
    if (!haveFocus())
        return false;
    const QString rest = line.section(u' ', 1);
    if (line.startsWith(u"click "))
        return click(rest, true);
    if (line.startsWith(u"await "))
        return click(rest, false);
    if (line.startsWith(u"type "))
        return type(rest);
    return press(line.split(u';'));
}

QObject *makeReader()
{
    constexpr std::chrono::milliseconds often{10};
    auto *reader = new QSocketNotifier(0, QSocketNotifier::Read);
    auto *timer = new QTimer(reader);
    const auto text = std::make_shared<QByteArray>();
    QObject::connect(reader, &QSocketNotifier::activated, reader, [reader, text] {
        char buffer[4096];
        const ssize_t count = ::read(0, buffer, sizeof buffer);
        if (count > 0)
            text->append(buffer, count);
        else
            reader->setEnabled(false);
    });
    QObject::connect(timer, &QTimer::timeout, timer, [text] {
        const qsizetype end = text->indexOf('\n');
        if (end < 0)
            return;
        const QString line = QString::fromUtf8(text->left(end));
        text->remove(0, end + 1);
        if (!perform(line))
            text->prepend(line.toUtf8() + '\n');
    });
    timer->start(often);
    return reader;
}

} // namespace

class KeyPresser : public QGenericPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "keypresser.json")
public:
    QObject *create(const QString &, const QString &keys) override
    {
        if (keys == u"stdin")
            return makeReader();
        auto *timer = new QTimer;
        // Again and again, since the first may come before the window can use it.
        QObject::connect(timer, &QTimer::timeout, timer,
                         [combinations = keys.split(u';'), next = 0]() mutable {
                             if (press({combinations[next]}))
                                 next = (next + 1) % int(combinations.size());
                         });
        timer->start(200);
        return timer;
    }
};

#include "KeyPresser.moc"
