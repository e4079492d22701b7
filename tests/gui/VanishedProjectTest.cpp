// SPDX-License-Identifier: GPL-3.0-or-later

// A project's folder is deleted while one of its tabs is open.

#include "context/ContextEditor.h"
#include "support/Input.h"
#include "support/LogLines.h"
#include "support/ReviewPage.h"
#include "support/Sessions.h"
#include "support/ToolDoubles.h"
#include "support/WindowTestMain.h"

#include <QAbstractButton>
#include <QDir>
#include <QLabel>
#include <QMessageBox>

class VanishedProjectTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup();

    void sessions();
    void live();
    void review();
    void reviewOfWhatWasThere();
    void reviewDuringAQuestion();
    void reviewDuringACommit();
    void usage();
    void context();
    void everyTabAfterwards();

private:
    void openTab(Qt::Key key)
    {
        m_page->open();
        Input::key(key, Qt::ControlModifier);
        m_page->settle();
    }
    void deleteFolder() const { QVERIFY(QDir(m_page->folder()).removeRecursively()); }
    void refresh()
    {
        Input::key(Qt::Key_F5);
        m_page->settle();
    }
    bool isStillListed() { return m_page->window().projectNames() == QStringList{u"project"_qs}; }
    QString title() const
    {
        const QList<EmptyState *> shown = m_page->placeholders();
        return shown.isEmpty() ? QString() : shown.constFirst()->title();
    }

    std::unique_ptr<PrivateHome> m_home;
    std::unique_ptr<ToolDoubles> m_tools;
    std::unique_ptr<ReviewPage> m_page;
};

void VanishedProjectTest::init()
{
    m_home = std::make_unique<PrivateHome>();
    m_tools = std::make_unique<ToolDoubles>();
    m_page = std::make_unique<ReviewPage>(*m_home);
    const Repository repository(m_page->folder());
    repository.write(u"changed.txt"_qs, "old\n");
    repository.write(u"staged.txt"_qs, "old\n");
    repository.write(u"CLAUDE.md"_qs, "text");
    repository.commitAll();
    repository.write(u"changed.txt"_qs, "new\n");
    repository.write(u"staged.txt"_qs, "new\n");
    repository.git({u"add"_qs, u"staged.txt"_qs});
    const QString now = QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs);
    writeSession(*m_home, {.project = m_page->folder(),
                           .start = now,
                           .answers = {LogLines::assistant(now, u"opus"_qs, {.input = 1000})}});
}

void VanishedProjectTest::cleanup()
{
    m_page.reset();
    m_tools.reset();
    m_home.reset();
}

/// The logs lie elsewhere.
void VanishedProjectTest::sessions()
{
    openTab(Qt::Key_1);
    deleteFolder();
    QCOMPARE(m_page->window().sessions()->model()->rowCount(), 1);
    m_page->window().reload();
    QVERIFY(isStillListed());
    QCOMPARE(m_page->window().sessions()->model()->rowCount(), 1);
}

/// The system goes on telling the folder of a process, with a remark.
void VanishedProjectTest::live()
{
    m_tools->play(u"ps"_qs, u"echo '4711 1.0 01:00 claude'"_qs);
    m_tools->play(u"lsof"_qs, u"echo p4711; echo 'n%1'"_qs.arg(m_page->folder()));
    openTab(Qt::Key_2);
    auto *table = find<QTableView>(m_page->window().detail(), u"agents"_qs);
    const auto folder = [table] { return table->model()->index(0, 2).data().toString(); };
    QTRY_COMPARE(folder(), m_page->folder());
    deleteFolder();
    m_tools->play(u"lsof"_qs, u"echo p4711; echo 'n%1 (deleted)'"_qs.arg(m_page->folder()));
    refresh();
    QTRY_COMPARE(folder(), m_page->folder() + u" (deleted)"_qs);
}

void VanishedProjectTest::review()
{
    openTab(Qt::Key_3);
    QCOMPARE(m_page->files().size(), 2);
    deleteFolder();
    refresh();
    QCOMPARE(title(), u"Not a Git repository"_qs);
    const Repository again(m_page->folder());
    again.write(u"new.txt"_qs, "new\n");
    refresh();
    QCOMPARE(m_page->files(), QStringList{u"U new.txt"_qs});
}

void VanishedProjectTest::reviewOfWhatWasThere()
{
    openTab(Qt::Key_3);
    deleteFolder();
    Input::clickCell(m_page->list(), 1);
    m_page->settle();
    QCOMPARE(m_page->rows(), QStringList{u"No diff to show"_qs});
    Input::clickCell(m_page->list(), 0);
    m_page->settle();
    Input::click(m_page->button(u"Approve"_qs));
    m_page->settle();
    QVERIFY2(find<QPlainTextEdit>(m_page->window().detail(), u"error"_qs)
                 ->toPlainText()
                 .contains(m_page->folder()),
             qPrintable(title()));
    QCOMPARE(title(), u"Not a Git repository"_qs);
    QVERIFY(!QFile::exists(m_page->folder()));
}

void VanishedProjectTest::reviewDuringAQuestion()
{
    openTab(Qt::Key_3);
    QMessageBox *box = m_page->askReject();
    deleteFolder();
    Input::click(buttonOf(box, u"Discard Changes"_qs));
    m_page->settle();
    QCOMPARE(title(), u"Not a Git repository"_qs);
    QVERIFY(!QFile::exists(m_page->folder()));
}

void VanishedProjectTest::reviewDuringACommit()
{
    openTab(Qt::Key_3);
    QDialog *sheet = m_page->openCommit();
    deleteFolder();
    Input::type(u"message"_qs);
    Input::key(Qt::Key_Return, Qt::ControlModifier);
    m_page->settle();
    const auto *error = find<QPlainTextEdit>(sheet, u"error"_qs);
    QVERIFY2(error->toPlainText().contains(m_page->folder()), qPrintable(error->toPlainText()));
    QVERIFY(sheet->isVisible()); // with the message, which is not lost
    Input::key(Qt::Key_Escape);
    m_page->window().view().activateWindow(); // as a window manager does
    QVERIFY(QTest::qWaitForWindowActive(&m_page->window().view()));
    refresh();
    QCOMPARE(title(), u"Not a Git repository"_qs);
}

void VanishedProjectTest::usage()
{
    openTab(Qt::Key_4);
    const auto total = [this] {
        return labelWith(m_page->window().detail(), u"Tokens per day \u00b7 total 1,000"_qs);
    };
    QVERIFY(total());
    deleteFolder();
    m_page->window().reload();
    QVERIFY(total());
}

/// What was typed is all that is left of the folder.
void VanishedProjectTest::context()
{
    openTab(Qt::Key_5);
    auto *editor = find<ContextEditor>(m_page->window().detail());
    QTRY_COMPARE(editor->toPlainText(), u"text"_qs);
    Input::click(editor->viewport());
    Input::type(u"new "_qs);
    deleteFolder();
    Input::click(buttonOf(m_page->window().detail(), u"Save"_qs));
    m_page->settle();
    QCOMPARE(readFile(m_page->folder() + u"/CLAUDE.md"_qs), editor->toPlainText().toUtf8());
    deleteFolder();
    Input::key(Qt::Key_4, Qt::ControlModifier);
    Input::key(Qt::Key_5, Qt::ControlModifier);
    m_page->settle();
    QCOMPARE(title(), u"No file selected"_qs);
}

void VanishedProjectTest::everyTabAfterwards()
{
    m_page->open();
    deleteFolder();
    for (const Qt::Key key : {Qt::Key_1, Qt::Key_2, Qt::Key_3, Qt::Key_4, Qt::Key_5, Qt::Key_3}) {
        Input::key(key, Qt::ControlModifier);
        refresh();
        QVERIFY(isStillListed());
    }
    QCOMPARE(title(), u"Not a Git repository"_qs);
}

PLINTHAR_WINDOW_TEST_MAIN(VanishedProjectTest)
#include "VanishedProjectTest.moc"
