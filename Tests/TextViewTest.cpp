#include "Tests/TextTest.h"

#include "Text/QXHexColumns.h"
#include "Text/QXTextCanvas.h"

#include "Platform/BackgroundThread.h"

#include <QtCore/QSemaphore>

using namespace Qt::StringLiterals;

namespace {

using Change = void (*)(QXTextCanvas &);

/// Another thread breaks its rows.
const QString longText = u"a line of text\n"_s.repeated(150'000);

} // namespace

/// What a text shows, and where.
class TextViewTest : public TextTest
{
    Q_OBJECT

private Q_SLOTS:
    void showsBytes();
    void bytesFitTheWidth_data();
    void bytesFitTheWidth();
    void scrolls();
    void showsALineWithoutEnd();
    void staysAtTheTopRowWhenResized();
    void fitsForeignLetters();
    void showsNoRowsOfAFormerText_data();
    void showsNoRowsOfAFormerText();
};

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

void TextViewTest::bytesFitTheWidth_data()
{
    QTest::addColumn<qint64>("bytes");
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("perRow");
    QTest::addColumn<QString>("lastOffset");
    QTest::newRow("tablet") << qint64(17) << 72 << 16 << u"0010"_s;
    QTest::newRow("16 just fit") << qint64(17) << 69 << 16 << u"0010"_s;
    QTest::newRow("phone, a smaller font") << qint64(17) << 34 << 8 << u"0010"_s;
    QTest::newRow("200 MB") << qint64(200'000'000) << 72 << 8 << u"0bebc1ff"_s;
    QTest::newRow("twice the text on a phone") << qint64(17) << 18 << 4 << u"0010"_s;
    QTest::newRow("only bytes") << qint64(17) << 5 << 2 << QString();
    QTest::newRow("no room at all") << qint64(0) << 1 << 1 << QString();
}

void TextViewTest::bytesFitTheWidth()
{
    QFETCH(const qint64, bytes);
    QFETCH(const int, width);
    QFETCH(const int, perRow);
    QFETCH(const QString, lastOffset);
    const auto columns = QXHexColumns::fitting(bytes, width);
    QCOMPARE(columns.bytesPerRow(), perRow);
    QCOMPARE(columns.areComplete(), !lastOffset.isEmpty());
    if (!columns.areComplete())
        return;
    QCOMPARE(columns.offsetText(bytes - 1), lastOffset);
    QVERIFY(columns.fontFactor() >= 0.75 && columns.fontFactor() <= 1);
    QVERIFY((columns.charactersColumn() + perRow) * columns.fontFactor() <= width + 0.01);
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
