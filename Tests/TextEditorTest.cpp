#include "Tests/ScreenTest.h"

#include "Text/QXTextEditor.h"
#include "Text/QXTextModule.h"

#include "Controls/QXControlsModule.h"

#include <QtTest/QSignalSpy>

#include <limits>

using namespace Qt::StringLiterals;

namespace {

constexpr char pageQml[] = R"(
import QtQuick
import Quorvix.Controls
import Quorvix.Text

Window {
    width: 390
    height: 600
    visible: true

    QXTextArea {
        width: parent.width
        height: 300
        focus: true
    }
    Item {
        objectName: "next"
        activeFocusOnTab: true
    }
}
)";

} // namespace

class TextEditorTest : public ScreenTest
{
    Q_OBJECT

private Q_SLOTS:
    void init() override;
    void edits_data();
    void edits();
    void undoSelectsWhatWasReplaced();
    void tellsOfEdits();
    void keepsTheCaretInSight();
    void composes();
    void bearsAnyComposition_data();
    void bearsAnyComposition();
    void tellsInputMethodsLittle();
    void tapPlacesTheCaret();
    void bytesAreOnlyRead();
    void keystrokesDoNotBreakAllOfIt();

private:
    [[nodiscard]] QXTextEditor *editor() { return qobject_cast<QXTextEditor *>(find("QXTextEditor")); }
    void place(qsizetype anchor, qsizetype cursor);
    void compose(const QString &preedit, const QString &commit, int replacementStart = 0,
                 int replacementLength = 0);

    QQmlEngine m_engine;
};

void TextEditorTest::init()
{
    startAnew();
    linkQXControlsModule();
    linkQXTextModule();
    m_engine.addImportPath(u"qrc:/qt/qml"_s);
    m_window = makeWindow(m_engine, pageQml);
    QTRY_VERIFY(editor() && editor()->hasActiveFocus() && editor()->contentHeight() > 0);
}

void TextEditorTest::place(qsizetype anchor, qsizetype cursor)
{
    QXTextSelection selection;
    selection.set(anchor, cursor);
    editor()->setSelection(selection);
}

void TextEditorTest::compose(const QString &preedit, const QString &commit, int replacementStart,
                             int replacementLength)
{
    QInputMethodEvent event(preedit, {});
    event.setCommitString(commit, replacementStart, replacementLength);
    QCoreApplication::sendEvent(QGuiApplication::focusObject(), &event);
}

void TextEditorTest::edits_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("cursor");
    QTest::addColumn<QString>("keys");
    QTest::addColumn<QString>("edited");
    QTest::newRow("typing") << u"ac"_s << 1 << u"B, Space"_s << u"ab c"_s;
    QTest::newRow("a line end goes as one") << u"a\r\nb"_s << 3 << u"Backspace"_s << u"ab"_s;
    QTest::newRow("other line ends stay") << u"a\r\nb\rc\n"_s << 0 << u"X"_s << u"xa\r\nb\rc\n"_s;
    QTest::newRow("a picture goes as one") << u"👩‍💻x"_s << 0 << u"Del"_s << u"x"_s;
    QTest::newRow("word before") << u"one two_2"_s << 9 << u"Ctrl+Backspace"_s << u"one "_s;
    QTest::newRow("word behind") << u"one two"_s << 0 << u"Ctrl+Del"_s << u"two"_s;
    QTest::newRow("deleting a selection only") << u"abc"_s << 0 << u"Shift+Right, Backspace"_s << u"bc"_s;
    QTest::newRow("left leaves a selection") << u"abc"_s << 1 << u"Shift+Right, Left, X"_s << u"axbc"_s;
    QTest::newRow("end before the line end") << u"ab\r\ncd"_s << 0 << u"End, X"_s << u"abx\r\ncd"_s;
    QTest::newRow("down past a short line")
        << u"abcd\n\nefgh"_s << 3 << u"Down, Down, X"_s << u"abcd\n\nefgxh"_s;
    QTest::newRow("up") << u"ab\ncd"_s << 4 << u"Up, X"_s << u"axb\ncd"_s;
    QTest::newRow("ends of all") << u"ab\ncd"_s << 3 << u"Ctrl+Home, X, Ctrl+End, Y"_s << u"xab\ncdy"_s;
    QTest::newRow("words") << u"one  two\nx"_s << 0 << u"Ctrl+Right, X, Ctrl+Left, Ctrl+Left, Y"_s
                           << u"yone  xtwo\nx"_s;
    QTest::newRow("pages") << u"\n"_s.repeated(100) << 0 << u"PgDown, PgDown, PgUp, PgUp, X"_s
                           << QString(u"x"_s + u"\n"_s.repeated(100));
    QTest::newRow("cut and paste") << u"abc"_s << 0 << u"Shift+Right, Ctrl+X, End, Ctrl+V"_s << u"bca"_s;
    QTest::newRow("copy all") << u"a\r\nb"_s << 0 << u"Ctrl+A, Ctrl+C, Right, Ctrl+V"_s << u"a\r\nba\r\nb"_s;
    QTest::newRow("undo a word") << QString() << 0 << u"A, B, Space, C, D, Ctrl+Z"_s << u"ab "_s;
    QTest::newRow("undo deletions") << u"abcd"_s << 2 << u"Backspace, Backspace, Ctrl+Z"_s << u"abcd"_s;
    QTest::newRow("undo deletions behind") << u"abcd"_s << 2 << u"Del, Del, Ctrl+Z"_s << u"abcd"_s;
    QTest::newRow("nothing to redo after an edit")
        << u"x"_s << 1 << u"A, Ctrl+Z, B, Ctrl+Shift+Z"_s << u"xb"_s;
    QTest::newRow("commands type nothing") << u"x"_s << 1 << u"Ctrl+B, Alt+Left, Esc, F5"_s << u"x"_s;
}

void TextEditorTest::edits()
{
    QFETCH(const QString, text);
    QFETCH(const int, cursor);
    QFETCH(const QString, keys);
    QFETCH(const QString, edited);
    editor()->setText(text);
    place(cursor, cursor);
    press(keys);
    QCOMPARE(editor()->text(), edited);
    QXTextRows expected;
    expected.breakText(edited, 45);
    QCOMPARE(editor()->rows().count(), expected.count());
}

void TextEditorTest::undoSelectsWhatWasReplaced()
{
    editor()->setText(u"abcd"_s);
    place(3, 1);
    press(u"X, Ctrl+Z"_s);
    QCOMPARE(editor()->selectedText(), u"bc"_s);
    QCOMPARE(editor()->selection().cursor(), 1);
    press(u"Ctrl+Shift+Z"_s);
    QCOMPARE(editor()->text(), u"axd"_s);
    editor()->setText(u"other"_s);
    QVERIFY(!editor()->canUndo() && !editor()->canRedo());
}

void TextEditorTest::tellsOfEdits()
{
    QSignalSpy edited(editor(), &QXTextEditor::textEdited);
    QSignalSpy changed(editor(), &QXTextEditor::textChanged);
    editor()->setText(u"ab"_s);
    QCOMPARE(edited.size(), 0);
    press(u"X, Ctrl+Z, Left"_s);
    QCOMPARE(edited.size(), 2);
    QCOMPARE(changed.size(), 3);
    press(u"Tab"_s);
    QVERIFY(find("next")->hasActiveFocus());
    QCOMPARE(editor()->text(), u"ab"_s);
}

void TextEditorTest::keepsTheCaretInSight()
{
    editor()->setText(u"line\n"_s.repeated(100'000));
    const auto isSeen = [this] {
        const QRectF caret = editor()->inputMethodQuery(Qt::ImCursorRectangle).toRectF();
        return caret.top() >= 0 && caret.bottom() <= editor()->height();
    };
    press(u"Ctrl+End"_s);
    QTRY_VERIFY(editor()->scrollOffset() > 1e6 && isSeen());
    ScreenDriver::turnWheel(*m_window, QPoint(200, 150), -5);
    QTRY_VERIFY(!isSeen());
    press(u"X"_s);
    QTRY_VERIFY(isSeen());
    press(u"Ctrl+A, Backspace"_s);
    QTRY_VERIFY(editor()->scrollOffset() <= 0 && isSeen());
}

void TextEditorTest::composes()
{
    editor()->setText(u"one two"_s);
    place(4, 7);
    compose(u"zw"_s, {});
    QCOMPARE(editor()->text(), u"one "_s);
    QCOMPARE(editor()->rowTextAt(0), u"one zw"_s);
    const qreal composing = editor()->inputMethodQuery(Qt::ImCursorRectangle).toRectF().x();
    QCOMPARE(composing, editor()->caretAt(4, 2).x());
    compose({}, u"zwei"_s);
    QCOMPARE(editor()->text(), u"one zwei"_s);
    QCOMPARE(editor()->rowTextAt(0), u"one zwei"_s);
    compose({}, u"drei"_s, -4, 4);
    QCOMPARE(editor()->text(), u"one drei"_s);
    compose(u"x"_s, {});
    click(QPoint(20, 20));
    QCOMPARE(editor()->rowTextAt(0), editor()->text());

    QInputMethodEvent selecting({}, {{QInputMethodEvent::Selection, 1, 2}});
    QCoreApplication::sendEvent(editor(), &selecting);
    QCOMPARE(editor()->selectedText(), u"ne"_s);
}

void TextEditorTest::bearsAnyComposition_data()
{
    QTest::addColumn<int>("start");
    QTest::addColumn<int>("length");
    constexpr int least = std::numeric_limits<int>::min();
    constexpr int most = std::numeric_limits<int>::max();
    QTest::newRow("before the text") << -100 << 5;
    QTest::newRow("behind the text") << 100 << 5;
    QTest::newRow("beyond the end") << 2 << 100;
    QTest::newRow("backwards") << 2 << -5;
    QTest::newRow("within a character") << 2 << 1;
    QTest::newRow("a sum that is too small") << -5 << least;
    QTest::newRow("a sum that is too large") << 5 << most;
    QTest::newRow("the smallest numbers") << least << least;
    QTest::newRow("the largest numbers") << most << most;
}

void TextEditorTest::bearsAnyComposition()
{
    QFETCH(int, start);
    QFETCH(int, length);
    editor()->setText(u"a😀b"_s);
    for (const auto type :
         {QInputMethodEvent::TextFormat, QInputMethodEvent::Cursor, QInputMethodEvent::Language,
          QInputMethodEvent::Ruby, QInputMethodEvent::Selection}) {
        QInputMethodEvent event(u"x😀"_s, {{type, start, length}});
        QCoreApplication::sendEvent(editor(), &event);
        QVERIFY(editor()->selection().start() >= 0);
        QVERIFY(editor()->selection().end() <= editor()->text().size());
    }
    compose({}, u"y"_s, start, length);
    QVERIFY(editor()->text().contains(u'y'));
    QVERIFY(editor()->selection().cursor() <= editor()->text().size());
    m_window->grabWindow();
}

void TextEditorTest::tellsInputMethodsLittle()
{
    editor()->setText(u"0123456789"_s.repeated(1'000'000));
    place(5'000'003, 5'000'003);
    const QString around = editor()->inputMethodQuery(Qt::ImSurroundingText).toString();
    const int cursor = editor()->inputMethodQuery(Qt::ImCursorPosition).toInt();
    QVERIFY(around.size() < 10'000);
    QVERIFY(around.left(cursor).endsWith(u"012"_s) && around.mid(cursor).startsWith(u"345"_s));
    place(0, 10'000'000);
    QVERIFY(editor()->inputMethodQuery(Qt::ImCurrentSelection).toString().size() < 10'000);
    QVERIFY(editor()->inputMethodQuery(Qt::ImEnabled).toBool());
    QVERIFY(editor()->inputMethodQuery(Qt::ImHints).toInt() & Qt::ImhMultiLine);
}

void TextEditorTest::tapPlacesTheCaret()
{
    editor()->setText(u"abcd\nefgh"_s);
    find("next")->forceActiveFocus();
    const QRectF caret = editor()->caretAt(7).translated(0, -editor()->scrollOffset());
    const QPoint place = editor()->mapToScene(caret.center()).toPoint();
    touch(place);
    lift(place);
    QVERIFY(editor()->hasActiveFocus());
    press(u"X"_s);
    QCOMPARE(editor()->text(), u"abcd\nefxgh"_s);
}

void TextEditorTest::bytesAreOnlyRead()
{
    QXTextDocument bytes("\xff\x00"_ba);
    editor()->setDocument(&bytes);
    QVERIFY(editor()->isReadOnly() && !editor()->inputMethodQuery(Qt::ImEnabled).toBool());
    press(u"X, Backspace, Ctrl+V"_s);
    compose({}, u"x"_s);
    QCOMPARE(bytes.text(), u"ff 00"_s);
    editor()->setText(u"text"_s); // the text of the editor's own document
    press(u"X"_s);
    QCOMPARE(editor()->text(), u"xtext"_s);
    QCOMPARE(bytes.text(), u"ff 00"_s);
}

void TextEditorTest::keystrokesDoNotBreakAllOfIt()
{
    for (const bool isOneLine : {false, true}) {
        const QString text = (isOneLine ? u"0123456789"_s : u"012345678\n"_s).repeated(500'000);
        editor()->setText(text);
        const qsizetype middle = text.size() / 2;
        place(middle, middle);
        QTRY_VERIFY(editor()->rows().count() > 100'000); // another thread breaks the rows
        const int all = editor()->rows().count();
        editor()->insert(u"a"_s); // the text is still shared with the test
        const qsizetype before = editor()->rows().brokenCount();
        for (const char16_t unit : {u'b', u'c', u'd', u'\n'})
            editor()->insert(QChar(unit));
        const qsizetype broken = editor()->rows().brokenCount() - before;
        QVERIFY2(broken > 0 && broken <= (isOneLine ? 4 * (all / 2 + 4) : 16),
                 qPrintable(u"%1 of %2"_s.arg(broken).arg(all)));
        QCOMPARE(editor()->text().sliced(middle, 6), u"abcd\n"_s + text[middle]);
    }
}

QTEST_MAIN(TextEditorTest)
#include "TextEditorTest.moc"
