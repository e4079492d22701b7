// SPDX-License-Identifier: GPL-3.0-or-later
#include "review/DiffView.h"

#include "review/DiffParser.h"
#include "support/Input.h"
#include "support/WindowTestMain.h"
#include "ui/Colors.h"

#include <QAccessible>
#include <QClipboard>
#include <QPainter>
#include <QPicture>
#include <QScrollBar>

namespace {

const QString sample = QStringLiteral("@@ -1,4 +1,4 @@ int main()\n"
                                      " alpha beta\n"
                                      "-old text\n"
                                      "+new text\n"
                                      "+added line\n"
                                      " \tint\u202e x;\n"
                                      "@@ -90 +91 @@\n"
                                      "-\u4e2d\u6587\n"
                                      "+\u65e5\u672c\n");

SharedDocument documentOf(const QString &text)
{
    return std::make_shared<DiffDocument>(DiffParser::parse(text));
}

QString manyLines(int count)
{
    QString text = QStringLiteral("@@ -1,%1 +1,%1 @@\n").arg(count);
    for (int i = 0; i < count; ++i)
        text += QStringLiteral(" line %1\n").arg(i);
    return text;
}

QString clipboard()
{
    return QGuiApplication::clipboard()->text();
}

} // namespace

class DiffViewTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_view = std::make_unique<DiffView>();
        m_view->resize(1000, 400);
        m_view->setDocument(documentOf(sample));
        m_view->show();
        QVERIFY(QTest::qWaitForWindowActive(m_view.get()));
        m_view->setFocus();
        QGuiApplication::clipboard()->clear();
    }

    void cleanup() { m_view.reset(); }

    void bothSidesShareTheWidth()
    {
        const int left = place(OldSide, {1, 0}).x();
        const int right = place(NewSide, {1, 0}).x();
        QCOMPARE(right - left, (m_view->viewport()->width() + 1) / 2);
        QVERIFY(left >= 36);
    }

    void isAtLeast800Wide()
    {
        m_view->resize(500, 400);
        QCOMPARE(m_view->rowRect(0).width(), 800);
        QCOMPARE(m_view->horizontalScrollBar()->maximum(), 800 - m_view->viewport()->width());
        m_view->resize(1000, 400);
        QCOMPARE(m_view->rowRect(0).width(), m_view->viewport()->width());
        QCOMPARE(m_view->horizontalScrollBar()->maximum(), 0);
    }

    void theScrollBarIsTrueAtOnce()
    {
        m_view->setDocument(documentOf(manyLines(100'000)));
        const QScrollBar *bar = m_view->verticalScrollBar();
        const QRect last = m_view->rowRect(100'000);
        QCOMPARE(last.bottom() + 1, bar->maximum() + bar->pageStep());
        QCOMPARE(m_view->rowRect(0).height(), m_view->rowRect(1).height() + 6);
        for (const qsizetype row : {0, 1, 2, 50'000, 100'000}) {
            const QRect place = m_view->rowRect(row);
            QCOMPARE(m_view->rowAt(place.top()), std::optional(row));
            QCOMPARE(m_view->rowAt(place.bottom()), std::optional(row));
        }
        QVERIFY(!m_view->rowAt(last.bottom() + 1));
    }

    void onlyWhatIsSeenIsDrawn_data()
    {
        QTest::addColumn<QString>("small");
        QTest::addColumn<QString>("large");
        QTest::newRow("rows") << manyLines(1'000) << manyLines(300'000);
        const auto longLine = [](int characters) {
            return u"@@ -1 +1 @@\n-"_qs + QString(characters, u'x') + u"\n+"_qs +
                   QString(characters, QChar(0x4e2d)) + u'\n';
        };
        QTest::newRow("columns") << longLine(2'000) << longLine(2'000'000);
    }

    void onlyWhatIsSeenIsDrawn()
    {
        QFETCH(QString, small);
        QFETCH(QString, large);
        const auto recorded = [this](const QString &text) {
            m_view->setDocument(documentOf(text));
            QPicture picture;
            m_view->viewport()->render(&picture);
            return picture.size();
        };
        const uint few = recorded(small);
        QVERIFY(few > 1'000);
        QVERIFY(recorded(large) <= few + few / 10); // numbers may have more digits
    }

    void theEndOfTheLongestLineCanBeReached()
    {
        m_view->setDocument(
            documentOf(u"@@ -1 +1 @@\n-"_qs + QString(2'000'000, u'x') + u"\n+y\n"_qs));
        QVERIFY(m_view->textBar()->isVisible());
        Input::key(Qt::Key_F6);
        Input::key(Qt::Key_End);
        const QPoint end = place(OldSide, {1, 2'000'000});
        QVERIFY(end.x() > place(OldSide, {1, 1'999'980}).x());
        QVERIFY(end.x() < m_view->viewport()->width() / 2);
        QCOMPARE(m_view->textBar()->value(), m_view->textBar()->maximum());
        m_view->setDocument(documentOf(sample));
        QVERIFY(!m_view->textBar()->isVisible());
    }

    void aDragSelectsOnOneSide()
    {
        drag(NewSide, {1, 6}, {2, 3});
        Input::key(Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(clipboard(), u"beta\nnew"_qs);
        // Going over to the other side goes on where it began.
        Input::drag(m_view->viewport(), place(OldSide, {2, 0}), place(NewSide, {2, 3}));
        m_view->copy();
        QCOMPARE(clipboard(), u"old text"_qs);
    }

    void aDragUpwardsSelectsToo()
    {
        drag(NewSide, {3, 5}, {1, 6});
        m_view->copy();
        QCOMPARE(clipboard(), u"beta\nnew text\nadded"_qs);
    }

    void shiftAndAClickExtend()
    {
        Input::clickAt(m_view->viewport(), place(NewSide, {1, 0}));
        Input::clickAt(m_view->viewport(), place(NewSide, {1, 5}),
                       {.modifiers = Qt::ShiftModifier});
        m_view->copy();
        QCOMPARE(clipboard(), u"alpha"_qs);
    }

    void twoClicksSelectAWordAndThreeALine()
    {
        const QPoint point = place(NewSide, {1, 8});
        QWindow *window = m_view->windowHandle();
        const QPoint at = m_view->viewport()->mapTo(m_view.get(), point);
        QTest::mouseDClick(window, Qt::LeftButton, {}, at);
        m_view->copy();
        QCOMPARE(clipboard(), u"beta"_qs);
        QTest::mouseClick(window, Qt::LeftButton, {}, at);
        m_view->copy();
        QCOMPARE(clipboard(), u"alpha beta"_qs);
    }

    void controlAndASelectTheSide()
    {
        Input::clickAt(m_view->viewport(), place(OldSide, {1, 0}));
        Input::key(Qt::Key_A, Qt::ControlModifier);
        Input::key(Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(clipboard(), u"alpha beta\nold text\n\tint\u202e x;\n\u4e2d\u6587"_qs);
        Input::key(Qt::Key_F6);
        Input::key(Qt::Key_A, Qt::ControlModifier);
        Input::key(Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(clipboard(), u"alpha beta\nnew text\nadded line\n\tint\u202e x;\n\u65e5\u672c"_qs);
    }

    void shiftAndTheArrowsSelect()
    {
        Input::key(Qt::Key_Home, Qt::ControlModifier);
        Input::key(Qt::Key_Right);
        Input::key(Qt::Key_Right, Qt::ShiftModifier);
        Input::key(Qt::Key_Down, Qt::ShiftModifier);
        m_view->copy();
        QCOMPARE(clipboard(), u"lpha beta\nne"_qs);
        Input::key(Qt::Key_End, Qt::ShiftModifier);
        m_view->copy();
        QCOMPARE(clipboard(), u"lpha beta\nnew text"_qs);
        Input::key(Qt::Key_Left); // without Shift nothing stays selected
        QVERIFY(m_view->selection().isEmpty());
    }

    void theOtherSideHasTheSameRow()
    {
        Input::key(Qt::Key_Home, Qt::ControlModifier);
        Input::key(Qt::Key_Down);
        Input::key(Qt::Key_F6);
        QCOMPARE(m_view->selection().side, OldSide);
        QCOMPARE(m_view->selection().caret.row, 2);
        Input::key(Qt::Key_Down); // the old side has no line in row 3
        QCOMPARE(m_view->selection().caret.row, 4);
    }

    void nAndPWalkTheHunks()
    {
        Input::key(Qt::Key_N);
        QCOMPARE(m_view->selection().caret.row, 6);
        Input::key(Qt::Key_N);
        QCOMPARE(m_view->selection().caret.row, 6);
        Input::key(Qt::Key_P);
        QCOMPARE(m_view->selection().caret.row, 1);
    }

    void pagesScroll()
    {
        m_view->setDocument(documentOf(manyLines(1000)));
        const int height = m_view->viewport()->height();
        const QScrollBar *bar = m_view->verticalScrollBar();
        Input::key(Qt::Key_PageDown);
        QVERIFY(bar->value() > height / 2 && bar->value() <= height);
        QVERIFY(
            m_view->viewport()->rect().intersects(m_view->rowRect(m_view->selection().caret.row)));
        Input::key(Qt::Key_End, Qt::ControlModifier);
        QCOMPARE(bar->value(), bar->maximum());
        Input::key(Qt::Key_PageUp);
        QVERIFY(bar->value() < bar->maximum());
        Input::key(Qt::Key_Home, Qt::ControlModifier);
        QCOMPARE(m_view->selection().caret.row, 1);
    }

    void aPageStartsFromWhatIsSeen()
    {
        m_view->setDocument(documentOf(manyLines(1000)));
        QScrollBar *bar = m_view->verticalScrollBar();
        bar->setValue(bar->maximum() / 2);
        Input::key(Qt::Key_PageDown);
        QVERIFY(bar->value() > bar->maximum() / 2);
    }

    void aDragBeyondTheEdgeScrolls()
    {
        m_view->setDocument(documentOf(manyLines(1000)));
        QWindow *window = m_view->windowHandle();
        QTest::mousePress(window, Qt::LeftButton, {}, place(NewSide, {1, 0}));
        const QPoint below(place(NewSide, {1, 0}).x(), m_view->height() + 40);
        QTest::mouseMove(window, below);
        QTRY_VERIFY(m_view->verticalScrollBar()->value() > 100);
        QTest::mouseRelease(window, Qt::LeftButton, {}, below);
        const int stopped = m_view->verticalScrollBar()->value();
        QTest::qWait(100);
        QCOMPARE(m_view->verticalScrollBar()->value(), stopped);
        QVERIFY(m_view->selection().caret.row > 5);
    }

    void kindsHaveTheirColours()
    {
        const QImage image = m_view->viewport()->grab().toImage();
        const QPalette colors = m_view->palette();
        const auto expected = [&colors](const QColor &tint) {
            QImage one(1, 1, QImage::Format_RGB32);
            one.fill(colors.color(QPalette::Base));
            QPainter(&one).fillRect(0, 0, 1, 1, tint);
            return one.pixelColor(0, 0);
        };
        const auto at = [this, &image](DiffSide side, qsizetype row) {
            const int x = side == OldSide ? m_view->viewport()->width() / 2 - 5
                                          : m_view->viewport()->width() - 5;
            return image.pixelColor(x, m_view->rowRect(row).center().y());
        };
        using namespace Colors;
        QCOMPARE(at(NewSide, 0), expected(tint(Hue::Blue, colors, 0.1F)));
        QCOMPARE(at(OldSide, 1), colors.color(QPalette::Base));
        QCOMPARE(at(OldSide, 2), expected(tint(Hue::Red, colors, 0.22F)));
        QCOMPARE(at(NewSide, 2), expected(tint(Hue::Green, colors, 0.22F)));
        QCOMPARE(at(OldSide, 3), expected(grayTint(colors, 0.08F)));
    }

    /// For those who do not see the colours.
    void changedLinesHaveASign()
    {
        const QImage image = m_view->viewport()->grab().toImage();
        const auto inkBeforeNumber = [this, &image](DiffSide side, qsizetype row) {
            const QRect line = m_view->rowRect(row);
            const int left =
                side == OldSide ? 0 : place(NewSide, {1, 0}).x() - place(OldSide, {1, 0}).x();
            QSet<int> heights;
            for (int y = line.top() + 1; y < line.bottom(); ++y) {
                for (int x = left + 1; x < left + 8; ++x) {
                    if (image.pixel(x, y) != image.pixel(left, line.top()))
                        heights.insert(y);
                }
            }
            return heights.size();
        };
        QCOMPARE(inkBeforeNumber(OldSide, 1), 0);
        QVERIFY(inkBeforeNumber(OldSide, 2) > 0);
        QVERIFY(inkBeforeNumber(NewSide, 2) > inkBeforeNumber(OldSide, 2)); // a plus is higher
        QCOMPARE(inkBeforeNumber(OldSide, 3), 0);
    }

    void numbersGetTheRoomThatTheyNeed()
    {
        const int usual = place(OldSide, {1, 0}).x();
        m_view->setDocument(documentOf(u"@@ -123456789 +123456789 @@\n a\n"_qs));
        QVERIFY(place(OldSide, {1, 0}).x() > usual);
    }

    void rowsAreToldToAssistiveTechnology()
    {
        QAccessibleInterface *list = QAccessible::queryAccessibleInterface(m_view.get());
        QVERIFY(list);
        QCOMPARE(list->role(), QAccessible::List);
        QCOMPARE(list->text(QAccessible::Name), u"Diff"_qs);
        QCOMPARE(list->childCount(), 7);
        const auto told = [list](int row) { return list->child(row)->text(QAccessible::Name); };
        QCOMPARE(told(0), u"Hunk @@ -1,4 +1,4 @@ int main()"_qs);
        QCOMPARE(told(1),
                 u"Old line 1, unchanged: alpha beta; New line 1, unchanged: alpha beta"_qs);
        QCOMPARE(told(2), u"Old line 2, removed: old text; New line 2, added: new text"_qs);
        QCOMPARE(told(3), u"New line 3, added: added line"_qs);
        QCOMPARE(told(4), u"Old line 3, unchanged: [TAB]int[RLO] x;; "
                          "New line 4, unchanged: [TAB]int[RLO] x;"_qs);
        QCOMPARE(list->indexOfChild(list->child(3)), 3);
        QCOMPARE(list->child(3)->parent(), list);
        QVERIFY(!list->child(7));
        Input::key(Qt::Key_End, Qt::ControlModifier);
        QCOMPARE(list->focusChild(), list->child(6));
        QVERIFY(list->child(6)->state().focused);
        const QPoint middle = m_view->viewport()->mapToGlobal(m_view->rowRect(2).center());
        QCOMPARE(list->childAt(middle.x(), middle.y()), list->child(2));
        QVERIFY(list->child(2)->rect().contains(middle));
    }

    void rowsOfADiffThatIsGoneAreForgotten()
    {
        QAccessibleInterface *list = QAccessible::queryAccessibleInterface(m_view.get());
        const QAccessible::Id id = QAccessible::uniqueId(list->child(6));
        m_view->setDocument(documentOf(u"@@ -1 +1 @@\n a\n"_qs));
        QVERIFY(!QAccessible::accessibleInterface(id));
        QCOMPARE(list->childCount(), 2);
        m_view->setDocument(nullptr);
        QCOMPARE(list->childCount(), 0);
    }

    void manyRowsAreToldWithoutKeepingThemAll()
    {
        m_view->setDocument(documentOf(manyLines(5000)));
        QAccessibleInterface *list = QAccessible::queryAccessibleInterface(m_view.get());
        const QAccessible::Id first = QAccessible::uniqueId(list->child(0));
        for (int row = 0; row <= 5000; ++row)
            QVERIFY(list->child(row)->isValid());
        QVERIFY(!QAccessible::accessibleInterface(first));
    }

    void aDiffOfOnlyRemovedLinesIsReadOnItsSide()
    {
        m_view->setDocument(documentOf(u"@@ -1,2 +0,0 @@\n-a\n-b\n"_qs));
        Input::key(Qt::Key_A, Qt::ControlModifier);
        Input::key(Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(clipboard(), u"a\nb"_qs);
    }

    void withoutADocumentNothingHappens()
    {
        for (const SharedDocument &document : {SharedDocument(), documentOf({})}) {
            m_view->setDocument(document);
            for (const Qt::Key key : {Qt::Key_N, Qt::Key_P, Qt::Key_Down, Qt::Key_PageDown,
                                      Qt::Key_End, Qt::Key_F6, Qt::Key_Left})
                Input::key(key);
            Input::key(Qt::Key_A, Qt::ControlModifier);
            Input::key(Qt::Key_C, Qt::ControlModifier);
            drag(NewSide, {}, {});
            m_view->viewport()->repaint();
            QCOMPARE(clipboard(), QString());
        }
    }

private:
    QPoint place(DiffSide side, DiffPosition position) const
    {
        if (!m_view->document() || m_view->document()->rowCount() == 0)
            return {10, 10};
        return m_view->pointAt(side, position);
    }

    void drag(DiffSide side, DiffPosition from, DiffPosition to) const
    {
        Input::drag(m_view->viewport(), place(side, from), place(side, to));
    }

    std::unique_ptr<DiffView> m_view;
};

PLINTHAR_WINDOW_TEST_MAIN(DiffViewTest)

#include "DiffViewTest.moc"
