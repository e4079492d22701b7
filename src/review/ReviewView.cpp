// SPDX-License-Identifier: GPL-3.0-or-later
#include "review/ReviewView.h"

#include "review/ChangeListPane.h"
#include "review/CommitSheet.h"
#include "review/DiffLoader.h"
#include "review/DiffPane.h"
#include "review/DiffView.h"
#include "review/GitActions.h"
#include "review/TerminalText.h"
#include "ui/CopyAction.h"
#include "ui/EmphasisButton.h"
#include "ui/EmptyState.h"
#include "ui/ForeignText.h"
#include "ui/PaneSplitter.h"
#include "ui/TextLine.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QListView>
#include <QMessageBox>
#include <QShortcut>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace {

constexpr int listWidth = 280;
constexpr int diffWidth = 720;

/// Keys that walk the diff although the list of files has the focus, in which the arrow keys walk.
bool isForDiff(const QKeyEvent *event)
{
    if (event->modifiers() != Qt::NoModifier)
        return false;
    switch (event->key()) {
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
    case Qt::Key_N:
    case Qt::Key_P:
        return true;
    default:
        return false;
    }
}

QMessageBox *makeConfirmation(const GitFile &file, QWidget *parent)
{
    auto *box = new QMessageBox(parent);
    box->setObjectName(QStringLiteral("confirmReject"));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setIcon(QMessageBox::Warning);
    box->setWindowTitle(QStringLiteral("Reject"));
    box->setTextFormat(Qt::PlainText);
    box->setText(QStringLiteral("Reject changes to %1?").arg(ForeignText::breakable(file.path)));
    box->setInformativeText(
        file.isUntracked()
            ? QStringLiteral("This untracked file will be deleted.")
            : QStringLiteral("Staged and unstaged changes will be restored from HEAD. This cannot "
                             "be undone."));
    addCopyAction(box, QStringLiteral("Copy Path"), file.path);
    alignLabels(box);
    return box;
}

} // namespace

ReviewView::ReviewView(const Project &project, QWidget *parent)
    : QWidget(parent)
    , m_project(project)
    , m_refreshJob(this)
    , m_diffJob(this)
    , m_actionJob(this, Background::savingPool())
{
    buildLayout();
    connectSignals();
    updateControls();
}

void ReviewView::buildLayout()
{
    m_changes = new ChangeListPane(this);
    m_diff = new DiffPane(this);
    fitHeader();
    m_review = new PaneSplitter(m_changes, listWidth, m_diff, diffWidth, this);
    m_noRepo = new EmptyState(
        QStringLiteral("arrow.triangle.branch"), QStringLiteral("Not a Git repository"),
        m_project.path +
            QStringLiteral(" is not inside a Git work tree, so there is nothing to review."),
        this);
    m_noRepo->setMessageCopyable();
    m_pages = new QStackedWidget(this);
    m_pages->addWidget(m_review);
    m_pages->addWidget(m_noRepo);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_pages);
    setFocusProxy(m_changes->list());
}

/// Makes the lines below the headers of both panes meet.
void ReviewView::fitHeader()
{
    m_changes->setHeaderHeight(m_diff->toolBarHeight());
}

void ReviewView::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    // The buttons have their new font only when all widgets have been told.
    if (event->type() == QEvent::FontChange)
        QMetaObject::invokeMethod(this, &ReviewView::fitHeader, Qt::QueuedConnection);
}

void ReviewView::connectSignals()
{
    connect(m_changes, &ChangeListPane::selectionChanged, this, &ReviewView::takeSelection);
    connect(m_changes, &ChangeListPane::refreshRequested, this, &ReviewView::refresh);
    connect(m_diff, &DiffPane::approveRequested, this, &ReviewView::approve);
    connect(m_diff, &DiffPane::rejectRequested, this, &ReviewView::confirmReject);
    connect(m_diff, &DiffPane::commitRequested, this, &ReviewView::showCommit);
    m_changes->list()->installEventFilter(this);

    auto *refreshing = new QShortcut(QKeySequence(QKeySequence::Refresh), this);
    connect(refreshing, &QShortcut::activated, this, &ReviewView::refresh);
    // Only from inside: elsewhere in the window the key means something else.
    auto *rejecting = new QShortcut(QKeySequence(QKeySequence::Delete), this);
    rejecting->setContext(Qt::WidgetWithChildrenShortcut);
    connect(rejecting, &QShortcut::activated, this, &ReviewView::confirmReject);
}

void ReviewView::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    if (!event->spontaneous()) // as when the window comes back from being minimised
        refresh();
}

/// What is not seen is not looked for. Something that has been started for good goes on.
void ReviewView::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    if (event->spontaneous())
        return;
    m_refreshJob.cancel();
    m_diffJob.cancel();
    updateControls();
}

bool ReviewView::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress && isForDiff(static_cast<QKeyEvent *>(event))) {
        if (m_diff->isShowingDiff())
            QCoreApplication::sendEvent(m_diff->diff(), event);
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

const GitFile *ReviewView::selectedFile() const
{
    const auto file =
        std::find_if(m_files.begin(), m_files.end(),
                     [this](const GitFile &candidate) { return candidate.path == m_selected; });
    return file == m_files.end() ? nullptr : &*file;
}

void ReviewView::refresh()
{
    if (!isVisible() || m_actionJob.busy()) // it will be done afterwards
        return;
    m_refreshJob.start([path = m_project.path](
                           const std::stop_token &stop) { return gitStatusSnapshot(path, stop); },
                       [this](const GitSnapshot &snapshot) { apply(snapshot); });
    updateControls();
}

void ReviewView::apply(const GitSnapshot &snapshot)
{
    m_isRepo = snapshot.isRepo;
    const QList<GitFile> filesBefore = std::exchange(m_files, snapshot.files);
    m_hasHead = snapshot.hasHead;
    const std::optional<QString> before = m_selected;
    if (!selectedFile())
        m_selected.reset();
    if (!m_selected && !m_files.isEmpty())
        m_selected = m_files.constFirst().path;
    m_changes->setFiles(m_files, m_selected);
    m_changes->setCut(snapshot.isCut);
    Background::destroy(filesBefore); // there may be very many
    m_pages->setCurrentWidget(m_isRepo ? m_review : m_noRepo);
    loadDiff(m_selected == before);
}

void ReviewView::takeSelection()
{
    m_selected = m_changes->selectedPath();
    loadDiff(false);
}

/// Shows the diff of the selected file. Until it is there nothing is shown, since the buttons mean
/// the file whose name stands beside them; only a newer diff of the same file replaces the older.
void ReviewView::loadDiff(bool sameFile)
{
    const GitFile *file = selectedFile();
    m_diff->setPath(file ? file->path : QString());
    if (!file) {
        m_diffJob.cancel();
        m_diff->showNothing();
        return updateControls();
    }
    if (!sameFile)
        m_diff->showWaiting();
    m_diffJob.start(
        [path = m_project.path, file = *file, hasHead = m_hasHead,
         shown = m_diff->diff()->document()](const std::stop_token &stop) {
            LoadedDiff loaded = ::loadDiff(path, file, hasHead, stop);
            if (stop.stop_requested() || loaded.note)
                return PreparedDiff{nullptr, loaded.note};
            if (shown && shown->rows() == loaded.rows)
                return PreparedDiff{shown, {}};
            return PreparedDiff{std::make_shared<DiffDocument>(std::move(loaded.rows)), {}};
        },
        [this, sameFile](const PreparedDiff &diff) { show(diff, sameFile); });
    updateControls();
}

void ReviewView::show(const PreparedDiff &diff, bool sameFile)
{
    if (diff.note)
        m_diff->showNote(*diff.note);
    else
        m_diff->showDiff(diff.document, sameFile);
    updateControls();
}

void ReviewView::approve()
{
    if (const GitFile *file = selectedFile())
        run([path = m_project.path, file = *file] { return ::approve(path, file); });
}

/// Asks before anything is thrown away. The answer is about the file of the question, whatever is
/// selected by then.
void ReviewView::confirmReject()
{
    const GitFile *file = selectedFile();
    if (!file || m_actionJob.busy())
        return;
    QMessageBox *box = makeConfirmation(*file, this);
    auto *discard = new EmphasisButton(EmphasisButton::Emphasis::Destructive,
                                       QStringLiteral("Discard Changes"), box);
    discard->setAutoDefault(false);
    box->addButton(discard, QMessageBox::DestructiveRole);
    QPushButton *cancel = box->addButton(QMessageBox::Cancel);
    box->setDefaultButton(cancel);
    box->setEscapeButton(cancel);
    connect(discard, &QPushButton::clicked, this, [this, file = *file] { reject(file); });
    box->open();
}

void ReviewView::reject(const GitFile &file)
{
    run([path = m_project.path, file, hasHead = m_hasHead] {
        return ::reject(path, file, hasHead);
    });
}

/// Lets git change something. Nothing else can be started until it is done, and nothing stops it:
/// neither hiding the screen nor closing the window.
void ReviewView::run(const Action &action)
{
    if (m_actionJob.busy())
        return;
    m_refreshJob.cancel();
    if (m_diff->isActing()) // the button is about to be disabled, which would send the focus away
        m_changes->list()->setFocus();
    m_actionJob.start([action](const std::stop_token &) { return action(); },
                      [this](const ShellResult &result) {
                          setError(result.status == 0 ? std::nullopt : std::optional(result.err));
                          updateControls();
                          refresh();
                      });
    updateControls();
}

void ReviewView::showCommit()
{
    auto *sheet = new CommitSheet(m_project, m_files, this);
    sheet->setAttribute(Qt::WA_DeleteOnClose);
    connect(sheet, &CommitSheet::committed, this, [this] {
        setError(std::nullopt);
        refresh();
    });
    sheet->open();
}

void ReviewView::setError(const std::optional<QString> &error)
{
    const QString text = withoutEscapeCodes(error.value_or(QString())).trimmed();
    m_diff->setError(error && text.isEmpty() ? QStringLiteral("git failed without saying why.")
                                             : text);
}

void ReviewView::updateControls()
{
    const bool idle = !m_actionJob.busy();
    const GitFile *file = selectedFile();
    m_diff->setActions(
        {.approve = idle && file && !file->isWhollyStaged(),
         .reject = idle && file,
         .commit = idle && std::any_of(m_files.begin(), m_files.end(),
                                       [](const GitFile &f) { return f.isStaged(); })});
    m_changes->setRefreshEnabled(idle);
    m_diff->setBusy(!idle || m_refreshJob.busy() || m_diffJob.busy());
}
