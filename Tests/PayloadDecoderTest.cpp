#include "Quorvix/QXBase64.h"
#include "Quorvix/QXPayloadDecoder.h"
#include "Quorvix/QXWhiteSpace.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QRandomGenerator>
#include <QtCore/QTranslator>
#include <QtTest/QTest>

#include <algorithm>
#include <ctime>

using namespace Qt::StringLiterals;

namespace {

using Pairs = QList<std::pair<QString, QString>>;

// RFC 7519, sections 3.1 and 6.1; the first is RFC 7515's A.1 as well.
const QByteArray header = "eyJ0eXAiOiJKV1QiLA0KICJhbGciOiJIUzI1NiJ9"_ba;
const QByteArray unsecuredHeader = "eyJhbGciOiJub25lIn0"_ba;
const QByteArray claims =
    "eyJpc3MiOiJqb2UiLA0KICJleHAiOjEzMDA4MTkzODAsDQogImh0dHA6Ly9leGFtcGxlLmNvbS9pc19yb290Ijp0cnVlfQ"_ba;
const QByteArray signature = "dBjftJeZ4CVP-mB92K27uhbUJU1p1r_wW1gFWFOEjXk"_ba;
const QByteArray token = header + '.' + claims + '.' + signature;

const Pairs tokenSections{
    {u"Header"_s, u"{\n  \"typ\" : \"JWT\",\n  \"alg\" : \"HS256\"\n}"_s},
    {u"Body"_s,
     u"{\n  \"iss\" : \"joe\",\n  \"exp\" : 1300819380,\n  \"http://example.com/is_root\" : true\n}"_s},
    {u"Signature"_s, QString::fromLatin1(signature)}};

QByteArray urlEncoded(const QByteArray &bytes)
{
    return bytes.toBase64(QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals);
}

Pairs sectionsOf(const QXDecodedPayload &payload)
{
    Pairs pairs;
    for (const QXDecodedSection &section : payload.sections)
        pairs.append({section.title, section.content});
    return pairs;
}

/// Answers with what it is asked, decorated.
class ShoutingTranslator final : public QTranslator
{
public:
    [[nodiscard]] bool isEmpty() const override { return false; }
    [[nodiscard]] QString translate(const char *context, const char *source, const char *, int) const override
    {
        return QLatin1StringView(context) == "Quorvix"_L1 ? QLatin1StringView(source) + u'!' : QString();
    }
};

} // namespace

class PayloadDecoderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void decodesBase64_data();
    void decodesBase64();
    void knowsWhiteSpace();
    void findsCandidate_data();
    void findsCandidate();
    void findsTheSameInBothEncodings();
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

void PayloadDecoderTest::decodesBase64_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("isBase64");
    QTest::addColumn<QByteArray>("bytes");

    const auto accepted = [](const char *name, const QByteArray &text, const QByteArray &bytes) {
        QTest::newRow(name) << text << true << bytes;
    };
    const auto refused = [](const char *name, const QByteArray &text) {
        QTest::newRow(name) << text << false << QByteArray();
    };
    // RFC 4648, section 10
    accepted("empty", "", "");
    accepted("f", "Zg==", "f");
    accepted("fo", "Zm8=", "fo");
    accepted("foo", "Zm9v", "foo");
    accepted("foob", "Zm9vYg==", "foob");
    accepted("fooba", "Zm9vYmE=", "fooba");
    accepted("foobar", "Zm9vYmFy", "foobar");

    accepted("no padding, two missing", "Zm9vYg", "foob");
    accepted("no padding, one missing", "Zm9vYmE", "fooba");
    accepted("half the padding", "Zm9vYg=", "foob");
    accepted("bits beyond the last byte", "Zm9vYh==", "foob");
    accepted("both alphabets", "+/-_", "\xfb\xff\xbf");
    refused("remainder of 1", "Zm9vY");
    refused("remainder of 1, padded", "Zm9vY===");
    refused("padding after a whole group", "Zm9v=");
    refused("a group of padding", "Zm9v====");
    refused("padding alone", "====");
    refused("too much padding", "Zm9vYg===");
    refused("too much padding after three", "Zm9vYmE==");
    refused("padding in the middle", "Zg==Zm9v");
    refused("character after padding", "Zg=v");
    refused("foreign character in a whole group", "Zm9v.m9v");
    refused("foreign character at the end", "Zm9vYg\x80");
    refused("NUL", QByteArray("Zm9v\0Zm9", 8));
    refused("white space", "Zm9v Zm9v");
}

void PayloadDecoderTest::decodesBase64()
{
    QFETCH(const QByteArray, text);
    QFETCH(const bool, isBase64);
    QByteArray decoded;
    QCOMPARE(QXBase64::decode(text, QXBase64::WhiteSpace::Refused), isBase64);
    QCOMPARE(QXBase64::decode(text, QXBase64::WhiteSpace::Refused, &decoded), isBase64);
    if (!isBase64)
        return;
    QTEST(decoded, "bytes");
    QByteArray loose("\n");
    for (const char c : text)
        loose += c + "\u2009"_ba;
    QVERIFY(QXBase64::decode(loose, QXBase64::WhiteSpace::Skipped, &decoded));
    QTEST(decoded, "bytes");
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

    nothing("empty", "");
    nothing("white space alone", QByteArray(40, ' '));
    nothing("11 characters", "SGVsbG8gV29");
    found("12 characters", "SGVsbG8gV28=", "SGVsbG8gV28=");
    nothing("12 with white space, 11 without", "SGVsbG8 gV29");
    nothing("remainder of 1", "SGVsbG8gV29ybGQhx");
    found("byte order mark", "\xEF\xBB\xBF" + data, data);
    found("white space around", " \t\r\n\v\f\u0085\u3000" + data + "\u2028\u00a0", data);
    found("line breaks of mail", "SGVsbG8g\r\nV29ybGQh\r\n", data);
    found("white space beyond ASCII inside", "SGVs\u2003bG8g\u1680V29y\u0085bGQh", data);
    nothing("zero width space is a character", "SGVsbG8g\u200bV29ybGQh");
    nothing("letters beyond ASCII", "\u0391\u0412\u0421SGVsbG8gV29ybGQh");

    nothing("media type", "application/json");
    nothing("media type with white space", "application / json");
    nothing("media type with a plus", "application/problem+json");
    nothing("media types in a list", "application/json, application/javascript;q=0.5");
    found("two slashes are no media type", "abcd/efg/ijk", "abcd/efg/ijk");
    found("slash at the start is no media type", "/bcdefghijkl", "/bcdefghijkl");
    found("slash at the end is no media type", "abcdefghijk/", "abcdefghijk/");
    found("slash and padding are no media type", "abcde/ghijk=", "abcde/ghijk=");
    found("slash and underscore are no media type", "abcde/ghij_l", "abcde/ghij_l");

    found("token", token, token);
    found("wrapped token", token.left(20) + "\n" + token.mid(20, 60) + "\r\n" + token.mid(80), token);
    nothing("token without signature", unsecuredHeader + '.' + claims + '.');
    nothing("token without body", header + ". ." + signature);
    nothing("token with a header that does not decode", "A." + claims + '.' + signature);
    nothing("token with a standard alphabet", header + ".++//." + signature);
    nothing("four pieces", token + ".x");
    found("scheme word", "Bearer " + token, token);
    for (const char *json : {R"({"alg":"ES256"})", R"({"alg":"ES256" })", R"({"alg":"ES256"  })"}) {
        const QByteArray other = urlEncoded(json) + '.' + claims + '.' + signature;
        QTest::addRow("scheme word that fills up a header of %d", int(qstrlen(json)))
            << "Bearer " + other << other;
    }
    found("scheme word before Base64", "Basic dXNlcjpwYXNzd29yZA==", "dXNlcjpwYXNzd29yZA==");

    for (const QByteArray &wrappers : {"\"\""_ba, "''"_ba, "<>"_ba, "[]"_ba, "(){}"_ba, "[({<\"'>})]"_ba}) {
        const QByteArray wrapped =
            wrappers.left(wrappers.size() / 2) + data + wrappers.mid(wrappers.size() / 2);
        QTest::addRow("wrapped in %s", wrappers.constData()) << wrapped << data;
    }
    nothing("bracket inside", "SGVsbG8g[V29ybGQh");
    found("comma and semicolon end a word", "a:b," + data + ";c", data);
    for (const QByteArray &space : {"\u0085"_ba, "\u1680"_ba, "\u2003"_ba, "\u3000"_ba})
        QTest::addRow("%s ends a word", space.toHex().constData())
            << "~" + space + data + space + "~" << data;
    found("first of several", "~ SGVsbG8gV28= " + data, "SGVsbG8gV28=");
    found("JSON, pretty", "{\n  \"token\" : \"" + data + "\"\n}", data);
    nothing("JSON, compact: one word", "{\"token\":\"" + data + "\"}");

    found("name and value", "state=" + data, data);
    found("value before a later word", "~ a=" + data + " SGVsbG8gV28=", data);
    found("name without characters", "~ =" + data, data);
    nothing("name with a dot", "my.state=" + data);
    nothing("value of 11", "~ a=SGVsbG8gV29");
    found("value with its own padding", "~ a=SGVsbG8gV28=", "SGVsbG8gV28=");
    nothing("value of a second name", "a=b=" + data);
    found("cookies", "theme=dark; session=" + data + "; Path=/", data);
    found("token in a cookie", "theme=dark; session=" + token, token);
    nothing("wrapper after the name", "~ a=\"" + data + '"');

    found("data URL", "data:text/plain;base64," + data, data);
    found("data URL in capitals", "DATA:TEXT/PLAIN;BASE64," + data, data);
    found("data URL before a word", "SGVsbG8gV28= data:;base64," + data, data);
    found("data URL, wrapped", "data:;base64,SGVs\r\nbG8g\u0085V29y\u2028bGQh", data);
    found("data URL ends at a blank", "data:;base64, " + data + " SGVsbG8gV28=", data);
    found("only the first data URL comes first", "data:;base64,! SGVsbG8gV28= data:;base64," + data,
          "SGVsbG8gV28=");
    found("data URL in brackets", "url(data:image/png;base64," + data + ')', data);
    nothing("data URL without content", "data:text/plain;base64,");

    found("bytes that are not UTF-8 end nothing", "\xff\xC2\xE3 " + data + " \xf0\x9f", data);
    nothing("bytes that are not UTF-8 in a word", data + "\xC2");
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
    QCOMPARE(QXPayloadDecoder::hasEncodedCandidate(utf16), isFound);
    QCOMPARE(QXPayloadDecoder::decodePayload(text).has_value(), isFound);
}

/// Fragments thrown together, many of them torn: what is found is the same as in the repaired text.
void PayloadDecoderTest::findsTheSameInBothEncodings()
{
    const QByteArrayList fragments{"QUJD"_ba, "SGVsbG8gV29ybGQh"_ba,
                                   "="_ba,    "."_ba,
                                   "/"_ba,    " "_ba,
                                   "\r\n"_ba, ","_ba,
                                   "\""_ba,   "base64,"_ba,
                                   token,     "\xE2\x80"_ba,
                                   "\xC2"_ba, "\xE3\x80\x80"_ba,
                                   "\x85"_ba};
    QRandomGenerator generator(7);
    for (int i = 0; i < 3000; ++i) {
        QByteArray text;
        for (int count = int(generator.bounded(2, 12)); count > 0; --count)
            text += fragments[generator.bounded(fragments.size())];
        const auto candidate = QXPayloadDecoder::findEncodedCandidate(text);
        QCOMPARE(QXPayloadDecoder::findEncodedCandidate(QString::fromUtf8(text)),
                 candidate ? std::optional(QString::fromLatin1(*candidate)) : std::nullopt);
        QCOMPARE(QXPayloadDecoder::decodePayload(text).has_value(), candidate.has_value());
    }
}

void PayloadDecoderTest::decodesPayload_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("title");
    QTest::addColumn<Pairs>("sections");

    const auto base64 = [](const char *name, const QByteArray &text, const QString &section,
                           const QString &content) {
        QTest::newRow(name) << text << u"Decoded Base64"_s << Pairs{{section, content}};
    };
    base64("text", "SGVsbG8gV29ybGQh", u"Text"_s, u"Hello World!"_s);
    base64("text in mail", "SGVsbG8g\r\nV29ybGQh", u"Text"_s, u"Hello World!"_s);
    base64("JSON", R"({"b":[1],"a":null})"_ba.toBase64(), u"JSON"_s,
           u"{\n  \"b\" : [\n    1\n  ],\n  \"a\" : null\n}"_s);
    base64("a number is text", "12345678901"_ba.toBase64(), u"Text"_s, u"12345678901"_s);
    base64("a string is text", "\"quoted text\""_ba.toBase64(), u"Text"_s, u"\"quoted text\""_s);
    base64("image", "data:image/png;base64," + QByteArray::fromHex("89504e470d0a1a0a00ff").toBase64(),
           u"Bytes"_s, u"89504e470d0a1a0a00ff"_s);
    base64("URL-safe", urlEncoded("\xfb\xff\xfe\xff\xfb\xef\xff\xef\xfe"), u"Bytes"_s,
           u"fbfffefffbefffeffe"_s);
    base64("after words that are nearly Base64", "QUJDREVGR0hJ=x SGVsbG8gV29ybGQh", u"Text"_s,
           u"Hello World!"_s);
    QTest::newRow("token") << token << u"Decoded JWT"_s << tokenSections;
    QTest::newRow("scheme word and token") << "Bearer " + token << u"Decoded JWT"_s << tokenSections;
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

/// Given a token itself, it takes the pieces as they stand.
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
    row("NUL is text", QByteArray("a\0b", 3), u"Text"_s, u"a\0b"_s);
    row("byte order mark before text", "\xEF\xBB\xBFx", u"Text"_s, u"x"_s);
    row("byte order mark alone", "\xEF\xBB\xBF", u"Bytes"_s, u"efbbbf"_s);
    row("not UTF-8", "a\xff\x0f", u"Bytes"_s, u"61ff0f"_s);
    row("surrogate in UTF-8", "\xED\xA0\x80", u"Bytes"_s, u"eda080"_s);
    row("empty object", " {} ", u"JSON"_s, u"{}"_s);
    row("array after a byte order mark", "\xEF\xBB\xBF\t[\"a/b\"]", u"JSON"_s, u"[\n  \"a/b\"\n]"_s);
    row("members of one name", R"({"b":1,"a":2,"b":3})", u"JSON"_s,
        u"{\n  \"b\" : 1,\n  \"a\" : 2,\n  \"b\" : 3\n}"_s);
    row("JSON that breaks off", "{\"a\":", u"Text"_s, u"{\"a\":"_s);
    row("JSON that is not UTF-8", "[\"\xff\"]", u"Bytes"_s, u"5b22ff225d"_s);
    row("nested too deeply", QByteArray(5000, '['), u"Text"_s, QString(5000, u'['));
    row("literal", "true", u"Text"_s, u"true"_s);
}

void PayloadDecoderTest::makesSection()
{
    QFETCH(const QByteArray, bytes);
    const QXDecodedSection section = QXPayloadDecoder::makeSection(bytes);
    QTEST(section.title, "title");
    QTEST(section.content, "content");
    const QXDecodedSection titled = QXPayloadDecoder::makeSection(bytes, u"Body"_s);
    QCOMPARE(titled.title, u"Body"_s);
    QCOMPARE(titled.content, section.content);
}

void PayloadDecoderTest::givesFreshIdentities()
{
    const auto first = QXPayloadDecoder::decodePayload(token);
    const auto second = QXPayloadDecoder::decodePayload(token);
    QSet<QUuid> ids{first->id, second->id};
    for (const QXDecodedSection &section : first->sections + second->sections)
        ids.insert(section.id);
    QCOMPARE(ids.size(), 8);
    QVERIFY(!ids.contains(QUuid()));
    QVERIFY(first != second);
    QCOMPARE(QXDecodedPayload(), QXDecodedPayload());
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
    QCOMPARE(titles.join(u' '),
             u"Decoded JWT! Decoded Base64! Header! Body! Signature! JSON! Text! Bytes!"_s);
}

void PayloadDecoderTest::takesLinearTime_data()
{
    QTest::addColumn<QByteArray>("head");
    QTest::addColumn<QByteArray>("repeated");
    const auto row = [](const char *name, const QByteArray &repeated, const QByteArray &head = "~") {
        QTest::newRow(name) << head << repeated;
    };
    row("equals signs", "=");
    row("names and equals signs", "a=");
    row("equals signs after an alphabet", "=", "SGVsbG8gV28");
    row("letters and dots", "QUJD.");
    row("short words", "QUJDREVGR0hJ= ");
    row("growing value", "QUJD", "a=b=");
    row("words that are nearly Base64", "QUJDREVGR0hJ=x ");
    row("words that are nearly tokens", "QUJD.REVG.R0hJ. ");
    row("data URL markers", "base64,");
    row("data URL markers in one word", "base64,", "base64");
    row("ends of markers", "4");
    row("white space", " ", "");
    row("white space in a text", "\u3000", "a");
    row("letters apart", "A ", "");
    row("letters apart in a data URL", "A\n", "~base64,");
    row("media types", "application/json ");
    row("wrappers", "\"");
    row("wrappers and separators", "(;");
    row("beginnings of white space", "\xE2\x80");
    row("token with a header of white space", "Q\n", "x.y.");
}

void PayloadDecoderTest::takesLinearTime()
{
    QFETCH(const QByteArray, head);
    QFETCH(const QByteArray, repeated);
    const auto ticks = [&](qsizetype size) {
        const QByteArray text = head + repeated.repeated(size / repeated.size());
        std::clock_t best = 0;
        for (int run = 0; run < 5; ++run) {
            const std::clock_t start = std::clock();
            const bool isFound = QXPayloadDecoder::hasEncodedCandidate(text);
            const bool isDecoded = QXPayloadDecoder::decodePayload(text).has_value();
            const std::clock_t spent = std::clock() - start;
            if (isFound != isDecoded)
                return std::clock_t(-1);
            best = run == 0 ? spent : std::min(best, spent);
        }
        return best;
    };
    constexpr qsizetype size = 50'000;
    constexpr std::clock_t noise = CLOCKS_PER_SEC / 1000;
    const std::clock_t once = ticks(size);
    const std::clock_t fourTimes = ticks(4 * size);
    QVERIFY(once >= 0 && fourTimes >= 0);
    // Quadratic time would be sixteen times as much.
    QVERIFY2(fourTimes <= 9 * once + noise, qPrintable(u"%1 %2"_s.arg(once).arg(fourTimes)));
}

QTEST_GUILESS_MAIN(PayloadDecoderTest)
#include "PayloadDecoderTest.moc"
