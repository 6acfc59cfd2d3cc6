#include "Quorvix/QXApiMockDefinition.h"
#include "Quorvix/QXApiMockGenerator.h"
#include "Quorvix/QXExportError.h"
#include "Quorvix/QXRequestTrace.h"

#include "Platform/JSONWriter.h"

#include <QtCore/QDir>
#include <QtCore/QDirIterator>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

#ifdef Q_OS_UNIX
#include <csignal>
#include <sys/resource.h>
#endif

using namespace Qt::StringLiterals;

namespace {

QXResponseTrace makeResponse(const std::optional<QByteArray> &body)
{
    return {NSHTTPURLResponse({}, 201, u"HTTP/2"_s, {}), body};
}

QXRequestTrace makeTrace(const QString &path, const QByteArray &body = "{}")
{
    QXRequestTrace trace(u"ID"_s, URLRequest(QUrl(u"https://h.example"_s + path)));
    trace.response = makeResponse(body);
    return trace;
}

/// Paths relative to the folder of everything below it: folders end in a slash, files tell their content.
QStringList everythingIn(const QString &folder)
{
    QStringList entries;
    QDirIterator it(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        QFile file(it.next());
        const QString path = QDir(folder).relativeFilePath(it.filePath());
        if (it.fileInfo().isDir())
            entries += path + u'/';
        else
            entries +=
                path + u'=' + (file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : u"?"_s);
    }
    entries.sort();
    return entries;
}

QStringList filesIn(const QString &folder)
{
    QStringList entries = everythingIn(folder);
    entries.removeIf([](const QString &entry) { return entry.endsWith(u'/'); });
    return entries;
}

QByteArray encoded(const QByteArray &json)
{
    const auto document = JSONReader::parse(json);
    if (!document)
        return document.error().localizedDescription.toUtf8();
    JSONWriter writer(JSONWriter::Format::Compact);
    QXApiMockAnyEncodable(document.value()).encode(writer);
    return writer.takeBuffer();
}

} // namespace

class ApiMockTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void appliesRules_data();
    void appliesRules();
    void encodesValues_data();
    void encodesValues();
    void makesKeysOfNames();
    void encodesDeepValues();
    void readsItsOwnText();
    void refusesOtherText_data();
    void refusesOtherText();
    void exportsWholeFile();
    void failsInOrder();
    void staysInItsFolder_data();
    void staysInItsFolder();
    void leavesNoHalfFile_data();
    void leavesNoHalfFile();

private:
    /// The temporary directory is a folder in here, so that a step out of it can be seen.
    std::unique_ptr<QTemporaryDir> m_surroundings;
    QByteArray m_formerTemporaryFolder;
};

void ApiMockTest::init()
{
    m_surroundings = std::make_unique<QTemporaryDir>();
    QVERIFY(QDir(m_surroundings->path()).mkpath(u"a/tmp"_s));
    m_formerTemporaryFolder = qgetenv("TMPDIR");
    qputenv("TMPDIR", QFile::encodeName(m_surroundings->filePath(u"a/tmp"_s)));
}

void ApiMockTest::cleanup()
{
    qputenv("TMPDIR", m_formerTemporaryFolder);
    m_surroundings.reset();
}

void ApiMockTest::appliesRules_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("pattern");

    // The pattern is the path itself, unless a row tells otherwise.
    const auto row = [](const char *row, const QString &path, const QString &name, const QString &file,
                        const QString &pattern = {}) {
        QTest::newRow(row) << path << name << file << (pattern.isEmpty() ? path : pattern);
    };
    row("identifier", u"/api/v1/users/42"_s, u"/api/v1/users/{id}"_s, u"users/v1/users_{id}"_s);
    row("behind an identifier", u"/api/v1/users/42/orders"_s, u"/api/v1/users/{id}/orders"_s,
        u"users/v1/users_{id}_orders"_s);
    row("version first", u"/v2/items"_s, u"/v2/items"_s, u"items/v2/items"_s);
    row("query and empty segments", u"//v1///a/?b=/c/#d"_s, u"/v1/a"_s, u"a/v1/a"_s, u"/v1/a"_s);
    row("first of two versions", u"/v10/a/v2/b"_s, u"/v10/a/v2/b"_s, u"a/v10/a_v2_b"_s);
    row("identifier as resource", u"/v1/7/a"_s, u"/v1/{id}/a"_s, u"7/v1/{id}_a"_s);
    row("15 hexadecimal digits", u"/v1/0123456789abcde"_s, u"/v1/0123456789abcde"_s,
        u"0123456789abcde/v1/0123456789abcde"_s);
    row("16 hexadecimal digits", u"/v1/a/0123456789abcdeF"_s, u"/v1/a/{id}"_s, u"a/v1/a_{id}"_s);
    row("UUID", u"/v1/a/123e4567-e89b-12d3-a456-426614174000"_s, u"/v1/a/{id}"_s, u"a/v1/a_{id}"_s);
    row("no identifiers", u"/v1/a/1x/0123456789abcdefg/٤٢"_s, u"/v1/a/1x/0123456789abcdefg/٤٢"_s,
        u"a/v1/a_1x_0123456789abcdefg_٤٢"_s);
    row("identifier with a line feed", u"/v1/a/42%0A"_s, u"/v1/a/42\n"_s, u"a/v1/a_42\n"_s, u"/v1/a/42\n"_s);
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

    const auto row = [](const char *name, const QByteArray &json, const QByteArray &text) {
        QTest::newRow(name) << json << text;
    };
    row("kinds", R"([true,false,1,0,"1","true",null,{},[]])", R"([true,false,1,0,"1","true",null,{},[]])");
    row("keys ascend", R"({"b":{"y":1,"x":2},"é":3,"B":4,"a":[{"d":5,"c":6}],"":7})",
        R"({"":7,"B":4,"a":[{"c":6,"d":5}],"b":{"x":2,"y":1},"é":3})");
    row("last of a name", R"({"a":1,"b":[2],"a":{"c":3,"c":4},"b":5})", R"({"a":{"c":4},"b":5})");
    row("last of a name among many", '{' + QByteArray(R"("b":1,"a":2,)").repeated(40) + R"("b":3,"a":4})",
        R"({"a":4,"b":3})");
    row("texts", R"(["\u0000\n\"é\/","\ud83d\ude00"])", "[\"\\u0000\\n\\\"é/\",\"\U0001F600\"]");
    row("numbers", "[1.0,-0.5,1e2,12345678901234567000,1e300,0.1]",
        "[1,-0.5,100,12345678901234567168,1e+300,0.1]");
    row("integers of 53 bits", "[9007199254740992,-9007199254740992]",
        "[9007199254740992,-9007199254740992]");
    // Doubles have no more than 53 bits: these become their neighbours.
    row("integers beyond 53 bits", "[9007199254740993,-9007199254740993,18446744073709551615]",
        "[9007199254740992,-9007199254740992,18446744073709551616]");
}

void ApiMockTest::encodesValues()
{
    QFETCH(const QByteArray, json);
    QTEST(encoded(json), "text");
}

void ApiMockTest::makesKeysOfNames()
{
    QCOMPARE(DynamicCodingKey("7").stringValue, "7");
    QCOMPARE(DynamicCodingKey("7").intValue, std::nullopt);
}

void ApiMockTest::encodesDeepValues()
{
    const int depth = JSONReader::maximumDepth - 1;
    const QByteArray json = QByteArray("{\"a\":").repeated(depth) + '1' + QByteArray(depth, '}');
    QCOMPARE(encoded(json), json);
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

void ApiMockTest::refusesOtherText_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("empty") << ""_ba;
    QTest::newRow("cut") << R"({"name":"a","request":{"url":"/","meth)"_ba;
    QTest::newRow("no object") << "[]"_ba;
    QTest::newRow("no responses") << R"({"name":"a","request":{"url":"/","method":"GET"}})"_ba;

    const QByteArray whole =
        R"({"name":"a","request":{"url":"/","method":"GET"},"responses":{"s":{"status":1,"data":null,"default":true}}})";
    QVERIFY(QXApiMockDefinition::decode(whole));
    const auto row = [&](const char *name, const QByteArray &before, const QByteArray &after) {
        QVERIFY(whole.contains(before));
        QTest::newRow(name) << QByteArray(whole).replace(before, after);
    };
    row("field's name instead of its key", "\"default\"", "\"isDefault\"");
    row("one key more", "\"status\":1", "\"status\":1,\"delay\":2");
    row("one key more in the request", "\"url\"", "\"id\":1,\"url\"");
    row("one key more in the definition", "\"name\"", "\"id\":1,\"name\"");
    row("no data", "\"data\":null,", "");
    row("status is text", "\"status\":1", "\"status\":\"1\"");
    row("status is no integer", "\"status\":1", "\"status\":1.5");
    row("default is a number", "\"default\":true", "\"default\":1");
    row("method is null", "\"GET\"", "null");
    row("response is null", "{\"status\":1,\"data\":null,\"default\":true}", "null");
}

void ApiMockTest::refusesOtherText()
{
    QFETCH(const QByteArray, text);
    const auto definition = QXApiMockDefinition::decode(text);
    QVERIFY(!definition);
    QCOMPARE(definition.error().domain, NSCocoaErrorDomain);
    QCOMPARE(definition.error().code, NSPropertyListReadCorruptError);
    QVERIFY(!definition.error().localizedDescription.isEmpty());
}

void ApiMockTest::exportsWholeFile()
{
    for (const char *body : {"null", R"({"b":[1,true],"a":"x"})"}) {
        const auto url = QXApiMockGenerator::exportMock(makeTrace(u"/api/v1/users/42?q=1"_s, body));
        QVERIFY(url);
        QCOMPARE(url.value(), QUrl::fromLocalFile(QDir::tempPath() +
                                                  u"/Quorvix/mocks/custom/users/v1/users_{id}_GET.json"_s));
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
    QCOMPARE(filesIn(m_surroundings->path()),
             QStringList(u"a/tmp/Quorvix/mocks/custom/users/v1/users_{id}_GET.json="_s + text));
}

void ApiMockTest::failsInOrder()
{
    const QXRequestTrace whole = makeTrace(u"/users/.."_s);
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
    trace.response = makeResponse(std::nullopt);
    QVERIFY(failsWith(QXExportError::missingResponseBody, noBody));
    for (const QByteArray &body : {""_ba, "{\"a\":"_ba, "\"\xFF\""_ba, "<p>"_ba}) {
        trace.response = makeResponse(body);
        QVERIFY(failsWith(QXExportError::responseBodyNotJSON, u"Response body is not valid JSON."_s));
    }
    trace.response = whole.response;
    QVERIFY(failsWith(QXExportError::unmappableRequestPath,
                      u"Unable to map request path to mock server pattern."_s));
    QCOMPARE(everythingIn(m_surroundings->path()), (QStringList{u"a/"_s, u"a/tmp/"_s}));
}

void ApiMockTest::staysInItsFolder_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("method");

    const QString get = u"GET"_s;
    QTest::newRow("resource is the parent") << u"/v1/../../x"_s << get;
    QTest::newRow("resource is the folder") << u"/v1/./x"_s << get;
    QTest::newRow("escaped dots") << u"/v1/%2e%2E/x"_s << get;
    QTest::newRow("escaped slashes") << u"/v1/..%2F..%2Fx"_s << get;
    QTest::newRow("backslashes") << u"/v1/a\\..\\..\\x"_s << get;
    QTest::newRow("escaped backslash behind the resource") << u"/v1/a/..%5Cx"_s << get;
    QTest::newRow("NUL in the resource") << u"/v1/a%00/x"_s << get;
    QTest::newRow("NUL behind the resource") << u"/v1/a/x%00.sh"_s << get;
    QTest::newRow("method leads out") << u"/v1/a"_s << u"../../../../../../x"_s;
    QTest::newRow("method is absolute") << u"/v1/a"_s << u"/tmp/x"_s;
    QTest::newRow("method of two folders") << u"/v1/a"_s << u"A/B"_s;
    QTest::newRow("method with a backslash") << u"/v1/a"_s << u"A\\B"_s;
    QTest::newRow("method with NUL") << u"/v1/a"_s << u"A\u0000B"_s;
    QTest::newRow("long resource") << u"/v1/"_s + QString(300, u'x') << get;
    QTest::newRow("long name") << u"/v1/a/"_s + QString(300, u'x') << get;
    QTest::newRow("name of many bytes") << u"/v1/a/"_s + QString(130, QChar(0xe9)) << get;
    QTest::newRow("long method") << u"/v1/a"_s << QString(300, u'x');
}

void ApiMockTest::staysInItsFolder()
{
    QFETCH(const QString, path);
    QFETCH(const QString, method);
    QXRequestTrace trace = makeTrace(path);
    trace.method = method;
    const auto url = QXApiMockGenerator::exportMock(trace);
    QVERIFY(!url);
    QCOMPARE(url.error(), makeError(QXExportError::mockFileNotCreated));
    QCOMPARE(url.error().localizedDescription, u"Failed to create mock file."_s);
    QStringList entries = everythingIn(m_surroundings->path());
    entries.removeIf(
        [](const QString &entry) { return entry.startsWith("a/tmp/Quorvix/"_L1) && entry.endsWith(u'/'); });
    QCOMPARE(entries, (QStringList{u"a/"_s, u"a/tmp/"_s}));
}

void ApiMockTest::leavesNoHalfFile_data()
{
    QTest::addColumn<QString>("fileInTheWay");
    QTest::addColumn<QString>("folderInTheWay");
    QTest::addColumn<bool>("isDiskFull");
    QTest::newRow("folder is a file") << u"Quorvix"_s << QString() << false;
    QTest::newRow("folder on the way is a file") << u"Quorvix/mocks/custom"_s << QString() << false;
    QTest::newRow("name is a folder's") << QString() << u"Quorvix/mocks/custom/a/v1/a_GET.json/b"_s << false;
#ifdef Q_OS_UNIX
    QTest::newRow("disk is full") << QString() << QString() << true;
    QTest::newRow("disk is full, former file stays")
        << u"Quorvix/mocks/custom/a/v1/a_GET.json"_s << QString() << true;
#endif
}

void ApiMockTest::leavesNoHalfFile()
{
    QFETCH(const QString, fileInTheWay);
    QFETCH(const QString, folderInTheWay);
    QFETCH(const bool, isDiskFull);
    const QDir temporary(QDir::tempPath());
    QVERIFY(temporary.mkpath(u"Quorvix/mocks/custom/a/v1"_s));
    if (!folderInTheWay.isEmpty())
        QVERIFY(temporary.mkpath(folderInTheWay));
    if (!fileInTheWay.isEmpty()) {
        QDir(temporary.filePath(fileInTheWay)).removeRecursively();
        QFile file(temporary.filePath(fileInTheWay));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("former");
    }
    const QStringList before = everythingIn(m_surroundings->path());

    const QXRequestTrace trace = makeTrace(u"/v1/a"_s, '"' + QByteArray(1 << 20, 'x') + '"');
#ifdef Q_OS_UNIX
    const auto formerHandler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit former{};
    QCOMPARE(getrlimit(RLIMIT_FSIZE, &former), 0);
    const rlimit small{64 << 10, former.rlim_max};
    if (isDiskFull)
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &small), 0);
    const auto url = QXApiMockGenerator::exportMock(trace);
    setrlimit(RLIMIT_FSIZE, &former);
    std::signal(SIGXFSZ, formerHandler);
#else
    Q_UNUSED(isDiskFull)
    const auto url = QXApiMockGenerator::exportMock(trace);
#endif
    QVERIFY(!url);
    QCOMPARE(url.error(), makeError(QXExportError::mockFileNotCreated));
    QCOMPARE(everythingIn(m_surroundings->path()), before);
}

QTEST_GUILESS_MAIN(ApiMockTest)
#include "ApiMockTest.moc"
