// SPDX-License-Identifier: GPL-3.0-or-later
#include "context/ContextEditor.h"

#include "support/GuiTestMain.h"

#include <QClipboard>
#include <QMimeData>
#include <QThread>

#include <random>

namespace {

struct Key {
    Qt::Key key;
    Qt::KeyboardModifiers modifiers = Qt::NoModifier;
};

} // namespace

class ContextEditorTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void whatIsNotEditedStaysAsItIs_data();
    void whatIsNotEditedStaysAsItIs();
    void typingAndDeletingBackIsNoChange_data();
    void typingAndDeletingBackIsNoChange();
    void aNewLineGetsTheUsualBreak_data();
    void aNewLineGetsTheUsualBreak();
    void anEditLeavesTheOtherBreaksOfAMixedFile();
    void removedLinesComeBackWithTheirBreaks();
    void joiningLinesTakesTheBreakBetweenThem();
    void staysInStepWithItsDocumentThroughRandomEdits();
    void tabInsertsATab();
    void shiftAndReturnMakeAnOrdinaryNewLine();
    void copiesAndPastesEveryCharacter();
    void pastedTextGetsTheUsualBreaks();
    void halfACharacterPastedIsNoLineBreak();
    void undoBeginsWithTheText();
    void aTextOutlivesTheThreadThatMadeIt_data();
    void aTextOutlivesTheThreadThatMadeIt();
    void isReadOnlyToPastingToo();
    void theFontIsMonospacedAndAsLargeAsOtherText();

private:
    void open(const QByteArray &bytes)
    {
        m_editor->open(OpenedText::make(decodeText(bytes).value(), m_editor->documentStyle()));
    }
    QByteArray bytes() const { return encodeText(m_editor->fileText()); }
    void press(const QList<Key> &keys)
    {
        for (const Key &key : keys)
            QTest::keyClick(m_editor.get(), key.key, key.modifiers);
    }
    void moveTo(int position, int anchor = -1)
    {
        QTextCursor cursor = m_editor->textCursor();
        cursor.setPosition(anchor < 0 ? position : anchor);
        cursor.setPosition(position, QTextCursor::KeepAnchor);
        m_editor->setTextCursor(cursor);
    }
    /// The text as the document alone tells it.
    QString documentText() const
    {
        const QTextDocument &document = *m_editor->document();
        return ContextDocument::text(document, 0, document.characterCount() - 1,
                                     m_editor->fileText().newLine);
    }

    std::unique_ptr<ContextEditor> m_editor;
};

void ContextEditorTest::init()
{
    m_editor = std::make_unique<ContextEditor>();
    m_editor->resize(400, 300);
    m_editor->show();
    QVERIFY(QTest::qWaitForWindowActive(m_editor.get()));
    m_editor->setFocus();
}

void ContextEditorTest::whatIsNotEditedStaysAsItIs_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("empty") << QByteArray("");
    QTest::newRow("only a line feed") << QByteArray("\n");
    QTest::newRow("no final newline") << QByteArray("a\nb");
    QTest::newRow("CRLF") << QByteArray("a\r\nb\r\n");
    QTest::newRow("CR") << QByteArray("a\rb\r");
    QTest::newRow("mixed") << QByteArray("a\r\nb\nc\rd\r\r\ne\n\r\nf\n\n\r\n\r\n");
    QTest::newRow("byte-order mark") << QByteArray("\xef\xbb\xbfText\n");
    QTest::newRow("two byte-order marks") << QByteArray("\xef\xbb\xbf\xef\xbb\xbfx");
    QTest::newRow("no-break space") << u"a\u00a0b"_qs.toUtf8();
    QTest::newRow("line and paragraph separators") << u"a\u2028b\u2029c\n\u2029"_qs.toUtf8();
    QTest::newRow("NUL") << QByteArray("a\0b\0\n\0", 6);
    QTest::newRow("noncharacters") << u"\ufdd0a\ufdd1b\ufffe\uffff\n"_qs.toUtf8();
    QTest::newRow("object replacement character") << u"a\ufffcb"_qs.toUtf8();
    QTest::newRow("beyond the first plane") << u"\U0001f600\U0010ffff"_qs.toUtf8();
    QTest::newRow("controls") << QByteArray("\t\v\f\x1b[0m\x7f");
}

void ContextEditorTest::whatIsNotEditedStaysAsItIs()
{
    QFETCH(QByteArray, content);
    open(content);
    QCOMPARE(bytes(), content);
    QVERIFY(!m_editor->edited().isDirty());
    QVERIFY(documentText() == m_editor->edited().text());
    QVERIFY(!m_editor->grab().isNull()); // painting it changes nothing and does no harm
    QCOMPARE(bytes(), content);
}

void ContextEditorTest::typingAndDeletingBackIsNoChange_data()
{
    whatIsNotEditedStaysAsItIs_data();
}

void ContextEditorTest::typingAndDeletingBackIsNoChange()
{
    QFETCH(QByteArray, content);
    open(content);
    for (const auto move : {QTextCursor::Start, QTextCursor::End}) {
        m_editor->moveCursor(move);
        press({{Qt::Key_X}, {Qt::Key_Return}, {Qt::Key_Y}});
        QVERIFY(m_editor->edited().isDirty());
        press({{Qt::Key_Backspace}, {Qt::Key_Backspace}, {Qt::Key_Backspace}});
        QVERIFY(!m_editor->edited().isDirty());
        QCOMPARE(bytes(), content);
    }
    press({{Qt::Key_Z, Qt::ControlModifier}, {Qt::Key_Z, Qt::ControlModifier}});
    QVERIFY(documentText() == m_editor->edited().text());
}

void ContextEditorTest::aNewLineGetsTheUsualBreak_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QByteArray>("after");
    QTest::newRow("empty") << QByteArray("") << QByteArray("\nx");
    QTest::newRow("LF") << QByteArray("a\nb\n") << QByteArray("\nxa\nb\n");
    QTest::newRow("CRLF") << QByteArray("a\r\nb\r\n") << QByteArray("\r\nxa\r\nb\r\n");
    QTest::newRow("CR") << QByteArray("a\rb") << QByteArray("\rxa\rb");
    QTest::newRow("mostly CRLF") << QByteArray("a\r\nb\nc\r\n") << QByteArray("\r\nxa\r\nb\nc\r\n");
    QTest::newRow("mostly LF") << QByteArray("a\r\nb\nc\n") << QByteArray("\nxa\r\nb\nc\n");
    QTest::newRow("mark and CRLF") << QByteArray("\xef\xbb\xbf"
                                                 "a\r\n")
                                   << QByteArray("\xef\xbb\xbf\r\nxa\r\n");
}

void ContextEditorTest::aNewLineGetsTheUsualBreak()
{
    QFETCH(QByteArray, content);
    QFETCH(QByteArray, after);
    open(content);
    press({{Qt::Key_Return}, {Qt::Key_X}});
    QCOMPARE(bytes(), after);
}

void ContextEditorTest::anEditLeavesTheOtherBreaksOfAMixedFile()
{
    open("one\r\ntwo\nthree\rfour\n");
    moveTo(0);
    press({{Qt::Key_X}});
    moveTo(8);
    press({{Qt::Key_Y}});
    m_editor->moveCursor(QTextCursor::End);
    press({{Qt::Key_Z}});
    QCOMPARE(bytes(), QByteArray("xone\r\ntwoy\nthree\rfour\nz"));
}

void ContextEditorTest::removedLinesComeBackWithTheirBreaks()
{
    const QByteArray mixed("one\r\ntwo\n\r\nthree\rfour\n\n\r\n");
    open(mixed);
    press({{Qt::Key_A, Qt::ControlModifier}, {Qt::Key_Delete}});
    QCOMPARE(bytes(), QByteArray());
    press({{Qt::Key_Z, Qt::ControlModifier}});
    QCOMPARE(bytes(), mixed);
    QVERIFY(!m_editor->edited().isDirty());
    press({{Qt::Key_Y, Qt::ControlModifier}});
    QCOMPARE(bytes(), QByteArray());
    press({{Qt::Key_Z, Qt::ControlModifier}});
    for (int from = 0; from < m_editor->edited().size(); ++from) {
        moveTo(from);
        press({{Qt::Key_Delete}, {Qt::Key_Z, Qt::ControlModifier}});
        QCOMPARE(bytes(), mixed);
    }
}

void ContextEditorTest::joiningLinesTakesTheBreakBetweenThem()
{
    open("a\r\nb\nc\r");
    moveTo(2);
    press({{Qt::Key_Backspace}});
    QCOMPARE(bytes(), QByteArray("ab\nc\r"));
    moveTo(2);
    press({{Qt::Key_Delete}});
    QCOMPARE(bytes(), QByteArray("abc\r"));
}

void ContextEditorTest::staysInStepWithItsDocumentThroughRandomEdits()
{
    open("one\r\ntwo\n\r\nthree\rfour\n\n\r\nfive\r\r\n\nsix");
    std::mt19937 random(7);
    const auto upTo = [&](int most) { return std::uniform_int_distribution<int>(0, most)(random); };
    const QList<Key> keys{{Qt::Key_A},
                          {Qt::Key_Space},
                          {Qt::Key_Return},
                          {Qt::Key_Backspace},
                          {Qt::Key_Delete},
                          {Qt::Key_Z, Qt::ControlModifier},
                          {Qt::Key_Y, Qt::ControlModifier},
                          {Qt::Key_X, Qt::ControlModifier},
                          {Qt::Key_V, Qt::ControlModifier}};
    for (int i = 0; i < 3000; ++i) {
        const auto size = int(m_editor->edited().size());
        if (upTo(2) == 0)
            moveTo(upTo(size), upTo(size));
        press({keys.at(upTo(int(keys.size()) - 1))});
        QVERIFY(documentText() == m_editor->edited().text());
        QCOMPARE(m_editor->edited().words(), countWords(m_editor->edited().text()));
    }
}

void ContextEditorTest::tabInsertsATab()
{
    open("x");
    press({{Qt::Key_Tab}});
    QCOMPARE(bytes(), QByteArray("\tx"));
}

void ContextEditorTest::shiftAndReturnMakeAnOrdinaryNewLine()
{
    open("a\r\n");
    press({{Qt::Key_Return, Qt::ShiftModifier}});
    QCOMPARE(bytes(), QByteArray("\r\na\r\n"));
}

void ContextEditorTest::copiesAndPastesEveryCharacter()
{
    const QByteArray content = u"a\u00a0b\u2028c\nd\0\ufeff"_qs.toUtf8();
    open(content);
    press({{Qt::Key_A, Qt::ControlModifier}, {Qt::Key_X, Qt::ControlModifier}});
    QCOMPARE(bytes(), QByteArray());
    QCOMPARE(QGuiApplication::clipboard()->text(), QString::fromUtf8(content));
    press({{Qt::Key_V, Qt::ControlModifier}});
    QCOMPARE(bytes(), content);
    QVERIFY(!m_editor->edited().isDirty());
}

void ContextEditorTest::pastedTextGetsTheUsualBreaks()
{
    open("a\r\n");
    QGuiApplication::clipboard()->setText(u"1\n2\r\n3\r"_qs);
    press({{Qt::Key_V, Qt::ControlModifier}});
    QCOMPARE(bytes(), QByteArray("1\r\n2\r\n3\r\na\r\n"));
}

void ContextEditorTest::halfACharacterPastedIsNoLineBreak()
{
    open("");
    QGuiApplication::clipboard()->setText(u"a"_qs + QChar(crLf) + u"b"_qs);
    press({{Qt::Key_V, Qt::ControlModifier}});
    QCOMPARE(bytes(), QByteArray("a\xef\xbf\xbd"
                                 "b"));
}

void ContextEditorTest::undoBeginsWithTheText()
{
    open("first");
    press({{Qt::Key_X}});
    open("second");
    QVERIFY(!m_editor->document()->isUndoAvailable());
    press({{Qt::Key_Z, Qt::ControlModifier}});
    QCOMPARE(bytes(), QByteArray("second"));
    press({{Qt::Key_X}, {Qt::Key_Z, Qt::ControlModifier}});
    QCOMPARE(bytes(), QByteArray("second"));
    press({{Qt::Key_Y, Qt::ControlModifier}});
    QCOMPARE(bytes(), QByteArray("xsecond"));
}

void ContextEditorTest::aTextOutlivesTheThreadThatMadeIt_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("empty") << QByteArray("");
    QTest::newRow("one line") << QByteArray("one line");
    QTest::newRow("two lines") << QByteArray("two\nlines\n");
}

void ContextEditorTest::aTextOutlivesTheThreadThatMadeIt()
{
    QFETCH(QByteArray, content);
    OpenedText text;
    const ContextDocument::Style style = m_editor->documentStyle();
    // What Qt knows of fonts is kept for each thread, and goes with it.
    std::unique_ptr<QThread> maker(
        QThread::create([&] { text = OpenedText::make(decodeText(content).value(), style); }));
    maker->start();
    QVERIFY(maker->wait());
    maker.reset();
    m_editor->open(std::move(text));
    m_editor->moveCursor(QTextCursor::End);
    QVERIFY(!m_editor->grab().isNull());
    QTest::keyClick(m_editor.get(), Qt::Key_X);
    QCOMPARE(bytes(), content + 'x');
}

void ContextEditorTest::isReadOnlyToPastingToo()
{
    open("text");
    m_editor->setReadOnly(true);
    QGuiApplication::clipboard()->setText(u"pasted"_qs);
    press({{Qt::Key_V, Qt::ControlModifier}, {Qt::Key_Return, Qt::ShiftModifier}, {Qt::Key_X}});
    QCOMPARE(bytes(), QByteArray("text"));
}

void ContextEditorTest::theFontIsMonospacedAndAsLargeAsOtherText()
{
    const auto check = [this] {
        const QFont font = m_editor->document()->defaultFont();
        QCOMPARE(font.pointSizeF(), QApplication::font().pointSizeF());
        QCOMPARE(QFontMetrics(font).horizontalAdvance(u"iiii"_qs),
                 QFontMetrics(font).horizontalAdvance(u"MMMM"_qs));
    };
    check();
    const QFont before = QApplication::font();
    QFont larger = before;
    larger.setPointSizeF(before.pointSizeF() * 1.5);
    QApplication::setFont(larger);
    QCoreApplication::processEvents();
    check();
    open("another text");
    check();
    QApplication::setFont(before);
}

PLINTHAR_GUI_TEST_MAIN(ContextEditorTest)
#include "ContextEditorTest.moc"
