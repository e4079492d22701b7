// SPDX-License-Identifier: GPL-3.0-or-later
#include "context/ContextView.h"

#include "context/ContextCatalogue.h"
#include "context/ContextDelegate.h"
#include "context/ContextListModel.h"
#include "context/EditorPane.h"
#include "context/InstructionFile.h"
#include "ui/BusyPage.h"
#include "ui/CurrentRow.h"
#include "ui/EmptyState.h"
#include "ui/PaneSplitter.h"

#include <QListView>
#include <QScopedValueRollback>
#include <QShowEvent>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace {

constexpr int narrowestList = 220;
constexpr int usualList = 260;
constexpr int widestList = 360;
constexpr int narrowestDetail = 400;

/// Reading mostly takes less than a frame; the wheel shows only when it does not.
constexpr std::chrono::milliseconds patience{200};

/// Neither Home nor the page keys stop at the name of a scope, which has a file behind it.
class FileList : public QListView {
public:
    using QListView::QListView;

protected:
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override
    {
        const QModelIndex to = QListView::moveCursor(action, modifiers);
        const bool isScope = to.isValid() && !(to.flags() & Qt::ItemIsEnabled);
        return isScope ? to.siblingAtRow(to.row() + 1) : to;
    }
};

ContextView::OpenedFile openFile(const QString &path, const ContextDocument::Style &style)
{
    const InstructionText read = readInstructions(path);
    return {OpenedText::make(read.file, style), read.problem};
}

ContextView::Scanned scanFiles(const QString &project, const QString &home,
                               const ContextDocument::Style &style)
{
    ContextView::Scanned scanned;
    scanned.files = contextFiles(project, home, FileLook::disk());
    const auto first = std::find_if(scanned.files.cbegin(), scanned.files.cend(),
                                    [](const ContextFile &file) { return file.exists; });
    if (first == scanned.files.cend())
        return scanned;
    scanned.selected = first->path;
    scanned.opened = openFile(first->path, style);
    return scanned;
}

} // namespace

ContextView::ContextView(const Project &project, const QString &home, QWidget *parent)
    : QWidget(parent)
    , m_project(project)
    , m_home(home)
    , m_job(this)
    , m_model(new ContextListModel(home, this))
{
    setObjectName(QStringLiteral("contextView"));
    m_patience.setSingleShot(true);
    m_patience.setInterval(patience);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    QWidget *list = buildList(); // first, because Tab goes in the order of making
    layout->addWidget(new PaneSplitter(list, usualList, buildDetail(), narrowestDetail, this));
    connectSignals();
}

QWidget *ContextView::buildList()
{
    m_list = new FileList(this);
    m_list->setObjectName(QStringLiteral("contextFiles"));
    m_list->setAccessibleName(QStringLiteral("Instruction files"));
    m_list->setModel(m_model);
    letCurrentRowFollowSelection(m_list);
    m_list->setItemDelegate(new ContextDelegate(m_list));
    m_list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_list->setFrameShape(QFrame::NoFrame);
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_list->setMinimumWidth(narrowestList);
    m_list->setMaximumWidth(widestList);
    return m_list;
}

QWidget *ContextView::buildDetail()
{
    m_blankPage = new QWidget(this);
    m_busyPage = new BusyPage(QStringLiteral("Reading\u2026"), this);
    m_emptyPage = new EmptyState(
        QStringLiteral("doc.text"), QStringLiteral("No file selected"),
        QStringLiteral("Choose a CLAUDE.md, AGENTS.md, GEMINI.md or Cursor rules file to edit."),
        this);
    m_pane = new EditorPane(this);
    m_detail = new QStackedWidget(this);
    m_detail->setMinimumWidth(narrowestDetail);
    for (QWidget *page : {m_blankPage, m_busyPage, static_cast<QWidget *>(m_emptyPage),
                          static_cast<QWidget *>(m_pane)})
        m_detail->addWidget(page);
    return m_detail;
}

void ContextView::connectSignals()
{
    connect(m_list->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &ContextView::takeSelection);
    connect(m_pane, &EditorPane::saveRequested, this, &ContextView::save);
    connect(&m_patience, &QTimer::timeout, m_detail,
            [this] { m_detail->setCurrentWidget(m_busyPage); });
}

void ContextView::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    if (!event->spontaneous()) // not when the window comes back from being minimized
        scan();
}

void ContextView::scan()
{
    m_chosen.reset();
    read(Reading::All);
}

/// Asks for reading. Looking for all files goes on when one of them is chosen meanwhile.
void ContextView::read(Reading what)
{
    m_pane->setStatus(QString());
    m_pane->setEditable(false);
    m_patience.start();
    if (what == Reading::File && m_reading == Reading::All) {
        m_chosen = m_selected;
        return;
    }
    m_reading = what;
    if (!m_saving)
        startReading();
}

void ContextView::startReading()
{
    if (m_reading == Reading::All)
        readAll();
    else
        readFile();
}

void ContextView::readAll()
{
    m_job.start(
        [project = m_project.path, home = m_home, style = m_pane->editor()->documentStyle()](
            const std::stop_token &) { return scanFiles(project, home, style); },
        [this](Scanned &&scanned) { take(std::move(scanned)); });
}

void ContextView::readFile()
{
    m_job.start([path = *m_selected, style = m_pane->editor()->documentStyle()](
                    const std::stop_token &) { return openFile(path, style); },
                [this](OpenedFile &&opened) { take(std::move(opened)); });
}

void ContextView::take(Scanned scanned)
{
    {
        const QScopedValueRollback updating(m_updatingList, true);
        m_model->setFiles(scanned.files);
    }
    m_reading = Reading::Nothing;
    if (m_chosen && m_model->indexOf(*m_chosen).isValid() && m_chosen != scanned.selected) {
        m_selected = m_chosen;
        showSelection();
        read(Reading::File);
        return;
    }
    m_selected = scanned.selected;
    showSelection();
    if (m_selected)
        take(std::move(scanned.opened));
    else {
        m_patience.stop();
        m_detail->setCurrentWidget(m_emptyPage);
    }
}

void ContextView::take(OpenedFile opened)
{
    m_reading = Reading::Nothing;
    m_patience.stop();
    const auto file = m_model->file(*m_selected);
    m_pane->open(file ? label(*file, m_home) : *m_selected, std::move(opened.text), opened.problem);
    m_pane->setEditable(true);
    m_detail->setCurrentWidget(m_pane);
}

/// Lets the list follow.
void ContextView::showSelection()
{
    const QScopedValueRollback updating(m_updatingList, true);
    if (!m_selected)
        m_list->clearSelection();
    else if (m_model->file(m_list->currentIndex()).value_or(ContextFile()).path != *m_selected ||
             !m_list->selectionModel()->isSelected(m_list->currentIndex()))
        m_list->setCurrentIndex(m_model->indexOf(*m_selected));
}

/// Follows the user. A file stays selected when its row is clicked away, since its edits would be
/// lost otherwise.
void ContextView::takeSelection()
{
    if (m_updatingList)
        return;
    const QModelIndexList selected = m_list->selectionModel()->selectedIndexes();
    const auto file = selected.isEmpty() ? std::nullopt : m_model->file(selected.constFirst());
    if (!file) {
        QMetaObject::invokeMethod(this, &ContextView::showSelection, Qt::QueuedConnection);
    } else if (m_selected != file->path) {
        m_selected = file->path;
        read(Reading::File);
    }
}

void ContextView::save()
{
    const FileText content = m_pane->editor()->fileText();
    m_saving = true;
    m_pane->setSaving(true);
    Background::run(
        this, {},
        [path = *m_selected, content](const std::stop_token &) {
            return saveInstructions(path, encodeText(content));
        },
        [this, path = *m_selected, text = content.text](const std::optional<QString> &error) {
            finishSaving(path, text, error);
        },
        Background::savingPool());
}

void ContextView::finishSaving(const QString &path, const QString &text,
                               const std::optional<QString> &error)
{
    m_saving = false;
    m_pane->setSaving(false);
    if (error) {
        // What was to be read next would throw the edits away, and nobody knew yet that they are
        // not on the disk.
        m_selected = path;
        m_reading = Reading::Nothing;
        m_patience.stop();
        m_pane->setEditable(true);
        m_detail->setCurrentWidget(m_pane);
        showSelection();
        m_pane->setStatus(QStringLiteral("Save failed: ") + *error);
        return;
    }
    m_model->setExists(path);
    m_pane->setSaved(text);
    if (m_reading == Reading::Nothing)
        m_pane->setStatus(QStringLiteral("Saved"));
    else
        startReading();
}
