#include "Tests/TextTest.h"

#include "Text/QXHexColumns.h"

#include <QtTest/QSignalSpy>

using namespace Qt::StringLiterals;

/// Selects in a text with the mouse, the keys and a finger.
class TextSelectionTest : public TextTest
{
    Q_OBJECT

private Q_SLOTS:
    void selectsWholeBytes();
    void selectsWithTheMouse_data();
    void selectsWithTheMouse();
    void selectionScrollsAlong();
    void selectsWithKeys();
    void touchScrolls();
    void fingerSelects();
    void asksForTheMenu();

private:
    [[nodiscard]] QPoint middleOfKnob(const char *handle);
};

/// The point where a finger presses a handle of the selection.
QPoint TextSelectionTest::middleOfKnob(const char *handle)
{
    const bool isStart = qstrcmp(handle, "QXSelectionStart") == 0;
    const QRectF edge = isStart ? view()->startEdge() : view()->endEdge();
    const QPointF knob(edge.x(), isStart ? edge.top() - 5 : edge.bottom() + 5);
    const QQuickItem *const item = find(handle);
    return item && item->contains(item->mapFromItem(view(), knob)) ? view()->mapToScene(knob).toPoint()
                                                                   : QPoint();
}

void TextSelectionTest::selectsWholeBytes()
{
    QVERIFY(open(new QXTextDocument(QByteArray("GET /\n\xff\x7f and more bytes", 24))));
    // Among the digits, from the middle of one byte into another.
    for (const auto &[from, to, bytes] : {std::tuple(0, 6, u"47 45"_s), {4, 10, u"45 54"_s}}) {
        QTest::mousePress(m_window.get(), Qt::LeftButton, {}, placeOf(from));
        QTest::mouseMove(m_window.get(), placeOf(to));
        QTest::mouseRelease(m_window.get(), Qt::LeftButton, {}, placeOf(to));
        QCOMPARE(copied(), bytes);
    }
    // Among the characters at the right, in the second row.
    const qreal cell = (view()->caretAt(3).x() - view()->caretAt(0).x()) / 3;
    const auto columns = QXHexColumns::fitting(24, int(view()->width() / cell));
    QCOMPARE(columns.bytesPerRow(), 8);
    const auto character = [&](int index) {
        const QPointF place((columns.charactersColumn() + index) * cell, 1.5 * view()->rowHeight());
        return view()->mapToScene(place).toPoint();
    };
    QTest::mousePress(m_window.get(), Qt::LeftButton, {}, character(1));
    QTest::mouseMove(m_window.get(), character(4));
    QTest::mouseRelease(m_window.get(), Qt::LeftButton, {}, character(4));
    QCOMPARE(copied(), u"61 6e 64"_s);
    press(Qt::Key_Right, Qt::ShiftModifier);
    QCOMPARE(copied(), u"61 6e 64 20"_s);
    press(Qt::Key_End, Qt::ShiftModifier);
    QCOMPARE(copied(), u"61 6e 64 20 6d 6f 72"_s);
    press(Qt::Key_A, Qt::ControlModifier);
    QCOMPARE(copied(), m_document->text());
}

void TextSelectionTest::selectsWithTheMouse_data()
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

void TextSelectionTest::selectsWithTheMouse()
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

void TextSelectionTest::selectionScrollsAlong()
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

void TextSelectionTest::selectsWithKeys()
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

void TextSelectionTest::touchScrolls()
{
    QVERIFY(open(new QXTextDocument(numberedLines(1000))));
    touch({200, 400});
    for (int y = 380; y >= 200; y -= 20)
        moveFinger({200, y});
    lift({200, 200});
    QTRY_VERIFY(page()->property("contentY").toReal() > 50);
    QVERIFY(!view()->hasSelection() && m_window->property("requested").toString().isEmpty());
}

void TextSelectionTest::fingerSelects()
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

void TextSelectionTest::asksForTheMenu()
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

QTEST_MAIN(TextSelectionTest)
#include "TextSelectionTest.moc"
