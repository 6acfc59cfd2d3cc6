#include "Tests/TestKit.h"

#include "Quorvix/QXBase64.h"
#include "Quorvix/QXPayloadDecoder.h"
#include "Quorvix/QXWhiteSpace.h"

#include <QtCore/QCoreApplication>
#include <QtTest/QTest>

#include <algorithm>
#include <ctime>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

using Pairs = QList<std::pair<QString, QString>>;

// From RFC 7519, sections 3.1 and 6.1; the first one is also in RFC 7515, A.1.
const QByteArray header = "eyJ0eXAiOiJKV1QiLA0KICJhbGciOiJIUzI1NiJ9"_ba;
const QByteArray claims =
    "eyJpc3MiOiJqb2UiLA0KICJleHAiOjEzMDA4MTkzODAsDQogImh0dHA6Ly9leGFtcGxlLmNvbS9pc19yb290Ijp0cnVlfQ"_ba;
const QByteArray signature = "dBjftJeZ4CVP-mB92K27uhbUJU1p1r_wW1gFWFOEjXk"_ba;
const QByteArray token = header + '.' + claims + '.' + signature;

const Pairs tokenSections{
    {u"Header"_s, u"{\n  \"typ\" : \"JWT\",\n  \"alg\" : \"HS256\"\n}"_s},
    {u"Body"_s,
     u"{\n  \"iss\" : \"joe\",\n  \"exp\" : 1300819380,\n  \"http://example.com/is_root\" : true\n}"_s},
    {u"Signature"_s, QString::fromLatin1(signature)}};

Pairs sectionsOf(const QXDecodedPayload &payload)
{
    Pairs pairs;
    for (const QXDecodedSection &section : payload.sections)
        pairs.append({section.title, section.content});
    return pairs;
}

} // namespace

class PayloadDecoderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void decodesBase64();
    void refusesBase64();
    void knowsWhiteSpace();
    void findsCandidate_data();
    void findsCandidate();
    void decodesPayload_data();
    void decodesPayload();
    void decodesJWT();
    void makesSection_data();
    void makesSection();
    void givesFreshIdentities();
    void localisesTitles();
    void takesLinearTime_data();
    void takesLinearTime();
};

void PayloadDecoderTest::decodesBase64()
{
    // Padded, in whole groups, with too little padding, with extra bits after the last byte, and with
    // characters of both alphabets.
    for (const auto &[text, bytes] : {std::pair(""_ba, ""_ba),
                                      {"Zg=="_ba, "f"_ba},
                                      {"Zm9vYmE="_ba, "fooba"_ba},
                                      {"Zm9vYmFyZm9v"_ba, "foobarfoo"_ba},
                                      {"Zm9vYg"_ba, "foob"_ba},
                                      {"Zm9vYg="_ba, "foob"_ba},
                                      {"Zm9vYh=="_ba, "foob"_ba},
                                      {"+/-_"_ba, "\xfb\xff\xbf"_ba}}) {
        QByteArray decoded;
        QVERIFY2(QXBase64::decode(text, QXBase64::WhiteSpace::Refused), text);
        QVERIFY2(QXBase64::decode(text, QXBase64::WhiteSpace::Refused, &decoded), text);
        QCOMPARE(decoded, bytes);
        QByteArray loose("\n");
        for (const char c : text)
            loose += c + "\u2009"_ba;
        QVERIFY2(QXBase64::decode(loose, QXBase64::WhiteSpace::Skipped, &decoded), text);
        QCOMPARE(decoded, bytes);
    }
}

void PayloadDecoderTest::refusesBase64()
{
    for (const char *text :
         {"Zm9vY", "Zm9v=", "Zm9vYg===", "Zg==Zm9v", "Zm9v.m9v", "Zm9vYg\x80", "Zm9v Zm9v"}) {
        QByteArray decoded;
        QVERIFY2(!QXBase64::decode(text, QXBase64::WhiteSpace::Refused), text);
        QVERIFY2(!QXBase64::decode(text, QXBase64::WhiteSpace::Refused, &decoded), text);
    }
}

void PayloadDecoderTest::knowsWhiteSpace()
{
    for (char32_t c = 0; c <= 0x1FFFF; ++c) {
        if (QChar::isSurrogate(c))
            continue;
        const QByteArray utf8 = QString::fromUcs4(&c, 1).toUtf8();
        const bool isSpace = QChar::isSpace(c);
        QCOMPARE(QXWhiteSpace::sizeAtStart(utf8 + 'x'), isSpace ? utf8.size() : 0);
        QCOMPARE(QXWhiteSpace::trimmed('x' + utf8).size(), isSpace ? 1 : utf8.size() + 1);
    }
}

void PayloadDecoderTest::findsCandidate_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("candidate");

    const auto found = [](const char *name, const QByteArray &text, const QByteArray &candidate) {
        QTest::newRow(name) << text << candidate;
    };
    const auto nothing = [](const char *name, const QByteArray &text) {
        QTest::newRow(name) << text << QByteArray();
    };
    const QByteArray data = "SGVsbG8gV29ybGQh"_ba;

    nothing("11 characters", "SGVsbG8gV29");
    found("12 characters", "SGVsbG8gV28=", "SGVsbG8gV28=");
    nothing("12 with white space, 11 without", "SGVsbG8 gV29");
    found("byte order mark", "\xEF\xBB\xBF" + data, data);
    found("white space around", " \t\r\n\v\f\u0085\u3000" + data + "\u2028\u00a0", data);
    found("line breaks of mail", "SGVsbG8g\r\nV29ybGQh\r\n", data);

    nothing("media type", "application/json");
    nothing("media types in a list", "application/json, application/javascript;q=0.5");
    for (const char *text : {"abcd/efg/ijk", "/bcdefghijkl", "abcdefghijk/", "abcde/ghijk=", "abcde/ghij_l"})
        QTest::addRow("%s is no media type", text) << QByteArray(text) << QByteArray(text);

    found("token", token, token);
    found("wrapped token", token.left(20) + "\n" + token.mid(20, 60) + "\r\n" + token.mid(80), token);
    nothing("token without signature", "eyJhbGciOiJub25lIn0." + claims + '.');
    nothing("token without body", header + ". ." + signature);
    nothing("token with a header that does not decode", "A." + claims + '.' + signature);
    nothing("token with a standard alphabet", header + ".++//." + signature);
    nothing("four pieces", token + ".x");
    found("scheme word", "Bearer " + token, token);
    for (const QByteArray &json :
         {R"({"alg":"ES256"})"_ba, R"({"alg":"ES256" })"_ba, R"({"alg":"ES256"  })"_ba}) {
        const QByteArray other =
            json.toBase64(QByteArray::OmitTrailingEquals) + '.' + claims + '.' + signature;
        QTest::addRow("scheme word that fills up a header of %d", int(json.size()))
            << "Bearer " + other << other;
    }
    found("scheme word before Base64", "Basic dXNlcjpwYXNzd29yZA==", "dXNlcjpwYXNzd29yZA==");

    found("wrappers", "[({<\"'" + data + "'\"<([{}])>", data);
    nothing("bracket inside", "SGVsbG8g[V29ybGQh");
    found("comma and semicolon end a word", "a:b," + data + ";c", data);
    for (const QByteArray &space : {"\u0085"_ba, "\u1680"_ba, "\u2003"_ba, "\u3000"_ba})
        QTest::addRow("%s ends a word", space.toHex().constData())
            << "~" + space + data + space + "~" << data;
    found("first of several", "~ SGVsbG8gV28= " + data, "SGVsbG8gV28=");

    found("name and value", "theme=dark; my-state_1=" + data + "; Path=/", data);
    found("value before a later word", "~ a=" + data + " SGVsbG8gV28=", data);
    found("name without characters", "~ =" + data, data);
    nothing("name with a dot", "my.state=" + data);
    nothing("value of 11", "~ a=SGVsbG8gV29");
    found("value with its own padding", "~ a=SGVsbG8gV28=", "SGVsbG8gV28=");
    nothing("value of a second name", "a=b=" + data);
    nothing("wrapper after the name", "~ a=\"" + data + '"');

    found("data URL before a word", "SGVsbG8gV28= data:;base64," + data, data);
    found("data URL in capitals before a word", "SGVsbG8gV28= DATA:;BASE64," + data, data);
    found("data URL, wrapped", "data:;base64,SGVs\r\nbG8g\u0085V29y\u2028bGQh", data);
    found("data URL ends at a blank", "data:;base64, " + data + " SGVsbG8gV28=", data);
    found("only the first data URL comes first", "data:;base64,! SGVsbG8gV28= data:;base64," + data,
          "SGVsbG8gV28=");

    found("bytes that are not UTF-8 end nothing", "\xff\xC2\xE3 " + data + " \xf0\x9f", data);
}

void PayloadDecoderTest::findsCandidate()
{
    QFETCH(const QByteArray, text);
    QFETCH(const QByteArray, candidate);
    const bool isFound = !candidate.isNull();
    const QString utf16 = QString::fromUtf8(text);
    QCOMPARE(QXPayloadDecoder::findEncodedCandidate(text).value_or(QByteArray()), candidate);
    QCOMPARE(QXPayloadDecoder::findEncodedCandidate(utf16).value_or(QString()),
             QString::fromLatin1(candidate));
    QCOMPARE(QXPayloadDecoder::hasEncodedCandidate(text), isFound);
    QCOMPARE(QXPayloadDecoder::decodePayload(text).has_value(), isFound);
}

void PayloadDecoderTest::decodesPayload_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("title");
    QTest::addColumn<Pairs>("sections");
    QTest::newRow("Base64 after words that are nearly Base64")
        << "QUJDREVGR0hJ=x SGVsbG8gV29ybGQh"_ba << u"Decoded Base64"_s
        << Pairs{{u"Text"_s, u"Hello World!"_s}};
    QTest::newRow("token") << token << u"Decoded JWT"_s << tokenSections;
    QTest::newRow("token with white space")
        << token.left(50) + "\n\u3000" + token.mid(50) << u"Decoded JWT"_s << tokenSections;
    QTest::newRow("token of something else")
        << "SGVsbG8._w.x===="_ba << u"Decoded JWT"_s
        << Pairs{{u"Header"_s, u"Hello"_s}, {u"Body"_s, u"ff"_s}, {u"Signature"_s, u"x===="_s}};
}

void PayloadDecoderTest::decodesPayload()
{
    QFETCH(const QByteArray, text);
    for (const auto &payload :
         {QXPayloadDecoder::decodePayload(text), QXPayloadDecoder::decodePayload(QString::fromUtf8(text))}) {
        QVERIFY(payload);
        QTEST(payload->title, "title");
        QTEST(sectionsOf(*payload), "sections");
    }
}

/// The function for a token decodes the parts without checking their content first.
void PayloadDecoderTest::decodesJWT()
{
    const QString oddSignature = u"\u00e9 "_s + QChar(0xD800);
    const auto payload = QXPayloadDecoder::decodeJWT(QString(u"Zg==.+/8=."_s + oddSignature));
    QVERIFY(payload);
    QCOMPARE(sectionsOf(*payload),
             (Pairs{{u"Header"_s, u"f"_s}, {u"Body"_s, u"fbff"_s}, {u"Signature"_s, oddSignature}}));
    for (const char *text : {"Zg.Zg", "Zg.Zg.", ".Zg.x", "Zg..x", "Zg.Zg.x.x", "Z.Zg.x", "Zg.Z g.x", ""})
        QVERIFY2(!QXPayloadDecoder::decodeJWT(QByteArrayView(text)), text);
}

void PayloadDecoderTest::makesSection_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("content");

    const auto row = [](const char *name, const QByteArray &bytes, const QString &title,
                        const QString &content) {
        QTest::newRow(name) << bytes << title << content;
    };
    row("nothing", "", u"Bytes"_s, {});
    row("text", "Zo\u00eb \U0001F600\n", u"Text"_s, u"Zo\u00eb \U0001F600\n"_s);
    row("byte order mark before text", "\xEF\xBB\xBFx", u"Text"_s, u"x"_s);
    row("byte order mark alone", "\xEF\xBB\xBF", u"Bytes"_s, u"efbbbf"_s);
    row("not UTF-8", "a\xff\x0f", u"Bytes"_s, u"61ff0f"_s);
    row("array after a byte order mark", "\xEF\xBB\xBF\t[\"a/b\"]", u"JSON"_s, u"[\n  \"a/b\"\n]"_s);
    row("array in UTF-16", "\xFF\xFE\t\0[\0]\0"_ba, u"JSON"_s, u"[]"_s);
    row("half of an emoji", R"({"\ud83d":1})", u"JSON"_s, u"{\n  \"\ufffd\" : 1\n}"_s);
    row("members of one name", R"({"b":1,"a":2,"b":3})", u"JSON"_s,
        u"{\n  \"b\" : 1,\n  \"a\" : 2,\n  \"b\" : 3\n}"_s);
    row("JSON that breaks off", "{\"a\":", u"Text"_s, u"{\"a\":"_s);
    row("nested too deeply", QByteArray(5000, '['), u"Text"_s, QString(5000, u'['));
    row("literal", "true", u"Text"_s, u"true"_s);
}

void PayloadDecoderTest::makesSection()
{
    QFETCH(const QByteArray, bytes);
    const QXDecodedSection section = QXPayloadDecoder::makeSection(bytes);
    QTEST(section.title, "title");
    QTEST(section.content, "content");
}

void PayloadDecoderTest::givesFreshIdentities()
{
    const auto first = QXPayloadDecoder::decodePayload(token);
    const auto second = QXPayloadDecoder::decodePayload(token);
    QSet<QUuid> ids{QUuid(), first->id, second->id};
    for (const QXDecodedSection &section : first->sections + second->sections)
        ids.insert(section.id);
    QCOMPARE(ids.size(), 9);
    QVERIFY(first != second);
}

void PayloadDecoderTest::localisesTitles()
{
    ShoutingTranslator translator;
    QCoreApplication::installTranslator(&translator);
    const auto payload = QXPayloadDecoder::decodePayload(token);
    QStringList titles{payload->title, QXPayloadDecoder::decodePayload("SGVsbG8gV29ybGQh"_ba)->title};
    for (const QXDecodedSection &section : payload->sections)
        titles.append(section.title);
    for (const char *bytes : {"[]", "x", ""})
        titles.append(QXPayloadDecoder::makeSection(bytes).title);
    QCoreApplication::removeTranslator(&translator);
    QCOMPARE(titles.join(u' '), u"DECODED JWT DECODED BASE64 HEADER BODY SIGNATURE JSON TEXT BYTES"_s);
}

void PayloadDecoderTest::takesLinearTime_data()
{
    QTest::addColumn<QByteArray>("head");
    QTest::addColumn<QByteArray>("repeated");
    const auto row = [](const char *name, const QByteArray &repeated, const QByteArray &head = "~") {
        QTest::newRow(name) << head << repeated;
    };
    row("names and equals signs", "a=");
    row("equals signs after an alphabet", "=", "SGVsbG8gV28");
    row("words that are nearly Base64", "QUJDREVGR0hJ=x ");
    row("words that are nearly tokens", "QUJD.REVG.R0hJ. ");
    row("data URL markers", "base64,");
    row("ends of markers", "4");
    row("white space in a text", "\u3000", "a");
    row("letters apart in a data URL", "A\n", "~base64,");
    row("wrappers", "\"");
    row("token with a header of white space", "Q\n", "x.y.");
}

void PayloadDecoderTest::takesLinearTime()
{
    QFETCH(const QByteArray, head);
    QFETCH(const QByteArray, repeated);
    const auto ticks = [&](qsizetype size) {
        const QByteArray text = head + repeated.repeated(size / repeated.size());
        std::clock_t best = std::numeric_limits<std::clock_t>::max();
        for (int run = 0; run < 5; ++run) {
            const std::clock_t start = std::clock();
            static_cast<void>(QXPayloadDecoder::decodePayload(text));
            best = std::min(best, std::clock() - start);
        }
        return best;
    };
    constexpr qsizetype size = 50'000;
    constexpr std::clock_t noise = CLOCKS_PER_SEC / 1000;
    const std::clock_t once = ticks(size);
    const std::clock_t fourTimes = ticks(4 * size);
    // Quadratic time would take sixteen times as long.
    QVERIFY2(fourTimes <= 9 * once + noise, qPrintable(u"%1 %2"_s.arg(once).arg(fourTimes)));
}

QTEST_GUILESS_MAIN(PayloadDecoderTest)
#include "PayloadDecoderTest.moc"
