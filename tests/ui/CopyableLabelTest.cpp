// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/CopyableLabel.h"

#include "support/Input.h"
#include "support/Window.h"
#include "support/WindowTestMain.h"
#include "ui/CopyAction.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

namespace {

const QString path = u"/folder & <b>x</b>"_qs.repeated(30);

QString copied()
{
    return QGuiApplication::clipboard()->text();
}

} // namespace

/// Paths and errors that stand in one short line can be copied whole.
class CopyableLabelTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QGuiApplication::clipboard()->setText(u"before"_qs);
        m_window = std::make_unique<QWidget>();
        m_other = new QLineEdit(m_window.get());
        m_label =
            new CopyableLabel(path, {.overflow = TextLabel::Overflow::ElideHead}, m_window.get());
        auto *layout = new QVBoxLayout(m_window.get());
        layout->addWidget(m_other);
        layout->addWidget(m_label);
        m_window->resize(300, 100);
        m_window->show();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
        m_other->setFocus();
    }

    void cleanup() { m_window.reset(); }

    void aClickSelectsIt()
    {
        const QImage before = m_label->grab().toImage();
        Input::click(m_label);
        QVERIFY(m_label->hasFocus());
        QVERIFY(m_label->grab().toImage() != before);
        Input::key(Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(copied(), path);
        Input::click(m_other);
        QCOMPARE(m_label->grab().toImage(), before);
    }

    void tabSelectsIt()
    {
        Input::key(Qt::Key_Tab);
        QVERIFY(m_label->hasFocus());
        Input::key(Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(copied(), path);
    }

    void onlyTheTextIsMarked()
    {
        m_label->setText(u"x"_qs);
        const QImage before = m_label->grab().toImage();
        m_label->setFocus();
        const QImage after = m_label->grab().toImage();
        QVERIFY(after != before);
        const QRect right(100, 0, 100, before.height());
        QCOMPARE(after.copy(right), before.copy(right));
    }

    void theContextMenuCopies()
    {
        m_label->setFocus();
        Input::menuKey();
        chooseEntry(openMenu(), u"Copy"_qs);
        QTRY_COMPARE(copied(), path);
    }

    void aClickWithTheRightButtonOpensTheMenu()
    {
        QContextMenuEvent event(QContextMenuEvent::Mouse, QPoint(3, 3),
                                m_label->mapToGlobal(QPoint(3, 3)));
        QCoreApplication::sendEvent(m_label, &event);
        QCOMPARE(entriesOf(openMenu()), QStringList{u"Copy"_qs});
        openMenu()->close();
    }

    void whatIsNotToBeCopiedTakesNoFocus()
    {
        m_label->setCopyable(false);
        Input::click(m_label);
        QVERIFY(!m_label->hasFocus());
        Input::key(Qt::Key_Tab);
        QVERIFY(!m_label->hasFocus());
        m_label->setCopyable(true);
        Input::click(m_label);
        QVERIFY(m_label->hasFocus());
    }

    void otherKeysGoOn()
    {
        m_label->setFocus();
        Input::key(Qt::Key_Tab);
        QVERIFY(m_other->hasFocus());
        QCOMPARE(copied(), u"before"_qs);
    }

    void aQuestionLetsItsPathBeCopied()
    {
        QDialog question(m_window.get());
        auto *layout = new QVBoxLayout(&question);
        auto *text = new QLabel(u"About it?"_qs, &question);
        layout->addWidget(text);
        addCopyAction(&question, u"Copy Path"_qs, path);
        question.open();
        QCOMPARE(openModalWindow(), &question);
        Input::key(Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(copied(), path);

        QGuiApplication::clipboard()->setText(u"before"_qs);
        QContextMenuEvent event(QContextMenuEvent::Mouse, QPoint(3, 3),
                                text->mapToGlobal(QPoint(3, 3)));
        QCoreApplication::sendEvent(text, &event);
        chooseEntry(openMenu(), u"Copy Path"_qs);
        QTRY_COMPARE(copied(), path);
    }

private:
    std::unique_ptr<QWidget> m_window;
    QLineEdit *m_other = nullptr;
    CopyableLabel *m_label = nullptr;
};

PLINTHAR_WINDOW_TEST_MAIN(CopyableLabelTest)
#include "CopyableLabelTest.moc"
