// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ContentView.h"
#include "app/ProjectDetail.h"
#include "app/Sidebar.h"
#include "model/PriceStore.h"
#include "support/HeldBackground.h"
#include "support/Input.h"
#include "support/Sessions.h"
#include "support/ToolTipText.h"
#include "support/Window.h"
#include "support/WindowTestMain.h"

#include <QAccessible>
#include <QDesktopServices>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QSignalSpy>
#include <QSplitter>
#include <QToolButton>

namespace {

/// Stands in for the desktop's file manager and notes what it is told to open.
class FileManager : public QObject {
    Q_OBJECT
public:
    FileManager() { QDesktopServices::setUrlHandler(u"file"_qs, this, "open"); }
    ~FileManager() override { QDesktopServices::unsetUrlHandler(u"file"_qs); }

    QStringList opened;

public Q_SLOTS:
    void open(const QUrl &url) { opened.append(url.toLocalFile()); }
};

/// Counts how often a widget and everything in it is painted.
class PaintCounter : public QObject {
public:
    explicit PaintCounter(QWidget *widget)
    {
        widget->installEventFilter(this);
        for (QWidget *inside : widget->findChildren<QWidget *>())
            inside->installEventFilter(this);
    }

    int count = 0;

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        count += event->type() == QEvent::Paint;
        return false;
    }
};

QString iconOf(const QModelIndex &index)
{
    return index.data(Qt::DecorationRole).value<QIcon>().name();
}

} // namespace

class MainWindowTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_home = std::make_unique<PrivateHome>();
        m_window = std::make_unique<Window>(*m_home);
    }

    void cleanup()
    {
        m_window.reset();
        m_home.reset();
    }

    // The list of projects

    void listsDiscoveredAndAddedProjectsByName()
    {
        prepare({u"/w/beta"_qs, u"/w/Alpha"_qs}, {u"gamma"_qs});
        m_window->load();
        QCOMPARE(m_window->projectNames(), (QStringList{u"Alpha"_qs, u"beta"_qs, u"gamma"_qs}));
        const QAbstractItemModel *model = m_window->projects()->model();
        QCOMPARE(iconOf(model->index(0, 0)), u"folder"_qs);
        QCOMPARE(iconOf(model->index(1, 0)), u"folder"_qs);
        QCOMPARE(iconOf(model->index(2, 0)), u"folder.badge.plus"_qs);
        QVERIFY(labelWith(find<Sidebar>(&m_window->view()), u"Projects"_qs));
    }

    void tellsAndShowsTheWholePathOfARow()
    {
        prepare({u"/w/Alpha"_qs});
        m_window->load();
        const QModelIndex row = m_window->projects()->model()->index(0, 0);
        QCOMPARE(row.data(Qt::AccessibleTextRole).toString(), u"Alpha, /w/Alpha"_qs);
        QVERIFY(Input::toolTipAt(m_window->projects()->viewport(), QPoint(40, 10))
                    .contains(u"/w/Alpha"));
    }

    void aRowHasTwoLines()
    {
        prepare({u"/w/Alpha"_qs});
        m_window->load();
        const QListView *list = m_window->projects();
        const int name = list->fontMetrics().height();
        QVERIFY(list->visualRect(list->model()->index(0, 0)).height() > 1.8 * name);
        QCOMPARE(list->visualRect(list->model()->index(0, 0)).width(), list->viewport()->width());
    }

    /// Paths that differ only where they are cut off look the same.
    void aLongPathInTheSidebarKeepsItsEnd()
    {
        const QString middle = u"/middle"_qs.repeated(20);
        prepare({u"/begin"_qs + middle + u"/a/same"_qs, u"/other"_qs + middle + u"/a/same"_qs,
                 u"/begin"_qs + middle + u"/b/same"_qs});
        m_window->load();
        QCOMPARE(m_window->projectNames(), (QStringList{u"same"_qs, u"same"_qs, u"same"_qs}));
        m_window->store().setSelection(u"nothing"_qs); // a selected row looks different
        find<QToolButton>(&m_window->view(), u"addProject"_qs)->setFocus();
        const QImage a = pictureOfRow(u"/begin"_qs + middle + u"/a/same"_qs);
        QCOMPARE(pictureOfRow(u"/other"_qs + middle + u"/a/same"_qs), a);
        QVERIFY(pictureOfRow(u"/begin"_qs + middle + u"/b/same"_qs) != a);
    }

    void aLongPathInTheHeaderKeepsItsEnd()
    {
        const QString middle = u"/middle"_qs.repeated(25);
        prepare({u"/begin"_qs + middle + u"/a/same"_qs, u"/other"_qs + middle + u"/a/same"_qs,
                 u"/begin"_qs + middle + u"/b/same"_qs});
        m_window->load();
        const int width = m_window->view().width();
        const QImage a = pictureOfHeader(u"/begin"_qs + middle + u"/a/same"_qs);
        QCOMPARE(pictureOfHeader(u"/other"_qs + middle + u"/a/same"_qs), a);
        QVERIFY(pictureOfHeader(u"/begin"_qs + middle + u"/b/same"_qs) != a);
        QCOMPARE(m_window->view().width(), width);
    }

    // Selection

    void selectsTheFirstProjectAfterLoading()
    {
        prepare({u"/w/beta"_qs, u"/w/Alpha"_qs});
        m_window->load();
        QCOMPARE(m_window->store().selection(), u"/w/Alpha"_qs);
        QCOMPARE(m_window->selectedName(), u"Alpha"_qs);
    }

    void aClickSelects()
    {
        prepare({u"/w/Alpha"_qs, u"/w/beta"_qs});
        m_window->load();
        Input::clickCell(m_window->projects(), 1);
        QCOMPARE(m_window->store().selection(), u"/w/beta"_qs);
        QCOMPARE(m_window->view().windowTitle(), u"beta"_qs);
    }

    void theListFollowsTheStore()
    {
        prepare({u"/w/Alpha"_qs, u"/w/beta"_qs});
        m_window->load();
        m_window->store().setSelection(u"/w/beta"_qs);
        QCOMPARE(m_window->selectedName(), u"beta"_qs);
        m_window->store().setSelection(std::nullopt);
        QCOMPARE(m_window->selectedName(), QString());
        QCOMPARE(m_window->store().selection(), std::optional<QString>());
    }

    void noClickLeavesNothingSelected()
    {
        prepare({u"/w/Alpha"_qs, u"/w/beta"_qs});
        m_window->load();
        Input::clickCell(m_window->projects(), 0, 0, {.modifiers = Qt::ControlModifier});
        QTRY_COMPARE(m_window->selectedName(), u"Alpha"_qs);
        const QRect viewport = m_window->projects()->viewport()->rect();
        Input::clickAt(m_window->projects()->viewport(), viewport.bottomRight() - QPoint(20, 20));
        QTRY_COMPARE(m_window->selectedName(), u"Alpha"_qs);
        QCOMPARE(m_window->store().selection(), u"/w/Alpha"_qs);
        QCOMPARE(m_window->view().windowTitle(), u"Alpha"_qs);
    }

    void theArrowKeysWalk()
    {
        prepare({u"/w/a"_qs, u"/w/b"_qs, u"/w/c"_qs});
        m_window->load();
        m_window->projects()->setFocus();
        Input::key(Qt::Key_Down);
        QCOMPARE(m_window->store().selection(), u"/w/b"_qs);
        Input::key(Qt::Key_End);
        QCOMPARE(m_window->store().selection(), u"/w/c"_qs);
        Input::key(Qt::Key_Up);
        QCOMPARE(m_window->store().selection(), u"/w/b"_qs);
        QVERIFY(m_window->projects()->hasFocus());
    }

    void theTabKeyReachesEverythingAndEveryStopHasAName()
    {
        prepare({u"/w/a"_qs});
        m_window->load();
        QSet<QString> reached;
        for (int i = 0; i < 20; ++i) {
            const QAccessibleInterface *stop =
                QAccessible::queryAccessibleInterface(QApplication::focusWidget());
            QVERIFY2(!stop->text(QAccessible::Name).isEmpty(),
                     QApplication::focusWidget()->metaObject()->className());
            reached.insert(stop->text(QAccessible::Name));
            Input::key(Qt::Key_Tab);
        }
        QCOMPARE(reached, (QSet<QString>{u"Projects"_qs, u"Add Project"_qs, u"/w/a"_qs,
                                         u"Sessions"_qs, u"Price Table\u2026"_qs, u"Reload"_qs}));
    }

    void aReloadKeepsTheSelection()
    {
        prepare({u"/w/b"_qs, u"/w/d"_qs});
        m_window->load();
        Input::clickCell(m_window->projects(), 1);
        prepare({u"/w/a"_qs, u"/w/c"_qs});
        m_window->reload();
        QCOMPARE(m_window->projectNames(), (QStringList{u"a"_qs, u"b"_qs, u"c"_qs, u"d"_qs}));
        QCOMPARE(m_window->store().selection(), u"/w/d"_qs);
        QCOMPARE(m_window->selectedName(), u"d"_qs);
    }

    void aVanishedSelectionGivesWayToTheFirst()
    {
        prepare({u"/w/a"_qs, u"/w/b"_qs});
        m_window->load();
        Input::clickCell(m_window->projects(), 1);
        QDir(m_home->claude(u"-w-b"_qs)).removeRecursively();
        m_window->reload();
        QCOMPARE(m_window->store().selection(), u"/w/a"_qs);
        QCOMPARE(m_window->selectedName(), u"a"_qs);
        QCOMPARE(m_window->view().windowTitle(), u"a"_qs);
    }

    // Context menu

    void theMenuOfADiscoveredProject()
    {
        prepare({u"/w/a"_qs});
        m_window->load();
        QCOMPARE(entriesOf(m_window->menuOf(0)), QStringList{u"Reveal in Finder"_qs});
    }

    void theMenuOfAnAddedProject()
    {
        prepare({}, {u"a"_qs});
        m_window->load();
        QCOMPARE(entriesOf(m_window->menuOf(0)),
                 (QStringList{u"Remove from list"_qs, u"Reveal in Finder"_qs}));
    }

    void anAddedProjectWithLogsCountsAsAdded()
    {
        prepare({m_home->path(u"code/a"_qs)}, {u"a"_qs});
        m_window->load();
        QCOMPARE(m_window->projectNames(), QStringList{u"a"_qs});
        QCOMPARE(entriesOf(m_window->menuOf(0)).constFirst(), u"Remove from list"_qs);
    }

    void thereIsNoMenuBesideTheRows()
    {
        prepare({u"/w/a"_qs});
        m_window->load();
        QWidget *viewport = m_window->projects()->viewport();
        Input::clickAt(viewport, viewport->rect().bottomRight() - QPoint(20, 20),
                       {.button = Qt::RightButton});
        QVERIFY(!QApplication::activePopupWidget());
    }

    void theMenuKeyOpensTheMenuOfTheCurrentRow()
    {
        prepare({u"/w/a"_qs}, {u"b"_qs});
        m_window->load();
        m_window->projects()->setFocus();
        Input::key(Qt::Key_Down);
        Input::menuKey();
        QMenu *menu = openMenu();
        QCOMPARE(entriesOf(menu), (QStringList{u"Remove from list"_qs, u"Reveal in Finder"_qs}));
        const QListView *list = m_window->projects();
        const QRect row = list->visualRect(list->model()->index(1, 0));
        QVERIFY(row.contains(list->viewport()->mapFromGlobal(menu->pos())));
    }

    void escapeClosesTheMenuAndChangesNothing()
    {
        prepare({}, {u"a"_qs});
        m_window->load();
        m_window->menuOf(0);
        Input::key(Qt::Key_Escape);
        QVERIFY(!QApplication::activePopupWidget());
        QCOMPARE(m_window->projectNames(), QStringList{u"a"_qs});
        QCOMPARE(m_window->store().added().size(), 1);
    }

    void aLongReloadIsToldAtTheFoot()
    {
        prepare({u"/w/a"_qs}, {});
        m_window->load();
        auto *foot = find<QWidget>(&m_window->view(), u"reloadFoot"_qs);
        QVERIFY(!foot->isVisible());
        const QRect before = m_window->projects()->geometry();
        {
            const HeldBackground held;
            m_window->store().reload();
            QVERIFY(!foot->isVisible()); // which is not worth telling yet
            QTRY_VERIFY(foot->isVisible());
            QCOMPARE(find<QLabel>(foot)->text(), u"Looking for logs\u2026"_qs);
            QCOMPARE(m_window->projects()->geometry(), before); // nothing moves
            QCOMPARE(foot->parentWidget()->rect().bottom(), foot->geometry().bottom());
            QCOMPARE(foot->width(), foot->parentWidget()->width());
            m_window->view().resize(1200, 900);
            QTRY_COMPARE(foot->parentWidget()->rect().bottom(), foot->geometry().bottom());
        }
        QTRY_VERIFY(!m_window->store().loading());
        QVERIFY(!foot->isVisible());
        QCOMPARE(m_window->store().progress()->logsRead.load(), 1);
    }

    void removesTheSelectedProject()
    {
        prepare({u"/w/z"_qs}, {u"a"_qs});
        m_window->load();
        QCOMPARE(m_window->selectedName(), u"a"_qs);
        QSignalSpy finished(&m_window->store(), &Store::reloadFinished);
        const HeldBackground held;
        chooseEntry(m_window->menuOf(0), u"Remove from list"_qs);
        // Until the reload that follows has finished, nothing is selected.
        QCOMPARE(m_window->store().selection(), std::optional<QString>());
        QVERIFY(labelWith(&m_window->view(), u"Select a project"_qs));
        QVERIFY(m_window->view().findChildren<ProjectDetail *>().isEmpty() ||
                !m_window->view().findChild<ProjectDetail *>()->isVisible());
        QCOMPARE(readFile(m_home->support(u"projects.json"_qs)), QByteArray("[]"));
        QVERIFY(finished.isEmpty());
    }

    void afterRemovingTheSelectedProjectTheFirstIsSelected()
    {
        prepare({u"/w/z"_qs}, {u"a"_qs});
        m_window->load();
        chooseEntry(m_window->menuOf(0), u"Remove from list"_qs);
        QTRY_COMPARE(m_window->projectNames(), QStringList{u"z"_qs});
        QTRY_COMPARE(m_window->selectedName(), u"z"_qs);
        QVERIFY(QFile::exists(m_home->path(u"code/a"_qs)));
    }

    void removingTheOnlyProjectLeavesThePlaceholders()
    {
        prepare({}, {u"a"_qs});
        m_window->load();
        chooseEntry(m_window->menuOf(0), u"Remove from list"_qs);
        QTRY_VERIFY(m_window->overlay()->isVisible());
        QVERIFY(labelWith(&m_window->view(), u"Select a project"_qs));
        QCOMPARE(m_window->view().windowTitle(), u"Plinthar"_qs);
    }

    void removingAnotherProjectKeepsTheSelection()
    {
        prepare({u"/w/z"_qs}, {u"a"_qs, u"b"_qs});
        m_window->load();
        Input::clickCell(m_window->projects(), 2);
        // A right click selects too, so the selection is set back before the entry is chosen.
        QMenu *menu = m_window->menuOf(0);
        m_window->store().setSelection(u"/w/z"_qs);
        chooseEntry(menu, u"Remove from list"_qs);
        QTRY_COMPARE(m_window->projectNames(), (QStringList{u"b"_qs, u"z"_qs}));
        QCOMPARE(m_window->store().selection(), u"/w/z"_qs);
        QCOMPARE(m_window->selectedName(), u"z"_qs);
    }

    void removesByKey()
    {
        prepare({u"/w/z"_qs}, {u"a"_qs});
        m_window->load();
        m_window->projects()->setFocus();
        Input::menuKey();
        openMenu();
        Input::key(Qt::Key_Down);
        Input::key(Qt::Key_Return);
        QTRY_COMPARE(m_window->projectNames(), QStringList{u"z"_qs});
    }

    void aRemovedProjectWithLogsIsListedAgain()
    {
        prepare({m_home->path(u"code/a"_qs)}, {u"a"_qs});
        m_window->load();
        QSignalSpy finished(&m_window->store(), &Store::reloadFinished);
        chooseEntry(m_window->menuOf(0), u"Remove from list"_qs);
        QTRY_COMPARE(finished.size(), 1);
        QCOMPARE(m_window->projectNames(), QStringList{u"a"_qs});
        QCOMPARE(iconOf(m_window->projects()->model()->index(0, 0)), u"folder"_qs);
        QCOMPARE(entriesOf(m_window->menuOf(0)), QStringList{u"Reveal in Finder"_qs});
    }

    void revealsInTheFileManager()
    {
        prepare({}, {u"one two & [x]"_qs});
        FileManager manager;
        m_window->load();
        chooseEntry(m_window->menuOf(0), u"Reveal in Finder"_qs);
        QTRY_COMPARE(manager.opened, QStringList{m_home->path(u"code"_qs)});
    }

    // Adding a folder

    void addsTheChosenFolder()
    {
        QDir().mkpath(m_home->path(u"mine/new one"_qs));
        m_window->load();
        auto *button = find<QToolButton>(&m_window->view(), u"addProject"_qs);
        QCOMPARE(button->text(), u"Add Project"_qs);
        QCOMPARE(button->icon().name(), u"plus"_qs);
        QVERIFY(button->toolTip().startsWith(u"Add a project folder"));
        Input::click(button);
        QFileDialog *chooser = openDialog<QFileDialog>();
        QCOMPARE(chooser->fileMode(), QFileDialog::Directory);
        buttonOf(chooser, u"Add Project"_qs);
        enterFolder(chooser, m_home->path(u"mine/new one"_qs));
        Input::key(Qt::Key_Return);
        QTRY_COMPARE(m_window->projectNames(), QStringList{u"new one"_qs});
        QCOMPARE(m_window->store().selection(), m_home->path(u"mine/new one"_qs));
        QCOMPARE(PriceStore::loadAdded(), QStringList{m_home->path(u"mine/new one"_qs)});
        QTRY_VERIFY(!QApplication::activeModalWidget());
    }

    void addsByTheButtonOfTheChooser()
    {
        QDir().mkpath(m_home->path(u"mine/a"_qs));
        m_window->load();
        Input::key(Qt::Key_O, Qt::ControlModifier);
        QFileDialog *chooser = openDialog<QFileDialog>();
        enterFolder(chooser, m_home->path(u"mine/a"_qs));
        Input::click(buttonOf(chooser, u"Add Project"_qs));
        QTRY_COMPARE(m_window->selectedName(), u"a"_qs);
    }

    void aCancelledChooserChangesNothing()
    {
        prepare({u"/w/a"_qs});
        m_window->load();
        QSignalSpy loading(&m_window->store(), &Store::loadingChanged);
        for (const bool byKey : {true, false}) {
            Input::key(Qt::Key_O, Qt::ControlModifier);
            QFileDialog *chooser = openDialog<QFileDialog>();
            enterFolder(chooser, m_home->path());
            if (byKey)
                Input::key(Qt::Key_Escape);
            else
                Input::click(find<QDialogButtonBox>(chooser)->button(QDialogButtonBox::Cancel));
            QTRY_VERIFY(!QApplication::activeModalWidget());
            m_window->show();
        }
        QCOMPARE(loading.size(), 0);
        QCOMPARE(m_window->projectNames(), QStringList{u"a"_qs});
        QVERIFY(!QFile::exists(m_home->support(u"projects.json"_qs)));
    }

    void addingALoadedFolderAgainSelectsIt()
    {
        prepare({u"/w/z"_qs}, {u"a"_qs});
        m_window->load();
        Input::clickCell(m_window->projects(), 1);
        Input::key(Qt::Key_O, Qt::ControlModifier);
        enterFolder(openDialog<QFileDialog>(), m_home->path(u"code/a"_qs));
        Input::key(Qt::Key_Return);
        QTRY_COMPARE(m_window->selectedName(), u"a"_qs);
        QCOMPARE(m_window->store().added().size(), 1);
    }

    // Placeholders

    void withoutProjectsTheOverlayShowsAfterLoading()
    {
        m_window->load();
        EmptyState *overlay = m_window->overlay();
        QVERIFY(overlay->isVisible());
        QCOMPARE(overlay->icon(), u"folder.badge.questionmark"_qs);
        QCOMPARE(overlay->title(), u"No projects yet"_qs);
        QCOMPARE(overlay->message(),
                 u"Click + to choose a folder, or run Claude Code to have projects appear from "
                 "~/.claude/projects."_qs);
        const auto *placeholder = qobject_cast<EmptyState *>(m_window->detail());
        QVERIFY(placeholder);
        QCOMPARE(placeholder->icon(), u"rectangle.stack"_qs);
        QCOMPARE(placeholder->title(), u"Select a project"_qs);
        QCOMPARE(placeholder->message(), u"Pick or add a project in the sidebar."_qs);
        QCOMPARE(m_window->view().windowTitle(), u"Plinthar"_qs);
    }

    void whileLoadingAnEmptyListShowsNothingOverIt()
    {
        m_window->load();
        const HeldBackground held;
        m_window->store().reload();
        QVERIFY(!m_window->overlay()->isVisible());
        QVERIFY(m_window->projects()->isVisible());
    }

    void theOverlayDoesNotFlashAtStart()
    {
        prepare({u"/w/a"_qs});
        const PaintCounter paintings(m_window->overlay());
        m_window->load();
        QCOMPARE(paintings.count, 0);
    }

    void withProjectsThereIsNoOverlay()
    {
        prepare({u"/w/a"_qs});
        m_window->load();
        QVERIFY(!m_window->overlay()->isVisible());
    }

    // The window

    void titleAndSubtitleAreNameAndPath()
    {
        prepare({u"/Users/me/src/app"_qs});
        m_window->load();
        QCOMPARE(m_window->view().windowTitle(), u"app"_qs);
        QVERIFY(labelWith(m_window->detail(), u"app"_qs));
        QVERIFY(labelWith(m_window->detail(), u"/Users/me/src/app"_qs));
    }

    void aNameIsNeverTakenForMarkup_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("mark of a changed document") << u"a[*]b"_qs;
        QTest::newRow("two marks") << u"[*][*]"_qs;
        QTest::newRow("mnemonic") << u"this & that &c"_qs;
        QTest::newRow("tags") << u"a <b>bold<b> <img src=x>"_qs;
        QTest::newRow("entity") << u"a &amp; b"_qs;
    }

    void aNameIsNeverTakenForMarkup()
    {
        QFETCH(QString, name);
        prepare({u"/w/"_qs + name});
        m_window->load();
        QCOMPARE(m_window->projectNames(), QStringList{name});
        QCOMPARE(m_window->view().windowHandle()->title(), name);
        const QLabel *title = labelWith(m_window->detail(), name);
        QVERIFY(title);
        QCOMPARE(title->textFormat(), Qt::PlainText);
        const QString toolTip = Input::toolTipAt(m_window->projects()->viewport(), QPoint(40, 10));
        QCOMPARE(shownText(toolTip), u"/w/"_qs + name);
    }

    void isNeverSmallerThan1000By640()
    {
        prepare({u"/w/a"_qs});
        m_window->load();
        m_window->view().resize(10, 10);
        QCOMPARE(m_window->view().size(), QSize(1000, 640));
        QCOMPARE(m_window->view().centralWidget()->size(), QSize(1000, 640));
        m_window->view().resize(3000, 2000);
        QCOMPARE(m_window->view().size(), QSize(3000, 2000));
    }

    void theSidebarIs250WideAndAtLeast200()
    {
        prepare({u"/w/a"_qs});
        m_window->load();
        auto *sidebar = find<Sidebar>(&m_window->view());
        QCOMPARE(sidebar->width(), 250);
        dragHandleBy(-200);
        QCOMPARE(sidebar->width(), 200);
        dragHandleBy(90);
        const int wider = sidebar->width();
        QVERIFY(qAbs(wider - 290) <= 3);
        m_window->view().resize(1400, 700);
        QCOMPARE(sidebar->width(), wider);
    }

    void loadsOnceHoweverOftenItIsShown()
    {
        QSignalSpy finished(&m_window->store(), &Store::reloadFinished);
        m_window->load();
        m_window->view().hide();
        m_window->show();
        m_window->view().showMinimized();
        m_window->view().showNormal();
        QTest::qWait(100);
        QCOMPARE(finished.size(), 1);
    }

    void loadsOnceWhenHiddenBeforeItIsSeen()
    {
        QSignalSpy finished(&m_window->store(), &Store::reloadFinished);
        m_window->view().show();
        m_window->view().hide();
        m_window->load();
        QTest::qWait(100);
        QCOMPARE(finished.size(), 1);
    }

    void controlQCloses()
    {
        m_window->load();
        Input::key(Qt::Key_Q, Qt::ControlModifier);
        QVERIFY(!m_window->view().isVisible());
    }

    void controlQClosesWithAProjectToo()
    {
        prepare({u"/w/a"_qs});
        m_window->load();
        Input::clickCell(m_window->projects(), 0);
        Input::key(Qt::Key_Q, Qt::ControlModifier);
        QVERIFY(!m_window->view().isVisible());
    }

    void f5ReloadsWithoutAProject()
    {
        m_window->load();
        QSignalSpy finished(&m_window->store(), &Store::reloadFinished);
        Input::key(Qt::Key_F5);
        QTRY_COMPARE(finished.size(), 1);
    }

    void closesInTheMiddleOfAReload()
    {
        prepare({u"/w/a"_qs, u"/w/b"_qs});
        m_window->load();
        {
            const HeldBackground held;
            m_window->store().reload();
            m_window->destroy();
        }
        QVERIFY(Background::finish(std::chrono::seconds(20)));
        QCoreApplication::processEvents();
    }

    void closesBeforeTheFirstReload()
    {
        {
            const HeldBackground held;
            m_window->show();
            QVERIFY(QTest::qWaitFor([this] { return m_window->store().loading(); }));
            m_window->destroy();
        }
        QVERIFY(Background::finish(std::chrono::seconds(20)));
        QCoreApplication::processEvents();
    }

    // The detail

    void anotherProjectGetsAFreshDetail()
    {
        prepare({u"/w/a"_qs, u"/w/b"_qs});
        m_window->load();
        Input::key(Qt::Key_3, Qt::ControlModifier);
        QCOMPARE(m_window->tabs()->currentIndex(), 2);
        const QPointer<QWidget> before = m_window->detail();
        Input::clickCell(m_window->projects(), 1);
        QCOMPARE(m_window->tabs()->currentIndex(), 0);
        QVERIFY(labelWith(m_window->detail(), u"/w/b"_qs));
        QTRY_VERIFY(!before);
        Input::clickCell(m_window->projects(), 0);
        QCOMPARE(m_window->tabs()->currentIndex(), 0);
    }

    void theSameProjectKeepsItsDetailThroughAReload()
    {
        prepare({u"/w/a"_qs});
        m_window->load();
        Input::key(Qt::Key_4, Qt::ControlModifier);
        const QPointer<QWidget> before = m_window->detail();
        m_window->reload();
        QCOMPARE(m_window->detail(), before.data());
        QCOMPARE(m_window->tabs()->currentIndex(), 3);
    }

    void leavingABusyProjectGivesAFreshDetail()
    {
        prepare({u"/w/a"_qs, u"/w/b"_qs});
        writeSession(*m_home, {.project = u"/w/a"_qs, .answers = answers(21'000)});
        m_window->load();
        QTRY_COMPARE(m_window->sessions()->model()->rowCount(), 1);
        {
            const HeldBackground held;
            m_window->store().setPrices(m_window->store().prices()); // the table is made again
            Input::clickCell(m_window->projects(), 1);
            QCOMPARE(m_window->summary(), u"1 sessions \u00b7 $0.00 estimated"_qs);
        }
        Background::pool().waitForDone();
        QTest::qWait(50);
        QVERIFY(labelWith(m_window->detail(), u"/w/b"_qs));
        QCOMPARE(m_window->summary(), u"1 sessions \u00b7 $0.00 estimated"_qs);
    }

private:
    /// Writes a log for each path, and the folders added by hand. The window is made anew, since
    /// its store has read the latter.
    void prepare(const QStringList &discovered, const QStringList &added = {})
    {
        for (const QString &path : discovered)
            writeSession(*m_home, {.project = path});
        if (added.isEmpty())
            return;
        addByHand(*m_home, added);
        m_window = std::make_unique<Window>(*m_home);
    }

    static QList<QByteArray> answers(int count)
    {
        QList<QByteArray> lines;
        for (int i = 0; i < count; ++i)
            lines.append(LogLines::assistant(u"2026-03-05T10:00:01.000Z"_qs, u"opus"_qs, {1, 1},
                                             QString::number(i)));
        return lines;
    }

    static void enterFolder(QFileDialog *chooser, const QString &path)
    {
        // Typing would bring up Qt's list of completions, which takes the next key or click.
        auto *field = find<QLineEdit>(chooser, u"fileNameEdit"_qs);
        field->setFocus();
        field->setText(path);
    }

    int rowOf(const QString &path) const
    {
        const QAbstractItemModel *model = m_window->projects()->model();
        for (int row = 0; row < model->rowCount(); ++row) {
            if (model->index(row, 0).data(Qt::UserRole).toString() == path)
                return row;
        }
        qFatal("%s is not listed", qPrintable(path));
    }

    QImage pictureOfRow(const QString &path)
    {
        QListView *list = m_window->projects();
        const QRect place = list->visualRect(list->model()->index(rowOf(path), 0));
        return list->viewport()->grab(place).toImage();
    }

    QImage pictureOfHeader(const QString &path)
    {
        m_window->store().setSelection(path);
        return find<QLabel>(m_window->detail(), u"projectPath"_qs)->grab().toImage();
    }

    void dragHandleBy(int distance)
    {
        QSplitterHandle *handle = find<QSplitter>(&m_window->view())->handle(1);
        const QPoint begin = handle->rect().center();
        Input::drag(handle, begin, begin + QPoint(distance, 0));
    }

    std::unique_ptr<PrivateHome> m_home;
    std::unique_ptr<Window> m_window;
};

PLINTHAR_WINDOW_TEST_MAIN(MainWindowTest)
#include "MainWindowTest.moc"
