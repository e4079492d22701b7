// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/Input.h"
#include "support/LogLines.h"
#include "support/ReviewPage.h"
#include "support/Sessions.h"
#include "support/WindowTestMain.h"

#include <QAbstractButton>
#include <QDateTime>
#include <QDialog>
#include <QRegularExpression>
#include <QShortcut>
#include <QTabBar>

namespace {

/// A row of the README's table.
struct Help {
    QStringList keys; ///< as tooltips call them
    QString text;
};

/// What Qt calls a key that the README calls otherwise.
QString shownName(const QString &key)
{
    static const QHash<QString, QString> names{
        {u"↑"_qs, u"Up"_qs},         {u"↓"_qs, u"Down"_qs},       {u"←"_qs, u"Left"_qs},
        {u"→"_qs, u"Right"_qs},      {u"Page Up"_qs, u"PgUp"_qs}, {u"Page Down"_qs, u"PgDown"_qs},
        {u"Menu"_qs, u"menu key"_qs}};
    return names.value(key, key);
}

/// The keys of a cell such as "F6, Ctrl+A" or "Ctrl+1 … Ctrl+5".
QStringList keysOf(const QString &cell)
{
    static const QRegularExpression between(u"[,;] *"_qs);
    static const QRegularExpression range(u"^(.*)(\\d) … \\1(\\d)$"_qs);
    QStringList keys;
    for (const QString &part : cell.split(between)) {
        const QRegularExpressionMatch numbers = range.match(part);
        if (!numbers.hasMatch())
            keys.append(shownName(part.trimmed()));
        for (int i = numbers.captured(2).toInt();
             numbers.hasMatch() && i <= numbers.captured(3).toInt(); ++i)
            keys.append(numbers.captured(1) + QString::number(i));
    }
    return keys;
}

QList<Help> keyboardTable()
{
    const QString readme =
        QString::fromUtf8(readFile(QStringLiteral(PLINTHAR_PROJECT_FOLDER "/README.md")));
    const QString section = readme.section(u"\n## Keyboard\n"_qs, 1).section(u"\n## "_qs, 0, 0);
    static const QRegularExpression row(u"^\\| ([^|]*[^|-]) \\| (.*) \\|$"_qs,
                                        QRegularExpression::MultilineOption);
    QList<Help> table;
    for (auto found = row.globalMatch(section); found.hasNext();) {
        const QRegularExpressionMatch cells = found.next();
        if (cells.captured(1) != u"key")
            table.append({keysOf(cells.captured(1)), cells.captured(2)});
    }
    return table;
}

/// Every tooltip of the widgets that are to be seen, the diff's own included.
QString toolTipsIn(const QWidget *in)
{
    QStringList texts;
    // First, because it waits, and what is being closed goes meanwhile.
    if (const auto *diff = in->findChild<DiffView *>(); diff && diff->isVisible())
        texts.append(Input::toolTipAt(diff->viewport(), QPoint(2, 2)));
    for (const QWidget *widget : in->findChildren<QWidget *>()) {
        if (!widget->isVisible())
            continue;
        texts.append(widget->toolTip());
        if (const auto *tabs = qobject_cast<const QTabBar *>(widget))
            for (int i = 0; i < tabs->count(); ++i)
                texts.append(tabs->tabToolTip(i));
    }
    return texts.join(u'\n');
}

bool tells(const QString &toolTips, const QString &key)
{
    // "N" is neither in "Next" nor in "Ctrl+N".
    static const QString edge = u"(?<![\\w+])%1(?![\\w+])"_qs;
    return QRegularExpression(edge.arg(QRegularExpression::escape(key))).match(toolTips).hasMatch();
}

bool seen(const QWidget *in, const QString &name)
{
    const auto *widget = in->findChild<QWidget *>(name);
    return widget && widget->isVisible();
}

} // namespace

/// The README's table of keys and the window's tooltips tell the same.
class KeyboardHelpTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_home = std::make_unique<PrivateHome>();
        m_page = std::make_unique<ReviewPage>(*m_home);
        const Repository repository(m_page->folder());
        repository.write(u"CLAUDE.md"_qs, "new\n");
        repository.git({u"add"_qs, u"."_qs});
        const QString now = QDateTime::currentDateTimeUtc().toString(Qt::ISODate);
        writeSession(*m_home, {.project = m_page->folder(),
                               .start = now,
                               .answers = {LogLines::assistant(now, u"opus"_qs, {1, 1})}});
        m_page->open();
    }

    void cleanup()
    {
        m_page.reset();
        m_home.reset();
    }

    void everyKeyOfTheTableStandsInATooltip()
    {
        const QList<Help> table = keyboardTable();
        QVERIFY(table.size() > 12);
        const QHash<QString, QString> places = collect();
        for (const Help &help : table) {
            // A row that names its place is told there; any place will do for the others.
            QStringList toolTips;
            for (auto place = places.cbegin(); place != places.cend(); ++place)
                if (help.text.contains(place.key()))
                    toolTips.append(*place);
            if (toolTips.isEmpty())
                toolTips = {QStringList(places.values()).join(u'\n')};
            for (const QString &texts : toolTips)
                for (const QString &key : help.keys)
                    QVERIFY2(tells(texts, key), qPrintable(key + u": "_qs + help.text));
        }
    }

    void everyShortcutStandsInTheTable()
    {
        QStringList keys;
        for (const Help &help : keyboardTable())
            keys += help.keys;
        collect(); // which makes every screen
        const QWidget *view = &m_page->window().view();
        QList<QKeySequence> used;
        for (const QShortcut *shortcut : view->findChildren<QShortcut *>())
            used.append(shortcut->key());
        for (const QAbstractButton *button : view->findChildren<QAbstractButton *>())
            used.append(button->shortcut());
        used.removeAll(QKeySequence());
        QVERIFY(used.size() > 10);
        for (const QKeySequence &sequence : used) {
            QString key = sequence.toString(QKeySequence::NativeText);
            key.replace(u"Enter"_qs, u"Return"_qs); // the same on the keypad
            QVERIFY2(keys.contains(key), qPrintable(key));
        }
    }

private:
    /// The tooltips by the words of the README that mean their place.
    QHash<QString, QString> collect()
    {
        QHash<QString, QString> places;
        QWidget *detail = m_page->window().detail();
        places.insert(u"in Review"_qs, toolTipsIn(detail));
        places.insert(u"in the diff"_qs, toolTipsIn(m_page->diff()->parentWidget()));
        QDialog *sheet = m_page->openCommit();
        places.insert(u"commit sheet"_qs, toolTipsIn(sheet));
        close(sheet);
        const auto show = [this](Qt::Key tab) {
            Input::key(tab, Qt::ControlModifier);
            m_page->settle();
        };
        show(Qt::Key_1);
        QDialog *prices = m_page->window().openPrices();
        places.insert(u"price table"_qs, toolTipsIn(prices));
        close(prices);
        show(Qt::Key_2);
        places.insert(u"in Live"_qs, toolTipsIn(detail));
        show(Qt::Key_4);
        places.insert(u"in Usage"_qs, toolTipsIn(detail));
        show(Qt::Key_5);
        if (!QTest::qWaitFor([detail] { return seen(detail, u"editor"_qs); }))
            qFatal("no editor");
        Input::key(Qt::Key_F, Qt::ControlModifier);
        places.insert(u"in that file"_qs, toolTipsIn(detail));
        places.insert(u"in Context"_qs, toolTipsIn(detail));
        places.insert(u"the window"_qs, toolTipsIn(&m_page->window().view()));
        return places;
    }

    void close(QDialog *dialog)
    {
        dialog->reject();
        m_page->window().view().activateWindow();
        if (!QTest::qWaitForWindowActive(&m_page->window().view()))
            qFatal("the window does not get the focus back");
    }

    std::unique_ptr<PrivateHome> m_home;
    std::unique_ptr<ReviewPage> m_page;
};

PLINTHAR_WINDOW_TEST_MAIN(KeyboardHelpTest)
#include "KeyboardHelpTest.moc"
