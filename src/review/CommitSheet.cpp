// SPDX-License-Identifier: GPL-3.0-or-later
#include "review/CommitSheet.h"

#include "review/Commit.h"
#include "ui/BusySign.h"
#include "ui/Colors.h"
#include "ui/EmphasisButton.h"
#include "ui/ErrorText.h"
#include "ui/Fonts.h"
#include "ui/TextLabel.h"

#include <QCloseEvent>
#include <QPainter>
#include <QPlainTextEdit>
#include <QShortcut>
#include <QVBoxLayout>

#include <algorithm>

namespace {

constexpr int sheetWidth = 512;
constexpr int padding = 20;
constexpr int spacing = 10;
constexpr int editorHeight = 140;
constexpr int mostErrorLines = 10;
constexpr float borderOpacity = 0.4F;

/// A border of one point around a text field; in the highlight colour while it has the focus.
class Border : public QWidget {
public:
    Border(QWidget *field, QWidget *parent) : QWidget(parent), m_field(field)
    {
        auto *layout = new QVBoxLayout(this);
        layout->setContentsMargins(1, 1, 1, 1);
        layout->addWidget(field);
        field->installEventFilter(this);
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setPen(m_field->hasFocus() ? palette().color(QPalette::Highlight)
                                           : Colors::grayTint(palette(), borderOpacity));
        painter.drawRect(rect().adjusted(0, 0, -1, -1));
    }
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut)
            update();
        return QWidget::eventFilter(watched, event);
    }

private:
    QWidget *m_field;
};

QString titleFor(qsizetype stagedCount)
{
    return QStringLiteral("Commit %1 staged file%2")
        .arg(stagedCount)
        .arg(stagedCount == 1 ? QString() : QStringLiteral("s"));
}

} // namespace

CommitSheet::CommitSheet(const Project &project, const QList<GitFile> &files, QWidget *parent)
    : QDialog(parent)
    , m_project(project)
    , m_job(this, Background::savingPool())
{
    setObjectName(QStringLiteral("commitSheet"));
    setWindowTitle(QStringLiteral("Commit"));
    setFixedWidth(sheetWidth);
    buildLayout(std::count_if(files.begin(), files.end(),
                              [](const GitFile &file) { return file.isStaged(); }));
    addShortcuts();
    updateControls();
}

void CommitSheet::buildLayout(qsizetype stagedCount)
{
    m_error = new ErrorText(mostErrorLines, this);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(padding, padding, padding, padding);
    layout->setSpacing(spacing);
    layout->addWidget(
        new TextLabel(titleFor(stagedCount), {.size = TextStyle::Title2, .bold = true}, this));
    layout->addWidget(buildEditor(), 1);
    layout->addWidget(new TextLabel(QStringLiteral("Appended automatically: ") + commitTrailer(),
                                    {.size = TextStyle::Caption}, this));
    layout->addWidget(m_error);
    layout->addLayout(buildFooter());
}

QWidget *CommitSheet::buildEditor()
{
    m_editor = new QPlainTextEdit(this);
    m_editor->setObjectName(QStringLiteral("message"));
    m_editor->setAccessibleName(QStringLiteral("Commit message"));
    m_editor->setFont(monospacedFont(TextStyle::Body));
    m_editor->setFrameShape(QFrame::NoFrame);
    m_editor->setTabChangesFocus(true);
    m_editor->setMinimumHeight(editorHeight);
    connect(m_editor, &QPlainTextEdit::textChanged, this, &CommitSheet::updateControls);
    return new Border(m_editor, this);
}

QLayout *CommitSheet::buildFooter()
{
    m_busySign = new BusySign(this);
    m_cancelButton = new EmphasisButton(QStringLiteral("Cancel"), this);
    m_cancelButton->setAutoDefault(false);
    m_commitButton =
        new EmphasisButton(EmphasisButton::Emphasis::Prominent, QStringLiteral("Commit"), this);
    m_commitButton->setDefault(true);
    m_commitButton->setToolTip(
        QStringLiteral("Commit what is staged (%1)")
            .arg(QKeySequence(Qt::CTRL | Qt::Key_Return).toString(QKeySequence::NativeText)));
    connect(m_cancelButton, &QPushButton::clicked, this, &CommitSheet::reject);
    connect(m_commitButton, &QPushButton::clicked, this, &CommitSheet::commit);
    auto *footer = new QHBoxLayout;
    footer->addStretch();
    footer->addWidget(m_busySign);
    footer->addWidget(m_cancelButton);
    footer->addWidget(m_commitButton);
    return footer;
}

void CommitSheet::addShortcuts()
{
    // In the message, Return alone begins a new line.
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
        auto *shortcut = new QShortcut(QKeySequence(Qt::CTRL | key), this);
        connect(shortcut, &QShortcut::activated, m_commitButton, &QPushButton::click);
    }
}

/// The message as it was typed. QPlainTextEdit::toPlainText() would change some of its blanks.
QString CommitSheet::message() const
{
    QString text = m_editor->document()->toRawText();
    text.replace(QChar::ParagraphSeparator, u'\n');
    return text.replace(QChar::LineSeparator, u'\n');
}

void CommitSheet::updateControls()
{
    const bool idle = !m_job.busy();
    m_editor->setReadOnly(!idle);
    m_cancelButton->setEnabled(idle);
    m_commitButton->setEnabled(idle && !message().trimmed().isEmpty());
    m_busySign->setBusy(!idle);
}

void CommitSheet::commit()
{
    m_editor->setFocus(); // the button is about to be disabled, which would send the focus away
    m_job.start([path = m_project.path,
                 text = message()](const std::stop_token &) { return ::commit(path, text); },
                [this](const std::optional<QString> &error) { finish(error); });
    updateControls();
}

void CommitSheet::finish(const std::optional<QString> &error)
{
    updateControls();
    if (!error) {
        Q_EMIT committed();
        accept();
        return;
    }
    const QString text = error->trimmed();
    m_error->setError(text.isEmpty() ? QStringLiteral("git failed without saying why.") : text);
    adjustSize();
}

/// Also what Escape does. A commit that is under way cannot be taken back.
void CommitSheet::reject()
{
    if (!m_job.busy())
        QDialog::reject();
}

void CommitSheet::closeEvent(QCloseEvent *event)
{
    if (m_job.busy())
        event->ignore();
    else
        QDialog::closeEvent(event);
}
