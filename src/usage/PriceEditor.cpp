// SPDX-License-Identifier: GPL-3.0-or-later
#include "usage/PriceEditor.h"

#include "model/PriceStore.h"
#include "model/Store.h"
#include "ui/EmphasisButton.h"
#include "ui/TextLabel.h"
#include "usage/PriceRowEditor.h"

#include <QEvent>
#include <QPushButton>
#include <QScrollArea>
#include <QShortcut>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>

namespace {

constexpr int padding = 20;
constexpr int spacing = 10;

} // namespace

PriceEditor::PriceEditor(Store &store, QWidget *parent) : QDialog(parent), m_store(store)
{
    setObjectName(QStringLiteral("priceEditor"));
    setWindowTitle(QStringLiteral("Price Table"));
    buildLayout();
    setRows(m_store.prices());
    resize(sizeHint());
    if (!m_editors.isEmpty())
        m_editors.constFirst()->editKey();
    // Return saves wherever the focus is; some desktops' themes would press a focused button.
    for (const auto key : {Qt::Key_Return, Qt::Key_Enter})
        connect(new QShortcut(QKeySequence(key), this), &QShortcut::activated, this,
                &PriceEditor::save);
}

void PriceEditor::buildLayout()
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(padding, padding, padding, padding);
    layout->setSpacing(spacing);
    layout->addWidget(new TextLabel(QStringLiteral("Price Table"),
                                    {.size = TextStyle::Title2, .bold = true}, this));
    layout->addWidget(new TextLabel(
        QStringLiteral("USD per million tokens. A row applies when its key appears in "
                       "the model name; \u201cdefault\u201d is the fallback."),
        {.size = TextStyle::Caption,
         .tone = TextLabel::Tone::Secondary,
         .overflow = TextLabel::Overflow::Wrap},
        this));
    layout->addWidget(buildColumnHeader());
    layout->addWidget(buildRowArea(), 1);
    layout->addLayout(buildFooter());
}

QWidget *PriceEditor::buildColumnHeader()
{
    auto *header = new QWidget(this);
    auto *layout = new QHBoxLayout(header);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0); // a title has the space behind its column, too
    for (const QString &title :
         {QStringLiteral("Key"), QStringLiteral("Input"), QStringLiteral("Output"),
          QStringLiteral("Cache write"), QStringLiteral("Cache read")}) {
        auto *label = new TextLabel(title, {.size = TextStyle::Caption, .bold = true}, header);
        layout->addWidget(label);
        m_titles.append(label);
    }
    layout->addStretch();
    fitTitles();
    return header;
}

void PriceEditor::fitTitles()
{
    for (TextLabel *title : m_titles) {
        const bool isKey = title == m_titles.constFirst();
        title->setFixedWidth(PriceRowEditor::spacing +
                             (isKey ? PriceRowEditor::keyWidth() : PriceRowEditor::priceWidth()));
    }
}

bool PriceEditor::event(QEvent *event)
{
    if (event->type() == QEvent::ApplicationFontChange) {
        fitTitles();
        for (PriceRowEditor *editor : std::as_const(m_editors))
            editor->fitFields();
        if (!m_editors.isEmpty())
            fitRows();
    }
    return QDialog::event(event);
}

QWidget *PriceEditor::buildRowArea()
{
    auto *content = new QWidget;
    m_rowLayout = new QVBoxLayout(content);
    m_rowLayout->setContentsMargins(0, 0, 0, 0);
    m_rowLayout->setSpacing(spacing);
    m_rowLayout->addStretch();
    m_scrollArea = new QScrollArea(this);
    m_scrollArea->setFrameShape(QFrame::NoFrame);
    m_scrollArea->setFocusPolicy(Qt::NoFocus); // its fields take the focus
    m_scrollArea->setWidgetResizable(true);
    m_scrollArea->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_scrollArea->setWidget(content);
    return m_scrollArea;
}

QLayout *PriceEditor::buildFooter()
{
    auto *addRowButton = new EmphasisButton(QStringLiteral("Add Row"), this);
    auto *resetButton = new EmphasisButton(QStringLiteral("Reset to Defaults"), this);
    auto *cancelButton = new EmphasisButton(QStringLiteral("Cancel"), this);
    auto *saveButton = new EmphasisButton(QStringLiteral("Save"), this);
    saveButton->setDefault(true);
    saveButton->setToolTip(
        QStringLiteral("Save the table (%1)")
            .arg(QKeySequence(Qt::Key_Return).toString(QKeySequence::NativeText)));
    connect(addRowButton, &QPushButton::clicked, this, &PriceEditor::addRow);
    connect(resetButton, &QPushButton::clicked, this, [this] { setRows(PriceStore::defaults()); });
    connect(cancelButton, &QPushButton::clicked, this, &QDialog::reject);
    connect(saveButton, &QPushButton::clicked, this, &PriceEditor::save);

    m_buttons = {addRowButton, resetButton, cancelButton, saveButton};

    auto *footer = new QHBoxLayout;
    footer->setSpacing(PriceRowEditor::spacing);
    footer->addWidget(addRowButton);
    footer->addWidget(resetButton);
    footer->addWidget(
        new TextLabel(QStringLiteral("Stored in Application Support/Plinthar"),
                      {.size = TextStyle::Caption, .tone = TextLabel::Tone::Secondary}, this));
    footer->addStretch();
    footer->addWidget(cancelButton);
    footer->addWidget(saveButton);
    return footer;
}

QList<PriceRow> PriceEditor::rows() const
{
    QList<PriceRow> rows;
    for (const PriceRowEditor *editor : m_editors)
        rows.append(editor->row());
    return rows;
}

void PriceEditor::setRows(const QList<PriceRow> &rows)
{
    qDeleteAll(m_editors);
    m_editors.clear();
    for (const PriceRow &row : rows)
        appendRow(row);
}

PriceRowEditor *PriceEditor::appendRow(const PriceRow &row)
{
    auto *editor = new PriceRowEditor(row);
    connect(editor, &PriceRowEditor::deleteRequested, this, [this, editor] { deleteRow(editor); });
    m_rowLayout->insertWidget(static_cast<int>(m_editors.size()), editor);
    m_editors.append(editor);
    fitRows();
    updateTabOrder();
    return editor;
}

/// The sheet grows with its rows until it would get too tall; then they scroll.
void PriceEditor::fitRows()
{
    constexpr qsizetype mostVisible = 10;
    const int count = static_cast<int>(qBound(qsizetype(1), m_editors.size(), mostVisible));
    const int rowHeight = m_editors.constFirst()->sizeHint().height();
    m_scrollArea->setMinimumHeight(count * (rowHeight + spacing) - spacing);
}

/// From row to row and then to the buttons, in whatever order the rows were made.
void PriceEditor::updateTabOrder()
{
    QWidgetList order;
    for (const PriceRowEditor *editor : std::as_const(m_editors))
        order += editor->fields();
    order += m_buttons;
    for (qsizetype i = 1; i < order.size(); ++i)
        QWidget::setTabOrder(order[i - 1], order[i]);
}

void PriceEditor::addRow()
{
    PriceRowEditor *editor = appendRow({.key = QStringLiteral("model"),
                                        .input = 3.0,
                                        .output = 15.0,
                                        .cacheWrite = 3.75,
                                        .cacheRead = 0.3});
    editor->editKey();
    // The new row has its place only after the layout has run.
    QTimer::singleShot(0, editor, [this, editor] { m_scrollArea->ensureWidgetVisible(editor); });
}

void PriceEditor::deleteRow(PriceRowEditor *editor)
{
    const QUuid id = editor->row().id;
    for (PriceRowEditor *candidate : QList(m_editors)) {
        if (candidate->row().id != id)
            continue;
        m_editors.removeOne(candidate);
        candidate->deleteLater(); // its own button is on the way back to the event loop
        candidate->hide();
    }
}

void PriceEditor::save()
{
    const QList<PriceRow> edited = rows();
    m_store.setPrices(edited);
    // The store has just written the same. Saving is this sheet's promise, so it does not depend on
    // what the store makes of an assignment.
    PriceStore::savePrices(edited);
    accept();
}
