#include "Tests/Exchanges.h"
#include "Tests/TestKit.h"

#include "Quorvix/QXApiMockDefinition.h"
#include "Quorvix/QXApiMockGenerator.h"
#include "Quorvix/QXExportError.h"
#include "Quorvix/QXTemporaryFile.h"

#include "JSON/JSONWriter.h"

#include <QtTest/QTest>

#include <optional>

#ifdef Q_OS_UNIX
#include <csignal>
#include <sys/resource.h>
#endif

using namespace Quorvix;
using namespace Qt::StringLiterals;
using Exchanges::makeResponseTrace;
using Exchanges::makeTrace;

namespace {

QXRequestTrace answeredTrace(const QString &path, const QByteArray &body = "{}")
{
    QXRequestTrace trace = makeTrace(u"https://h.example"_s + path);
    trace.response = makeResponseTrace(201, body);
    return trace;
}

} // namespace

class ApiMockTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void appliesRules_data();
    void appliesRules();
    void encodesValues_data();
    void encodesValues();
    void readsItsOwnText();
    void refusesOtherText();
    void exportsWholeFile();
    void failsInOrder();
    void staysInItsFolder_data();
    void staysInItsFolder();
    void keepsTheFormerFileWhenTheDiskIsFull();

private:
    std::optional<TemporaryFolder> m_temporary;
};

void ApiMockTest::init()
{
    m_temporary.emplace();
    QVERIFY(m_temporary->isInForce());
}

void ApiMockTest::appliesRules_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("pattern");

    // The pattern is the path itself, unless a row gives another one.
    const auto row = [](const char *row, const QString &path, const QString &name, const QString &file,
                        const QString &pattern = {}) {
        QTest::newRow(row) << path << name << file << (pattern.isEmpty() ? path : pattern);
    };
    row("behind an identifier", u"/api/v1/users/42/orders"_s, u"/api/v1/users/{id}/orders"_s,
        u"users/v1/users_{id}_orders"_s);
    row("query and empty segments", u"//v1///a/?b=/c/#d"_s, u"/v1/a"_s, u"a/v1/a"_s, u"/v1/a"_s);
    row("first of two versions", u"/v10/a/v2/b"_s, u"/v10/a/v2/b"_s, u"a/v10/a_v2_b"_s);
    row("identifier as resource", u"/v1/7/a"_s, u"/v1/{id}/a"_s, u"7/v1/{id}_a"_s);
    row("16 hexadecimal digits and hyphens", u"/v1/a/0123456789-bcdeF"_s, u"/v1/a/{id}"_s, u"a/v1/a_{id}"_s);
    row("no identifiers", u"/v1/a/1x/0123456789abcde/0123456789abcdefg/٤٢"_s,
        u"/v1/a/1x/0123456789abcde/0123456789abcdefg/٤٢"_s,
        u"a/v1/a_1x_0123456789abcde_0123456789abcdefg_٤٢"_s);
    row("placeholder in the path", u"/v1/{id}/a{id}"_s, u"/v1/{id}/a{id}"_s, u"{id}/v1/{id}_a{id}"_s,
        u"/v1/[^/]+/a{id}"_s);
    row("escapes", u"/v1/a%20b%2541/%C3%A9%2Fc"_s, u"/v1/a b%41/é/c"_s, u"a b%41/v1/a b%41_é_c"_s,
        u"/v1/a b%41/é/c"_s);
    row("escapes that are no text", u"/v1/a%20b/%FF"_s, u"/v1/a%20b/%FF"_s, u"a%20b/v1/a%20b_%FF"_s);
    row("no path", QString(), u"/"_s, QString(), u"/"_s);
    row("no version", u"/users/42"_s, u"/users/{id}"_s, QString());
    row("nothing behind the version", u"/api/v1/"_s, u"/api/v1"_s, QString(), u"/api/v1"_s);
    row("no versions", u"/V1/v/1/v1a/xv1"_s, u"/V1/v/{id}/v1a/xv1"_s, QString());
}

void ApiMockTest::appliesRules()
{
    QFETCH(const QString, path);
    QFETCH(const QString, name);
    QFETCH(const QString, pattern);
    QFETCH(const QString, file);
    const QUrl url(u"https://h.example"_s + path);
    QCOMPARE(QXApiMockGenerator::endpointName(url, u"PUT"_s), name + u"_PUT"_s);
    QCOMPARE(QXApiMockGenerator::urlPattern(url), pattern + u"(\\?.*)?$"_s);
    const std::optional<QString> expected =
        file.isEmpty() ? std::optional<QString>() : u"mocks/custom/"_s + file + u"_PUT.json"_s;
    QCOMPARE(QXApiMockGenerator::relativeFilePath(url, u"PUT"_s), expected);
}

void ApiMockTest::encodesValues_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QByteArray>("text");
    const QByteArray kinds = R"([true,false,1,0,"1","true",null,{},[]])";
    QTest::newRow("kinds") << kinds << kinds;
    QTest::newRow("keys ascend") << R"({"b":{"y":1,"x":2},"é":3,"B":4,"a":[{"d":5,"c":6}],"":7})"_ba
                                 << R"({"":7,"B":4,"a":[{"c":6,"d":5}],"b":{"x":2,"y":1},"é":3})"_ba;
    QTest::newRow("last of a name, in an inner object too")
        << '{' + R"("b":1,"a":2,)"_ba.repeated(40) + R"("b":3,"a":{"c":4,"c":5}})"
        << R"({"a":{"c":5},"b":3})"_ba;
    QTest::newRow("half of an emoji") << R"({"\ude00":"\ud83d"})"_ba
                                      << R"({"�":"�"})"_ba;
    // Doubles have only 53 bits, so longer integers are rounded.
    QTest::newRow("numbers") << "[-9007199254740993,18446744073709551615,1.0,-0.5,1e300]"_ba
                             << "[-9007199254740992,18446744073709551616,1,-0.5,1e+300]"_ba;
}

void ApiMockTest::encodesValues()
{
    QFETCH(const QByteArray, json);
    const auto document = JSONReader::parse(json);
    QVERIFY(document);
    JSONWriter writer(JSONWriter::Format::Compact);
    QXApiMockAnyEncodable(document.value()).encode(writer);
    QTEST(writer.takeBuffer(), "text");
}

void ApiMockTest::readsItsOwnText()
{
    const QByteArray text = R"({"name":"é_GET","request":{"method":"GET","url":"/v1/(\\?.*)?$"},"responses":{
        "success":{"data":{"a":[true,1,null]},"default":true,"status":200},
        "failure":{"data":"text","default":false,"status":-1}}})";
    const auto definition = QXApiMockDefinition::decode(text);
    QVERIFY(definition);
    QCOMPARE(definition.value().name, u"é_GET"_s);
    QCOMPARE(definition.value().request.url, u"/v1/(\\?.*)?$"_s);
    QCOMPARE(definition.value().request.method, u"GET"_s);
    QCOMPARE(definition.value().responses.keys(), (QStringList{u"failure"_s, u"success"_s}));
    QVERIFY(definition.value().responses.last().isDefault);
    QVERIFY(!definition.value().responses.first().isDefault);
    QCOMPARE(definition.value().responses.first().status, -1);

    const QByteArray written = definition.value().encode();
    const auto again = QXApiMockDefinition::decode(written);
    QVERIFY(again);
    QCOMPARE(again.value().encode(), written);
}

void ApiMockTest::refusesOtherText()
{
    const QByteArray whole =
        R"({"name":"a","request":{"url":"/","method":"GET"},"responses":{"s":{"status":1,"data":null,"default":true}}})";
    QVERIFY(QXApiMockDefinition::decode(whole));
    QByteArrayList texts{whole.chopped(1), "[]"_ba,
                         R"({"name":"a","request":{"url":"/","method":"GET"}})"_ba};
    for (const auto &[before, after] : {std::pair("\"default\"", "\"isDefault\""),
                                        {"\"status\":1", "\"status\":1,\"delay\":2"},
                                        {"\"url\"", "\"id\":1,\"url\""},
                                        {"\"name\"", "\"id\":1,\"name\""},
                                        {"\"data\":null,", ""},
                                        {"\"status\":1", "\"status\":1.5"},
                                        {"\"default\":true", "\"default\":1"},
                                        {"\"GET\"", "null"},
                                        {"{\"status\":1,\"data\":null,\"default\":true}", "null"}}) {
        texts += QByteArray(whole).replace(before, after);
        QVERIFY2(texts.last() != whole, before);
    }
    for (const QByteArray &text : std::as_const(texts)) {
        const auto definition = QXApiMockDefinition::decode(text);
        QVERIFY2(!definition, text);
        QCOMPARE(definition.error().domain, NSCocoaErrorDomain);
        QCOMPARE(definition.error().code, NSPropertyListReadCorruptError);
        QVERIFY(!definition.error().localizedDescription.isEmpty());
    }
}

void ApiMockTest::exportsWholeFile()
{
    const QString path = u"Quorvix/mocks/custom/users/v1/users_{id}_GET.json"_s;
    for (const char *body : {"null", R"({"b":[1,true],"a":"x"})"}) {
        const auto url = QXApiMockGenerator::exportMock(answeredTrace(u"/api/v1/users/42?q=1"_s, body));
        QVERIFY(url);
        QCOMPARE(url.value(), QUrl::fromLocalFile(m_temporary->path(path)));
    }
    const QString text = uR"({
  "name" : "/api/v1/users/{id}_GET",
  "request" : {
    "method" : "GET",
    "url" : "/api/v1/users/42(\\?.*)?$"
  },
  "responses" : {
    "success" : {
      "data" : {
        "a" : "x",
        "b" : [
          1,
          true
        ]
      },
      "default" : true,
      "status" : 201
    }
  }
})"_s;
    QCOMPARE(m_temporary->files(), QStringList(path + u'=' + text));
}

void ApiMockTest::failsInOrder()
{
    const QXRequestTrace whole = answeredTrace(u"/users/.."_s);
    QXRequestTrace trace = whole;
    trace.url.reset();
    trace.method.reset();
    trace.response.reset();
    const auto failsWith = [&trace](QXExportError error, const QString &message) {
        const auto url = QXApiMockGenerator::exportMock(trace);
        return !url && url.error() == makeError(error) && url.error().localizedDescription == message;
    };
    QVERIFY(failsWith(QXExportError::missingRequestURL, u"Missing request URL."_s));
    trace.url = whole.url;
    QVERIFY(failsWith(QXExportError::missingRequestMethod, u"Missing request method."_s));
    trace.method = whole.method;
    const QString noBody = u"No response body available to generate a mock."_s;
    QVERIFY(failsWith(QXExportError::missingResponseBody, noBody));
    trace.response = makeResponseTrace(201, std::nullopt);
    QVERIFY(failsWith(QXExportError::missingResponseBody, noBody));
    for (const QByteArray &body : {""_ba, "{\"a\":"_ba, "\"\xFF\""_ba}) {
        trace.response = makeResponseTrace(201, body);
        QVERIFY(failsWith(QXExportError::responseBodyNotJSON, u"Response body is not valid JSON."_s));
    }
    trace.response = whole.response;
    QVERIFY(failsWith(QXExportError::unmappableRequestPath,
                      u"Unable to map request path to mock server pattern."_s));
    QCOMPARE(m_temporary->files(), QStringList());
}

void ApiMockTest::staysInItsFolder_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("method");

    const QString get = u"GET"_s;
    QTest::newRow("resource is the parent") << u"/v1/../../x"_s << get;
    QTest::newRow("resource is the folder") << u"/v1/./x"_s << get;
    QTest::newRow("escaped slashes") << u"/v1/..%2F..%2Fx"_s << get;
    QTest::newRow("backslashes in the name") << u"/v1/a/..%5Cx"_s << get;
    QTest::newRow("NUL in the resource") << u"/v1/a%00/x"_s << get;
    QTest::newRow("method of two folders") << u"/v1/a"_s << u"A/B"_s;
    QTest::newRow("long resource") << u"/v1/"_s + QString(300, u'x') << get;
    QTest::newRow("name of many bytes") << u"/v1/a/"_s + QString(130, QChar(0xe9)) << get;
}

void ApiMockTest::staysInItsFolder()
{
    QFETCH(const QString, path);
    QFETCH(const QString, method);
    QXRequestTrace trace = answeredTrace(path);
    trace.method = method;
    const auto url = QXApiMockGenerator::exportMock(trace);
    QVERIFY(!url);
    QCOMPARE(url.error(), makeError(QXExportError::mockFileNotCreated));
    QCOMPARE(url.error().localizedDescription, u"Failed to create mock file."_s);
    QCOMPARE(m_temporary->files(), QStringList());
}

void ApiMockTest::keepsTheFormerFileWhenTheDiskIsFull()
{
#ifdef Q_OS_UNIX
    QVERIFY(QXTemporaryFile::writeText(u"mocks/custom/a/v1/a_GET.json"_s, "former"));
    const QXRequestTrace trace = answeredTrace(u"/v1/a"_s, '"' + QByteArray(1 << 20, 'x') + '"');
    const auto formerHandler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit former{};
    QCOMPARE(getrlimit(RLIMIT_FSIZE, &former), 0);
    const rlimit small{64 << 10, former.rlim_max};
    QCOMPARE(setrlimit(RLIMIT_FSIZE, &small), 0);
    const auto url = QXApiMockGenerator::exportMock(trace);
    setrlimit(RLIMIT_FSIZE, &former);
    std::signal(SIGXFSZ, formerHandler);
    QVERIFY(!url);
    QCOMPARE(url.error(), makeError(QXExportError::mockFileNotCreated));
    QCOMPARE(m_temporary->files(), QStringList(u"Quorvix/mocks/custom/a/v1/a_GET.json=former"_s));
#else
    QSKIP("Needs a limit for the size of files");
#endif
}

QTEST_GUILESS_MAIN(ApiMockTest)
#include "ApiMockTest.moc"
