// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/Input.h"
#include "support/ReviewPage.h"
#include "support/WindowTestMain.h"

#include <QDialog>
#include <QLineEdit>

namespace {

/// Every character of a keyboard. Some of them are shortcuts where no text is written.
QString everything()
{
    QString text;
    for (char16_t c = u' '; c <= u'~'; ++c)
        text += QChar(c);
    return text;
}

void compareTyped(QPlainTextEdit *editor)
{
    editor->setFocus();
    QTRY_VERIFY(editor->hasFocus());
    editor->selectAll();
    Input::type(everything());
    QCOMPARE(editor->toPlainText(), everything());
    Input::key(Qt::Key_Home, Qt::ControlModifier); // the text is longer than a line
    Input::key(Qt::Key_Delete);
    QCOMPARE(editor->toPlainText(), everything().sliced(1));
}

void compareTyped(QLineEdit *field)
{
    field->setFocus();
    QTRY_VERIFY(field->hasFocus());
    field->selectAll();
    Input::type(everything());
    QCOMPARE(field->text(), everything());
    Input::key(Qt::Key_Home);
    Input::key(Qt::Key_Delete);
    QCOMPARE(field->text(), everything().sliced(1));
}

} // namespace

/// No shortcut takes a key away from whoever is writing.
class TypingTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_home = std::make_unique<PrivateHome>();
        m_page = std::make_unique<ReviewPage>(*m_home);
        const Repository repository(m_page->folder());
        repository.write(u"CLAUDE.md"_qs, "new\n");
        repository.git({u"add"_qs, u"."_qs});
    }

    void cleanup()
    {
        m_page.reset();
        m_home.reset();
    }

    void intoACommitMessage()
    {
        m_page->open();
        const QDialog *sheet = m_page->openCommit();
        compareTyped(find<QPlainTextEdit>(sheet, u"message"_qs));
    }

    void intoAnInstructionFile()
    {
        openContext();
        compareTyped(editor());
    }

    void intoTheFindBar()
    {
        openContext();
        editor()->setFocus();
        Input::key(Qt::Key_F, Qt::ControlModifier);
        compareTyped(find<QLineEdit>(m_page->window().detail(), u"findField"_qs));
    }

    void intoThePriceTable()
    {
        m_page->open();
        Input::key(Qt::Key_1, Qt::ControlModifier);
        const QDialog *prices = m_page->window().openPrices();
        compareTyped(find<QLineEdit>(prices)); // a row's key, the first of its fields
    }

private:
    void openContext()
    {
        m_page->open();
        Input::key(Qt::Key_5, Qt::ControlModifier);
        QTRY_VERIFY(m_page->window().detail()->findChild<QPlainTextEdit *>(u"editor"_qs));
        QTRY_VERIFY(editor()->isVisible() && editor()->isEnabled() && !editor()->isReadOnly());
        m_page->settle();
    }

    QPlainTextEdit *editor() const
    {
        return find<QPlainTextEdit>(m_page->window().detail(), u"editor"_qs);
    }

    std::unique_ptr<PrivateHome> m_home;
    std::unique_ptr<ReviewPage> m_page;
};

PLINTHAR_WINDOW_TEST_MAIN(TypingTest)
#include "TypingTest.moc"
