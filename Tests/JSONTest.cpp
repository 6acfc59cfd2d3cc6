#include "JSON/JSONReader.h"
#include "JSON/JSONWriter.h"

#include <QtCore/QBuffer>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QStringEncoder>
#include <QtTest/QTest>

#include <algorithm>
#include <limits>

using namespace Quorvix;
using namespace Qt::StringLiterals;

namespace {

/// A device that accepts a limited number of bytes and then fails. Like a full disk, it accepts a part of a
/// block.
class FullDevice final : public QIODevice
{
public:
    explicit FullDevice(qint64 capacity) : m_left(capacity) { open(WriteOnly | Unbuffered); }

protected:
    qint64 readData(char *, qint64) override { return -1; }
    qint64 writeData(const char *, qint64 size) override
    {
        const qint64 taken = std::min(size, m_left);
        m_left -= taken;
        setErrorString(u"full"_s);
        return taken > 0 ? taken : -1;
    }

private:
    qint64 m_left;
};

QByteArray rewritten(const QByteArray &json, JSONWriter::KeyOrder order,
                     JSONWriter::Format format = JSONWriter::Format::Compact)
{
    const auto document = JSONReader::parse(json);
    if (!document)
        return document.error().localizedDescription.toUtf8();
    JSONWriter writer(format);
    writer.value(document.value().root(), order);
    return writer.takeBuffer();
}

} // namespace

class JSONTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writesPrettyText();
    void escapesText();
    void escapesAtEveryPlaceInABlock();
    void readsBackLongText();
    void encodesBase64();
    void writesNumbers();
    void streamsToADevice();
    void reportsADeviceThatIsFull();
    void asksWhileItWrites();
    void readsInPlace();
    void acceptsText();
    void replacesLoneSurrogates();
    void readsEncodings();
    void readsValues();
    void ordersMembers();
};

void JSONTest::writesPrettyText()
{
    const QByteArray json = R"({"b":[],"a":{"x":{},"list":[1,[true,null],"a/b"]}})";
    QCOMPARE(rewritten(json, JSONWriter::KeyOrder::Document), json);
    QCOMPARE(rewritten(json, JSONWriter::KeyOrder::Sorted, JSONWriter::Format::Pretty),
             R"({
  "a" : {
    "list" : [
      1,
      [
        true,
        null
      ],
      "a/b"
    ],
    "x" : {}
  },
  "b" : []
})");
}

void JSONTest::escapesText()
{
    const QString text = u"\"\\ \b\f\n\r\t \u0000\u000b\u001f \u00e9\u07ff\u0800\uffff\U0001F600"_s;
    const QByteArray json =
        uR"("\"\\ \b\f\n\r\t \u0000\u000b\u001f )"_s.toUtf8() + "\u00e9\u07ff\u0800\uffff\U0001F600\"";
    JSONWriter writer(JSONWriter::Format::Compact);
    writer.beginArray();
    writer.string(text);
    writer.utf8(text.toUtf8());
    writer.string(u"a"_s + QChar(0xD83D) + u"b"_s + QChar(0xDE00));
    writer.endArray();
    QCOMPARE(writer.takeBuffer(), '[' + json + ',' + json + ",\"a\ufffdb\ufffd\"]");
}

/// The text is longer than several blocks of each size.
void JSONTest::escapesAtEveryPlaceInABlock()
{
    constexpr qsizetype size = 200;
    const auto written = [](const auto &text) {
        JSONWriter writer;
        if constexpr (std::is_same_v<decltype(text), const QString &>)
            writer.string(text);
        else
            writer.utf8(text);
        return writer.takeBuffer();
    };
    for (int c = 0; c < 256; ++c) {
        QByteArray escaped(1, char(c));
        if (c < 0x80)
            escaped = QJsonDocument(QJsonArray{QString(QChar(c))})
                          .toJson(QJsonDocument::Compact)
                          .chopped(2)
                          .sliced(2);
        for (qsizetype at = 0; at < size; ++at) {
            const QByteArray text = QByteArray(at, 'x') + char(c) + QByteArray(size - at - 1, 'x');
            const QByteArray json =
                '"' + QByteArray(at, 'x') + escaped + QByteArray(size - at - 1, 'x') + '"';
            QCOMPARE(written(text), json);
            if (c < 0x80)
                QCOMPARE(written(QString::fromLatin1(text)), json);
        }
        QCOMPARE(written(QByteArray(size, char(c))), '"' + escaped.repeated(size) + '"');
    }
}

/// The text is longer than any internal chunk, and a surrogate pair crosses every possible chunk border.
void JSONTest::readsBackLongText()
{
    for (const QString &start : {u""_s, u"-"_s}) {
        const QString text = start + u"\U0001F600"_s.repeated(50'000) + u"\n\"end"_s;
        JSONWriter writer(JSONWriter::Format::Compact);
        writer.beginArray();
        writer.string(text);
        writer.utf8(text.toUtf8());
        writer.endArray();
        const QJsonArray array = QJsonDocument::fromJson(writer.takeBuffer()).array();
        QVERIFY(array.at(0).toString() == text);
        QVERIFY(array.at(1).toString() == text);
    }
}

void JSONTest::encodesBase64()
{
    for (const qsizetype size : {0, 1, 2, 3, 255, 256, 257, 12 * 1024, 12 * 1024 + 1, 100'000}) {
        QByteArray bytes(size, Qt::Uninitialized);
        for (qsizetype i = 0; i < size; ++i)
            bytes[i] = char(i * 167 + i / 256);
        JSONWriter writer;
        writer.base64(bytes);
        QCOMPARE(writer.takeBuffer(), '"' + bytes.toBase64() + '"');
    }
}

void JSONTest::writesNumbers()
{
    const auto written = [](double number) {
        JSONWriter writer;
        writer.number(number);
        return writer.takeBuffer();
    };
    QCOMPARE(written(0.1 + 0.2), "0.30000000000000004");
    QCOMPARE(written(1e20), "100000000000000000000");
    QCOMPARE(written(1e21), "1e+21");
    QCOMPARE(written(-1.5e-6), "-0.0000015");
    QCOMPARE(written(-1.5e-7), "-1.5e-07");
    QCOMPARE(written(-0.0), "-0.0");
    QCOMPARE(written(-2.2250738585072014e-308), "-2.2250738585072014e-308");
    QCOMPARE(written(std::numeric_limits<double>::quiet_NaN()), "0");
    QCOMPARE(written(-std::numeric_limits<double>::infinity()), "0");
}

void JSONTest::streamsToADevice()
{
    const auto write = [](JSONWriter &writer) {
        writer.beginArray();
        for (int i = 0; i < 30'000; ++i)
            writer.string(u"Some \"text\" that fills more than one block in the end"_s);
        writer.base64(QByteArray(2'000'000, 'x'));
        writer.endArray();
    };
    JSONWriter buffered;
    write(buffered);

    QBuffer device;
    QVERIFY(device.open(QIODevice::WriteOnly));
    JSONWriter streaming(device);
    write(streaming);
    QCOMPARE(streaming.finish(), std::nullopt);
    QVERIFY(device.data() == buffered.takeBuffer());
}

void JSONTest::reportsADeviceThatIsFull()
{
    for (const qint64 capacity : {0, 3'000'000, 5'000'001}) {
        FullDevice device(capacity);
        JSONWriter writer(device);
        writer.utf8(QByteArray(5'000'000, 'x'));
        QCOMPARE(writer.finish(), (NSError{NSCocoaErrorDomain, NSFileWriteUnknownError, u"full"_s}));
    }
}

void JSONTest::readsInPlace()
{
    // What lies behind a text would complete it.
    const auto inPlace = [](QByteArray text) {
        const qsizetype size = text.size();
        text.append(QByteArray("1\"}").repeated(JSONReader::padding)).resize(size);
        return JSONReader::parseInPlace(text);
    };
    QCOMPARE(inPlace("12").value().root().toInt64(), 12);
    QCOMPARE(inPlace("\xEF\xBB\xBF[\"x\"]").value().root().size(), 1);
    QVERIFY(!inPlace("{\"a\":\"x"));
    QVERIFY(!inPlace("[1"));

    // Free memory before a text is not behind it.
    QByteArray shortened = QByteArray(2 * JSONReader::padding, ' ') + R"(["a"])";
    shortened.squeeze();
    shortened.remove(0, 2 * JSONReader::padding);
    QCOMPARE(JSONReader::parseInPlace(shortened).value().root().size(), 1);
}

void JSONTest::asksWhileItWrites()
{
    constexpr qsizetype size = 20'000;
    constexpr qsizetype count = 400;
    const QByteArray strings =
        (',' + ('"' + QByteArray(size, 'x') + '"')).repeated(count).replace(0, 1, "[") + ']';
    const auto document = JSONReader::parse(strings);
    QVERIFY(document);
    qsizetype asked = 0;
    qsizetype last = 0;
    JSONWriter().value(document.value().root(), JSONWriter::KeyOrder::Document, [&](qsizetype done) {
        ++asked;
        return std::exchange(last, done) <= done && done <= document.value().size();
    });
    QVERIFY(asked >= count * size / 256'000);
}

void JSONTest::acceptsText()
{
    const int deepest = JSONReader::maximumDepth - 1;
    const QByteArray nested = "["_ba.repeated(deepest) + "]"_ba.repeated(deepest);
    const QByteArray beyondTheMachine =
        R"({"a":[0.5,-1e400,{"b":"1e400\",2e400"}],"c":12345678901234567890123,"d":[2E+999,7,true],)"
        R"("e":[-9223372036854775808,18446744073709551615,-9223372036854775809,18446744073709551616]})";
    for (const QByteArray &json : {"{}"_ba, nested, beyondTheMachine})
        QCOMPARE(rewritten("\xEF\xBB\xBF" + json, JSONWriter::KeyOrder::Sorted), json);
}

void JSONTest::replacesLoneSurrogates()
{
    constexpr std::pair<const char *, const char *> rows[] = {
        {R"("\ud83d")", R"("�")"},
        {R"("\uDE00")", R"("�")"},
        {R"("a\uD83D\u0041\n\ude00")", R"("a�A\n�")"},
        {R"("\ud83d\ud83d\ude00\ude00")", R"("�😀�")"},
        {R"("\\ud83d\\\ud83d")", R"("\\ud83d\\�")"},
        {R"("\ud83dude00\ud83d\\ude00")", R"("�ude00�\\ude00")"},
    };
    for (const auto &[text, expected] : rows) {
        // The numbers before and behind it stop the parser, too.
        const auto json = [](const QByteArray &string) {
            return "[1e400,{" + string + ':' + string + "},-1e400]";
        };
        QCOMPARE(rewritten(json(text), JSONWriter::KeyOrder::Document), json(expected));
    }
}

void JSONTest::readsEncodings()
{
    const QString text = u" {\"\u00e9\" : [\"\U0001F600\\ud83d\", 1e400]}\n"_s;
    const QByteArray json = u"{\"\u00e9\":[\"\U0001F600\ufffd\",1e400]}"_s.toUtf8();
    using enum QStringConverter::Encoding;
    for (const auto encoding : {Utf8, Utf16LE, Utf16BE, Utf32LE, Utf32BE}) {
        QStringEncoder encoder(encoding, QStringConverter::Flag::WriteBom);
        const QByteArray bytes = encoder.encode(text);
        QCOMPARE(rewritten(bytes, JSONWriter::KeyOrder::Document), json);
        QVERIFY(JSONReader::beginsLikeContainer(bytes));
    }
}

void JSONTest::readsValues()
{
    QVERIFY(!JSONReader::parse("17", JSONReader::TopLevel::Container));
    const auto document =
        JSONReader::parse(R"({"a":-1,"list":["x",18446744073709551615,2.5,[]],"a":2,"t":true})",
                          JSONReader::TopLevel::Container);
    QVERIFY(document);
    const JSONValue root = document.value().root();
    QCOMPARE(root.size(), 4);
    QCOMPARE(root.member("a")->toInt64(), 2);
    QVERIFY(root.member("t")->isTrue());
    QVERIFY(!root.member("b"));
    QVERIFY(root.elements().begin() == root.elements().end());

    const JSONValue list = *root.member("list");
    QCOMPARE(list.size(), 4);
    QVERIFY(!list.member("a"));
    std::vector<JSONValue> elements;
    for (const JSONValue element : list.elements())
        elements.push_back(element);
    QCOMPARE(elements.size(), size_t(4));
    QCOMPARE(elements[0].text(), u"x"_s);
    QCOMPARE(elements[0].toInt64(), 0);
    QCOMPARE(elements[1].numberKind(), JSONValue::NumberKind::UInt64);
    QCOMPARE(elements[1].toUInt64(), std::numeric_limits<quint64>::max());
    QCOMPARE(elements[2].toDouble(), 2.5);
    QCOMPARE(elements[3].size(), 0);
    QVERIFY(elements[1].wideNumber().isEmpty());

    const auto wide = JSONReader::parse("-1e400");
    QVERIFY(wide);
    QCOMPARE(wide.value().root().toDouble(), std::numeric_limits<double>::lowest());
}

/// Members are sorted by code point; an order by UTF-16 units would put U+1F600 before U+FF5E.
void JSONTest::ordersMembers()
{
    const QByteArray json =
        u"{\"\U0001F600\":1,\"b\":2,\"\uff5e\":3,\"a10\":4,\"A\":{\"d\":0,\"c\":0},\"a9\":5}"_s.toUtf8();
    QCOMPARE(
        rewritten(json, JSONWriter::KeyOrder::Sorted),
        u"{\"A\":{\"c\":0,\"d\":0},\"a10\":4,\"a9\":5,\"b\":2,\"\uff5e\":3,\"\U0001F600\":1}"_s.toUtf8());
    QCOMPARE(rewritten(json, JSONWriter::KeyOrder::Document), json);
}

QTEST_GUILESS_MAIN(JSONTest)
#include "JSONTest.moc"
