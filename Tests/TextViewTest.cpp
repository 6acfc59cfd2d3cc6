#include "Tests/ScreenTest.h"

#include "Text/QXTextCanvas.h"
#include "Text/QXTextDocument.h"
#include "Text/QXTextModule.h"
#include "Text/QXTextView.h"

#include "Controls/QXControlsModule.h"

#include "Platform/BackgroundThread.h"

#include <QtCore/QSemaphore>
#include <QtTest/QSignalSpy>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr char pageQml[] = R"(
import QtQuick
import Quorvix.Controls
import Quorvix.Text

Window {
    id: root

    property QXTextDocument document
    property string requested

    width: 390
    height: 650
    visible: true

    Flickable {
        id: page
        objectName: "page"
        width: parent.width
        height: 600
        contentHeight: column.height
        clip: true

        Column {
            id: column
            width: page.width

            Item { objectName: "above"; width: 1; height: 100 }
            QXTextBlock {
                objectName: "block"
                x: 16
                width: page.width - 32
                page: page
                document: root.document
                focus: true
                onContextMenuRequested: position => root.requested = Math.round(position.x) + "," + Math.round(position.y)
            }
            Item { width: 1; height: 100 }
        }
    }
}
)";

/// A text of numbered lines, each 20 units long with its line end.
QString numberedLines(int count)
{
    QString text;
    text.reserve(qsizetype(count) * 20);
    for (int i = 0; i < count; ++i)
        text += u"line %1\n"_s.arg(i, 14, 10, QChar(u'0'));
    return text;
}

using Change = void (*)(QXTextCanvas &);

/// Another thread breaks its rows.
const QString longText = u"a line of text\n"_s.repeated(150'000);

} // namespace

class TextViewTest : public ScreenTest
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init() override { startAnew(); }
    void cleanup() override;
    void showsBytes();
    void scrolls();
    void showsALineWithoutEnd();
    void staysAtTheTopRowWhenResized();
    void selectsWithTheMouse_data();
    void selectsWithTheMouse();
    void selectionScrollsAlong();
    void selectsWithKeys();
    void touchScrolls();
    void fingerSelects();
    void asksForTheMenu();
    void fitsForeignLetters();
    void showsNoRowsOfAFormerText_data();
    void showsNoRowsOfAFormerText();

private:
    [[nodiscard]] bool open(QXTextDocument *document);
    [[nodiscard]] QQuickItem *page() { return find("page"); }
    [[nodiscard]] QXTextView *view() { return qobject_cast<QXTextView *>(find("QXTextView")); }
    void scrollTo(qreal y);
    /// The left edge of a character, in the window.
    [[nodiscard]] QPoint placeOf(qsizetype position);
    [[nodiscard]] QPoint middleOfKnob(const char *handle);
    [[nodiscard]] QString copied();

    QQmlEngine m_engine;
    std::unique_ptr<QXTextDocument> m_document;
};

void TextViewTest::initTestCase()
{
    linkQXControlsModule();
    linkQXTextModule();
    m_engine.addImportPath(u"qrc:/qt/qml"_s);
}

void TextViewTest::cleanup()
{
    m_window.reset();
    m_document.reset();
}

bool TextViewTest::open(QXTextDocument *document)
{
    m_document.reset(document);
    QQmlComponent component(&m_engine);
    component.setData(pageQml, QUrl());
    if (!component.isReady())
        qFatal("%s", qPrintable(component.errorString()));
    m_window.reset(qobject_cast<QQuickWindow *>(
        component.createWithInitialProperties({{u"document"_s, QVariant::fromValue(document)}})));
    return waitForActive(*m_window) &&
           QTest::qWaitFor([this] { return view() && view()->contentHeight() > 0 && view()->height() > 0; });
}

void TextViewTest::scrollTo(qreal y)
{
    page()->setProperty("contentY", y);
    QTRY_VERIFY(qAbs(view()->scrollOffset() - (y - 112)) < 1);
}

QPoint TextViewTest::placeOf(qsizetype position)
{
    const QRectF caret = view()->caretAt(position).translated(0, -view()->scrollOffset());
    return view()->mapToScene(caret.center() + QPointF(1, 0)).toPoint();
}

/// The point where a finger presses a handle of the selection.
QPoint TextViewTest::middleOfKnob(const char *handle)
{
    const bool isStart = qstrcmp(handle, "QXSelectionStart") == 0;
    const QRectF edge = isStart ? view()->startEdge() : view()->endEdge();
    const QPointF knob(edge.x(), isStart ? edge.top() - 5 : edge.bottom() + 5);
    const QQuickItem *const item = find(handle);
    return item && item->contains(item->mapFromItem(view(), knob)) ? view()->mapToScene(knob).toPoint()
                                                                   : QPoint();
}

QString TextViewTest::copied()
{
    QGuiApplication::clipboard()->clear();
    press(Qt::Key_C, Qt::ControlModifier);
    return clipboard();
}

void TextViewTest::showsBytes()
{
    QByteArray bytes("\xff\x00\x1a", 3);
    bytes.append(QByteArray(10'000'000, 'a'));
    QVERIFY(open(new QXTextDocument(bytes)));
    QVERIFY(m_document->isHexadecimal());
    QVERIFY(view()->rowTextAt(1).startsWith(u"ff 00 1a 61 61"_s));
    QCOMPARE(m_document->length(), bytes.size() * 3 - 1);
    QCOMPARE(m_document->text(m_document->length() - 4, 10), u"1 61"_s.right(4));
    QCOMPARE(QXTextDocument(QByteArray("\x01\x02", 2)).text(), u"01 02"_s);
}

void TextViewTest::scrolls()
{
    QVERIFY(open(new QXTextDocument(numberedLines(500'000))));
    QCOMPARE(view()->rowTextAt(1), u"line 00000000000000"_s);
    QTRY_VERIFY(view()->contentHeight() > 5e6); // another thread breaks the rows
    const qreal row = view()->rowHeight();
    scrollTo(112 + 250'000 * row);
    QCOMPARE(view()->rowTextAt(1), u"line 00000000250000"_s);
    QCOMPARE(view()->mapToItem(page(), QPointF()), QPointF(28, 0));
    QVERIFY(view()->height() <= 600);
    scrollTo(page()->property("contentHeight").toReal() - 600);
    QCOMPARE(view()->rowTextAt(view()->height() - 1), QString());
    QCOMPARE(view()->rowTextAt(view()->height() - 1 - row), u"line 00000000499999"_s);
}

void TextViewTest::showsALineWithoutEnd()
{
    QVERIFY(open(new QXTextDocument(QString(5'000'000, u'x') + u"end"_s)));
    QTRY_COMPARE(view()->rows().end(view()->rows().count() - 1), 5'000'003); // another thread breaks the rows
    const auto endsInView = [this] {
        scrollTo(page()->property("contentHeight").toReal() - 600); // the height follows the rows
        return view()->rowTextAt(view()->height() - 1).endsWith(u"xend"_s);
    };
    QTRY_VERIFY(endsInView());
}

void TextViewTest::staysAtTheTopRowWhenResized()
{
    QVERIFY(open(new QXTextDocument(QString(u"x"_s.repeated(99) + u'\n').repeated(1000))));
    const qreal narrow = view()->contentHeight();
    scrollTo(112 + 232 * view()->rowHeight());
    const qsizetype top = view()->positionAt({0, 1});
    m_window->resize(800, 650);
    QTRY_VERIFY(view()->contentHeight() < narrow);
    const auto distance = [&] {
        return qAbs(view()->positionAt({0, 1}) - top);
    };
    QTRY_VERIFY2(distance() < 200, qPrintable(QString::number(distance())));
}

void TextViewTest::selectsWithTheMouse_data()
{
    QTest::addColumn<QList<int>>("clicks"); // the first number is the number of clicks
    QTest::addColumn<int>("dragTo");
    QTest::addColumn<QString>("selected");
    QTest::newRow("drag backwards") << QList<int>{1, 9} << 2 << u"e two\nt"_s;
    QTest::newRow("word") << QList<int>{2, 9} << -1 << u"three_3"_s;
    QTest::newRow("words by dragging back") << QList<int>{2, 9} << 5 << u"two\nthree_3"_s;
    QTest::newRow("line") << QList<int>{3, 5} << -1 << u"one two\n"_s;
    QTest::newRow("click") << QList<int>{1, 2} << -1 << QString();
}

void TextViewTest::selectsWithTheMouse()
{
    QFETCH(const QList<int>, clicks);
    QFETCH(const int, dragTo);
    QVERIFY(open(new QXTextDocument(u"one two\nthree_3 four"_s)));
    QQuickWindow *const window = m_window.get();
    const QPoint first = placeOf(clicks[1]);
    QTest::mousePress(window, Qt::LeftButton, {}, first);
    for (int click = 2; click <= clicks[0]; ++click) {
        QTest::mouseRelease(window, Qt::LeftButton, {}, first);
        QTest::mousePress(window, Qt::LeftButton, {}, first);
        if (click == 2) {
            QMouseEvent second(QEvent::MouseButtonDblClick, first, window->mapToGlobal(first), Qt::LeftButton,
                               Qt::LeftButton, {});
            QCoreApplication::sendEvent(window, &second);
        }
    }
    if (dragTo >= 0)
        QTest::mouseMove(window, placeOf(dragTo));
    QTest::mouseRelease(window, Qt::LeftButton, {}, dragTo >= 0 ? placeOf(dragTo) : first);
    QTEST(view()->selectedText(), "selected");
    QTEST(copied(), "selected");
}

void TextViewTest::selectionScrollsAlong()
{
    QVERIFY(open(new QXTextDocument(numberedLines(100'000))));
    QQuickWindow *const window = m_window.get();
    const QPoint first = placeOf(5);
    QTest::mousePress(window, Qt::LeftButton, {}, first);
    QTest::mouseMove(window, first + QPoint(20, 20));
    QTest::mouseMove(window, QPoint(first.x(), 640));
    QTRY_VERIFY(page()->property("contentY").toReal() > 2000);
    QTest::mouseRelease(window, Qt::LeftButton, {}, QPoint(first.x(), 640));
    const QString selected = view()->selectedText();
    QVERIFY(selected.size() > 2000 && m_document->text().mid(5).startsWith(selected));
    scrollTo(1'000'000);
    QCOMPARE(view()->selectedText(), selected);
    QCOMPARE(copied(), selected);
    press(Qt::Key_A, Qt::ControlModifier);
    QCOMPARE(copied(), m_document->text());
}

void TextViewTest::selectsWithKeys()
{
    QVERIFY(open(new QXTextDocument(numberedLines(100'000))));
    QVERIFY(find("block")->hasActiveFocus());
    press(Qt::Key_Right, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(copied(), u"line "_s);
    press(Qt::Key_Down, Qt::ShiftModifier);
    press(Qt::Key_End, Qt::ShiftModifier);
    press(Qt::Key_Left, Qt::ShiftModifier);
    QCOMPARE(copied(), u"line 00000000000000\nline 0000000000000"_s);
    press(Qt::Key_End, Qt::ControlModifier | Qt::ShiftModifier);
    QTRY_COMPARE(view()->rowTextAt(view()->height() - 1), QString());
    QCOMPARE(view()->selection().end(), m_document->length());
    // The selection begins in the visible part.
    click(placeOf(m_document->length()));
    scrollTo(112 + 50'000 * view()->rowHeight());
    press(Qt::Key_Right, Qt::ShiftModifier);
    QVERIFY(qAbs(view()->selection().start() - qsizetype(50'000) * 20) <= 20);
}

void TextViewTest::touchScrolls()
{
    QVERIFY(open(new QXTextDocument(numberedLines(1000))));
    touch({200, 400});
    for (int y = 380; y >= 200; y -= 20)
        moveFinger({200, y});
    lift({200, 200});
    QTRY_VERIFY(page()->property("contentY").toReal() > 50);
    QVERIFY(!view()->hasSelection() && m_window->property("requested").toString().isEmpty());
}

void TextViewTest::fingerSelects()
{
    QVERIFY(open(new QXTextDocument(u"one two three four\nfive six seven"_s + u"\n"_s.repeated(100))));
    const auto requested = [this] {
        return m_window->property("requested").toString();
    };
    const auto drag = [&](QPoint from, QPoint to) {
        touch(from);
        moveFinger((from + to) / 2);
        moveFinger(to);
        lift(to);
    };

    // A long press selects a word. Moving the finger then selects more words, and the page does not scroll.
    touch(placeOf(5));
    QTRY_COMPARE(view()->selectedText(), u"two"_s);
    moveFinger(placeOf(10));
    moveFinger(placeOf(25));
    QTRY_COMPARE(view()->selectedText(), u"two three four\nfive six"_s);
    QVERIFY(requested().isEmpty());
    lift(placeOf(25));
    QVERIFY(!requested().isEmpty());
    QCOMPARE(page()->property("contentY").toReal(), 0);

    // Each handle moves its end of the selection, also past the other handle.
    drag(middleOfKnob("QXSelectionEnd"), middleOfKnob("QXSelectionEnd") + placeOf(21) - placeOf(27));
    QTRY_COMPARE(view()->selectedText(), u"two three four\nfi"_s);
    drag(middleOfKnob("QXSelectionStart"), middleOfKnob("QXSelectionStart") + placeOf(22) - placeOf(4));
    QTRY_COMPARE(view()->selectedText(), u"v"_s);

    // A tap on the selection opens the menu again; a tap beside it ends the selection.
    m_window->setProperty("requested", QString());
    touch(placeOf(21) + QPoint(2, 0));
    lift(placeOf(21) + QPoint(2, 0));
    QVERIFY(!requested().isEmpty() && view()->hasSelection());
    touch(placeOf(17));
    touch(placeOf(17));
    lift(placeOf(17));
    QVERIFY(!view()->hasSelection() && !find("QXSelectionStart"));
}

void TextViewTest::asksForTheMenu()
{
    QVERIFY(open(new QXTextDocument(numberedLines(100'000))));
    click(placeOf(2));
    QTest::mouseClick(m_window.get(), Qt::LeftButton, Qt::ShiftModifier, placeOf(9));
    QCOMPARE(view()->selectedText(), u"ne 0000"_s);
    QSignalSpy requested(view(), &QXTextView::contextMenuRequested);
    press(Qt::Key_A, Qt::ControlModifier);
    click(QPoint(100, 300), Qt::RightButton);
    QCOMPARE(m_window->property("requested").toString(), u"84,200"_s);
    QVERIFY(view()->hasSelection());
    press(Qt::Key_Menu);
    press(Qt::Key_F10, Qt::ShiftModifier);
    QCOMPARE(requested.size(), 3);
    QCOMPARE(requested[1][0].toPointF(), QPointF()); // the cursor is not visible
}

void TextViewTest::fitsForeignLetters()
{
    const QString line =
        u"\u0627\u0644\u0633\u0644\u0627\u0645 abc \u4E2D\u6587 \U0001F600 \uFDFD\uFDFD \x01\u2028"_s
            .repeated(4);
    QVERIFY(open(new QXTextDocument(line)));
    for (qsizetype position = 0; position < line.size(); ++position) {
        const QRectF caret = view()->caretAt(position);
        QVERIFY(caret.x() >= 0 && caret.right() <= view()->width());
    }
    QVERIFY(!view()->rowTextAt(1).contains(QChar(1)) && !view()->rowTextAt(1).contains(QChar::LineSeparator));
    press(Qt::Key_A, Qt::ControlModifier);
    QCOMPARE(copied(), line); // not the symbols that are painted instead
}

void TextViewTest::showsNoRowsOfAFormerText_data()
{
    QTest::addColumn<Change>("change");
    QTest::newRow("another document")
        << Change([](QXTextCanvas &canvas) { canvas.setDocument(new QXTextDocument(longText, &canvas)); });
    QTest::newRow("no document") << Change([](QXTextCanvas &canvas) { delete canvas.document(); });
    QTest::newRow("an edit in another font") << Change([](QXTextCanvas &canvas) {
        QFont font = canvas.font();
        font.setPixelSize(30);
        canvas.setFont(font);
        canvas.document()->setText(u"short"_s);
    });
}

/// The rows of a long text arrive after the canvas has got another one, and before its next frame.
void TextViewTest::showsNoRowsOfAFormerText()
{
    using Quorvix::BackgroundThread::postTask;
    QFETCH(const Change, change);
    QQuickWindow window;
    window.show();
    QXTextCanvas canvas(window.contentItem());
    canvas.setSize({390, 600});
    QSemaphore begin;
    QSemaphore ended;
    postTask([&] { begin.acquire(); }, [&] { begin.release(); });
    canvas.setDocument(new QXTextDocument(longText, &canvas));
    QTRY_VERIFY(canvas.contentHeight() > 0);
    const qreal beginning = canvas.contentHeight();
    begin.release();
    postTask([&] { ended.release(); }, [] {});
    ended.acquire();
    change(canvas);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::User);
    QCOMPARE(canvas.contentHeight(), beginning);
}

QTEST_MAIN(TextViewTest)
#include "TextViewTest.moc"
