// SPDX-License-Identifier: GPL-3.0-or-later

// Whatever font, direction, language, colours or scale the desktop has or changes to, every tab
// stays whole: nothing is cut, nothing overlaps, everything can be read, and the focus is seen.

#include "gui/Looks.h"

#include "gui/FilledHome.h"
#include "gui/Look.h"
#include "live/LiveModel.h"
#include "model/Background.h"
#include "support/Input.h"
#include "support/Window.h"
#include "support/WindowTestMain.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QDialog>
#include <QDir>
#include <QProcess>
#include <QScreen>
#include <QScrollArea>
#include <QSplitter>
#include <QStyleFactory>
#include <QToolButton>

#include <array>

namespace {

enum Tab { Sessions, Live, Review, Usage, Context, TabCount };

const QString scaleVariable = u"QT_SCALE_FACTOR"_qs;
constexpr std::array scales{"1", "1.25", "1.5", "2"};

QString scaleOfProgram()
{
    return QProcessEnvironment::systemEnvironment().value(scaleVariable, u"1"_qs);
}

/// With PLINTHAR_LOOKS set to a folder, what is looked at is saved there, for people.
void save(const QImage &picture, const QString &name)
{
    const QString folder = qEnvironmentVariable("PLINTHAR_LOOKS");
    if (!folder.isEmpty())
        QVERIFY(picture.save(QDir(folder).filePath(name + u".png"_qs)));
}

/// The program's window, on a home with something for every tab.
class Desk {
public:
    explicit Desk(const FilledHome &filled) : m_window(filled.home())
    {
        m_window.load();
        m_window.view().resize(1000, 640);
    }

    ContentView &view() { return m_window.view(); }

    void open(int tab)
    {
        m_window.tabs()->setCurrentIndex(tab);
        if (tab == Live) {
            // What else may run on this machine is nobody's business.
            find<QCheckBox>(page())->setChecked(true);
            const auto *agents = find<QTableView>(page(), u"agents"_qs);
            QTRY_COMPARE_WITH_TIMEOUT(agents->model()->rowCount(), 1, 60'000);
        }
        settle();
    }

    /// The dialog that a tab opens; none for Usage and Context.
    QWidget *openDialogOf(int tab)
    {
        open(tab);
        switch (tab) {
        case Sessions:
            return m_window.openPrices();
        case Live:
            Input::clickCell(find<QTableView>(page(), u"agents"_qs), 0, 0);
            Input::key(Qt::Key_Delete);
            return openModalWindow();
        case Review:
            Input::click(buttonOf(page(), u"Reject"_qs));
            return openModalWindow();
        default:
            return nullptr;
        }
    }

    QWidget *openCommit()
    {
        open(Review);
        Input::click(buttonOf(page(), u"Commit\u2026"_qs));
        return openModalWindow();
    }

    /// What Tab stops at, in its order, from the top of the sidebar on.
    QWidgetList stops()
    {
        QWidgetList stops;
        auto *const first = find<QToolButton>(&view(), u"addProject"_qs);
        QWidget *widget = first;
        do {
            const bool isStop = widget->isVisible() && widget->isEnabled() &&
                                (widget->focusPolicy() & Qt::TabFocus) == Qt::TabFocus &&
                                !widget->focusProxy() && widget->window() == &view();
            if (isStop)
                stops.append(widget);
            widget = widget->nextInFocusChain();
        } while (widget != first);
        return stops;
    }

    /// Of every tab, without what changes by itself.
    QList<QImage> pictures()
    {
        settle();
        // A user's widths outlast a change of fonts.
        view().findChild<QSplitter *>()->setSizes({300, 700});
        QList<QImage> pictures;
        for (int tab = 0; tab < TabCount; ++tab) {
            open(tab);
            if (tab == Live) {
                auto *agents = find<QTableView>(page(), u"agents"_qs);
                agents->hideColumn(LiveModel::Cpu);
                agents->hideColumn(LiveModel::Uptime);
            }
            settle();
            pictures.append(view().grab().toImage());
        }
        return pictures;
    }

    /// Waits until nothing is under way and what came of it is shown.
    static void settle()
    {
        for (int i = 0; i < 3; ++i) { // a result may start the next work
            Background::pool().waitForDone();
            QTest::qWait(1);
        }
    }

private:
    QWidget *page() const { return m_window.tabs()->currentWidget(); }

    Window m_window;
};

void look(QWidget *window, const QString &what, QStringList &faults)
{
    Desk::settle();
    save(window->grab().toImage(), QLatin1String(QTest::currentDataTag()) + u" - "_qs + what);
    for (const QString &fault : Looks::faults(window))
        faults.append(what + u": "_qs + fault);
}

void close(const QWidget *dialog)
{
    QWidget *window = dialog->parentWidget()->window();
    Input::key(Qt::Key_Escape);
    QTRY_VERIFY(!QApplication::activeModalWidget());
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window));
}

void lookAndClose(QWidget *dialog, const QString &what, QStringList &faults)
{
    if (!dialog)
        return;
    // A question keeps within the screen, and that of the tests has 400 points at scale 2.
    if (dialog->minimumSizeHint().width() > dialog->screen()->availableSize().width())
        return close(dialog);
    look(dialog, what, faults);
    close(dialog);
}

} // namespace

class LooksTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void cleanup();
    void everythingIsWhole_data();
    void everythingIsWhole();
    void everythingIsWholeAtEveryScale();
    void aChangeLeavesNothingBehind_data();
    void aChangeLeavesNothingBehind();
    void theFocusIsSeen_data();
    void theFocusIsSeen();
};

void LooksTest::initTestCase()
{
    QApplication::setStyle(QStyleFactory::create(u"Fusion"_qs));
    QApplication::setCursorFlashTime(0);
    QCOMPARE(qApp->devicePixelRatio(), scaleOfProgram().toDouble());
}

void LooksTest::cleanup()
{
    Look().apply();
    QVERIFY(Background::finish(std::chrono::seconds(60)));
}

void LooksTest::everythingIsWhole_data()
{
    QTest::addColumn<Look>("wanted");
    const auto scale = std::find_if(scales.begin(), scales.end(), [](const char *factor) {
        return scaleOfProgram() == QLatin1String(factor);
    });
    const QList<Look> looks = looksAtScale(int(scale - scales.begin()));
    for (const Look &wanted : looks)
        QTest::addRow("%s x%s", qPrintable(wanted.name()), *scale) << wanted;
}

/// Opened on the usual desktop, which then changes.
void LooksTest::everythingIsWhole()
{
    QFETCH(const Look, wanted);
    Look before;
    before.locale = wanted.locale;
    before.apply();
    const FilledHome filled;
    Desk desk(filled);
    wanted.apply();
    QStringList faults;
    for (int tab = 0; tab < TabCount; ++tab) {
        desk.open(tab);
        look(&desk.view(), u"tab %1"_qs.arg(tab), faults);
        lookAndClose(desk.openDialogOf(tab), u"dialog of tab %1"_qs.arg(tab), faults);
    }
    lookAndClose(desk.openCommit(), u"commit sheet"_qs, faults);
    QVERIFY2(faults.isEmpty(), qPrintable(u'\n' + faults.join(u'\n')));
}

/// The scale is settled when a program starts, so this one starts again, once for each.
void LooksTest::everythingIsWholeAtEveryScale()
{
    std::array<QProcess, scales.size() - 1> children;
    for (size_t i = 0; i < children.size(); ++i) {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(scaleVariable, QString::fromLatin1(scales[i + 1]));
        children[i].setProcessEnvironment(environment);
        children[i].setProcessChannelMode(QProcess::MergedChannels);
        children[i].start(QCoreApplication::applicationFilePath(), {u"everythingIsWhole"_qs});
    }
    QByteArrayList failures;
    for (QProcess &child : children) {
        QVERIFY(child.waitForFinished(600'000));
        const QByteArray told = child.readAll();
        if (child.exitCode() != 0 || !told.contains("Totals: 6 passed, 0 failed"))
            failures.append(told);
    }
    QVERIFY2(failures.isEmpty(), failures.join('\n').constData());
}

void LooksTest::aChangeLeavesNothingBehind_data()
{
    QTest::addColumn<Look>("before");
    QTest::addColumn<Look>("after");
    const Look usual;
    const auto add = [](const char *name, const Look &before, const Look &after) {
        QTest::newRow(name) << before << after;
    };
    add("to dark", usual, {.colors = Look::Colors::Dark});
    add("from dark", {.colors = Look::Colors::Dark}, usual);
    add("to high contrast", {.colors = Look::Colors::White}, {.colors = Look::Colors::Black});
    add("to a large font", {.points = 8}, {.points = 16});
    add("to a small font", {.points = 16}, {.points = 8});
    add("to right to left", usual, {.direction = Qt::RightToLeft});
}

/// A window that was open when the desktop changed looks like one that is opened afterwards.
void LooksTest::aChangeLeavesNothingBehind()
{
    QFETCH(const Look, before);
    QFETCH(const Look, after);
    const FilledHome filled;
    QList<QImage> changed;
    before.apply();
    {
        Desk desk(filled);
        desk.pictures();
        after.apply();
        changed = desk.pictures();
    }
    Desk desk(filled);
    const QList<QImage> opened = desk.pictures();
    for (int tab = 0; tab < TabCount; ++tab) {
        if (changed[tab] == opened[tab])
            continue;
        const QString name =
            u"%1 - tab %2 "_qs.arg(QLatin1String(QTest::currentDataTag())).arg(tab);
        save(changed[tab], name + u"changed"_qs);
        save(opened[tab], name + u"opened"_qs);
        QFAIL(qPrintable(name));
    }
}

void LooksTest::theFocusIsSeen_data()
{
    QTest::addColumn<Look>("wanted");
    for (int i = 0; i < 4; ++i) {
        const Look wanted{.colors = Look::Colors(i)};
        QTest::addRow("%s", qPrintable(wanted.name())) << wanted;
    }
}

void LooksTest::theFocusIsSeen()
{
    QFETCH(const Look, wanted);
    constexpr int least = 60; // pixels, which are more than a caret has
    wanted.apply();
    const FilledHome filled;
    Desk desk(filled);
    QStringList unseen;
    for (int tab = 0; tab < TabCount; ++tab) {
        desk.open(tab);
        for (QWidget *stop : desk.stops()) {
            if (auto *page = desk.view().findChild<QScrollArea *>(u"usagePage"_qs))
                page->ensureWidgetVisible(stop); // as Tab does
            stop->setFocus(Qt::TabFocusReason);
            QVERIFY(stop->hasFocus());
            const QImage with = desk.view().grab().toImage();
            stop->clearFocus();
            const QImage without = desk.view().grab().toImage();
            const QRect place(stop->mapTo(&desk.view(), QPoint()), stop->size());
            const int changed = Looks::changedPixels(with, without, place.adjusted(-3, -3, 3, 3));
            if (changed < least)
                unseen.append(
                    u"tab %1: %2 %3 (%4)"_qs.arg(tab)
                        .arg(QLatin1String(stop->metaObject()->className()), stop->objectName())
                        .arg(changed));
        }
    }
    QVERIFY2(unseen.isEmpty(), qPrintable(u'\n' + unseen.join(u'\n')));
}

PLINTHAR_WINDOW_TEST_MAIN(LooksTest)
#include "LooksTest.moc"
