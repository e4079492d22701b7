// SPDX-License-Identifier: GPL-3.0-or-later
#include "review/CommitSheet.h"

#include "model/Background.h"
#include "support/HeldBackground.h"
#include "support/Input.h"
#include "support/ReviewPage.h"
#include "support/WindowTestMain.h"
#include "ui/BusySign.h"

#include <QAbstractButton>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QPointer>
#include <QProcess>

namespace {

QPlainTextEdit *editorOf(const QDialog *sheet)
{
    return find<QPlainTextEdit>(sheet, QStringLiteral("message"));
}

QString errorOf(const QDialog *sheet)
{
    const auto *text = find<QPlainTextEdit>(sheet, QStringLiteral("error"));
    return text->isVisible() ? text->toPlainText() : QString();
}

} // namespace

class CommitSheetTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_home = std::make_unique<PrivateHome>();
        // Other programs' files are not this one's leftovers.
        QVERIFY(QDir().mkpath(m_home->path(u"tmp"_qs)));
        qputenv("TMPDIR", m_home->path(u"tmp"_qs).toUtf8());
        m_page = std::make_unique<ReviewPage>(*m_home);
        m_repository = std::make_unique<Repository>(m_page->folder());
        m_repository->write(u"kept.txt"_qs, "kept\n");
        m_repository->commitAll();
    }

    void cleanup()
    {
        m_page.reset();
        m_repository.reset();
        qunsetenv("TMPDIR");
        m_home.reset();
    }

    void theTitleCountsStagedFiles_data()
    {
        QTest::addColumn<int>("staged");
        QTest::addColumn<QString>("title");
        QTest::newRow("one") << 1 << u"Commit 1 staged file"_qs;
        QTest::newRow("three") << 3 << u"Commit 3 staged files"_qs;
    }

    void theTitleCountsStagedFiles()
    {
        QFETCH(int, staged);
        QFETCH(QString, title);
        const QDialog *sheet = open(staged);
        QVERIFY(labelWith(sheet, title));
        QVERIFY(labelWith(sheet, u"Appended automatically: Agent-assisted: true"_qs));
        QCOMPARE(sheet->width(), 512);
        QVERIFY(editorOf(sheet)->height() >= 140);
    }

    void withoutAStagedFileThereIsNoCommit()
    {
        m_repository->write(u"new.txt"_qs, "new\n");
        m_page->open();
        QVERIFY(!m_page->enabledButtons().contains(u"Commit\u2026"_qs));
    }

    void aBlankMessageIsNoMessage()
    {
        const QDialog *sheet = open();
        const QAbstractButton *button = buttonOf(sheet, u"Commit"_qs);
        QVERIFY(!button->isEnabled());
        QVERIFY(editorOf(sheet)->hasFocus());
        Input::type(u" "_qs);
        Input::key(Qt::Key_Return);
        Input::key(Qt::Key_Return, Qt::ControlModifier);
        QVERIFY(!button->isEnabled());
        Input::type(u"x"_qs);
        QVERIFY(button->isEnabled());
        QCOMPARE(commits(), 1);
    }

    void controlAndReturnCommits()
    {
        const QPointer<QDialog> sheet = open();
        QVERIFY(buttonOf(sheet, u"Commit"_qs)->toolTip().contains(u"Ctrl+Return"_qs));
        Input::type(u"Fix bug"_qs);
        Input::key(Qt::Key_Return, Qt::ControlModifier);
        m_page->settle();
        QTRY_VERIFY(!sheet);
        QCOMPARE(lastMessage(), QByteArray("Fix bug\n\nAgent-assisted: true\n"));
        QCOMPARE(m_page->count(), u"0 changed"_qs);
        QCOMPARE(leftovers(), QStringList());
    }

    void returnPressesCommitOutsideTheMessage()
    {
        const QDialog *sheet = open();
        Input::type(u"one"_qs);
        Input::key(Qt::Key_Return); // in the message it begins a line
        Input::type(u"two"_qs);
        Input::key(Qt::Key_Tab);
        QVERIFY(!editorOf(sheet)->hasFocus());
        buttonOf(sheet, u"Commit"_qs)->setFocus();
        Input::key(Qt::Key_Return);
        m_page->settle();
        QCOMPARE(lastMessage(), QByteArray("one\ntwo\n\nAgent-assisted: true\n"));
    }

    void theMessageIsCommittedAsItIs()
    {
        const QDialog *sheet = open();
        editorOf(sheet)->setPlainText(u"\n  \u00e4\u00a0\u4e2d \U0001f600\n\nbody\n\n"_qs);
        Input::click(buttonOf(sheet, u"Commit"_qs));
        m_page->settle();
        QCOMPARE(lastMessage(),
                 u"\u00e4\u00a0\u4e2d \U0001f600\n\nbody\n\nAgent-assisted: true\n"_qs.toUtf8());
    }

    void cancelHasNoEffect()
    {
        for (const bool byKey : {false, true}) {
            const QPointer<QDialog> sheet = byKey ? m_page->openCommit() : open();
            Input::type(u"Fix bug"_qs);
            if (byKey)
                Input::key(Qt::Key_Escape);
            else
                Input::click(buttonOf(sheet, u"Cancel"_qs));
            QTRY_VERIFY(!sheet);
            QCOMPARE(commits(), 1);
        }
        // A new sheet starts over.
        QCOMPARE(editorOf(m_page->openCommit())->toPlainText(), QString());
    }

    void aFailureIsShownAndTheMessageStays()
    {
        hook("printf 'to stdout\\n'\nprintf '\\033[31mred\\033[0m & <b>bold</b>\\n' >&2\nexit 1");
        const QPointer<QDialog> sheet = open();
        Input::type(u"Fix bug"_qs);
        Input::key(Qt::Key_Return, Qt::ControlModifier);
        m_page->settle();
        QVERIFY(sheet && sheet->isVisible());
        const QString error = errorOf(sheet);
        QVERIFY2(error.contains(u"red & <b>bold</b>"_qs), qPrintable(error));
        QVERIFY(!error.contains(QChar(0x1b)));
        QCOMPARE(editorOf(sheet)->toPlainText(), u"Fix bug"_qs);
        QCOMPARE(leftovers(), QStringList());
        QCOMPARE(commits(), 1);

        // It can be selected, and the sheet is as usable as before.
        auto *text = find<QPlainTextEdit>(sheet, u"error"_qs);
        text->setFocus();
        Input::key(Qt::Key_A, Qt::ControlModifier);
        QVERIFY(text->textCursor().hasSelection());
        hook("exit 0");
        editorOf(sheet)->setFocus();
        Input::type(u"2"_qs);
        Input::key(Qt::Key_Return, Qt::ControlModifier);
        m_page->settle();
        QTRY_VERIFY(!sheet);
        QCOMPARE(commits(), 2);
    }

    void muchTextDoesNotWidenTheSheet()
    {
        hook("i=0; while [ $i -lt 2000 ]; do echo \"line $i\"; i=$((i+1)); done >&2\n"
             "printf '%05000d\\n' 0 >&2\nexit 1");
        const QPointer<QDialog> sheet = open();
        Input::type(u"Fix bug"_qs);
        Input::key(Qt::Key_Return, Qt::ControlModifier);
        m_page->settle();
        QVERIFY(sheet && sheet->isVisible());
        QCOMPARE(sheet->width(), 512);
        QVERIFY(sheet->height() < 640);
        QVERIFY(errorOf(sheet).contains(QString(5000, u'0')));
        QVERIFY(buttonOf(sheet, u"Cancel"_qs)->isVisible());
    }

    void theSheetStaysModalWhileGitWorks()
    {
        const QPointer<QDialog> sheet = open();
        Input::type(u"Fix bug"_qs);
        {
            const HeldBackground held(Background::savingPool());
            Input::key(Qt::Key_Return, Qt::ControlModifier);
            QVERIFY(!buttonOf(sheet, u"Commit"_qs)->isEnabled());
            QVERIFY(!buttonOf(sheet, u"Cancel"_qs)->isEnabled());
            QVERIFY(editorOf(sheet)->isReadOnly());
            QTRY_VERIFY(find<BusySign>(sheet)->isSpinning());
            Input::key(Qt::Key_Return, Qt::ControlModifier); // once is enough
            Input::key(Qt::Key_Escape);
            sheet->close();
            QVERIFY(sheet->isVisible() && sheet->isModal());
        }
        m_page->settle();
        QTRY_VERIFY(!sheet);
        QCOMPARE(commits(), 2);
    }

    void aHookThatLeavesAChildIsNotWaitedFor()
    {
        hook("sleep 300 &\necho $! > .git/child\nexit 0");
        const QPointer<QDialog> sheet = open();
        Input::type(u"Fix bug"_qs);
        Input::key(Qt::Key_Return, Qt::ControlModifier);
        QTRY_VERIFY_WITH_TIMEOUT(!sheet, 60'000);
        QCOMPARE(commits(), 2);
        QProcess::execute(
            u"/bin/kill"_qs,
            {QString::fromUtf8(readFile(m_repository->path(u".git/child"_qs))).trimmed()});
    }

    void closingTheWindowLetsTheCommitFinish()
    {
        // It prints after the window is gone, which would end it if nobody listened any more.
        hook("touch .git/begun\nwhile [ ! -e .git/closed ]; do sleep 0.05; done\n"
             "echo out; echo err >&2\nexit 0");
        open();
        Input::type(u"Fix bug"_qs);
        Input::key(Qt::Key_Return, Qt::ControlModifier);
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(m_repository->path(u".git/begun"_qs)), 60'000);
        m_page->window().destroy();
        m_repository->write(u".git/closed"_qs, {});
        Background::finish(std::chrono::milliseconds(1)); // as at the end of the program
        Background::finishSaving();
        QCOMPARE(commits(), 2);
        QCOMPARE(leftovers(), QStringList());
    }

private:
    /// Stages so many files and opens the sheet.
    QDialog *open(int staged = 1)
    {
        for (int i = 0; i < staged; ++i)
            m_repository->write(u"staged%1.txt"_qs.arg(i), "new\n");
        m_repository->git({u"add"_qs, u"."_qs});
        m_page->open();
        return m_page->openCommit();
    }

    void hook(const QByteArray &script) const
    {
        m_repository->write(u".git/hooks/pre-commit"_qs, "#!/bin/sh\n" + script + '\n');
        m_repository->makeExecutable(u".git/hooks/pre-commit"_qs);
    }

    int commits() const
    {
        return m_repository->git({u"rev-list"_qs, u"--count"_qs, u"HEAD"_qs}).trimmed().toInt();
    }

    QByteArray lastMessage() const
    {
        return m_repository->git({u"log"_qs, u"-1"_qs, u"--format=%B"_qs}).trimmed() + '\n';
    }

    static QStringList leftovers()
    {
        return QDir::temp().entryList({u"plinthar-msg-*"_qs}, QDir::AllEntries);
    }

    std::unique_ptr<PrivateHome> m_home;
    std::unique_ptr<ReviewPage> m_page;
    std::unique_ptr<Repository> m_repository;
};

PLINTHAR_WINDOW_TEST_MAIN(CommitSheetTest)

#include "CommitSheetTest.moc"
