// SPDX-License-Identifier: GPL-3.0-or-later

// What others have written (prompts, folders, names of models and of files) is shown as what it is,
// wherever it is shown.

#include "HostileTexts.h"
#include "live/StopDialog.h"
#include "support/Input.h"
#include "support/LogLines.h"
#include "support/ToolTipText.h"
#include "support/Window.h"
#include "support/WindowTestMain.h"
#include "usage/BarChart.h"

#include <QAbstractButton>
#include <QImage>
#include <QLabel>

namespace {

/// A window on one project, with the text as the project's name, as prompt and as a model's name.
class WindowWith {
public:
    explicit WindowWith(const QString &text)
    {
        const QString now =
            QDateTime(QDate::currentDate(), QTime(0, 0), Qt::UTC).toString(Qt::ISODate);
        writeFile(m_home.claude(u"-code/session.jsonl"_qs),
                  LogLines::log({LogLines::user({}, {}, u"/code/"_qs + HostileTexts::asName(text)),
                                 LogLines::user(now, text),
                                 LogLines::assistant(now, text, {.input = 1000})}));
        m_window.load();
    }

    Window &window() { return m_window; }

    /// What is to be seen with one of the tabs in front.
    QImage picture(int tab)
    {
        m_window.tabs()->setCurrentIndex(tab);
        const auto isFilled = [&] {
            if (tab == sessionsTab)
                return m_window.sessions()->model()->rowCount() == 1;
            const auto *chart = m_window.detail()->findChild<BarChart *>(u"dayTokens"_qs);
            return chart && !chart->contents().bars.isEmpty();
        };
        if (!QTest::qWaitFor(isFilled, 30'000))
            qFatal("the tab stays empty");
        m_window.view().activateWindow(); // the selection looks different without the focus
        if (!QTest::qWaitForWindowActive(&m_window.view()))
            qFatal("the window stays in the background");
        return m_window.view().grab().toImage();
    }

    static constexpr int sessionsTab = 0;
    static constexpr int usageTab = 3;

private:
    PrivateHome m_home;
    Window m_window{m_home};
};

} // namespace

class HostileTextTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void theUnseenIsNamed_data() { HostileTexts::addUnseen(); }
    void theUnseenIsNamed();
    void markupIsText_data();
    void markupIsText();
    void noLengthBreaksTheWindow_data();
    void noLengthBreaksTheWindow();
    void theStopQuestionShowsTheFolderAsItIs_data();
    void theStopQuestionShowsTheFolderAsItIs();
};

void HostileTextTest::theUnseenIsNamed()
{
    QFETCH(const QString, text);
    QFETCH(const QString, seen);
    WindowWith raw(text);
    WindowWith named(seen);
    QCOMPARE(raw.window().view().windowTitle(), named.window().view().windowTitle());
    for (const int tab : {WindowWith::sessionsTab, WindowWith::usageTab})
        QVERIFY2(raw.picture(tab) == named.picture(tab), QByteArray::number(tab));
}

void HostileTextTest::markupIsText_data()
{
    HostileTexts::addMarkup();
    QTest::newRow("changed mark") << u"a[*]b"_qs << u"ab"_qs;
}

void HostileTextTest::markupIsText()
{
    QFETCH(const QString, text);
    QFETCH(const QString, taken);
    WindowWith hostile(text);
    WindowWith harmless(taken);
    for (const int tab : {WindowWith::sessionsTab, WindowWith::usageTab}) {
        QVERIFY(hostile.picture(tab) != harmless.picture(tab));
        const QList<QLabel *> labels = hostile.window().view().findChildren<QLabel *>();
        QVERIFY(labels.size() > 3);
        for (const QLabel *label : labels)
            QCOMPARE(label->textFormat(), Qt::PlainText);
    }
    const QModelIndex project = hostile.window().projects()->model()->index(0, 0);
    QCOMPARE(shownText(project.data(Qt::ToolTipRole).toString()),
             u"/code/"_qs + HostileTexts::asName(text));
    const QAbstractItemModel *sessions = hostile.window().sessions()->model();
    QCOMPARE(shownText(sessions->index(0, 2).data(Qt::ToolTipRole).toString()), text.trimmed());
}

void HostileTextTest::noLengthBreaksTheWindow_data()
{
    QTest::addColumn<QString>("text");
    // The name of a project is looked for in the first 256 KiB of a log.
    constexpr int times = 40'000;
    QTest::newRow("letters") << u"letter"_qs.repeated(times);
    QTest::newRow("words") << u"a word"_qs.repeated(times);
    QTest::newRow("overrides") << u"\u202e"_qs.repeated(times);
    QTest::newRow("marks") << u"a"_qs + u"\u0301"_qs.repeated(times);
    QTest::newRow("ideographs") << u"\u4e2d"_qs.repeated(times);
}

void HostileTextTest::noLengthBreaksTheWindow()
{
    QFETCH(const QString, text);
    WindowWith hostile(text);
    QCOMPARE(hostile.window().store().projects().constFirst().path, u"/code/"_qs + text);
    WindowWith harmless(u"x"_qs);
    for (const int tab : {WindowWith::sessionsTab, WindowWith::usageTab}) {
        // Were all of it laid out for every painting, this would take for ever.
        for (int i = 0; i < 10; ++i)
            QCOMPARE(hostile.picture(tab).size(), harmless.picture(tab).size());
    }
    QCOMPARE(hostile.window().view().minimumSizeHint(), harmless.window().view().minimumSizeHint());
}

void HostileTextTest::theStopQuestionShowsTheFolderAsItIs_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QString>("seen");
    QTest::newRow("markup") << u"/a/<b>x"_qs << u"/a/<b>x"_qs;
    QTest::newRow("entity") << u"/a/&amp;"_qs << u"/a/&amp;"_qs;
    QTest::newRow("override") << u"/a/\u202eb"_qs << u"/a/[RLO]b"_qs;
    QTest::newRow("line feeds") << u"/a\n\nAll is well."_qs << u"/a[LF][LF]All is well."_qs;
    QTest::newRow("a megabyte") << u"/"_qs + u"x"_qs.repeated(1'000'000) << QString();
}

void HostileTextTest::theStopQuestionShowsTheFolderAsItIs()
{
    QFETCH(const QString, folder);
    QFETCH(const QString, seen);
    StopDialog dialog({4711, u"claude"_qs, folder, 0.0, u"01:00"_qs}, nullptr);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    QVERIFY2(dialog.width() < 900, QByteArray::number(dialog.width()));
    QStringList texts;
    for (const QLabel *label : dialog.findChildren<QLabel *>()) {
        QVERIFY(label->text().isEmpty() || label->textFormat() == Qt::PlainText);
        texts.append(label->text());
    }
    if (!seen.isEmpty())
        QVERIFY2(texts.contains(u"claude in %1 will be asked to terminate."_qs.arg(seen)),
                 qPrintable(texts.join(u'|')));
}

PLINTHAR_WINDOW_TEST_MAIN(HostileTextTest)
#include "HostileTextTest.moc"
