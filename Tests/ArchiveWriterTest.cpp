#include "Quorvix/QXArchiveWriter.h"
#include "Quorvix/QXCacheSummary.h"
#include "Quorvix/QXRequestTrace.h"

#include "Platform/BundleInfo.h"

#include <QtCore/QBuffer>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

#include <limits>
#include <vector>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using std::chrono::system_clock;

namespace {

const QByteArray binary("\x00\xff\xfe", 3);

QXRequestTrace makeTrace(const QString &url, const HTTPHeaderFields &headers = {})
{
    URLRequest request{QUrl(url)};
    request.allHTTPHeaderFields = headers;
    QXRequestTrace trace(u"ID"_s, request);
    trace.date = system_clock::time_point(1'700'000'000s + 900ms);
    return trace;
}

QXResponseTrace makeResponse(qint64 status, std::optional<QByteArray> body,
                             const HTTPHeaderFields &headers = {})
{
    QXResponseTrace response(NSHTTPURLResponse({}, status, u"HTTP/2"_s, {}), std::move(body));
    response.headers = headers;
    response.date = system_clock::time_point(1'700'000'001s);
    return response;
}

/// One exchange of every kind that the document tells apart.
std::vector<QXRequestTrace> everyKind()
{
    QXRequestTrace complete = makeTrace(u"https://h.example/a?x=1&y=%26"_s, {{u"Cookie"_s, u"a=1; b=2"_s}});
    complete.duration = 0.25;
    complete.response = makeResponse(200, R"({"text":"é"})",
                                     {{u"Content-Type"_s, u"application/json"_s},
                                      {u"Set-Cookie"_s, u"s=1; Path=/\nt=2"_s},
                                      {u"ETag"_s, u"\"1\""_s}});
    QXRequestTrace posted = makeTrace(u"https://h.example/upload"_s);
    posted.method = u"POST"_s;
    posted.body = binary;
    posted.response = makeResponse(201, binary);
    QXRequestTrace empty = makeTrace(u"https://h.example/empty"_s);
    empty.body = ""_ba;
    empty.response = makeResponse(204, std::nullopt);
    QXRequestTrace failed = makeTrace(u"https://h.example/failed"_s);
    failed.error = QXFailureNote(makeURLError(NSURLErrorCannotConnectToHost));
    failed.duration = 1.5;
    QXRequestTrace bare = makeTrace(u"https://h.example"_s);
    bare.url.reset();
    bare.method.reset();
    return {complete, posted, empty, failed, makeTrace(u"https://h.example/pending"_s), bare};
}

QJsonObject entryOf(const QXRequestTrace &trace)
{
    const QByteArray archive =
        QXArchiveWriter::archive([next = &trace]() mutable { return std::exchange(next, nullptr); });
    return QJsonDocument::fromJson(archive)[u"log"_s][u"entries"_s][0].toObject();
}

/// "name/value" of each pair.
QStringList pairs(const QJsonValue &array)
{
    QStringList list;
    for (const QJsonValue pair : array.toArray())
        list += pair[u"name"_s].toString() + u'/' + pair[u"value"_s].toString();
    return list;
}

QJsonObject object(const QByteArray &json)
{
    return QJsonDocument::fromJson(json).object();
}

} // namespace

class ArchiveWriterTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void writesWholeDocument();
    void streamsTheSameDocument();
    void archivesNothing();
    void leavesMissingResponseEmpty();
    void writesBodies_data();
    void writesBodies();
    void looksUpMediaTypeExactly_data();
    void looksUpMediaTypeExactly();
    void writesTimes_data();
    void writesTimes();
    void splitsQuery_data();
    void splitsQuery();
    void parsesRequestCookies_data();
    void parsesRequestCookies();
    void parsesResponseCookies_data();
    void parsesResponseCookies();
    void readsCacheHeaders_data();
    void readsCacheHeaders();
    void summarisesMissingResponse();
    void formatsDates_data();
    void formatsDates();
    void namesExportFiles_data();
    void namesExportFiles();
    void exportsOneTrace();
    void refusesToLeaveTheFolder_data();
    void refusesToLeaveTheFolder();

private:
    QTemporaryDir m_folder;
};

void ArchiveWriterTest::initTestCase()
{
    QVERIFY(m_folder.isValid());
    qputenv("TMPDIR", QFile::encodeName(m_folder.path()));
}

void ArchiveWriterTest::writesWholeDocument()
{
    QXRequestTrace trace = makeTrace(u"https://h.example/a/b?q=1"_s, {{u"Accept"_s, u"*/*"_s}});
    trace.method = u"PUT"_s;
    trace.body = "in"_ba;
    trace.duration = 0.25;
    trace.response =
        makeResponse(404, "out"_ba, {{u"Content-Type"_s, u"text/html"_s}, {u"Expires"_s, u"0"_s}});

    const QByteArray creator = QByteArray(R"({"name":")") + BundleInfo::name + R"(","version":")" +
                               BundleInfo::shortVersion + R"("})";
    const QByteArray expected = R"({"log":{"creator":)" + creator + R"(,"entries":[{
        "cache":{
            "afterRequest":{"comment":null,"eTag":null,"expires":"0","hitCount":null,
                            "lastAccess":"2023-11-14T22:13:21Z"},
            "beforeRequest":{"comment":null,"eTag":null,"expires":null,"hitCount":null,"lastAccess":null}},
        "request":{"bodySize":2,"cookies":[],"headers":[{"name":"Accept","value":"*/*"}],"headersSize":-1,
                   "httpVersion":"HTTP/1.1","method":"PUT",
                   "postData":{"mimeType":"application/octet-stream","text":"in"},
                   "queryString":[{"name":"q","value":"1"}],"url":"https://h.example/a/b?q=1"},
        "response":{"bodySize":3,"content":{"mimeType":"text/html","size":3,"text":"out"},"cookies":[],
                    "headers":[{"name":"Content-Type","value":"text/html"},{"name":"Expires","value":"0"}],
                    "headersSize":-1,"httpVersion":"HTTP/1.1","redirectURL":"","status":404,
                    "statusText":"not found"},
        "startedDateTime":"2023-11-14T22:13:20Z","time":250,
        "timings":{"receive":0,"send":0,"wait":250}}],"version":"1.2"}})";
    const std::vector list{trace};
    const QByteArray archive = QXArchiveWriter::archive(QXArchiveWriter::sourceOf(list));
    QCOMPARE(QJsonDocument::fromJson(archive), QJsonDocument::fromJson(expected));

    // Keys ascend at every level, as in the text above.
    const auto withoutBlanks = [](QByteArray json) {
        return json.replace(' ', "").replace('\n', "");
    };
    QCOMPARE(withoutBlanks(archive), withoutBlanks(expected));
    QVERIFY(archive.startsWith("{\n  \"log\" : {\n    \"creator\" : {\n"));
}

void ArchiveWriterTest::streamsTheSameDocument()
{
    const std::vector<QXRequestTrace> traces = everyKind();
    std::vector<const QXRequestTrace *> pointers;
    for (const QXRequestTrace &trace : traces)
        pointers.push_back(&trace);
    QBuffer buffer;
    QVERIFY(buffer.open(QIODevice::WriteOnly));
    QCOMPARE(QXArchiveWriter::archive(QXArchiveWriter::sourceOf(pointers), buffer), std::nullopt);
    QCOMPARE(buffer.data(), QXArchiveWriter::archive(QXArchiveWriter::sourceOf(traces)));

    const QJsonValue entries = QJsonDocument::fromJson(buffer.data())[u"log"_s][u"entries"_s];
    QCOMPARE(entries.toArray().size(), qsizetype(traces.size()));
    QCOMPARE(entries[1][u"request"_s][u"method"_s].toString(), u"POST"_s);
    QCOMPARE(entries[5][u"request"_s][u"method"_s].toString(), u"GET"_s);
    QCOMPARE(entries[5][u"request"_s][u"url"_s].toString(QString(u'-')), QString());

    // For the schema check, which reads the file. The schema has no place for an exchange without a URL.
    if (const QString path = qEnvironmentVariable("QUORVIX_HAR_OUT"); !path.isEmpty()) {
        pointers.pop_back();
        QFile file(path);
        QVERIFY2(file.open(QIODevice::WriteOnly), qPrintable(file.errorString()));
        QCOMPARE(QXArchiveWriter::archive(QXArchiveWriter::sourceOf(pointers), file), std::nullopt);
    }
}

void ArchiveWriterTest::archivesNothing()
{
    const QByteArray archive = QXArchiveWriter::archive([] { return nullptr; });
    QVERIFY(archive.contains("\"entries\" : [],"));
    QVERIFY(!QJsonDocument::fromJson(archive).isNull());
}

void ArchiveWriterTest::leavesMissingResponseEmpty()
{
    const QJsonObject entry = entryOf(makeTrace(u"https://h.example/"_s));
    QCOMPARE(entry[u"cache"_s], QJsonValue(QJsonObject()));
    QVERIFY(!entry[u"request"_s].toObject().contains(u"postData"_s));
    QCOMPARE(entry[u"request"_s][u"bodySize"_s], QJsonValue(-1));
    QCOMPARE(entry[u"response"_s].toObject(),
             object(R"({"bodySize":-1,"content":{"mimeType":"text/plain","size":0},"cookies":[],"headers":[],
                        "headersSize":-1,"httpVersion":"HTTP/1.1","redirectURL":"","status":0,"statusText":""})"));
}

void ArchiveWriterTest::writesBodies_data()
{
    QTest::addColumn<std::optional<QByteArray>>("body");
    QTest::addColumn<QByteArray>("content");

    const auto row = [](const char *name, const std::optional<QByteArray> &body, const QByteArray &content) {
        QTest::newRow(name) << body << content;
    };
    row("absent", std::nullopt, R"({"mimeType":"text/plain","size":0})");
    row("empty", ""_ba, R"({"mimeType":"application/octet-stream","size":0,"text":""})");
    row("text", "a\"\n\xc3\xa9"_ba, R"({"mimeType":"application/octet-stream","size":5,"text":"a\"\né"})");
    row("text with NUL", QByteArray("a\0b", 3),
        R"({"mimeType":"application/octet-stream","size":3,"text":"a\u0000b"})");
    row("binary", binary,
        R"({"encoding":"base64","mimeType":"application/octet-stream","size":3,"text":"AP/+"})");
    row("cut character", "ab\xe2\x82"_ba,
        R"({"encoding":"base64","mimeType":"application/octet-stream","size":4,"text":"YWLigg=="})");
}

void ArchiveWriterTest::writesBodies()
{
    QFETCH(const std::optional<QByteArray>, body);
    QFETCH(const QByteArray, content);
    QXRequestTrace trace = makeTrace(u"https://h.example/"_s);
    trace.body = body;
    trace.response = makeResponse(200, body);
    const QJsonObject entry = entryOf(trace);

    QCOMPARE(entry[u"response"_s][u"content"_s].toObject(), object(content));
    QCOMPARE(entry[u"response"_s][u"bodySize"_s], QJsonValue(body ? body->size() : -1));
    QCOMPARE(entry[u"request"_s][u"bodySize"_s], QJsonValue(body ? body->size() : -1));
    QJsonObject postData = object(content);
    postData.remove(u"size"_s);
    QCOMPARE(entry[u"request"_s][u"postData"_s].toObject(), body ? postData : QJsonObject());
}

void ArchiveWriterTest::looksUpMediaTypeExactly_data()
{
    QTest::addColumn<QString>("header");
    QTest::addColumn<QString>("type");
    QTest::newRow("usual spelling") << u"Content-Type"_s << u"text/css"_s;
    QTest::newRow("lower case") << u"content-type"_s << u"application/octet-stream"_s;
}

void ArchiveWriterTest::looksUpMediaTypeExactly()
{
    QFETCH(const QString, header);
    QXRequestTrace trace = makeTrace(u"https://h.example/"_s, {{header, u"text/css"_s}});
    trace.body = "a"_ba;
    trace.response = makeResponse(200, "b"_ba, {{header, u"text/css"_s}});
    const QJsonObject entry = entryOf(trace);
    QTEST(entry[u"request"_s][u"postData"_s][u"mimeType"_s].toString(), "type");
    QTEST(entry[u"response"_s][u"content"_s][u"mimeType"_s].toString(), "type");
}

void ArchiveWriterTest::writesTimes_data()
{
    QTest::addColumn<std::optional<double>>("duration");
    QTest::addColumn<double>("time");
    QTest::newRow("absent") << std::optional<double>() << 0.0;
    QTest::newRow("quarter of a second") << std::optional(0.25) << 250.0;
    QTest::newRow("not rounded") << std::optional(0.0012345) << 0.0012345 * 1000;
    QTest::newRow("no number") << std::optional(std::numeric_limits<double>::quiet_NaN()) << 0.0;
    QTest::newRow("beyond the doubles") << std::optional(1e308) << 0.0;
}

void ArchiveWriterTest::writesTimes()
{
    QFETCH(const std::optional<double>, duration);
    QXRequestTrace trace = makeTrace(u"https://h.example/"_s);
    trace.duration = duration;
    const QJsonObject entry = entryOf(trace);
    QTEST(entry[u"time"_s].toDouble(-1), "time");
    QTEST(entry[u"timings"_s][u"wait"_s].toDouble(-1), "time");
    QCOMPARE(entry[u"timings"_s][u"send"_s], QJsonValue(0));
    QCOMPARE(entry[u"timings"_s][u"receive"_s], QJsonValue(0));
}

void ArchiveWriterTest::splitsQuery_data()
{
    QTest::addColumn<QString>("query");
    QTest::addColumn<QStringList>("pairs");
    QTest::newRow("none") << QString() << QStringList();
    QTest::newRow("empty") << u"?"_s << QStringList();
    QTest::newRow("order is kept") << u"?b=2&a=1&b=1"_s << QStringList{u"b/2"_s, u"a/1"_s, u"b/1"_s};
    QTest::newRow("no value") << u"?a&b="_s << QStringList{u"a/"_s, u"b/"_s};
    QTest::newRow("value with equals sign") << u"?a=b=c"_s << QStringList{u"a/b=c"_s};
    QTest::newRow("decoded after it is split") << u"?a%26b=%3D%20%C3%A9"_s << QStringList{u"a&b/= \u00e9"_s};
    QTest::newRow("plus is no blank") << u"?a=1+2"_s << QStringList{u"a/1+2"_s};
    QTest::newRow("escapes that are no text") << u"?a=%FF"_s << QStringList{u"a/%FF"_s};
    QTest::newRow("fragment") << u"?a=1#b=2"_s << QStringList{u"a/1"_s};
}

void ArchiveWriterTest::splitsQuery()
{
    QFETCH(const QString, query);
    QTEST(pairs(entryOf(makeTrace(u"https://h.example/"_s + query))[u"request"_s][u"queryString"_s]),
          "pairs");
}

void ArchiveWriterTest::parsesRequestCookies_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("header");
    QTest::addColumn<QStringList>("cookies");
    QTest::newRow("parts missing") << u"Cookie"_s << u"a=1; b; =c; d="_s << QStringList{u"a/1"_s};
    QTest::newRow("only the first equals sign")
        << u"Cookie"_s << u"a=b=c==;e==f"_s << QStringList{u"a/b=c=="_s, u"e/=f"_s};
    QTest::newRow("blanks") << u"Cookie"_s << u"\t a=1 ;;\tb = 2\t"_s << QStringList{u"a/1"_s, u"b / 2"_s};
    QTest::newRow("other spelling of the header") << u"cookie"_s << u"a=1"_s << QStringList();
}

void ArchiveWriterTest::parsesRequestCookies()
{
    QFETCH(const QString, name);
    QFETCH(const QString, header);
    QTEST(pairs(entryOf(makeTrace(u"https://h.example/"_s, {{name, header}}))[u"request"_s][u"cookies"_s]),
          "cookies");
}

void ArchiveWriterTest::parsesResponseCookies_data()
{
    QTest::addColumn<QString>("header");
    QTest::addColumn<QStringList>("cookies");
    QTest::newRow("empty") << QString() << QStringList();
    QTest::newRow("attributes") << u"s=1; Path=/\nt=2; HttpOnly"_s << QStringList{u"s/1"_s, u"t/2"_s};
    QTest::newRow("parts missing") << u"a\n=b\nc=\n;d=e\n\nf=g"_s << QStringList{u"f/g"_s};
    QTest::newRow("not trimmed") << u" a=1 ;x"_s << QStringList{u" a/1 "_s};
    QTest::newRow("every line break") << u"a=1\r\nb=2\vc=3\fd=4\u0085e=5\u2028f=6\u2029g=7\n"_s
                                      << u"a/1 b/2 c/3 d/4 e/5 f/6 g/7"_s.split(u' ');
    QTest::newRow("comma is no line break") << u"a=1, b=2"_s << QStringList{u"a/1, b=2"_s};
}

void ArchiveWriterTest::parsesResponseCookies()
{
    QFETCH(const QString, header);
    QXRequestTrace trace = makeTrace(u"https://h.example/"_s);
    trace.response = makeResponse(200, std::nullopt, {{u"Set-Cookie"_s, header}});
    QTEST(pairs(entryOf(trace)[u"response"_s][u"cookies"_s]), "cookies");
}

void ArchiveWriterTest::readsCacheHeaders_data()
{
    QTest::addColumn<HTTPHeaderFields>("headers");
    QTest::addColumn<QByteArray>("afterRequest");
    QTest::addColumn<QString>("summary");

    const auto row = [](const char *name, const HTTPHeaderFields &headers, const QByteArray &facts,
                        const QString &summary) {
        QTest::newRow(name) << headers << facts << summary;
    };
    const QString date = u"lastAccess: 2023-11-14T22:13:21Z"_s;
    row("none", {}, R"("comment":null,"eTag":null,"expires":null)", date);
    row("all",
        {{u"Cache-Control"_s, u"no-cache"_s},
         {u"ETag"_s, u"\"1\""_s},
         {u"Expires"_s, u"0"_s},
         {u"Pragma"_s, u"x"_s}},
        R"("comment":"no-cache; x","eTag":"\"1\"","expires":"0")",
        u"expires: 0\n"_s + date + u"\neTag: \"1\"\ncomment: no-cache; x"_s);
    row("lower case", {{u"cache-control"_s, u"private"_s}, {u"etag"_s, u"2"_s}, {u"expires"_s, u"-1"_s}},
        R"("comment":"private","eTag":"2","expires":"-1")",
        u"expires: -1\n"_s + date + u"\neTag: 2\ncomment: private"_s);
    row("empty values",
        {{u"Cache-Control"_s, QString()}, {u"ETag"_s, QString()}, {u"Pragma"_s, u"no-cache"_s}},
        R"("comment":"no-cache","eTag":"","expires":null)", date + u"\neTag: \ncomment: no-cache"_s);
    row("no comment is left", {{u"Cache-Control"_s, QString()}, {u"Pragma"_s, QString()}},
        R"("comment":null,"eTag":null,"expires":null)", date);
}

void ArchiveWriterTest::readsCacheHeaders()
{
    QFETCH(const HTTPHeaderFields, headers);
    QFETCH(const QByteArray, afterRequest);
    QFETCH(const QString, summary);
    QXRequestTrace trace = makeTrace(u"https://h.example/"_s);
    trace.response = makeResponse(200, std::nullopt, headers);
    QCOMPARE(entryOf(trace)[u"cache"_s][u"afterRequest"_s].toObject(),
             object('{' + afterRequest + R"(,"hitCount":null,"lastAccess":"2023-11-14T22:13:21Z"})"));
    QCOMPARE(cacheSummary(trace.response), (std::vector<QXCacheSection>{{u"After request"_s, summary}}));
}

void ArchiveWriterTest::summarisesMissingResponse()
{
    const std::vector<QXCacheSection> expected{
        {u"Cache data missing"_s, u"The cache information is missing from the entry"_s}};
    QCOMPARE(cacheSummary(std::nullopt), expected);
}

void ArchiveWriterTest::formatsDates_data()
{
    QTest::addColumn<qint64>("milliseconds");
    QTest::addColumn<QString>("text");
    QTest::newRow("fraction is dropped") << qint64(1'700'000'000'999) << u"2023-11-14T22:13:20Z"_s;
    QTest::newRow("epoch") << qint64(0) << u"1970-01-01T00:00:00Z"_s;
    QTest::newRow("before the epoch") << qint64(-1) << u"1969-12-31T23:59:59Z"_s;
    QTest::newRow("leap day") << qint64(1'709'164'800'000) << u"2024-02-29T00:00:00Z"_s;
}

void ArchiveWriterTest::formatsDates()
{
    QFETCH(const qint64, milliseconds);
    QTEST(iso8601Text(system_clock::time_point(std::chrono::milliseconds(milliseconds))), "text");
}

void ArchiveWriterTest::namesExportFiles_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<QString>("component");
    QTest::newRow("last component") << u"https://h.example/users/42?x=/y#/z"_s << u"42"_s;
    QTest::newRow("trailing slash") << u"https://h.example/a/b/"_s << u"b"_s;
    QTest::newRow("root") << u"https://h.example/"_s << QString();
    QTest::newRow("no path") << u"https://h.example"_s << QString();
    QTest::newRow("decoded") << u"https://h.example/a%20%C3%A9%25"_s << u"a \u00e9%"_s;
    QTest::newRow("looks like a placeholder") << u"https://h.example/%251%253"_s << u"%1%3"_s;
}

void ArchiveWriterTest::namesExportFiles()
{
    QFETCH(const QString, url);
    QFETCH(const QString, component);
    const system_clock::time_point now(1'700'000'000s + 900ms);
    QXRequestTrace trace = makeTrace(url);
    QCOMPARE(QXArchiveWriter::exportFileName(trace, now),
             u"Quorvix-GET-"_s + component + u"-1700000000.har"_s);
    trace.method = u"POST"_s;
    trace.url.reset();
    QCOMPARE(QXArchiveWriter::exportFileName(trace, now), u"Quorvix-POST-request-1700000000.har"_s);
    trace.method.reset();
    QCOMPARE(QXArchiveWriter::exportFileName(trace, system_clock::time_point(-1500ms)),
             u"Quorvix-GET-request--1.har"_s);
}

void ArchiveWriterTest::exportsOneTrace()
{
    const QXRequestTrace trace = everyKind().front();
    const auto url = QXArchiveWriter::exportTrace(trace, system_clock::time_point(7s));
    QVERIFY(url);
    QCOMPARE(url.value().toLocalFile(), QDir::temp().absoluteFilePath(u"Quorvix-GET-a-7.har"_s));
    QFile file(url.value().toLocalFile());
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QJsonValue entries = QJsonDocument::fromJson(file.readAll())[u"log"_s][u"entries"_s];
    QCOMPARE(entries.toArray(), QJsonArray{entryOf(trace)});
}

void ArchiveWriterTest::refusesToLeaveTheFolder_data()
{
    QTest::addColumn<QString>("lastComponent");
    QTest::newRow("slash") << u"a%2Fb"_s;
    QTest::newRow("way up") << u"..%2F..%2Fa"_s;
    QTest::newRow("two dots") << u"%2E%2E"_s;
    QTest::newRow("NUL") << u"a%00b"_s;
}

void ArchiveWriterTest::refusesToLeaveTheFolder()
{
    QFETCH(const QString, lastComponent);
    const QStringList before = QDir::temp().entryList();
    QUrl target(u"https://h.example/x/"_s);
    target.setPath(u"/x/"_s + lastComponent, QUrl::TolerantMode);
    const auto url =
        QXArchiveWriter::exportTrace(makeTrace(target.toString(QUrl::FullyEncoded)), system_clock::now());
    QVERIFY(!url);
    QCOMPARE(QDir::temp().entryList(), before);
    QCOMPARE(QXArchiveWriter::failureMessage(url.error()),
             u"Failed to export HAR file: "_s + url.error().localizedDescription);
}

QTEST_GUILESS_MAIN(ArchiveWriterTest)
#include "ArchiveWriterTest.moc"
