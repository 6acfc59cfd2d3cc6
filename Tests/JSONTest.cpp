#include "Platform/JSONReader.h"
#include "Platform/JSONWriter.h"

#include <QtCore/QBuffer>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtTest/QTest>

#include <algorithm>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

constexpr char16_t highSurrogate = 0xD83D;
constexpr char16_t lowSurrogate = 0xDE00;

/// A device that takes so many bytes, like a full disk even a part of a block, and then fails.
class FullDevice final : public QIODevice
{
public:
    explicit FullDevice(qint64 capacity) : m_left(capacity) { open(WriteOnly | Unbuffered); }

protected:
    qint64 readData(char *, qint64) override { return -1; }
    qint64 writeData(const char *, qint64 size) override
    {
        if (m_left == 0) {
            setErrorString(u"full"_s);
            return -1;
        }
        const qint64 taken = std::min(size, m_left);
        m_left -= taken;
        return taken;
    }

private:
    qint64 m_left;
};

QByteArray rewritten(const QByteArray &json, JSONWriter::KeyOrder order, JSONWriter::Format format)
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
    void escapesText_data();
    void escapesText();
    void escapesAtEveryPlaceInABlock();
    void readsBackLongText();
    void encodesBase64();
    void writesNumbers_data();
    void writesNumbers();
    void streamsToADevice();
    void reportsADeviceThatIsFull_data();
    void reportsADeviceThatIsFull();
    void refusesText_data();
    void refusesText();
    void acceptsText_data();
    void acceptsText();
    void readsValues();
    void ordersMembers();
};

void JSONTest::writesPrettyText()
{
    const QByteArray json = R"({"b":[],"a":{"x":{},"list":[1,[true,null],"a/b"]}})";
    QCOMPARE(rewritten(json, JSONWriter::KeyOrder::Document, JSONWriter::Format::Compact), json);
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

void JSONTest::escapesText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("json");

    QTest::newRow("empty") << QString() << R"("")"_ba;
    QTest::newRow("quote and backslash") << uR"(a"b\c)"_s << R"("a\"b\\c")"_ba;
    QTest::newRow("short escapes") << u"\b\f\n\r\t"_s << R"("\b\f\n\r\t")"_ba;
    QTest::newRow("other control characters") << u"\u0000\u000b\u001f"_s << R"("\u0000\u000b\u001f")"_ba;
    QTest::newRow("delete is plain") << u"\u007f"_s << "\"\x7f\""_ba;
    QTest::newRow("two, three and four bytes")
        << u"\u00e9\u07ff\u0800\uffff\U0001F600"_s << u"\"\u00e9\u07ff\u0800\uffff\U0001F600\""_s.toUtf8();
    QTest::newRow("lone high surrogate") << u"a"_s + QChar(highSurrogate) << "\"a\xEF\xBF\xBD\""_ba;
    QTest::newRow("lone low surrogate") << QString(QChar(lowSurrogate)) + u"a"_s
                                        << "\"\xEF\xBF\xBD"
                                           "a\""_ba;
}

void JSONTest::escapesText()
{
    QFETCH(const QString, text);
    QFETCH(const QByteArray, json);

    JSONWriter fromUtf16;
    fromUtf16.string(text);
    QCOMPARE(fromUtf16.takeBuffer(), json);

    if (!text.isValidUtf16())
        return;
    JSONWriter fromUtf8;
    fromUtf8.utf8(text.toUtf8());
    QCOMPARE(fromUtf8.takeBuffer(), json);
}

void JSONTest::escapesAtEveryPlaceInABlock()
{
    for (int c = 0; c < 256; ++c) {
        for (qsizetype at = 0; at < 40; ++at) {
            QByteArray text(40, 'x');
            text[at] = char(c);
            JSONWriter writer;
            writer.utf8(text);
            const QByteArray plain = '"' + text + '"';
            const bool isEscaped = c < 0x20 || c == '"' || c == '\\';
            QCOMPARE(writer.takeBuffer() != plain, isEscaped);
        }
    }
}

/// Longer than any internal piece, with a pair of surrogates across every possible border between pieces.
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

void JSONTest::writesNumbers_data()
{
    QTest::addColumn<double>("number");
    QTest::addColumn<QByteArray>("json");

    QTest::newRow("no fraction") << 250.0 << "250"_ba;
    QTest::newRow("shortest form") << 0.1 << "0.1"_ba;
    QTest::newRow("needs all its digits") << 0.1 + 0.2 << "0.30000000000000004"_ba;
    QTest::newRow("no exponent without need") << 1500000.0 << "1500000"_ba;
    QTest::newRow("large") << 1e22 << "1e+22"_ba;
    QTest::newRow("negative nought") << -0.0 << "-0.0"_ba;
    QTest::newRow("small") << -1.5e-7 << "-1.5e-07"_ba;
    QTest::newRow("longest form") << -2.2250738585072014e-308 << "-2.2250738585072014e-308"_ba;
    QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN() << "0"_ba;
    QTest::newRow("infinite") << -std::numeric_limits<double>::infinity() << "0"_ba;
}

void JSONTest::writesNumbers()
{
    QFETCH(const double, number);
    JSONWriter writer;
    writer.number(number);
    QTEST(writer.takeBuffer(), "json");
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

void JSONTest::reportsADeviceThatIsFull_data()
{
    QTest::addColumn<qint64>("capacity");
    QTest::newRow("at the first block") << qint64(0);
    QTest::newRow("in the middle") << qint64(3'000'000);
    QTest::newRow("at the end") << qint64(5'000'001);
}

void JSONTest::reportsADeviceThatIsFull()
{
    QFETCH(const qint64, capacity);
    FullDevice device(capacity);
    JSONWriter writer(device);
    writer.utf8(QByteArray(5'000'000, 'x'));
    QCOMPARE(writer.finish(), (NSError{NSCocoaErrorDomain, NSFileWriteUnknownError, u"full"_s}));
}

void JSONTest::refusesText_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QString>("sentence");

    const QString invalid = u"The text is not valid JSON."_s;
    const QString number = u"The JSON text holds a malformed number."_s;
    const QString string = u"The JSON text holds a malformed string."_s;
    const int tooDeep = JSONReader::maximumDepth + 1;
    QTest::newRow("nothing at all") << QByteArray() << u"The text is empty."_s;
    QTest::newRow("empty") << ""_ba << u"The text is empty."_s;
    QTest::newRow("blank") << " \n"_ba << u"The text is empty."_s;
    QTest::newRow("open object") << R"({"a":1)"_ba << invalid;
    QTest::newRow("trailing comma") << "[1,]"_ba << invalid;
    QTest::newRow("two values") << "1 2"_ba << invalid;
    QTest::newRow("not UTF-8") << "[\"\xff\"]"_ba << u"The text is not valid UTF-8."_s;
    QTest::newRow("open string") << "[\"a"_ba << string;
    QTest::newRow("raw control character") << "[\"\x01\"]"_ba << string;
    QTest::newRow("deeper than the stack would bear")
        << "["_ba.repeated(1'000'000) + "]"_ba.repeated(1'000'000)
        << u"The JSON text is nested too deeply."_s;
    QTest::newRow("just too deep") << "["_ba.repeated(tooDeep) + "]"_ba.repeated(tooDeep)
                                   << u"The JSON text is nested too deeply."_s;
    QTest::newRow("leading zero") << "[01]"_ba << number;
    QTest::newRow("long integer with a leading zero") << "[0123456789012345678901]"_ba << number;
    QTest::newRow("wide number with a second point") << "[1e400.5]"_ba << number;
}

void JSONTest::refusesText()
{
    QFETCH(const QByteArray, json);
    const auto document = JSONReader::parse(json);
    QVERIFY(!document);
    QCOMPARE(document.error().domain, NSCocoaErrorDomain);
    QCOMPARE(document.error().code, NSPropertyListReadCorruptError);
    QTEST(document.error().localizedDescription, "sentence");
}

void JSONTest::acceptsText_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QByteArray>("compact");
    const int deepest = JSONReader::maximumDepth - 1;
    const QByteArray nested = "["_ba.repeated(deepest) + "]"_ba.repeated(deepest);

    QTest::newRow("scalar") << " \"a\" "_ba
                            << R"("a")"_ba;
    QTest::newRow("byte order mark") << "\xEF\xBB\xBF{}"_ba
                                     << "{}"_ba;
    QTest::newRow("deep") << nested << nested;
    QTest::newRow("limits of 64 bits") << "[-9223372036854775808,18446744073709551615]"_ba
                                       << "[-9223372036854775808,18446744073709551615]"_ba;
    QTest::newRow("integers beyond 64 bits")
        << R"([18446744073709551616,-9223372036854775809, "18446744073709551616\"", 7])"_ba
        << R"([18446744073709551616,-9223372036854775809,"18446744073709551616\"",7])"_ba;
    QTest::newRow("integer beyond 64 bits alone") << "123456789012345678901234"_ba
                                                  << "123456789012345678901234"_ba;
    const QByteArray wide =
        R"({"a":[0.5,-1e400,{"b":"1e400"}],"c":12345678901234567890123,"d":[1,2E+999,true]})";
    QTest::newRow("beyond the doubles, among others") << wide << wide;
    QTest::newRow("boolean, null and number stay apart") << "[true,1,null,0,false]"_ba
                                                         << "[true,1,null,0,false]"_ba;
    QTest::newRow("fraction without need") << "[1.0,-2.50]"_ba
                                           << "[1,-2.5]"_ba;
    QTest::newRow("escapes") << R"(["\u0041\u00e9\/\n\ud83d\ude00"])"_ba
                             << u"[\"A\u00e9/\\n\U0001F600\"]"_s.toUtf8();
}

void JSONTest::acceptsText()
{
    QFETCH(const QByteArray, json);
    QTEST(rewritten(json, JSONWriter::KeyOrder::Sorted, JSONWriter::Format::Compact), "compact");
}

void JSONTest::readsValues()
{
    QVERIFY(!JSONReader::parse("17", JSONReader::TopLevel::Container));
    const auto document =
        JSONReader::parse(R"({"a":-1,"list":["x",18446744073709551615,2.5,[]],"a":2,"t":true})",
                          JSONReader::TopLevel::Container);
    QVERIFY(document);
    const JSONValue root = document.value().root();
    QCOMPARE(root.kind(), JSONValue::Kind::Object);
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

/// By code point: an order by UTF-16 units would put U+1F600 before U+FF5E.
void JSONTest::ordersMembers()
{
    const QByteArray json =
        u"{\"\U0001F600\":1,\"b\":2,\"\uff5e\":3,\"a10\":4,\"A\":{\"d\":0,\"c\":0},\"a9\":5}"_s.toUtf8();
    QCOMPARE(
        rewritten(json, JSONWriter::KeyOrder::Sorted, JSONWriter::Format::Compact),
        u"{\"A\":{\"c\":0,\"d\":0},\"a10\":4,\"a9\":5,\"b\":2,\"\uff5e\":3,\"\U0001F600\":1}"_s.toUtf8());
    QCOMPARE(rewritten(json, JSONWriter::KeyOrder::Document, JSONWriter::Format::Compact), json);
}

QTEST_GUILESS_MAIN(JSONTest)
#include "JSONTest.moc"
