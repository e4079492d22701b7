// SPDX-License-Identifier: GPL-3.0-or-later
#include "review/ReviewView.h"

#include "support/HeldBackground.h"
#include "support/Input.h"
#include "support/ReviewPage.h"
#include "support/WindowTestMain.h"
#include "ui/BusySign.h"
#include "ui/Colors.h"

#include <QAbstractButton>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QScrollBar>
#include <QSplitter>

#include <csignal>

namespace {

/// Whether a picture has points of exactly that colour.
bool shows(const QImage &image, const QColor &color)
{
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y).rgb() == color.rgb())
                return true;
        }
    }
    return false;
}

QString statusOf(const Repository &repository)
{
    return QString::fromUtf8(repository.git({u"status"_qs, u"--porcelain"_qs})).trimmed();
}

} // namespace

class ReviewViewTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_home = std::make_unique<PrivateHome>();
        m_page = std::make_unique<ReviewPage>(*m_home);
    }

    void cleanup()
    {
        m_page.reset();
        m_home.reset();
    }

    void aFolderOutsideAnyRepositoryShowsOnlyThat()
    {
        m_page->open();
        const QList<EmptyState *> states = m_page->placeholders();
        QCOMPARE(states.size(), 1);
        QCOMPARE(states[0]->icon(), u"arrow.triangle.branch"_qs);
        QCOMPARE(states[0]->title(), u"Not a Git repository"_qs);
        QCOMPARE(states[0]->message(),
                 m_page->folder() +
                     u" is not inside a Git work tree, so there is nothing to review."_qs);
        QVERIFY(!m_page->list()->isVisible());
    }

    void f5FindsARepositoryThatHasBeenMadeMeanwhile()
    {
        m_page->open();
        const Repository repository(m_page->folder());
        repository.write(u"a"_qs, "1\n");
        Input::key(Qt::Key_F5);
        m_page->settle();
        QCOMPARE(m_page->files(), QStringList(u"U a"_qs));
    }

    void aRepositoryWithoutChangesIsClean()
    {
        const Repository repository = filled();
        m_page->open();
        QCOMPARE(m_page->count(), u"0 changed"_qs);
        const QList<EmptyState *> states = m_page->placeholders();
        QCOMPARE(states.size(), 2);
        QCOMPARE(states[0]->title(), u"Working tree clean"_qs);
        QCOMPARE(states[0]->icon(), u"checkmark.circle"_qs);
        QCOMPARE(states[0]->message(), u"No changed files."_qs);
        QCOMPARE(states[1]->title(), u"No diff to show"_qs);
        QCOMPARE(states[1]->icon(), u"doc.text.magnifyingglass"_qs);
        QCOMPARE(states[1]->message(), u"Select a changed file to see its diff."_qs);
        QCOMPARE(m_page->path(), u"Select a file"_qs);
        QCOMPARE(m_page->enabledButtons(), QStringList());
    }

    void nothingIsSaidBeforeGitHasAnswered()
    {
        const Repository repository = filled();
        m_page->window().load();
        Input::clickCell(m_page->window().projects(), 0);
        {
            const HeldBackground held;
            Input::key(Qt::Key_3, Qt::ControlModifier);
            QTest::qWait(20);
            for (const EmptyState *state : m_page->placeholders())
                QVERIFY(state->title() != u"Working tree clean"_qs);
            QTRY_VERIFY(sign()->isSpinning());
        }
        m_page->settle();
        QVERIFY(!sign()->isSpinning());
        QCOMPARE(m_page->placeholders().size(), 2);
    }

    void listsFilesInGitsOrder()
    {
        const Repository repository = changed();
        m_page->open();
        QCOMPARE(m_page->count(), u"4 changed"_qs);
        QCOMPARE(m_page->files(),
                 (QStringList{u"MM both.txt"_qs, u"M changed.txt"_qs,
                              u"M staged.txt, wholly staged"_qs, u"U new.txt"_qs}));
    }

    void theFirstFileIsSelectedAndShown()
    {
        const Repository repository = changed();
        m_page->open();
        QCOMPARE(m_page->selected(), u"both.txt"_qs);
        QCOMPARE(m_page->path(), u"both.txt"_qs);
        QCOMPARE(m_page->rows().constLast(), u"Old line 1, removed: 1; New line 1, added: 3"_qs);
    }

    void theArrowKeysWalkTheFiles()
    {
        const Repository repository = changed();
        m_page->open();
        m_page->list()->setFocus();
        Input::key(Qt::Key_Down);
        m_page->settle();
        QCOMPARE(m_page->path(), u"changed.txt"_qs);
        QCOMPARE(m_page->rows().constLast(), u"Old line 1, removed: 1; New line 1, added: 2"_qs);
        Input::key(Qt::Key_End);
        m_page->settle();
        QCOMPARE(m_page->path(), u"new.txt"_qs);
        QCOMPARE(m_page->rows().constLast(), u"New line 1, added: new"_qs);
    }

    void onlyTheNewestSelectionIsShown()
    {
        const Repository repository = changed();
        m_page->open();
        m_page->list()->setFocus();
        {
            const HeldBackground held;
            for (int i = 0; i < 3; ++i) {
                Input::key(Qt::Key_Down);
                // The diff of another file than the one beside the buttons is never seen.
                QVERIFY(!m_page->diff()->isVisible());
            }
            QCOMPARE(m_page->path(), u"new.txt"_qs);
        }
        QStringList seen;
        const QObject context;
        connect(m_page->diff(), &DiffView::documentChanged, &context, [this, &seen] {
            if (m_page->diff()->document())
                seen.append(firstNewText());
        });
        m_page->settle();
        QCOMPARE(seen, QStringList(u"new"_qs));
    }

    void aDiffThatNobodyWaitsForIsEnded()
    {
        // Stands for a diff that takes long: it tells git's number and goes on until git is gone.
        const Repository repository = changed();
        repository.write(u".git/slow"_qs, "#!/bin/sh\necho $PPID > .git/new\n"
                                          "mv .git/new .git/pid\n"
                                          "while kill -0 $PPID; do sleep 0.05; done\n");
        repository.makeExecutable(u".git/slow"_qs);
        repository.git({u"config"_qs, u"diff.slow.command"_qs, u".git/slow"_qs});
        repository.write(u".git/info/attributes"_qs, "both.txt diff=slow\n");
        m_page->window().load();
        Input::clickCell(m_page->window().projects(), 0);
        Input::key(Qt::Key_3, Qt::ControlModifier);
        const QString pidFile = repository.path(u".git/pid"_qs);
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(pidFile), 60'000);
        const auto git = readFile(pidFile).trimmed().toInt();
        QVERIFY(git > 1 && ::kill(git, 0) == 0);
        m_page->list()->setFocus();
        Input::key(Qt::Key_Down);
        QTRY_VERIFY_WITH_TIMEOUT(::kill(git, 0) != 0, 60'000);
        QTRY_COMPARE(m_page->rows().value(m_page->rows().size() - 1),
                     u"Old line 1, removed: 1; New line 1, added: 2"_qs);
    }

    void aWhollyStagedFileIsBlueAndChecked()
    {
        const Repository repository = changed();
        m_page->open();
        Input::clickCell(m_page->list(), 2);
        m_page->settle();
        QCOMPARE(m_page->selected(), u"staged.txt"_qs);
        QCOMPARE(m_page->enabledButtons(), (QStringList{u"Reject"_qs, u"Commit\u2026"_qs}));
        Input::clickCell(m_page->list(), 3); // off the highlight
        m_page->settle();
        using Colors::Hue;
        QVERIFY(rowShows(2, Hue::Blue, Qt::LeftEdge));
        QVERIFY(rowShows(2, Hue::Green, Qt::RightEdge));
        QVERIFY(rowShows(1, Hue::Orange, Qt::LeftEdge));
        QVERIFY(rowShows(0, Hue::Orange, Qt::LeftEdge));
        for (const int row : {0, 1})
            QVERIFY(!rowShows(row, Hue::Green, Qt::RightEdge));
        Input::clickCell(m_page->list(), 0);
        QVERIFY(rowShows(3, Hue::Green, Qt::LeftEdge));
    }

    void aBinaryFileShowsANote()
    {
        const Repository repository = filled();
        repository.write(u"picture"_qs, QByteArray("\x89\0\1\2", 4));
        m_page->open();
        const QList<EmptyState *> states = m_page->placeholders();
        QCOMPARE(states.size(), 1);
        QCOMPARE(states[0]->title(), u"Binary file"_qs);
        QCOMPARE(states[0]->icon(), u"doc.plaintext"_qs);
        QCOMPARE(states[0]->message(), QString());
        QVERIFY(m_page->enabledButtons().contains(u"Approve"_qs));
    }

    void anEmptyFileHasNoDiff()
    {
        const Repository repository = filled();
        repository.write(u"empty"_qs, {});
        m_page->open();
        QCOMPARE(m_page->rows(), QStringList(u"No diff to show"_qs));
        QVERIFY(m_page->enabledButtons().contains(u"Approve"_qs));
    }

    void approveStagesTheSelectedFile()
    {
        const Repository repository = filled();
        repository.write(u"b.txt"_qs, "new\n");
        repository.write(u"c.txt"_qs, "new\n");
        m_page->open();
        Input::clickCell(m_page->list(), 1);
        m_page->settle();
        Input::click(m_page->button(u"Approve"_qs));
        m_page->settle();
        QCOMPARE(statusOf(repository), u"A  c.txt\n?? b.txt"_qs);
        QCOMPARE(m_page->files(), (QStringList{u"A c.txt, wholly staged"_qs, u"U b.txt"_qs}));
        QCOMPARE(m_page->selected(), u"c.txt"_qs);
        QVERIFY(!m_page->enabledButtons().contains(u"Approve"_qs));
    }

    void nothingElseIsStartedWhileGitWorks()
    {
        const Repository repository = changed();
        m_page->open();
        {
            const HeldBackground held(Background::savingPool());
            Input::click(m_page->button(u"Approve"_qs));
            QCOMPARE(m_page->enabledButtons(), QStringList());
            QVERIFY(!find<QAbstractButton>(m_page->window().detail(), u"refresh"_qs)->isEnabled());
            QVERIFY(!sign()->isSpinning());
            QTRY_VERIFY(sign()->isSpinning());
            m_page->list()->setFocus();
            Input::key(Qt::Key_Delete);
            QVERIFY(!QApplication::activeModalWidget());
            Input::key(Qt::Key_Down); // looking is allowed
            QCOMPARE(m_page->path(), u"changed.txt"_qs);
        }
        m_page->settle();
        QCOMPARE(m_page->files().constFirst(), u"M both.txt, wholly staged"_qs);
        QCOMPARE(m_page->selected(), u"changed.txt"_qs);
        QVERIFY(!sign()->isSpinning());
        QCOMPARE(m_page->enabledButtons().size(), 3);
    }

    void rejectAsksFirst()
    {
        const Repository repository = changed();
        const RepositoryState before = repository.state();
        m_page->open();
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Escape}) {
            QMessageBox *box = m_page->askReject();
            QCOMPARE(box->text(), u"Reject changes to both.txt?"_qs);
            QCOMPARE(
                box->informativeText(),
                u"Staged and unstaged changes will be restored from HEAD. This cannot be undone."_qs);
            QCOMPARE(box->defaultButton()->text(), u"Cancel"_qs);
            QVERIFY(box->defaultButton()->hasFocus());
            Input::key(key);
            QTRY_VERIFY(!QApplication::activeModalWidget());
            m_page->settle();
            QCOMPARE(repository.state().differenceFrom(before), QString());
        }
    }

    void deleteOpensTheQuestionAndNothingElse()
    {
        const Repository repository = changed();
        const RepositoryState before = repository.state();
        m_page->open();
        for (QWidget *place :
             {static_cast<QWidget *>(m_page->list()), static_cast<QWidget *>(m_page->diff())}) {
            place->setFocus();
            Input::key(Qt::Key_Delete);
            auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            QVERIFY(box && QTest::qWaitForWindowActive(box));
            Input::key(Qt::Key_Escape);
            QTRY_VERIFY(!QApplication::activeModalWidget());
            // The platform of the tests leaves no window active.
            m_page->window().view().activateWindow();
            QVERIFY(QTest::qWaitForWindowActive(&m_page->window().view()));
        }
        m_page->window().projects()->setFocus();
        Input::key(Qt::Key_Delete);
        QVERIFY(!QApplication::activeModalWidget());
        QCOMPARE(repository.state().differenceFrom(before), QString());
    }

    void discardingRestoresTheFile()
    {
        const Repository repository = changed();
        m_page->open();
        Input::click(buttonOf(m_page->askReject(), u"Discard Changes"_qs));
        m_page->settle();
        QCOMPARE(readFile(repository.path(u"both.txt"_qs)), QByteArray("1\n"));
        // The first of those that remain.
        QCOMPARE(m_page->selected(), u"changed.txt"_qs);
        QCOMPARE(m_page->rows().constLast(), u"Old line 1, removed: 1; New line 1, added: 2"_qs);
    }

    void discardingDeletesAnUntrackedFile()
    {
        const Repository repository = filled();
        repository.write(u"new.txt"_qs, "new\n");
        m_page->open();
        QMessageBox *box = m_page->askReject();
        QCOMPARE(box->informativeText(), u"This untracked file will be deleted."_qs);
        Input::click(buttonOf(box, u"Discard Changes"_qs));
        m_page->settle();
        QVERIFY(!QFile::exists(repository.path(u"new.txt"_qs)));
        QCOMPARE(m_page->count(), u"0 changed"_qs);
        QCOMPARE(m_page->path(), u"Select a file"_qs);
    }

    void namesAreNoMarkup()
    {
        const Repository repository = filled();
        repository.write(u"a&b <b>x</b>.txt"_qs, "new\n");
        m_page->open();
        QCOMPARE(m_page->path(), u"a&b <b>x</b>.txt"_qs);
        QMessageBox *box = m_page->askReject();
        QCOMPARE(box->textFormat(), Qt::PlainText);
        QCOMPARE(box->text(), u"Reject changes to a&b <b>x</b>.txt?"_qs);
        Input::key(Qt::Key_Escape);
    }

    void namesCannotHideWhatTheyAre()
    {
        const Repository repository = filled();
        repository.write(u"line\nfeed"_qs, "new\n");
        m_page->open();
        QCOMPARE(m_page->path(), u"line\nfeed"_qs); // the label names what it paints
        QCOMPARE(m_page->files(), QStringList(u"U line[LF]feed"_qs));
        QCOMPARE(m_page->rows().constLast(), u"New line 1, added: new"_qs);
    }

    void aFailureShowsWhatGitSays()
    {
        const Repository repository = changed();
        m_page->open();
        repository.write(u".git/index.lock"_qs, {});
        Input::click(m_page->button(u"Approve"_qs));
        m_page->settle();
        QVERIFY2(m_page->error().contains(u"index.lock"_qs), qPrintable(m_page->error()));
        QCOMPARE(m_page->files().size(), 4);
        Input::key(Qt::Key_F5); // which has no part in it
        m_page->settle();
        QVERIFY(!m_page->error().isEmpty());
        repository.remove(u".git/index.lock"_qs);
        Input::click(m_page->button(u"Approve"_qs));
        m_page->settle();
        QCOMPARE(m_page->error(), QString());
    }

    void theSelectionSurvivesARefresh()
    {
        const Repository repository = changed();
        m_page->open();
        Input::clickCell(m_page->list(), 1);
        m_page->settle();
        repository.write(u"another.txt"_qs, "1\n");
        repository.write(u"changed.txt"_qs, "later\n");
        Input::click(find<QAbstractButton>(m_page->window().detail(), u"refresh"_qs));
        m_page->settle();
        QCOMPARE(m_page->count(), u"5 changed"_qs);
        QCOMPARE(m_page->selected(), u"changed.txt"_qs);
        QCOMPARE(m_page->rows().constLast(),
                 u"Old line 1, removed: 1; New line 1, added: later"_qs);
    }

    void aRefreshLeavesTheDiffWhereItWas()
    {
        const Repository repository = filled();
        repository.write(u"long.txt"_qs, QByteArray("line\n").repeated(1000));
        m_page->open();
        const SharedDocument before = m_page->diff()->document();
        m_page->diff()->verticalScrollBar()->setValue(500);
        Input::key(Qt::Key_F5);
        m_page->settle();
        QCOMPARE(m_page->diff()->document(), before);
        repository.write(u"long.txt"_qs, QByteArray("line\n").repeated(2000));
        Input::key(Qt::Key_F5);
        m_page->settle();
        QCOMPARE(m_page->diff()->document()->rowCount(), 2001);
        QCOMPARE(m_page->diff()->verticalScrollBar()->value(), 500);
    }

    void nothingIsLookedForWhileHidden()
    {
        const Repository repository = changed();
        m_page->open();
        QListView *list = m_page->list();
        Input::key(Qt::Key_1, Qt::ControlModifier);
        repository.write(u"another.txt"_qs, "1\n");
        Input::key(Qt::Key_F5); // reloads the sessions, which are shown
        m_page->settle();
        QTest::qWait(50);
        QCOMPARE(list->model()->rowCount(), 4);
        Input::key(Qt::Key_3, Qt::ControlModifier);
        m_page->settle();
        QCOMPARE(m_page->count(), u"5 changed"_qs);
    }

    void theListWalksTheDiffWithPagesAndHunks()
    {
        const Repository repository = filled();
        QByteArray lines;
        for (int i = 0; i < 300; ++i)
            lines += QByteArray::number(i) + '\n';
        repository.write(u"long.txt"_qs, lines);
        repository.commitAll();
        repository.write(u"long.txt"_qs, QByteArray(lines)
                                             .replace("\n10\n", "\nx\n")
                                             .replace("\n150\n", "\ny\n")
                                             .replace("\n290\n", "\nz\n"));
        m_page->open();
        m_page->window().view().resize(1000, 640);
        m_page->list()->setFocus();
        const QScrollBar *bar = m_page->diff()->verticalScrollBar();
        QCOMPARE(bar->value(), 0);
        const QList<qsizetype> hunks = m_page->diff()->document()->hunkRows();
        QCOMPARE(hunks.size(), 3);
        const auto hunkOfCaret = [this] {
            const DiffView *diff = m_page->diff();
            return diff->document()->hunksBefore(diff->selection().caret.row) - 1;
        };
        QCOMPARE(hunkOfCaret(), 0);
        Input::key(Qt::Key_N);
        QCOMPARE(hunkOfCaret(), 1);
        Input::key(Qt::Key_N);
        Input::key(Qt::Key_N);
        QCOMPARE(hunkOfCaret(), 2);
        Input::key(Qt::Key_P);
        QCOMPARE(hunkOfCaret(), 1);
        QCOMPARE(m_page->selected(), u"long.txt"_qs);
        QVERIFY(m_page->list()->hasFocus());
    }

    void hasItsWidths()
    {
        const Repository repository = changed();
        m_page->open();
        const auto *splitter = qobject_cast<QSplitter *>(
            m_page->list()->parentWidget()->parentWidget()->parentWidget());
        QVERIFY(splitter);
        QCOMPARE(splitter->widget(0)->minimumWidth(), 240);
        QCOMPARE(splitter->widget(0)->maximumWidth(), 400);
        QCOMPARE(splitter->widget(0)->width(), 280);
        QCOMPARE(splitter->widget(1)->minimumWidth(), 400);
        QVERIFY(splitter->width() >= 240 + 400);
    }

    void tooltipsTellTheKeys()
    {
        const Repository repository = changed();
        m_page->open();
        QVERIFY(find<QAbstractButton>(m_page->window().detail(), u"refresh"_qs)
                    ->toolTip()
                    .contains(u"F5"_qs));
        QVERIFY(m_page->button(u"Reject"_qs)->toolTip().contains(u"Del"_qs));
        const QString tip = Input::toolTipAt(m_page->diff()->viewport(), {5, 5});
        for (const QString &key : {u"(N)"_qs, u"(P)"_qs, u"F6"_qs})
            QVERIFY(tip.contains(key));
    }

    void aProjectThatGoesAwayLeavesNothingBehind()
    {
        const Repository repository = changed();
        m_page->open();
        {
            const HeldBackground held(Background::savingPool());
            Input::click(m_page->button(u"Approve"_qs));
            m_page->window().destroy();
        }
        Background::savingPool().waitForDone();
        QTest::qWait(1);
        // What had been asked for has been done.
        QVERIFY(statusOf(repository).startsWith(u"M  both.txt"_qs));
    }

private:
    /// A repository with one commit.
    Repository filled() const
    {
        const Repository repository(m_page->folder());
        repository.write(u"kept.txt"_qs, "kept\n");
        repository.commitAll();
        return repository;
    }

    /// The same with a file for every badge.
    Repository changed() const
    {
        const Repository repository = filled();
        for (const QString &name : {u"both.txt"_qs, u"changed.txt"_qs, u"staged.txt"_qs})
            repository.write(name, "1\n");
        repository.commitAll();
        repository.write(u"both.txt"_qs, "2\n");
        repository.write(u"staged.txt"_qs, "2\n");
        repository.git({u"add"_qs, u"both.txt"_qs, u"staged.txt"_qs});
        repository.write(u"both.txt"_qs, "3\n");
        repository.write(u"changed.txt"_qs, "2\n");
        repository.write(u"new.txt"_qs, "new\n");
        return repository;
    }

    QString firstNewText() const
    {
        return m_page->diff()->document()->cell(1, NewSide)->text.toString();
    }

    BusySign *sign() const { return find<BusySign>(m_page->window().detail(), u"busySign"_qs); }

    /// Whether a colour is seen in the badge or the check of a row.
    bool rowShows(int row, Colors::Hue hue, Qt::Edge edge) const
    {
        QListView *list = m_page->list();
        QRect place = list->visualRect(list->model()->index(row, 0));
        if (edge == Qt::LeftEdge)
            place.setWidth(32);
        else
            place.setLeft(place.right() - 24);
        return shows(list->viewport()->grab(place).toImage(), Colors::hue(hue, list->palette()));
    }

    std::unique_ptr<PrivateHome> m_home;
    std::unique_ptr<ReviewPage> m_page;
};

PLINTHAR_WINDOW_TEST_MAIN(ReviewViewTest)

#include "ReviewViewTest.moc"
