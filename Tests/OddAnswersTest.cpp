#include "Tests/ScriptedServer.h"
#include "Tests/SessionKit.h"

#include <QtCore/QMutex>
#include <QtTest/QTest>

using namespace Quorvix;

using namespace std::chrono_literals;

using namespace Qt::StringLiterals;

class OddAnswersTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void headersKeepTheirBytes_data();
    void headersKeepTheirBytes();
    void bodiesThatAreCutShort_data();
    void bodiesThatAreCutShort();
    void lostRequestsAreNotRepeated();
    void nothingIsPrinted_data();
    void nothingIsPrinted();

private:
    /// Sends a request to a server that gives this answer and closes the connection.
    Outcome exchange(const QByteArray &answer, URLRequest sent = {})
    {
        m_server.answer("*", {{.parts = {answer}, .closes = true}});
        sent.url = m_server.url(u"/?q=1"_s);
        return load(m_session, sent);
    }

    ScriptedServer m_server;
    NSURLSession m_session;
};

void OddAnswersTest::headersKeepTheirBytes_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("text");
    QTest::newRow("Latin-1 at the end") << "caf\xe9"_ba << u"caf\u00e9"_s;
    QTest::newRow("Latin-1 in the middle") << "a\xe9z"_ba << u"a\u00e9z"_s;
    QTest::newRow("one byte") << "\xe9"_ba << u"\u00e9"_s;
    QTest::newRow("several bytes at the end") << "\xe9\xe8\xff"_ba << u"\u00e9\u00e8\u00ff"_s;
    QTest::newRow("half a character of UTF-8") << "x\xe2\x82"_ba << u"x\u00e2\u0082"_s;
    QTest::newRow("UTF-8 and Latin-1") << "\xc3\xa9 \xe9"_ba << u"\u00c3\u00a9 \u00e9"_s;
    QTest::newRow("UTF-8") << "\xc3\xa9"_ba << u"\u00e9"_s;
}

void OddAnswersTest::headersKeepTheirBytes()
{
    QFETCH(const QByteArray, bytes);
    const QByteArray fields = "X-First: " + bytes + "\r\nX-Last:" + bytes + "\r\n";
    const Outcome outcome = exchange(httpAnswer("200 OK", {}, fields));
    for (const QString &name : {u"X-First"_s, u"X-Last"_s})
        QTEST(description(outcome.http()->allHeaderFields().at(name)), "text");
}

void OddAnswersTest::bodiesThatAreCutShort_data()
{
    QTest::addColumn<QByteArray>("status");
    QTest::addColumn<QByteArray>("fields");
    QTest::addColumn<QString>("method");
    QTest::addColumn<bool>("isCut");
    const auto row = [](const char *name, const QByteArray &status, const QByteArray &fields, bool isCut,
                        const QString &method = u"GET"_s) {
        QTest::newRow(name) << status << fields << method << isCut;
    };
    row("plain", "200 OK", "Content-Length: 11\r\n", true);
    // Qt reports the status, or nothing.
    row("of an error", "404 Not Found", "Content-Length: 11\r\n", true);
    row("with its length said twice", "200 OK", "Content-Length: 11, 11\r\n", true);
    row("coded", "200 OK", "Content-Encoding: gzip\r\nContent-Length: 11\r\n", true);
    row("complete", "200 OK", "Content-Length: 10\r\n", false);
    row("without a length", "200 OK", "", false);
    row("HEAD", "200 OK", "Content-Encoding: gzip\r\nContent-Length: 11\r\n", false, u"HEAD"_s);
    row("not modified", "304 Not Modified", "Content-Encoding: gzip\r\nContent-Length: 11\r\n", false);
    row("no content", "204 No Content", "Content-Encoding: gzip\r\n", false);
}

void OddAnswersTest::bodiesThatAreCutShort()
{
    QFETCH(const QByteArray, status);
    QFETCH(const QByteArray, fields);
    QFETCH(const QString, method);
    QFETCH(const bool, isCut);
    URLRequest sent;
    sent.httpMethod = method;
    const bool hasBody = method == u"GET"_s && !status.startsWith("304") && !status.startsWith("204");
    const Outcome outcome =
        exchange("HTTP/1.1 " + status + "\r\n" + fields + "\r\n" + (hasBody ? "0123456789" : ""), sent);
    QCOMPARE(outcome.status(), status.first(3).toInt());
    QCOMPARE(outcome.error,
             isCut ? std::optional(makeURLError(NSURLErrorNetworkConnectionLost)) : std::nullopt);
    QCOMPARE(outcome.data.has_value(), !isCut);
    QCOMPARE(outcome.http()->allHeaderFields().contains(u"Content-Length"_s),
             fields.contains("Content-Length"));
}

/// The server may have done what it was asked for before it went. Qt itself tries twice.
void OddAnswersTest::lostRequestsAreNotRepeated()
{
    for (const QString &method : {u"GET"_s, u"DELETE"_s, u"POST"_s, u"PUT"_s, u"PATCH"_s}) {
        for (const auto &body : {std::optional<QByteArray>(), std::optional("body"_ba)}) {
            const auto before = m_server.arrived().size();
            URLRequest sent;
            sent.httpMethod = method;
            sent.httpBody = body;
            const Outcome outcome = exchange({}, sent);
            QCOMPARE(outcome.error, std::optional(makeURLError(NSURLErrorNetworkConnectionLost)));
            QVERIFY2(m_server.arrived().size() - before <= 2, qPrintable(method));
        }
    }
}

void OddAnswersTest::nothingIsPrinted_data()
{
    QTest::addColumn<QString>("method");
    QTest::addColumn<QByteArray>("answer");
    for (const char *method : {"POST", "PUT", "PATCH", "DELETE", "PURGE"})
        QTest::newRow(method) << QString::fromLatin1(method) << httpAnswer("200 OK", "ok");
    const auto row = [](const char *name, const QByteArray &answer) {
        QTest::newRow(name) << u"GET"_s << answer;
    };
    const QByteArray fine = "HTTP/1.1 200 OK\r\n";
    row("no HTTP", "SSH-2.0-server\r\n");
    row("nothing", "\r\n\r\n\r\n");
    row("binary", QByteArray("\0\x16\x03\x01\xff", 5).repeated(100));
    row("unknown version", "HTTP/7.3 200 OK\r\n\r\n");
    row("no status", "HTTP/1.1 \r\n\r\n");
    row("negative status", "HTTP/1.1 -20 OK\r\n\r\n");
    row("status 0", httpAnswer("000 ", "body"));
    row("status 99", httpAnswer("099 ", "body"));
    row("status 199", httpAnswer("199 ", "body"));
    row("status 299", httpAnswer("299 ", "body"));
    row("status 399", httpAnswer("399 ", "body"));
    row("status 418", httpAnswer("418 ", "body"));
    row("status 499", httpAnswer("499 ", "body"));
    row("status 999", httpAnswer("999 ", "body"));
    row("huge status", httpAnswer("99999999999 ", "body"));
    row("upgrade", "HTTP/1.1 101 Switching Protocols\r\nUpgrade: x\r\nConnection: Upgrade\r\n\r\nabc");
    row("continue for ever", QByteArray("HTTP/1.1 100 Continue\r\n\r\n").repeated(50));
    row("header without a colon", fine + "X-No-Colon\r\n\r\nbody");
    row("header with a space in its name", fine + "X Y: 1\r\n\r\nbody");
    row("folded header", fine + "X-A: 1\r\n  2\r\nContent-Length: 0\r\n\r\n");
    row("too many headers", fine + QByteArray("X-A: 1\r\n").repeated(5000) + "\r\n");
    row("long header", fine + "X-A: " + QByteArray(1 << 20, 'x') + "\r\n\r\n");
    row("negative length", fine + "Content-Length: -5\r\n\r\nbody");
    row("length beyond all bounds", fine + "Content-Length: 99999999999999999999\r\n\r\nbody");
    row("length and chunks",
        fine + "Content-Length: 2\r\nTransfer-Encoding: chunked\r\n\r\n2\r\nab\r\n0\r\n\r\n");
    row("chunk of no size", fine + "Transfer-Encoding: chunked\r\n\r\nzz\r\nbody");
    row("chunk of a negative size", fine + "Transfer-Encoding: chunked\r\n\r\n-5\r\nbody");
    row("huge chunk", fine + "Transfer-Encoding: chunked\r\n\r\n7fffffffffffffff\r\nbody");
    row("damaged coding", httpAnswer("200 OK", "body", "Content-Encoding: gzip\r\n"));
    row("error that is cut short", "HTTP/1.1 500 No\r\nContent-Length: 100\r\n\r\nhalf");
    row("challenge",
        httpAnswer("401 No", "body", "WWW-Authenticate: Digest realm=\r\nWWW-Authenticate: ,=\"\r\n"));
    row("challenge of NTLM", httpAnswer("401 No", "body", "WWW-Authenticate: NTLM AAAA\r\n"));
    row("challenge of Negotiate", httpAnswer("401 No", "body", "WWW-Authenticate: Negotiate AAAA\r\n"));
    row("challenge of a proxy", httpAnswer("407 No", "body", "Proxy-Authenticate: Basic\r\n"));
    row("odd cookies",
        httpAnswer("200 OK", "", "Set-Cookie: =;;=\r\nSet-Cookie: a=b; expires=never; domain=..\r\n"));
    row("odd dates",
        httpAnswer("200 OK", "", "Last-Modified: soon\r\nExpires: -1\r\nCache-Control: max-age=x\r\n"));
    row("strict transport", httpAnswer("200 OK", "", "Strict-Transport-Security: max-age=\"x;;\r\n"));
    row("odd place", httpAnswer("302 Found", "", "Location: http://[::\r\n"));
    row("empty place", httpAnswer("302 Found", "", "Location:\r\n"));
}

/// An application reads nothing of ours or of Qt's in its own output, and the server no header that nobody
/// set.
void OddAnswersTest::nothingIsPrinted()
{
    static QMutex mutex;
    static QStringList printed;
    QFETCH(const QString, method);
    QFETCH(const QByteArray, answer);
    URLRequest sent;
    sent.httpMethod = method;
    // Qt never ends some of these.
    sent.timeoutInterval = 300ms;
    const auto former =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &text) {
            const QMutexLocker locker(&mutex);
            printed += text;
        });
    exchange(answer, sent);
    qInstallMessageHandler(former);
    QCOMPARE(std::exchange(printed, {}), QStringList());
    const QByteArray arrived = m_server.arrived().constLast().toLower();
    QVERIFY(arrived.startsWith(method.toLower().toLatin1() + " /?q=1 "));
    QVERIFY(arrived.endsWith("\r\n\r\n") && !arrived.contains("content-type"));
    QCOMPARE(arrived.contains("\r\ncontent-length: 0\r\n"), method == u"POST"_s || method == u"PUT"_s);
}

QTEST_GUILESS_MAIN(OddAnswersTest)
#include "OddAnswersTest.moc"
