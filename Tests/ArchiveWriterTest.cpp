#include "Tests/Exchanges.h"
#include "Tests/TestKit.h"

#include "Quorvix/QXArchiveWriter.h"
#include "Quorvix/QXCacheSummary.h"

#include "Platform/BundleInfo.h"
#include "Platform/NSISO8601DateFormatter.h"

#include <QtCore/QBuffer>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtTest/QTest>

#include <optional>
#include <vector>

using namespace Quorvix;
using namespace Qt::StringLiterals;
using Exchanges::makeResponseTrace;
using Exchanges::makeTrace;
using namespace std::chrono_literals;
using std::chrono::system_clock;

namespace {

const QByteArray binary("\x00\xff\xfe", 3);

/// One exchange of every kind that the document treats differently.
std::vector<QXRequestTrace> everyKind()
{
    QXRequestTrace complete = makeTrace(u"https://h.example/a?x=1&y=%26"_s, {{u"Cookie"_s, u"a=1; b=2"_s}});
    complete.duration = 0.25;
    complete.response = makeResponseTrace(200, R"({"text":"é"})",
                                          {{u"Content-Type"_s, u"application/json"_s},
                                           {u"Set-Cookie"_s, u"s=1; Path=/\nt=2"_s},
                                           {u"ETag"_s, u"\"1\""_s}});
    QXRequestTrace posted = makeTrace(u"https://h.example/upload"_s, {}, binary);
    posted.method = u"POST"_s;
    posted.response = makeResponseTrace(201, binary);
    QXRequestTrace empty = makeTrace(u"https://h.example/empty"_s, {}, ""_ba);
    empty.response = makeResponseTrace(204, std::nullopt);
    QXRequestTrace bare = makeTrace(u"https://h.example"_s);
    bare.url.reset();
    bare.method.reset();
    QXRequestTrace discarded = makeTrace(u"https://h.example/large"_s, {{u"Content-Type"_s, u"text/css"_s}});
    discarded.discardedBodySize = 1'234'567;
    discarded.response = makeResponseTrace(200, std::nullopt);
    discarded.response->discardedBodySize = 12;
    return {complete, posted, empty, discarded, makeTrace(u"https://h.example/pending"_s), bare};
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
    void init();
    void writesWholeDocument();
    void streamsTheSameDocument();
    void tellsOfRemovedBodies();
    void leavesMissingResponseEmpty();
    void writesBodies_data();
    void writesBodies();
    void looksUpHeadersExactly();
    void splitsIntoPairs_data();
    void splitsIntoPairs();
    void summarisesCacheHeaders_data();
    void summarisesCacheHeaders();
    void formatsDates();
    void namesExportFiles();
    void exportsOneTrace();
    void refusesToLeaveTheFolder();
    void writesWholeFilesOrNone();

private:
    std::optional<TemporaryFolder> m_temporary;
};

void ArchiveWriterTest::init()
{
    m_temporary.emplace();
    QVERIFY(m_temporary->isInForce());
}

void ArchiveWriterTest::writesWholeDocument()
{
    QXRequestTrace trace =
        makeTrace(u"https://h.example/a/b?q=1"_s, {{u"Content-Type"_s, u"text/css"_s}}, "in"_ba);
    trace.method = u"PUT"_s;
    trace.duration = 0.0625;
    trace.response = makeResponseTrace(404, "out"_ba,
                                       {{u"Content-Type"_s, u"text/html"_s},
                                        {u"ETag"_s, u"1"_s},
                                        {u"Expires"_s, u"0"_s},
                                        {u"Pragma"_s, u"x"_s}});

    const QByteArray creator = QByteArray(R"({"name":")") + BundleInfo::name + R"(","version":")" +
                               BundleInfo::shortVersion + R"("})";
    const QByteArray expected = R"({"log":{"creator":)" + creator + R"(,"entries":[{
        "cache":{
            "afterRequest":{"comment":"x","eTag":"1","expires":"0","hitCount":null,
                            "lastAccess":"2023-11-14T22:13:21Z"},
            "beforeRequest":{"comment":null,"eTag":null,"expires":null,"hitCount":null,"lastAccess":null}},
        "request":{"bodySize":2,"cookies":[],"headers":[{"name":"Content-Type","value":"text/css"}],
                   "headersSize":-1,"httpVersion":"HTTP/1.1","method":"PUT",
                   "postData":{"mimeType":"text/css","text":"in"},
                   "queryString":[{"name":"q","value":"1"}],"url":"https://h.example/a/b?q=1"},
        "response":{"bodySize":3,"content":{"mimeType":"text/html","size":3,"text":"out"},"cookies":[],
                    "headers":[{"name":"Content-Type","value":"text/html"},{"name":"ETag","value":"1"},
                               {"name":"Expires","value":"0"},{"name":"Pragma","value":"x"}],
                    "headersSize":-1,"httpVersion":"HTTP/1.1","redirectURL":"","status":404,
                    "statusText":"not found"},
        "startedDateTime":"2023-11-14T22:13:20Z","time":62.5,
        "timings":{"receive":0,"send":0,"wait":62.5}}],"version":"1.2"}})";
    const std::vector list{trace};
    const QByteArray archive = QXArchiveWriter::archive(QXArchiveWriter::sourceOf(list));

    // Keys are sorted at every level, as in the text above.
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

    // Writes a file for the schema check, without the exchange that has no URL: the schema requires one.
    if (const QString path = qEnvironmentVariable("QUORVIX_HAR_OUT"); !path.isEmpty()) {
        pointers.pop_back();
        QFile file(path);
        QVERIFY2(file.open(QIODevice::WriteOnly), qPrintable(file.errorString()));
        QCOMPARE(QXArchiveWriter::archive(QXArchiveWriter::sourceOf(pointers), file), std::nullopt);
    }
}

void ArchiveWriterTest::tellsOfRemovedBodies()
{
    const QJsonObject entry = entryOf(everyKind()[3]);
    QCOMPARE(entry[u"request"_s][u"bodySize"_s], QJsonValue(1'234'567));
    QCOMPARE(entry[u"response"_s][u"bodySize"_s], QJsonValue(12));
    QCOMPARE(
        entry[u"request"_s][u"postData"_s].toObject(),
        object(R"-({"comment":"Removed to stay within the memory budget (1.2 MB)","mimeType":"text/css"})-"));
    QCOMPARE(entry[u"response"_s][u"content"_s].toObject(),
             object(R"-({"comment":"Removed to stay within the memory budget (1 KB)",
                         "mimeType":"application/octet-stream","size":12})-"));
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
    QCOMPARE(entry[u"time"_s], QJsonValue(0));
    const std::vector<QXCacheSection> expected{
        {u"Cache data missing"_s, u"The cache information is missing from the entry"_s}};
    QCOMPARE(cacheSummary(std::nullopt), expected);
}

void ArchiveWriterTest::writesBodies_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("empty") << ""_ba
                           << R"({"mimeType":"application/octet-stream","size":0,"text":""})"_ba;
    QTest::newRow("text") << "a\"\n\xc3\xa9"_ba
                          << R"({"mimeType":"application/octet-stream","size":5,"text":"a\"\né"})"_ba;
    QTest::newRow("binary")
        << binary
        << R"({"encoding":"base64","mimeType":"application/octet-stream","size":3,"text":"AP/+"})"_ba;
}

void ArchiveWriterTest::writesBodies()
{
    QFETCH(const QByteArray, body);
    QFETCH(const QByteArray, content);
    QXRequestTrace trace = makeTrace(u"https://h.example/"_s, {}, body);
    trace.response = makeResponseTrace(200, body);
    const QJsonObject entry = entryOf(trace);

    QCOMPARE(entry[u"response"_s][u"content"_s].toObject(), object(content));
    QCOMPARE(entry[u"response"_s][u"bodySize"_s], QJsonValue(body.size()));
    QCOMPARE(entry[u"request"_s][u"bodySize"_s], QJsonValue(body.size()));
    QJsonObject postData = object(content);
    postData.remove(u"size"_s);
    QCOMPARE(entry[u"request"_s][u"postData"_s].toObject(), postData);
}

void ArchiveWriterTest::looksUpHeadersExactly()
{
    const HTTPHeaderFields headers{
        {u"content-type"_s, u"text/css"_s}, {u"cookie"_s, u"a=1"_s}, {u"set-cookie"_s, u"a=1"_s}};
    QXRequestTrace trace = makeTrace(u"https://h.example/"_s, headers, "a"_ba);
    trace.response = makeResponseTrace(200, "b"_ba, headers);
    const QJsonObject entry = entryOf(trace);
    const QString unknown = u"application/octet-stream"_s;
    QCOMPARE(entry[u"request"_s][u"postData"_s][u"mimeType"_s].toString(), unknown);
    QCOMPARE(entry[u"response"_s][u"content"_s][u"mimeType"_s].toString(), unknown);
    QCOMPARE(entry[u"request"_s][u"cookies"_s].toArray(), QJsonArray());
    QCOMPARE(entry[u"response"_s][u"cookies"_s].toArray(), QJsonArray());
}

void ArchiveWriterTest::splitsIntoPairs_data()
{
    QTest::addColumn<QString>("side");
    QTest::addColumn<QString>("list");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("pairs");

    const auto asked = [](const char *name, const QString &query, const QStringList &pairs) {
        QTest::addRow("query: %s", name) << u"request"_s << u"queryString"_s << query << pairs;
    };
    asked("empty", QString(), {});
    asked("order is kept", u"b=2&a=1&b=1"_s, {u"b/2"_s, u"a/1"_s, u"b/1"_s});
    asked("no value", u"a&b="_s, {u"a/"_s, u"b/"_s});
    asked("value with equals sign", u"a=b=c"_s, {u"a/b=c"_s});
    asked("decoded after it is split, and plus is no blank", u"a%26b=%3D%20%C3%A9+1"_s,
          {u"a&b/= \u00e9+1"_s});
    asked("escapes that are no text", u"a=%FF"_s, {u"a/%FF"_s});

    const auto sent = [](const char *name, const QString &header, const QStringList &cookies) {
        QTest::addRow("cookies sent: %s", name) << u"request"_s << u"cookies"_s << header << cookies;
    };
    sent("parts missing", u"a=1; b; =c; d="_s, {u"a/1"_s});
    sent("only the first equals sign", u"a=b=c==;e==f"_s, {u"a/b=c=="_s, u"e/=f"_s});
    sent("blanks", u"\t a=1 ;;\tb = 2\t"_s, {u"a/1"_s, u"b / 2"_s});

    const auto received = [](const char *name, const QString &header, const QStringList &cookies) {
        QTest::addRow("cookies received: %s", name) << u"response"_s << u"cookies"_s << header << cookies;
    };
    received("attributes", u"s=1; Path=/\nt=2; HttpOnly"_s, {u"s/1"_s, u"t/2"_s});
    received("lines without cookies", u"a\n=b\nc=\n;d=e\n\nf=g"_s, {u"f/g"_s});
    received("not trimmed", u" a=1 ;x"_s, {u" a/1 "_s});
    received("every line break", u"a=1\r\nb=2\vc=3\fd=4\u0085e=5\u2028f=6\u2029g=7\n"_s,
             u"a/1 b/2 c/3 d/4 e/5 f/6 g/7"_s.split(u' '));
    received("comma is no line break", u"a=1, b=2"_s, {u"a/1, b=2"_s});
}

void ArchiveWriterTest::splitsIntoPairs()
{
    QFETCH(const QString, side);
    QFETCH(const QString, list);
    QFETCH(const QString, text);
    QXRequestTrace trace = makeTrace(u"https://h.example/?"_s + text, {{u"Cookie"_s, text}});
    trace.response = makeResponseTrace(200, std::nullopt, {{u"Set-Cookie"_s, text}});
    QTEST(pairs(entryOf(trace)[side][list]), "pairs");
}

void ArchiveWriterTest::summarisesCacheHeaders_data()
{
    QTest::addColumn<HTTPHeaderFields>("headers");
    QTest::addColumn<QString>("summary");
    const QString date = u"lastAccess: 2023-11-14T22:13:21Z"_s;
    QTest::newRow("all, in any spelling") << HTTPHeaderFields{{u"cache-control"_s, u"no-cache"_s},
                                                              {u"ETAG"_s, u"1"_s},
                                                              {u"Expires"_s, u"0"_s},
                                                              {u"pragma"_s, u"x"_s}}
                                          << u"expires: 0\n"_s + date + u"\neTag: 1\ncomment: no-cache; x"_s;
    QTest::newRow("empty values") << HTTPHeaderFields{{u"Cache-Control"_s, QString()},
                                                      {u"ETag"_s, QString()},
                                                      {u"Pragma"_s, u"x"_s}}
                                  << date + u"\neTag: \ncomment: x"_s;
    QTest::newRow("no comment is left") << HTTPHeaderFields{{u"Cache-Control"_s, QString()}} << date;
}

void ArchiveWriterTest::summarisesCacheHeaders()
{
    QFETCH(const HTTPHeaderFields, headers);
    QFETCH(const QString, summary);
    const std::vector<QXCacheSection> expected{{u"After request"_s, summary}};
    QCOMPARE(cacheSummary(makeResponseTrace(200, std::nullopt, headers)), expected);
}

void ArchiveWriterTest::formatsDates()
{
    const auto text = &NSISO8601DateFormatter::string;
    QCOMPARE(text(system_clock::time_point(981'173'106s + 999ms)), u"2001-02-03T04:05:06Z"_s);
    QCOMPARE(text(system_clock::time_point(-1ms)), u"1969-12-31T23:59:59Z"_s);
}

void ArchiveWriterTest::namesExportFiles()
{
    const system_clock::time_point now(1'700'000'000s + 900ms);
    const auto nameFor = [now](const QString &path) {
        return QXArchiveWriter::exportFileName(makeTrace(u"https://h.example"_s + path), now);
    };
    QCOMPARE(nameFor(u"/users/42?x=/y#/z"_s), u"Quorvix-GET-42-1700000000.har"_s);
    QCOMPARE(nameFor(u"/a/b/"_s), u"Quorvix-GET-b-1700000000.har"_s);
    QCOMPARE(nameFor(u"/"_s), u"Quorvix-GET--1700000000.har"_s);
    QCOMPARE(nameFor(u"/a%20%C3%A9%251%253"_s), u"Quorvix-GET-a \u00e9%1%3-1700000000.har"_s);

    QXRequestTrace trace = makeTrace(QString());
    trace.method = u"POST"_s;
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
    const QString path = m_temporary->path(u"Quorvix-GET-a-7.har"_s);
    QCOMPARE(url.value(), QUrl::fromLocalFile(path));
    const QJsonValue entries = QJsonDocument::fromJson(contentOf(path))[u"log"_s][u"entries"_s];
    QCOMPARE(entries.toArray(), QJsonArray{entryOf(trace)});
}

void ArchiveWriterTest::refusesToLeaveTheFolder()
{
    for (const QString &lastComponent : {u"..%2F..%2Fa"_s, u"%2E%2E"_s}) {
        const auto url = QXArchiveWriter::exportTrace(makeTrace(u"https://h.example/x/"_s + lastComponent),
                                                      system_clock::now());
        QVERIFY(!url);
        QCOMPARE(m_temporary->files(), QStringList());
        QCOMPARE(QXArchiveWriter::failureMessage(url.error()),
                 u"Failed to export HAR file: "_s + url.error().localizedDescription);
    }
}

void ArchiveWriterTest::writesWholeFilesOrNone()
{
    const std::vector<QXRequestTrace> traces = everyKind();
    const QString path = m_temporary->path(u"all.har"_s);
    QCOMPARE(QXArchiveWriter::write(QXArchiveWriter::sourceOf(traces), path), std::nullopt);
    QCOMPARE(contentOf(path), QXArchiveWriter::archive(QXArchiveWriter::sourceOf(traces)));
    constexpr auto owner = QFile::ReadOwner | QFile::WriteOwner;
    constexpr auto others = QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
    QCOMPARE(QFile::permissions(path) & (owner | others), owner);

    QVERIFY(QFile::setPermissions(path, owner | QFile::ReadOther));
    bool isComplete = true;
    const QXArchiveWriter::Source observed = [&, next = QXArchiveWriter::sourceOf(traces)] {
        isComplete = isComplete && contentOf(path).endsWith("}\n}");
        return next();
    };
    QCOMPARE(QXArchiveWriter::write(observed, path), std::nullopt);
    QVERIFY(isComplete);
    QCOMPARE(QFile::permissions(path) & (owner | others), owner | QFile::ReadOther);
    QCOMPARE(m_temporary->dir().entryList(QDir::Files | QDir::Hidden), QStringList(u"all.har"_s));

    for (const QString &wrong :
         {m_temporary->path(u"none/all.har"_s), m_temporary->dir().path(), QString()}) {
        const auto error = QXArchiveWriter::write(QXArchiveWriter::sourceOf(traces), wrong);
        QVERIFY2(error && !error->localizedDescription.isEmpty(), qPrintable(wrong));
        QCOMPARE(error->domain, NSCocoaErrorDomain);
    }
}

QTEST_GUILESS_MAIN(ArchiveWriterTest)
#include "ArchiveWriterTest.moc"
