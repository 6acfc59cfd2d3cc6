#include "Tests/NetworkKit.h"
#include "Tests/ScriptedServer.h"

#include "Quorvix/QXNetworkAccessManager.h"
#include "Quorvix/QXRequestRecorder.h"

#include "Platform/ReplyOutcome.h"

#include <QtNetwork/QNetworkReply>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <utility>

using namespace Quorvix;

using namespace Qt::StringLiterals;

namespace {

using Answer = ScriptedServer::Answer;

/// What a host sees of a reply.
struct Seen
{
    QNetworkReply::NetworkError error = QNetworkReply::NoError;
    int status = 0;
    QList<QNetworkReply::RawHeaderPair> headers;
    QByteArray body;
};

/// The code of an exchange without an error, and of one that depends on Qt's version.
constexpr qint64 none = 0;
constexpr qint64 asQt = 1;

/// "zipped text", ten times.
QByteArray gzip()
{
    return QByteArray::fromBase64("H4sIAAAAAAACA6vKLChITVEoSa0oqaI9EwB+wXhtbgAAAA==");
}

QByteArray coded(const QByteArray &body, const QByteArray &coding = "gzip")
{
    return httpAnswer("200 OK", body, "Content-Encoding: " + coding + "\r\n");
}

QByteArray withLength(qsizetype length, const QByteArray &body, const QByteArray &fields = {})
{
    return "HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(length) + "\r\n" + fields + "\r\n" +
           body;
}

QByteArray manyFields(int count)
{
    QByteArray fields;
    for (int i = 0; i < count; ++i)
        fields += "X-" + QByteArray::number(i) + ": " + QByteArray::number(i) + "\r\n";
    return fields;
}

Seen load(const std::unique_ptr<QNetworkAccessManager> &manager, const QNetworkRequest &request,
          const QByteArray &verb)
{
    const std::unique_ptr<QNetworkReply> reply(verb == "HEAD" ? manager->head(request)
                                                              : manager->get(request));
    QSignalSpy finished(reply.get(), &QNetworkReply::finished);
    if (!reply->isFinished() && !finished.wait(20'000))
        qFatal("the reply does not end");
    Seen seen;
    if (reply->isOpen())
        seen.body = reply->readAll();
    seen.error = reply->error();
    seen.status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    seen.headers = reply->rawHeaderPairs();
    return seen;
}

/// The text of a field's bytes, which are UTF-8 or Latin-1.
QString textOf(const QByteArray &bytes)
{
    const QString text = QString::fromUtf8(bytes);
    return text.toUtf8() == bytes ? text : QString::fromLatin1(bytes);
}

QStringList warnings;

void keepWarning(QtMsgType, const QMessageLogContext &, const QString &message)
{
    warnings += message;
}

/// Of a client that does not wait for ever, in milliseconds. The longer one does not end what only takes
/// long.
constexpr int longTimeout = 3000;
#ifdef __SANITIZE_THREAD__
constexpr int shortTimeout = 3000;
#else
constexpr int shortTimeout = 300;
#endif

} // namespace

/// Servers that send what they should not: the host gets what Qt's manager gives, and the trace says what
/// happened.
class HostileServerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        startAfresh();
        warnings.clear();
    }
    void traceTellsWhatHappened_data();
    void traceTellsWhatHappened();
    void discardedBytesCount();
};

void HostileServerTest::traceTellsWhatHappened_data()
{
    QTest::addColumn<Answer>("answer");
    QTest::addColumn<QByteArray>("verb");
    QTest::addColumn<qint64>("code");
    const auto row = [](const char *name, const Answer &answer, qint64 code, const QByteArray &verb = "GET") {
        QTest::newRow(name) << answer << verb << code;
    };
    const auto shut = [](const QByteArray &bytes) {
        return Answer{{bytes}, true};
    };
    const QByteArray page("<p>page</p>");
    QByteArray badSum = gzip();
    badSum[badSum.size() - 6] = '\0';
    const QByteArray bomb = qCompress(QByteArray(30'000'000, 'x'), 9).mid(4);

    // What cannot be decoded
    constexpr qint64 undecodable = NSURLErrorCannotDecodeRawData;
    row("gzip", {{coded(gzip())}}, none);
    row("corrupt gzip", {{coded(gzip().replace(12, 8, "\xff\xff\xff\xff\xff\xff\xff\xff"))}}, undecodable);
    row("text labelled gzip", {{coded(page)}}, undecodable);
    row("text labelled gzip, until the end",
        {{"HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\n\r\n" + page}, true}, undecodable);
    row("bad checksum", {{coded(badSum)}}, undecodable);
    row("bytes after the end of gzip", {{coded(gzip() + "garbage")}}, undecodable);
    row("too much", {{coded(bomb, "deflate")}}, undecodable);
    row("text labelled deflate", {{coded(page, "deflate")}}, undecodable);
    row("text labelled br", {{coded(page, "br")}}, undecodable);
    row("404, text labelled gzip", {{httpAnswer("404 Not Found", page, "Content-Encoding: gzip\r\n")}},
        undecodable);
    row("422, text labelled gzip", {{httpAnswer("422 No", page, "Content-Encoding: gzip\r\n")}}, undecodable);
    row("422", {{httpAnswer("422 No", page)}}, none);
    row("422, gzip", {{httpAnswer("422 No", gzip(), "Content-Encoding: gzip\r\n")}}, none);
    row("unknown coding", {{coded(page, "other")}}, none);
    // Qt does not tell.
    row("half of gzip", {{coded(gzip().left(25))}}, none);
    row("half of gzip, cut", shut(withLength(500, gzip().left(25), "Content-Encoding: gzip\r\n")), none);

    // What does not come
    row("shorter than its length", shut(withLength(500, page)), NSURLErrorNetworkConnectionLost);
    row("shorter than its length, close", shut(withLength(500, page, "Connection: close\r\n")),
        NSURLErrorNetworkConnectionLost);
    row("nothing of its length", shut(withLength(500, "")), NSURLErrorNetworkConnectionLost);
    row("HEAD", {{withLength(500, "")}}, none, "HEAD");
    row("204 with a length", shut("HTTP/1.1 204 No Content\r\nContent-Length: 5\r\n\r\n"), none);
    row("304 with a length", shut("HTTP/1.1 304 Not Modified\r\nContent-Length: 5\r\n\r\n"), none);
    row("404, shorter", shut("HTTP/1.1 404 Not Found\r\nContent-Length: 500\r\n\r\n" + page),
        NSURLErrorNetworkConnectionLost);
    row("chunks and a length",
        {{"HTTP/1.1 200 OK\r\nContent-Length: 99\r\nTransfer-Encoding: "
          "chunked\r\n\r\n3\r\nabc\r\n0\r\n\r\n"}},
        none);
    row("chunks, cut", shut("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n9\r\nabc"), asQt);
    row("chunks that are none", shut("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\nxyz\r\nabc\r\n"),
        asQt);

    // No HTTP, or too much of it
    row("garbage", shut("\x16\x03\x01\x02garbage\r\n\r\n"), asQt);
    row("much garbage", shut(QByteArray(1'000'000, '\xff')), asQt);
    row("no status", shut("HTTP/1.1 \r\n\r\n"), asQt);
    row("status of 999999", shut("HTTP/1.1 999999 OK\r\n\r\n"), asQt);
    row("10,000 fields", {{httpAnswer("200 OK", page, manyFields(10'000))}}, asQt);
    row("value of 1 MB", {{httpAnswer("200 OK", page, "X: " + QByteArray(1'000'000, 'v') + "\r\n")}}, asQt);
    row("name of 100 kB", {{httpAnswer("200 OK", page, QByteArray(100'000, 'n') + ": v\r\n")}}, asQt);
    row("head that stalls", {{"HTTP/1.1 200 OK\r\nContent-"}}, NSURLErrorTimedOut);
    row("body that stalls", {{withLength(500, page)}}, NSURLErrorTimedOut);
    row("odd spellings",
        {{httpAnswer("200 OK", page, "content-type: text/plain\r\nETAG: \"1\"\r\nx-mIxEd: 1\r\n")}}, none);
    row("repeated and empty fields",
        {{httpAnswer("200 OK", page,
                     "X-A: 1\r\nx-a: 2\r\nX-A:\r\nX-Empty:\r\nSet-Cookie: a=1\r\nSet-Cookie: b=2\r\n")}},
        none);
    row("Latin-1",
        {{httpAnswer("200 OK", page, "X-Place: caf\xe9\r\nX-Two: \xe9\xe8\r\nX-Text: caf\xc3\xa9\r\n")}},
        none);
}

void HostileServerTest::traceTellsWhatHappened()
{
    QFETCH(Answer, answer);
    QFETCH(QByteArray, verb);
    QFETCH(qint64, code);
    ScriptedServer server;
    server.answer("/", {answer});
    QNetworkRequest request(server.url(u"/"_s));
    request.setRawHeader("X-Asked", "caf\xe9");

    // Qt waits for ever for the rest of some of these answers.
    if (code == asQt || code == NSURLErrorTimedOut)
        request.setTransferTimeout(code == asQt ? longTimeout : shortTimeout);

    const auto former = qInstallMessageHandler(keepWarning);
    const Seen expected = load(std::make_unique<QNetworkAccessManager>(), request, verb);
    const QStringList warningsOfQt = std::exchange(warnings, {});
    const Seen seen = load(std::make_unique<QXNetworkAccessManager>(), request, verb);
    qInstallMessageHandler(former);

    // When the connection closes with the answer, Qt's two threads decide by luck what the error is.
    if (!answer.closes) {
        QCOMPARE(std::exchange(warnings, {}), warningsOfQt);
        QCOMPARE(seen.error, expected.error);
        QCOMPARE(seen.status, expected.status);
        QCOMPARE(seen.headers, expected.headers);
        QCOMPARE(seen.body, expected.body);
    }
    const QXRequestTrace trace = newest();
    if (code == asQt)
        QCOMPARE(trace.error.has_value(), seen.error != QNetworkReply::NoError && seen.status < 400);
    else
        QCOMPARE(trace.error ? trace.error->code : none, code);
    // Qt reports only some of the lost connections.
    for (int again = code == NSURLErrorNetworkConnectionLost ? 30 : 0; again > 0; --again) {
        load(std::make_unique<QXNetworkAccessManager>(), request, verb);
        QCOMPARE(newest().error ? newest().error->code : none, code);
    }
    QCOMPARE(trace.headers->value(u"X-Asked"_s), u"caf\u00e9"_s);
    QCOMPARE(trace.response.has_value(), seen.status != 0);
    if (!trace.response)
        return;
    QCOMPARE(trace.response->statusCode, seen.status);
    // A time-out closes the reply, and what has arrived is only in the trace.
    if (seen.error != QNetworkReply::OperationCanceledError)
        QCOMPARE(trace.response->body, seen.body);
    HTTPHeaderFields fields;
    for (const auto &[name, value] : seen.headers)
        fields.insert(ReplyOutcome::fieldName(name), textOf(value));
    QCOMPARE(*trace.response->headers, fields);
}

/// What the recorder does not keep has arrived nevertheless.
void HostileServerTest::discardedBytesCount()
{
    const auto former = recorder().bodyBudget();
    recorder().setBodyBudget(1000);
    for (const qint64 code : {none, qint64(NSURLErrorNetworkConnectionLost)}) {
        const QByteArray body(5000, 'x');
        ScriptedServer server;
        server.answer("/", {{{withLength(code == none ? 5000 : 5001, body)}, true}});
        QCOMPARE(
            load(std::make_unique<QXNetworkAccessManager>(), QNetworkRequest(server.url(u"/"_s)), "GET").body,
            body);
        const QXRequestTrace trace = newest();
        QCOMPARE(trace.error ? trace.error->code : none, code);
        QCOMPARE(trace.response->discardedBodySize, 5000);
        recorder().clear();
    }
    recorder().setBodyBudget(former);
}

QTEST_GUILESS_MAIN(HostileServerTest)

#include "HostileServerTest.moc"
