// Checks the assumptions of SimdjsonFence about simdjson. Many releases of the library are supported, and it
// selects its code for the processor, so no test may depend on the release or the processor.

#include "JSON/JSONReader.h"
#include "JSON/JSONWideNumbers.h"
#include "JSON/JSONWriter.h"

#include <QtTest/QTest>

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <vector>

using namespace Quorvix;
using namespace Qt::StringLiterals;

namespace {

/// A text directly before a memory page that cannot be read. The destructor unmaps the text.
class TextBeforeGuardPage final
{
public:
    explicit TextBeforeGuardPage(QByteArrayView text)
    {
        Q_ASSERT(text.size() <= m_page);
        char *const edge = m_pages + m_page;
        mprotect(edge, size_t(m_page), PROT_NONE);
        m_text = {std::copy(text.begin(), text.end(), edge - text.size()) - text.size(), text.size()};
    }
    ~TextBeforeGuardPage() { munmap(m_pages, size_t(2 * m_page)); }
    Q_DISABLE_COPY_MOVE(TextBeforeGuardPage)

    [[nodiscard]] QByteArrayView view() const { return m_text; }

private:
    const qsizetype m_page = sysconf(_SC_PAGESIZE);
    char *const m_pages = static_cast<char *>(
        mmap(nullptr, size_t(2 * m_page), PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    QByteArrayView m_text;
};

QByteArray nested(int depth, const QByteArray &innermost)
{
    return "["_ba.repeated(depth) + innermost + "]"_ba.repeated(depth);
}

std::vector<JSONValue> elementsOf(const JSONValue &array)
{
    std::vector<JSONValue> elements;
    for (const JSONValue element : array.elements())
        elements.push_back(element);
    return elements;
}

} // namespace

class SimdjsonFenceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tellsReasons_data();
    void tellsReasons();
    void refusesMoreThanItCounts();
    void readsToTheDepthLimit();
    void keepsDigits_data();
    void keepsDigits();
    void readsNoByteBeyondTheText();
    void tellsUtf8_data();
    void tellsUtf8();
    void countsBeyondTheKeptSize();
};

void SimdjsonFenceTest::tellsReasons_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QString>("sentence");

    const QString empty = u"The text is empty."_s;
    const QString noJson = u"The text is not valid JSON."_s;
    const QString noUtf8 = u"The text is not valid UTF-8."_s;
    const QString number = u"The JSON text holds a malformed number."_s;
    const QString string = u"The JSON text holds a malformed string."_s;
    const int tooDeep = JSONReader::maximumDepth + 1;
    QTest::newRow("nothing at all") << QByteArray() << empty;
    QTest::newRow("blank") << " \n"_ba << empty;
    QTest::newRow("only a byte order mark") << "\xEF\xBB\xBF"_ba << empty;
    QTest::newRow("newer releases pass over a second byte order mark")
        << "\xEF\xBB\xBF\xEF\xBB\xBF[1]"_ba << noJson;
    QTest::newRow("not UTF-8 outside of a string") << "\xFF\xFE[1]"_ba << noUtf8;
    QTest::newRow("two values") << "1 2"_ba << noJson;
    QTest::newRow("two containers") << "[1][2]"_ba << noJson;
    QTest::newRow("bracket behind the end") << "[1]]"_ba << noJson;
    QTest::newRow("NUL behind the end") << "[1]\0"_ba << noJson;
    QTest::newRow("comment") << "[1]//"_ba << noJson;
    QTest::newRow("comma behind the last element") << "[1,]"_ba << noJson;
    QTest::newRow("open array") << "[1"_ba << noJson;
    QTest::newRow("open object") << "{\"a\":"_ba << noJson;
    for (const auto &atom : {"tru"_ba, "fals"_ba, "nul"_ba, "truex"_ba, "NaN"_ba})
        QTest::addRow("%s for an atom", atom.constData()) << '[' + atom + ']' << noJson;
    QTest::newRow("newer releases take any word for a number") << "[x1, -1, 1.5e3]"_ba << noJson;
    QTest::newRow("form feed for a blank") << "[\f1]"_ba << noJson;
    QTest::newRow("not UTF-8") << "[\"\xff\"]"_ba << noUtf8;
    QTest::newRow("not UTF-8 behind a wide number") << "[98765432109876543210,\"\xff\"]"_ba << noUtf8;
    QTest::newRow("surrogate as UTF-8") << "[\"\xED\xA0\x80\"]"_ba << noUtf8;
    QTest::newRow("open string") << "[\"a"_ba << string;
    QTest::newRow("raw control character") << "[\"\x01\"]"_ba << string;
    QTest::newRow("escape of nothing") << R"(["\a"])"_ba << string;
    QTest::newRow("escape of nothing beside half of a pair") << R"(["\ud800\a"])"_ba << string;
    QTest::newRow("half of a pair outside of a string") << R"([\ud800])"_ba << noJson;
    QTest::newRow("UTF-16 that breaks off") << "\xFF\xFE[\0]\0\n"_ba << noUtf8;
    QTest::newRow("half of a pair in UTF-16") << "\xFE\xFF\0[\0\"\xD8\0\0\"\0]"_ba << noUtf8;
    QTest::newRow("UTF-32 beyond the largest character") << "\xFF\xFE\0\0\0\0\x11\0"_ba << noUtf8;
    QTest::newRow("UTF-32 with a pair") << "\0\0\xFE\xFF\0\0\xD8\0\0\0\xDC\0"_ba << noUtf8;
    QTest::newRow("just too deep") << nested(tooDeep, {}) << u"The JSON text is nested too deeply."_s;
    QTest::newRow("leading zero") << "[01]"_ba << number;
    QTest::newRow("leading zero of a wide number") << "[-098765432109876543210]"_ba << number;
    QTest::newRow("letter in a wide number") << "[98765432109876543210x]"_ba << number;
    QTest::newRow("malformed number behind a wide one") << "[98765432109876543210,1.]"_ba << number;
    QTest::newRow("no JSON behind a wide number") << "[98765432109876543210,]"_ba << noJson;
}

void SimdjsonFenceTest::tellsReasons()
{
    QFETCH(const QByteArray, json);
    const auto document = JSONReader::parse(json);
    QVERIFY(!document);
    QCOMPARE(document.error().domain, NSCocoaErrorDomain);
    QCOMPARE(document.error().code, NSPropertyListReadCorruptError);
    QTEST(document.error().localizedDescription, "sentence");
}

/// simdjson stores the size of a text in 32 bits.
void SimdjsonFenceTest::refusesMoreThanItCounts()
{
    constexpr size_t size = size_t(std::numeric_limits<quint32>::max()) + 1;
    void *const blanks = mmap(nullptr, size, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    QVERIFY(blanks != MAP_FAILED);
    const auto document = JSONReader::parse({static_cast<const char *>(blanks), qsizetype(size)});
    munmap(blanks, size);
    QVERIFY(!document);
    QCOMPARE(document.error().localizedDescription, u"The JSON text is too large."_s);
}

/// simdjson does not count an empty array as a level.
void SimdjsonFenceTest::readsToTheDepthLimit()
{
    const int deepest = JSONReader::maximumDepth;
    QVERIFY(JSONReader::parse(nested(deepest, {})));
    QVERIFY(JSONReader::parse(nested(deepest - 1, "0")));
    QVERIFY(JSONReader::parse(nested(deepest - 1, "{}")));
    QVERIFY(!JSONReader::parse(nested(deepest, "0")));
    QVERIFY(!JSONReader::parse(nested(deepest, "{}")));
}

void SimdjsonFenceTest::keepsDigits_data()
{
    using Kind = JSONValue::NumberKind;
    QTest::addColumn<QByteArray>("digits");
    QTest::addColumn<Kind>("kind");
    QTest::addColumn<bool>("isWide");

    QTest::newRow("largest signed integer") << "9223372036854775807"_ba << Kind::Int64 << false;
    QTest::newRow("smallest unsigned-only integer") << "9223372036854775808"_ba << Kind::UInt64 << false;
    QTest::newRow("largest integer") << "18446744073709551615"_ba << Kind::UInt64 << false;
    QTest::newRow("one above 64 bits") << "18446744073709551616"_ba << Kind::Double << true;
    QTest::newRow("20 digits, wraps around 64 bits") << "20000000000000000000"_ba << Kind::Double << true;
    QTest::newRow("most of 20 digits") << "99999999999999999999"_ba << Kind::Double << true;
    QTest::newRow("21 digits, newer releases have another code")
        << "100000000000000000000"_ba << Kind::Double << true;
    QTest::newRow("smallest integer") << "-9223372036854775808"_ba << Kind::Int64 << false;
    QTest::newRow("one below 64 bits") << "-9223372036854775809"_ba << Kind::Double << true;
    QTest::newRow("20 digits below 64 bits") << "-18446744073709551616"_ba << Kind::Double << true;
    QTest::newRow("400 digits") << "1"_ba.repeated(400) << Kind::Double << true;
    QTest::newRow("minus nought as an integer") << "-0"_ba << Kind::Int64 << false;
    QTest::newRow("minus nought as a double") << "-0.0"_ba << Kind::Double << false;
    QTest::newRow("largest double") << "1.7976931348623157e308"_ba << Kind::Double << false;
    QTest::newRow("beyond a double") << "1e309"_ba << Kind::Double << true;
    QTest::newRow("below a double") << "-1.5E+400"_ba << Kind::Double << true;
    QTest::newRow("too small for a double") << "-1e-400"_ba << Kind::Double << false;
    QTest::newRow("wide with a fraction") << "12345678901234567890123.5"_ba << Kind::Double << false;
    QTest::newRow("wide with an exponent") << "100000000000000000000e-2"_ba << Kind::Double << false;
}

void SimdjsonFenceTest::keepsDigits()
{
    QFETCH(const QByteArray, digits);
    QFETCH(const JSONValue::NumberKind, kind);
    QFETCH(const bool, isWide);
    const auto check = [&](const JSONValue &number) {
        QCOMPARE(number.kind(), JSONValue::Kind::Number);
        QCOMPARE(number.numberKind(), kind);
        QCOMPARE(number.wideNumber(), isWide ? QByteArrayView(digits) : QByteArrayView());
        QCOMPARE(number.toDouble(), nearestDouble(digits));
    };
    const auto alone = JSONReader::parse(digits);
    QVERIFY(alone);
    check(alone.value().root());

    // The values before the wide number have every form, because each form takes a different space on the
    // tape. The bytes of the first number look like a type word of the tape.
    const auto among = JSONReader::parse(
        "[7782220156096217088,18446744073709551615,2.5,\"7\",[3],{\"8\":4},null,true,1e999," + digits +
        ",6]");
    QVERIFY(among);
    const std::vector<JSONValue> elements = elementsOf(among.value().root());
    QCOMPARE(elements.size(), size_t(11));
    check(elements[9]);
    QCOMPARE(elements[8].wideNumber(), "1e999");
    QCOMPARE(elements[10].toInt64(), 6);
    for (const size_t plain : {0, 1, 2, 3, 10})
        QVERIFY(elements[plain].wideNumber().isEmpty());
}

void SimdjsonFenceTest::readsNoByteBeyondTheText()
{
    for (qsizetype length = 0; length < 200; ++length) {
        const QByteArray text(length, 'x');
        auto guarded = std::make_unique<TextBeforeGuardPage>("[\"" + text + "\"]");
        const auto document = JSONReader::parse(guarded->view());
        QVERIFY(isValidUtf8(guarded->view()));
        guarded.reset();
        QVERIFY(document);
        QCOMPARE(elementsOf(document.value().root()).at(0).utf8(), text);
    }
}

void SimdjsonFenceTest::tellsUtf8_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("isUtf8");

    QTest::newRow("nothing at all") << QByteArray() << true;
    QTest::newRow("NUL") << "\0"_ba << true;
    QTest::newRow("byte order mark") << "\xEF\xBB\xBF"_ba << true;
    QTest::newRow("largest character") << "\xF4\x8F\xBF\xBF"_ba << true;
    QTest::newRow("beyond the largest character") << "\xF4\x90\x80\x80"_ba << false;
    QTest::newRow("surrogate") << "\xED\xA0\x80"_ba << false;
    QTest::newRow("two bytes for ASCII") << "\xC1\x81"_ba << false;
    QTest::newRow("half a character") << "\xE2\x82"_ba << false;
    QTest::newRow("continuation of nothing") << "\x80"_ba << false;
}

/// Checks the bytes at every offset, because simdjson processes blocks.
void SimdjsonFenceTest::tellsUtf8()
{
    QFETCH(const QByteArray, bytes);
    for (qsizetype before = 0; before < 130; ++before) {
        const QByteArray padding(before, 'x');
        QTEST(isValidUtf8(padding + bytes), "isUtf8");
        QTEST(isValidUtf8(padding + bytes + padding), "isUtf8");
    }
}

/// simdjson stores the size of an array in 24 bits.
void SimdjsonFenceTest::countsBeyondTheKeptSize()
{
    constexpr qsizetype count = (qsizetype(1) << 24) + 1;
    QByteArray json = "0,"_ba.repeated(count);
    json.back() = ']';
    const auto document = JSONReader::parse(json.prepend('['));
    QVERIFY(document);
    QCOMPARE(document.value().root().size(), count);
}

QTEST_GUILESS_MAIN(SimdjsonFenceTest)
#include "SimdjsonFenceTest.moc"
