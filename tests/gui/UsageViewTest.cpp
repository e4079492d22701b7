// SPDX-License-Identifier: GPL-3.0-or-later
#include "usage/UsageView.h"

#include "model/Format.h"
#include "support/HeldBackground.h"
#include "support/Input.h"
#include "support/Sessions.h"
#include "support/ToolTipText.h"
#include "support/Window.h"
#include "support/WindowTestMain.h"
#include "ui/Colors.h"
#include "ui/SegmentedSwitch.h"
#include "ui/TextLabel.h"
#include "usage/BarChart.h"
#include "usage/PlotLibrary.h"

#include <QAccessible>
#include <QAccessibleInterface>
#include <QScrollArea>
#include <QScrollBar>
#include <QToolTip>
#include <QWheelEvent>
#include <QtTest/qtestspontaneevent.h>

namespace {

/// The charts' answer with that many input tokens, so many days ago.
QByteArray answer(qint64 tokens, int daysAgo = 0)
{
    static int count = 0;
    const QDateTime time = QDateTime::currentDateTimeUtc().addDays(-daysAgo);
    return LogLines::assistant(time.toString(Qt::ISODateWithMs), u"claude-opus-4"_qs,
                               {.input = tokens}, QString::number(++count));
}

/// The Usage tab of the program's window.
struct Tab {
    explicit Tab(const PrivateHome &privateHome) : home(privateHome) {}

    /// Reads what the home holds by now.
    void load()
    {
        window = std::make_unique<Window>(home);
        window->load();
    }

    void open()
    {
        load();
        Input::key(Qt::Key_4, Qt::ControlModifier);
        view = find<UsageView>(window->detail());
    }

    BarChart *chart(const QString &name) const { return find<BarChart>(view, name); }
    BarChart *dayTokens() const { return chart(u"dayTokens"_qs); }
    BarChart *dayCost() const { return chart(u"dayCost"_qs); }
    BarChart *projectTokens() const { return chart(u"projectTokens"_qs); }
    BarChart *projectCost() const { return chart(u"projectCost"_qs); }
    QList<BarChart *> charts() const
    {
        return {dayTokens(), dayCost(), projectTokens(), projectCost()};
    }
    QScrollArea *page() const { return find<QScrollArea>(view, u"usagePage"_qs); }
    QString title(const QString &name) const { return find<TextLabel>(view, name)->text(); }
    QString tokensTitle() const { return title(u"tokensTitle"_qs); }
    QString costTitle() const { return title(u"costTitle"_qs); }
    QAbstractButton *segment(const QString &label) const
    {
        return buttonOf(find<SegmentedSwitch>(view), label);
    }

    const PrivateHome &home;
    std::unique_ptr<Window> window;
    UsageView *view = nullptr;
};

double sumOf(const ChartContents &chart)
{
    double sum = 0;
    for (const ChartBar &bar : chart.bars)
        sum += bar.value;
    return sum;
}

bool hasColor(const QWidget *widget, const QColor &color)
{
    const QImage image = const_cast<QWidget *>(widget)->grab().toImage();
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y) == color)
                return true;
        }
    }
    return false;
}

ChartContents contentsOf(const QList<double> &values)
{
    ChartContents contents;
    const QDate first(2026, 1, 1);
    for (qsizetype i = 0; i < values.size(); ++i) {
        const double place = static_cast<double>(i);
        contents.bars.append({place, values[i], u"day %1"_qs.arg(i), QString::number(values[i])});
        contents.labels.append({place, QLocale().toString(first.addDays(i), u"MMM d"_qs)});
    }
    return contents;
}

/// The labels of an axis must be inside the chart and apart from one another.
void checkLabels(QCustomPlot *plot, QCPAxis *axis, int mostLeftOut)
{
    const QVector<double> places = axis->tickVector();
    const QVector<QString> texts = axis->tickVectorLabels();
    QVERIFY(!places.isEmpty());
    QVERIFY(places.size() > mostLeftOut);
    const QFontMetrics metrics(axis->tickLabelFont());
    const bool lies = axis->orientation() == Qt::Horizontal;
    double end = -1e9;
    QList<std::pair<double, double>> spans;
    for (qsizetype i = 0; i < places.size(); ++i) {
        const double half = (lies ? metrics.horizontalAdvance(texts[i]) : metrics.ascent()) / 2.0;
        const double middle = axis->coordToPixel(places[i]);
        spans.append({middle - half, middle + half});
    }
    std::sort(spans.begin(), spans.end());
    for (const auto &[from, to] : spans) {
        QVERIFY(from >= -0.5);
        QVERIFY(to <= (lies ? plot->width() : plot->height()) + 0.5);
        QVERIFY(from > end);
        end = to;
    }
}

} // namespace

class UsageViewTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_home = std::make_unique<PrivateHome>();
        m_tab = std::make_unique<Tab>(*m_home);
    }

    void cleanup()
    {
        QToolTip::hideText();
        m_tab.reset();
        m_home.reset();
        QApplication::setPalette(QPalette());
    }

    void placeholderWhenThereIsNoUsageAnywhere()
    {
        addByHand(*m_home, {u"a"_qs});
        m_tab->open();
        const auto *empty = find<EmptyState>(m_tab->view);
        QTRY_VERIFY(empty->isVisible());
        QCOMPARE(empty->icon(), u"chart.bar.xaxis"_qs);
        QCOMPARE(empty->title(), u"No usage in the last 30 days"_qs);
        QCOMPARE(empty->message(),
                 u"Token usage from Claude Code sessions will be charted here."_qs);
        QVERIFY(!find<SegmentedSwitch>(m_tab->view)->isVisible());
        QVERIFY(!m_tab->dayTokens()->isVisible());
    }

    void oldUsageIsNoUsage()
    {
        writeSession(*m_home, {.project = u"/w/a"_qs, .answers = {answer(5000, 40)}});
        m_tab->open();
        QTRY_VERIFY(find<EmptyState>(m_tab->view)->isVisible());
    }

    void usageOnlyInAnotherProject()
    {
        addByHand(*m_home, {u"aaa"_qs});
        writeSession(*m_home, {.project = u"/w/zebra"_qs, .answers = {answer(5000)}});
        m_tab->open();
        QCOMPARE(m_tab->window->selectedName(), u"aaa"_qs);
        QTRY_VERIFY(m_tab->page()->isVisible());
        QCOMPARE(m_tab->tokensTitle(), u"Tokens per day \u00b7 total 0"_qs);
        QCOMPARE(m_tab->costTitle(), u"Estimated cost per day \u00b7 total $0.00"_qs);
        for (const BarChart *chart : {m_tab->dayTokens(), m_tab->dayCost()}) {
            QCOMPARE(chart->contents().bars.size(), 30);
            QCOMPARE(sumOf(chart->contents()), 0.0);
        }
        QCOMPARE(m_tab->projectTokens()->contents().bars.size(), 1);
        QCOMPARE(m_tab->projectTokens()->contents().bars[0].name, u"zebra"_qs);
        QVERIFY(
            !hasColor(m_tab->dayTokens(), Colors::fill(Colors::Hue::Blue, m_tab->view->palette())));
    }

    void scopeSwitch()
    {
        writeSession(*m_home, {.project = u"/w/aa"_qs, .answers = {answer(2'000'000, 1)}});
        writeSession(*m_home, {.project = u"/w/bb"_qs, .answers = {answer(345, 2)}});
        m_tab->open();
        QTRY_COMPARE(m_tab->tokensTitle(), u"Tokens per day \u00b7 total 2.00M"_qs);
        QVERIFY(m_tab->segment(u"aa"_qs)->isChecked());
        const QStringList before{m_tab->projectTokens()->accessibleDescription(),
                                 m_tab->projectCost()->accessibleDescription()};
        Input::click(m_tab->segment(u"All projects"_qs));
        QVERIFY(!m_tab->segment(u"aa"_qs)->isChecked());
        QTRY_COMPARE(sumOf(m_tab->dayTokens()->contents()), 2'000'345.0);
        QCOMPARE(m_tab->costTitle(), u"Estimated cost per day \u00b7 total $30.01"_qs);
        QCOMPARE(QStringList({m_tab->projectTokens()->accessibleDescription(),
                              m_tab->projectCost()->accessibleDescription()}),
                 before);
        Input::key(Qt::Key_Right); // by keyboard, and back
        QVERIFY(m_tab->segment(u"aa"_qs)->isChecked());
        QTRY_COMPARE(sumOf(m_tab->dayTokens()->contents()), 2'000'000.0);
    }

    void switchIsReachedWithTab()
    {
        writeSession(*m_home, {.project = u"/w/aa"_qs, .answers = {answer(100)}});
        m_tab->open();
        QTRY_VERIFY(m_tab->page()->isVisible());
        for (int i = 0; i < 20 && !m_tab->segment(u"aa"_qs)->hasFocus(); ++i)
            Input::key(Qt::Key_Tab);
        QVERIFY(m_tab->segment(u"aa"_qs)->hasFocus());
        for (BarChart *chart : m_tab->charts()) {
            Input::key(Qt::Key_Tab);
            QVERIFY2(chart->hasFocus(), qPrintable(chart->objectName()));
            QVERIFY(m_tab->page()->viewport()->rect().intersects(
                QRect(chart->mapTo(m_tab->page()->viewport(), QPoint()), chart->size())));
        }
    }

    void sizes_data()
    {
        QTest::addColumn<int>("projects");
        QTest::addColumn<int>("height");
        QTest::newRow("one project") << 1 << 120;
        QTest::newRow("two projects") << 2 << 120;
        QTest::newRow("five projects") << 5 << 190;
        QTest::newRow("twelve projects") << 12 << 414;
    }

    void sizes()
    {
        QFETCH(int, projects);
        QFETCH(int, height);
        for (int i = 0; i < projects; ++i)
            writeSession(*m_home,
                         {.project = u"/w/%1/app"_qs.arg(i), .answers = {answer(100 + i)}});
        m_tab->open();
        QTRY_COMPARE(m_tab->projectTokens()->contents().bars.size(), projects);
        QTRY_COMPARE(find<QWidget>(m_tab->view, u"projectCharts"_qs)->height(), height);
        QCOMPARE(m_tab->dayTokens()->height(), 180);
        QCOMPARE(m_tab->dayCost()->height(), 180);
        QCOMPARE(find<SegmentedSwitch>(m_tab->view)->width(), 260);
    }

    void titlesTellTheSumOfTheBars()
    {
        QList<QByteArray> answers;
        for (int day = 0; day < 35; ++day)
            answers.append(answer(1237 * day, day));
        writeSession(*m_home, {.project = u"/w/aa"_qs, .answers = answers});
        m_tab->open();
        QTRY_VERIFY(m_tab->page()->isVisible());
        QVERIFY(sumOf(m_tab->dayTokens()->contents()) > 0);
        QCOMPARE(m_tab->tokensTitle(),
                 u"Tokens per day \u00b7 total "_qs +
                     fmtTokens(static_cast<qint64>(sumOf(m_tab->dayTokens()->contents()))));
        QCOMPARE(m_tab->costTitle(), u"Estimated cost per day \u00b7 total "_qs +
                                         fmtCost(sumOf(m_tab->dayCost()->contents())));
    }

    void pricesAndSessionsAreFollowed()
    {
        writeSession(*m_home, {.project = u"/w/aa"_qs, .answers = {answer(1'000'000)}});
        m_tab->open();
        QTRY_COMPARE(m_tab->costTitle(), u"Estimated cost per day \u00b7 total $15.00"_qs);
        PriceRow row;
        row.key = u"default"_qs;
        row.input = 40;
        m_tab->window->store().setPrices({row});
        QTRY_COMPARE(m_tab->costTitle(), u"Estimated cost per day \u00b7 total $40.00"_qs);
        writeSession(*m_home,
                     {.project = u"/w/aa"_qs, .id = u"second"_qs, .answers = {answer(2'000'000)}});
        m_tab->window->reload();
        QTRY_COMPARE(m_tab->costTitle(), u"Estimated cost per day \u00b7 total $120.00"_qs);
    }

    void oldFiguresStayUntilTheNewOnesAreThere()
    {
        QList<QByteArray> answers;
        for (int i = 0; i < 20'100; ++i)
            answers.append(answer(1000));
        writeSession(*m_home, {.project = u"/w/aa"_qs, .answers = answers});
        m_tab->open();
        const QString before = u"Estimated cost per day \u00b7 total $301.50"_qs;
        QTRY_COMPARE(m_tab->costTitle(), before);
        PriceRow row;
        row.key = u"default"_qs;
        row.input = 1000;
        {
            const HeldBackground held;
            m_tab->window->store().setPrices({row});
            QTest::qWait(50);
            QCOMPARE(m_tab->costTitle(), before);
            QVERIFY(m_tab->page()->isVisible());
        }
        QTRY_COMPARE(m_tab->costTitle(), u"Estimated cost per day \u00b7 total $20100.00"_qs);
    }

    void leavingInTheMiddleOfTheWork()
    {
        QList<QByteArray> answers;
        for (int i = 0; i < 20'100; ++i)
            answers.append(answer(1000));
        writeSession(*m_home, {.project = u"/w/aa"_qs, .answers = answers});
        m_tab->load();
        {
            const HeldBackground held;
            Input::key(Qt::Key_4, Qt::ControlModifier);
            m_tab->window->destroy();
        }
        Background::pool().waitForDone();
        QTest::qWait(10);
    }

    void pointerTellsTheFigures()
    {
        writeSession(*m_home, {.project = u"/w/aa"_qs, .answers = {answer(1'234'567)}});
        m_tab->open();
        QTRY_VERIFY(m_tab->page()->isVisible());
        BarChart *chart = m_tab->dayTokens();
        const QDate today = QDateTime::currentDateTimeUtc().date();
        const QString expected =
            QLocale().toString(today, QLocale::LongFormat) + u"\n1,234,567 tokens \u00b7 $18.52"_qs;
        QCOMPARE(shownText(Input::toolTipAt(chart, chart->roomOf(29).center())), expected);
        // Also without waiting, and over a day of nothing.
        QToolTip::hideText();
        QTest::mouseMove(chart->window()->windowHandle(),
                         chart->mapTo(chart->window(), chart->roomOf(28).center()));
        QTRY_COMPARE(chart->marked(), 28);
        QTRY_COMPARE(shownText(QToolTip::text()),
                     QLocale().toString(today.addDays(-1), QLocale::LongFormat) +
                         u"\n0 tokens \u00b7 $0.00"_qs);
    }

    void arrowKeysWalkTheDays()
    {
        writeSession(*m_home, {.project = u"/w/aa"_qs, .answers = {answer(77, 1)}});
        m_tab->open();
        QTRY_VERIFY(m_tab->page()->isVisible());
        BarChart *chart = m_tab->dayTokens();
        chart->setFocus(Qt::TabFocusReason);
        QCOMPARE(chart->marked(), 29); // today
        Input::key(Qt::Key_Left);
        QCOMPARE(chart->marked(), 28);
        QVERIFY(shownText(QToolTip::text()).endsWith(u"\n77 tokens \u00b7 $0.00"_qs));
        Input::key(Qt::Key_Home);
        QCOMPARE(chart->marked(), 0);
        Input::key(Qt::Key_Left);
        QCOMPARE(chart->marked(), 0);
        Input::key(Qt::Key_Right);
        QCOMPARE(chart->marked(), 1);
        Input::key(Qt::Key_End);
        QCOMPARE(chart->marked(), 29);
        QVERIFY(hasColor(chart, chart->palette().color(QPalette::Highlight)));
    }

    void arrowKeysBringProjectsIntoView()
    {
        for (int i = 0; i < 40; ++i)
            writeSession(*m_home, {.project = u"/w/p%1"_qs.arg(i), .answers = {answer(100 + i)}});
        m_tab->open();
        QTRY_VERIFY(m_tab->page()->isVisible());
        BarChart *chart = m_tab->projectCost();
        chart->setFocus(Qt::TabFocusReason);
        for (int i = 1; i < 40; ++i) {
            Input::key(Qt::Key_Down);
            QCOMPARE(chart->marked(), i);
            const QPoint middle =
                chart->mapTo(m_tab->page()->viewport(), chart->roomOf(i).center());
            QVERIFY(m_tab->page()->viewport()->rect().contains(middle));
        }
        Input::key(Qt::Key_Up);
        QCOMPARE(chart->marked(), 38);
    }

    void textFromOutsideIsNoMarkup()
    {
        const QString name = u"<img src=x> <b>&amp; "_qs + QString(80, u'w');
        writeSession(*m_home, {.project = u"/w/"_qs + name, .answers = {answer(5)}});
        m_tab->open();
        QTRY_VERIFY(m_tab->page()->isVisible());
        BarChart *chart = m_tab->projectTokens();
        m_tab->page()->verticalScrollBar()->setValue(10'000);
        const QRect room = chart->roomOf(0);
        QVERIFY(shownText(Input::toolTipAt(chart, room.center())).startsWith(name));
        // The label is too long, and tells the whole name.
        QCOMPARE(shownText(Input::toolTipAt(chart, QPoint(room.left() / 2, room.center().y()))),
                 name);
        QAbstractButton *segment =
            find<SegmentedSwitch>(m_tab->view)->findChildren<QAbstractButton *>()[1];
        QCOMPARE(segment->accessibleName(), name);
        m_tab->page()->verticalScrollBar()->setValue(0);
        QCOMPARE(shownText(Input::toolTipAt(segment, segment->rect().center())), name);
    }

    void wheelOverAChartScrollsThePage()
    {
        for (int i = 0; i < 20; ++i)
            writeSession(*m_home, {.project = u"/w/p%1"_qs.arg(i), .answers = {answer(100 + i)}});
        m_tab->open();
        QTRY_VERIFY(m_tab->page()->isVisible());
        QScrollBar *bar = m_tab->page()->verticalScrollBar();
        QTRY_VERIFY(bar->maximum() > 100);
        BarChart *chart = m_tab->dayTokens();
        const QPoint place = chart->mapTo(chart->window(), chart->rect().center());
        QWheelEvent wheel(place, chart->window()->mapToGlobal(place), {}, QPoint(0, -120),
                          Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        // Only what comes from the window system is passed on to parents; sendEvent() says that it
        // does not.
        QSpontaneKeyEvent::setSpontaneous(&wheel);
        qApp->notify(chart->window()->windowHandle(), &wheel);
        QVERIFY(bar->value() > 0);
    }

    void assistiveTechnologyIsToldTheNumbers()
    {
        writeSession(*m_home, {.project = u"/w/aa"_qs, .answers = {answer(1'234'567, 1)}});
        m_tab->open();
        QTRY_VERIFY(m_tab->page()->isVisible());
        for (BarChart *chart : m_tab->charts()) {
            QAccessibleInterface *told = QAccessible::queryAccessibleInterface(chart);
            QVERIFY(told);
            QCOMPARE(told->role(), QAccessible::Chart);
            QVERIFY(!told->text(QAccessible::Name).isEmpty());
            QVERIFY(told->text(QAccessible::Description).contains(u"1,234,567 tokens"_qs));
            QVERIFY(told->text(QAccessible::Description).contains(u"$18.52"_qs));
            QCOMPARE(told->childCount(), chart->contents().bars.size());
        }
        QAccessibleInterface *days = QAccessible::queryAccessibleInterface(m_tab->dayTokens());
        QVERIFY(days->text(QAccessible::Description).contains(u"the other 29 are 0"_qs));
        QAccessibleInterface *yesterday = days->child(28);
        QVERIFY(
            yesterday->text(QAccessible::Name).endsWith(u": 1,234,567 tokens \u00b7 $18.52"_qs));
        QCOMPARE(days->indexOfChild(yesterday), 28);
        QCOMPARE(days->childAt(yesterday->rect().center().x(), yesterday->rect().center().y()),
                 yesterday);
        m_tab->dayTokens()->setFocus(Qt::TabFocusReason);
        Input::key(Qt::Key_Left);
        QCOMPARE(days->focusChild(), yesterday);
        QVERIFY(yesterday->state().focused);
    }

    void coloursFollowThePalette()
    {
        writeSession(*m_home, {.project = u"/w/aa"_qs, .answers = {answer(1000)}});
        m_tab->open();
        QTRY_VERIFY(m_tab->page()->isVisible());
        for (const QColor &base : {QColor(Qt::white), QColor(30, 30, 30)}) {
            QPalette palette;
            palette.setColor(QPalette::Base, base);
            palette.setColor(QPalette::Window, base);
            QApplication::setPalette(palette);
            QTRY_VERIFY(hasColor(m_tab->dayTokens(), Colors::fill(Colors::Hue::Blue, palette)));
            QVERIFY(hasColor(m_tab->dayCost(), Colors::fill(Colors::Hue::Orange, palette)));
            QVERIFY(hasColor(m_tab->projectTokens(), Colors::fill(Colors::Hue::Blue, palette)));
            QVERIFY(hasColor(m_tab->projectCost(), Colors::fill(Colors::Hue::Orange, palette)));
        }
    }

    void zeroIsNoBarAndLittleIsOne()
    {
        const auto style = BarChart::Style();
        BarChart chart(u"Test"_qs, style);
        chart.resize(600, 180);
        const QColor blue = Colors::fill(Colors::Hue::Blue, chart.palette());
        chart.setContents(contentsOf({0, 0, 0}));
        QVERIFY(!hasColor(&chart, blue));
        chart.setContents(contentsOf({0, 1e-9, 0}));
        chart.setContents(contentsOf({0, 1, 0}));
        QVERIFY(hasColor(&chart, blue));
        // Beside a huge one it is still to be seen.
        chart.setContents(contentsOf({1, 0, 5e9}));
        const QImage image = chart.grab(chart.roomOf(0).adjusted(0, 0, 0, 1)).toImage();
        bool seen = false;
        for (int y = 0; y < image.height() && !seen; ++y)
            seen = image.pixelColor(image.width() / 2, y) == blue;
        QVERIFY(seen);
    }

    void labelsFitAtEveryWidth()
    {
        QList<double> values;
        for (int i = 0; i < 30; ++i)
            values.append(i * 123'456.0);
        for (const Qt::Orientation bars : {Qt::Vertical, Qt::Horizontal}) {
            BarChart chart(u"Test"_qs, {.bars = bars, .measure = Measure::Cost});
            chart.setContents(contentsOf(values));
            auto *plot = find<QCustomPlot>(&chart);
            for (int width = 200; width < 2000; width += 37) {
                chart.resize(width, bars == Qt::Vertical ? 180 : 30 * 32 + 10);
                chart.grab();
                checkLabels(plot, plot->xAxis, 1);
                checkLabels(plot, plot->yAxis, 1);
            }
        }
    }

    void absurdContentsAreDrawn()
    {
        constexpr double infinity = std::numeric_limits<double>::infinity();
        for (const Qt::Orientation bars : {Qt::Vertical, Qt::Horizontal}) {
            BarChart chart(u"Test"_qs, {.bars = bars, .measure = Measure::Cost});
            for (const QSize size : {QSize(1, 1), QSize(40, 20), QSize(600, 180)}) {
                chart.resize(size);
                for (const QList<double> &values :
                     {QList<double>{}, QList<double>{infinity, -infinity, std::nan("")},
                      QList<double>{-5, 3, -1e300}, QList<double>(5000, 1.0)}) {
                    chart.setContents(contentsOf(values));
                    chart.grab();
                    chart.barAt(chart.rect().center());
                }
            }
        }
    }

    void projectsOfOneNameShareARow()
    {
        writeSession(*m_home, {.project = u"/w/one/app"_qs, .answers = {answer(100)}});
        writeSession(*m_home, {.project = u"/w/two/app"_qs, .answers = {answer(300)}});
        m_tab->open();
        QTRY_VERIFY(m_tab->page()->isVisible());
        BarChart *chart = m_tab->projectTokens();
        QCOMPARE(chart->contents().bars.size(), 2);
        QCOMPARE(chart->roomOf(0), chart->roomOf(1));
        // Each part tells its own figures.
        const QRect room = chart->roomOf(0);
        QCOMPARE(chart->barAt(QPoint(room.left() + 10, room.center().y())), 0);
        QStringList told{chart->textOf(0), chart->textOf(1)};
        QVERIFY(told[0].startsWith(u"app\n300 tokens"_qs));
        QVERIFY(told[1].startsWith(u"app\n100 tokens"_qs));
    }

    void midnightMovesTheWindow()
    {
        writeSession(*m_home, {.project = u"/w/aa"_qs, .answers = {answer(1000)}});
        m_tab->load();
        Store &store = m_tab->window->store();
        // A clock that is about to strike midnight at the end of today.
        const auto day = std::chrono::ceil<std::chrono::days>(currentTime());
        const auto offset = day - std::chrono::milliseconds(300) - currentTime();
        const Clock clock{.now = [offset] { return currentTime() + offset; },
                          .zone = [] { return QTimeZone::utc(); }};
        UsageView view(store.projects().constFirst(), store, clock);
        view.resize(800, 600);
        view.show();
        const auto *chart = find<BarChart>(&view, u"dayTokens"_qs);
        const QDate today = QDateTime::fromMSecsSinceEpoch(
                                std::chrono::milliseconds(day.time_since_epoch()).count(), Qt::UTC)
                                .date();
        QTRY_COMPARE(chart->contents().bars.size(), 30);
        QTRY_COMPARE(chart->contents().bars.constLast().name,
                     QLocale().toString(today, QLocale::LongFormat));
        QCOMPARE(chart->contents().bars[28].value, 1000.0);
    }

private:
    std::unique_ptr<PrivateHome> m_home;
    std::unique_ptr<Tab> m_tab;
};

PLINTHAR_WINDOW_TEST_MAIN(UsageViewTest)
#include "UsageViewTest.moc"
