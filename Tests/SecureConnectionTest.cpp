#include "Tests/NetworkKit.h"
#include "Tests/ScriptedServer.h"
#include "Tests/SecureServers.h"

#include "Quorvix/QXNetworkAccessManager.h"
#include "Quorvix/QXRequestRecorder.h"
#include "Quorvix/QXSessionHook.h"

#include "Platform/NSURLSession.h"
#include "Platform/ReplyOutcome.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QRandomGenerator>
#include <QtCore/QStandardPaths>
#include <QtCore/QtEndian>
#include <QtNetwork/QNetworkReply>
#include <QtTest/QTest>

#include <algorithm>

using namespace Quorvix;

using namespace Qt::StringLiterals;

namespace {

/// The sources of traffic.
enum class Source { Session, Manager };

constexpr qint64 none = 0;
/// The end of a stream has several names, which differ between versions of Qt.
constexpr qint64 broken = 1;
constexpr char noNghttpd[] = "HTTP/2 is not tested: nghttpd is missing, from the package nghttp2-server";

struct Outcome
{
    /// The name of the file that was asked for, and the version of HTTP.
    QString file;
    QString version;
    QByteArray body;
};

/// A host that sends requests through one of the sources.
class Client final
{
public:
    explicit Client(Source source) : m_source(source) {}

    void send(const URLRequest &request)
    {
        if (m_source == Source::Manager)
            return sendWithManager(request);
        const auto done = [this](const auto &data, const auto &response, const auto &) {
            QMetaObject::invokeMethod(&m_manager, [=, this] { add(response, data.value_or(QByteArray())); });
        };
        m_session.dataTaskWithRequest(request, done)->resume();
    }
    /// Sends a request and waits for its end; returns its trace.
    QXRequestTrace load(const QUrl &url)
    {
        outcomes.clear();
        send(URLRequest(url));
        if (!QTest::qWaitFor([this] { return !outcomes.isEmpty(); }, 20'000))
            qFatal("the exchange does not end");
        return newest();
    }

    /// What the host got, in the order of the ends.
    QList<Outcome> outcomes;

private:
    void add(const NSURLResponsePtr &response, const QByteArray &body)
    {
        const auto *const http = dynamic_cast<const NSHTTPURLResponse *>(response.get());
        outcomes.append(
            {http ? http->url()->fileName() : QString(), http ? http->httpVersion() : QString(), body});
    }
    void sendWithManager(const URLRequest &request)
    {
        QNetworkRequest sent(*request.url);
        sent.setHeader(QNetworkRequest::ContentTypeHeader, u"text/plain"_s);
        QNetworkReply *const reply =
            request.httpBody ? m_manager.post(sent, *request.httpBody) : m_manager.get(sent);
        QObject::connect(reply, &QNetworkReply::finished, reply, [this, reply] {
            add(ReplyOutcome::response(*reply), reply->readAll());
            reply->deleteLater();
        });
    }

    const Source m_source;
    NSURLSession m_session;
    QXNetworkAccessManager m_manager;
};

/// Makes the rows of a test for both sources.
template<typename... Values>
void rows(const char *name, const Values &...values)
{
    for (const auto &[source, prefix] :
         {std::pair(Source::Session, "session, "), {Source::Manager, "manager, "}}) {
        QTestData &data = QTest::newRow(QByteArray(prefix) + name) << source;
        (void)(data << ... << values);
    }
}

qint64 codeOf(const QXRequestTrace &trace)
{
    return trace.error ? trace.error->code : none;
}

} // namespace

/// Encrypted connections, of both sources, to servers that no one has prepared for them.
class SecureConnectionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void certificateOfTheServer_data();
    void certificateOfTheServer();
    void certificateOfTheClient_data();
    void certificateOfTheClient();
    void manyStreams_data();
    void manyStreams();
    void connectionBreaks_data();
    void connectionBreaks();
    void streamEnds_data();
    void streamEnds();

private:
    void writeFile(const QString &name, const QByteArray &content) const
    {
        QFile file(m_files.filePath(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
            qFatal("cannot write %s", qPrintable(name));
    }
    [[nodiscard]] QStringList nghttpd(const QStringList &options) const;

    const QSslConfiguration m_usual = QSslConfiguration::defaultConfiguration();
    Certificates m_certificates;
    QTemporaryDir m_files;
    /// Empty if it is not installed.
    const QString m_nghttpd = QStandardPaths::findExecutable(u"nghttpd"_s, {u"/usr/sbin"_s, u"/usr/bin"_s});
};

void SecureConnectionTest::initTestCase()
{
    m_certificates.makeAuthority(u"root"_s);
    m_certificates.makeAuthority(u"stranger"_s);
    m_certificates.make(u"good"_s, u"root"_s);
    m_certificates.make(u"expired"_s, u"root"_s, u"IP:127.0.0.1"_s, 2020, 2021);
    m_certificates.make(u"early"_s, u"root"_s, u"IP:127.0.0.1"_s, 2048, 2049);
    m_certificates.make(u"elsewhere"_s, u"root"_s, u"DNS:elsewhere.invalid"_s);
    m_certificates.make(u"strange"_s, u"stranger"_s);
    QXSessionHook::install();
}

/// The process trusts one authority, and has no certificate of its own.
void SecureConnectionTest::init()
{
    QSslConfiguration configuration = m_usual;
    configuration.setCaCertificates({m_certificates.certificate(u"root"_s)});
    QSslConfiguration::setDefaultConfiguration(configuration);
    startAfresh();
}

void SecureConnectionTest::certificateOfTheServer_data()
{
    QTest::addColumn<Source>("source");
    QTest::addColumn<QString>("certificate");
    QTest::addColumn<qint64>("code");
    rows("trusted", u"good"_s, none);
    rows("self-signed", u"stranger"_s, qint64(NSURLErrorServerCertificateUntrusted));
    rows("another host", u"elsewhere"_s, qint64(NSURLErrorServerCertificateUntrusted));
    rows("expired", u"expired"_s, qint64(NSURLErrorServerCertificateHasBadDate));
    rows("not yet valid", u"early"_s, qint64(NSURLErrorServerCertificateNotYetValid));
    rows("unknown root", u"strange"_s, qint64(NSURLErrorServerCertificateHasUnknownRoot));
}

void SecureConnectionTest::certificateOfTheServer()
{
    QFETCH(Source, source);
    QFETCH(QString, certificate);
    QFETCH(qint64, code);
    ScriptedServer server(m_certificates.identity(certificate));
    server.answer("/", {{{httpAnswer("200 OK", "secret")}}});
    Client client(source);
    const QXRequestTrace trace = client.load(server.url(u"/"_s));
    QCOMPARE(codeOf(trace), code);
    QCOMPARE(trace.response.has_value(), code == none);
    QCOMPARE(client.outcomes[0].body, code == none ? "secret"_ba : ""_ba);
    QCOMPARE(server.arrived().size(), code == none ? 1 : 0);
}

void SecureConnectionTest::certificateOfTheClient_data()
{
    QTest::addColumn<Source>("source");
    QTest::addColumn<QString>("protocol");
    QTest::addColumn<QString>("certificate");
    QTest::addColumn<qint64>("code");
    for (const QString &protocol : {u"-tls1_2"_s, u"-tls1_3"_s}) {
        const auto rowsOf = [&](const QByteArray &name, const QString &certificate, qint64 code) {
            rows(name + protocol.toLatin1(), protocol, certificate, code);
        };
        rowsOf("right", u"good"_s, none);
        rowsOf("strange", u"strange"_s, NSURLErrorClientCertificateRejected);
        rowsOf("expired", u"expired"_s, NSURLErrorClientCertificateRejected);
        // TLS 1.2 has no word for it, and failures of other kinds look the same.
        rowsOf("none", QString(),
               protocol == u"-tls1_2"_s ? NSURLErrorSecureConnectionFailed
                                        : NSURLErrorClientCertificateRequired);
    }
}

void SecureConnectionTest::certificateOfTheClient()
{
    QFETCH(Source, source);
    QFETCH(QString, protocol);
    QFETCH(QString, certificate);
    QFETCH(qint64, code);
    writeFile(u"answer"_s, httpAnswer("200 OK", "secret"));
    const ServerProcess server(u"openssl"_s,
                               {u"s_server"_s, u"-accept"_s, u"127.0.0.1:PORT"_s, u"-HTTP"_s, protocol,
                                u"-cert"_s, m_certificates.file(u"good"_s), u"-key"_s,
                                m_certificates.key(u"good"_s), u"-CAfile"_s, m_certificates.file(u"root"_s),
                                u"-Verify"_s, u"1"_s, u"-verify_return_error"_s},
                               m_files.path());
    if (!certificate.isEmpty())
        QSslConfiguration::setDefaultConfiguration(m_certificates.identity(certificate));
    Client client(source);
    const QXRequestTrace trace = client.load(server.url(u"/answer"_s));
    QCOMPARE(codeOf(trace), code);
    QCOMPARE(client.outcomes[0].body, code == none ? "secret"_ba : ""_ba);
}

void SecureConnectionTest::manyStreams_data()
{
    QTest::addColumn<Source>("source");
    QTest::addColumn<bool>("uploads");
    rows("downloads", false);
    rows("uploads", true);
}

void SecureConnectionTest::manyStreams()
{
    QFETCH(Source, source);
    QFETCH(bool, uploads);
    if (m_nghttpd.isEmpty())
        QSKIP(noNghttpd);
    constexpr int requests = 200;
    QByteArrayList bodies;
    for (const int size : {0, 1, 100, 16'383, 16'384, 16'385, 65'535, 100'000}) {
        QByteArray body(size, Qt::Uninitialized);
        QRandomGenerator numbers(size);
        std::generate(body.begin(), body.end(), [&] { return char(numbers.generate()); });
        writeFile(QString::number(bodies.size()), body);
        bodies.append(body);
    }
    const ServerProcess server(m_nghttpd, nghttpd({u"-m"_s, u"400"_s, u"--echo-upload"_s}), m_files.path());
    Client client(source);
    for (int i = 0; i < requests; ++i) {
        const auto file = i % bodies.size();
        URLRequest request(server.url(u"/%1?%2"_s.arg(file).arg(i)));
        if (uploads) {
            request.httpMethod = u"POST"_s;
            request.httpBody = bodies[file];
        }
        client.send(request);
    }
    QTRY_COMPARE_WITH_TIMEOUT(client.outcomes.size(), requests, 30'000);

    const auto traces = recorder().requests();
    QCOMPARE(traces.size(), requests);
    for (const QXRequestTrace &trace : traces) {
        QVERIFY2(!trace.error, qPrintable(trace.url->toString()));
        QCOMPARE(trace.response->statusCode, 200);
        QVERIFY(trace.response->body == bodies[trace.url->fileName().toInt()]);
        QVERIFY(trace.response->headers->contains(u"Server"_s));
    }
    for (const Outcome &outcome : client.outcomes) {
        QCOMPARE(outcome.version, u"HTTP/2.0"_s);
        QVERIFY(outcome.body == bodies[outcome.file.toInt()]);
    }
    // All over one connection.
    QVERIFY(server.output().contains("[id=1]"));
    QVERIFY(!server.output().contains("[id=2]"));
}

void SecureConnectionTest::connectionBreaks_data()
{
    QTest::addColumn<Source>("source");
    rows("");
}

void SecureConnectionTest::connectionBreaks()
{
    QFETCH(Source, source);
    if (m_nghttpd.isEmpty())
        QSKIP(noNghttpd);
    constexpr int requests = 20;
    const QByteArray body(4'000'000, 'x');
    writeFile(u"large"_s, body);
    ServerProcess server(m_nghttpd, nghttpd({}), m_files.path());
    Client client(source);
    for (int i = 0; i < requests; ++i)
        client.send(URLRequest(server.url(u"/large?%1."_s.arg(i))));
    const QByteArray last = '?' + QByteArray::number(requests - 1) + '.';
    QTRY_VERIFY_WITH_TIMEOUT(server.output().contains(last), 20'000);
    server.kill();
    QTRY_COMPARE_WITH_TIMEOUT(client.outcomes.size(), requests, 10'000);
    int lost = 0;
    for (const QXRequestTrace &trace : recorder().requests()) {
        if (!trace.error) {
            QVERIFY(trace.response->body == body);
            continue;
        }
        ++lost;
        QCOMPARE(codeOf(trace), qint64(NSURLErrorNetworkConnectionLost));
    }
    QVERIFY(lost > 0);
}

void SecureConnectionTest::streamEnds_data()
{
    QTest::addColumn<Source>("source");
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<qint64>("code");
    constexpr char data = 0;
    constexpr char headers = 1;
    constexpr char reset = 3;
    constexpr char goAway = 7;
    constexpr char endStream = 1;
    constexpr char endHeaders = 4;
    constexpr qint64 lost = NSURLErrorNetworkConnectionLost;
    const auto frame = &FrameServer::frame;
    // The first entry of the static table is the status 200, and the other one a length of 9.
    const QByteArray ok = frame(headers, endHeaders, 1, "\x88");
    const QByteArray okOfNine = frame(headers, endHeaders, 1,
                                      "\x88\x0f\x0d\x01"
                                      "9");
    const auto number = [](quint32 value) {
        QByteArray bytes(4, '\0');
        qToBigEndian(value, bytes.data());
        return bytes;
    };
    rows("whole", ok + frame(data, endStream, 1, "body"), none);
    rows("reset at once", frame(reset, 0, 1, number(2)), broken);
    rows("refused", frame(reset, 0, 1, number(7)), broken);
    rows("reset in the body", ok + frame(data, 0, 1, "body") + frame(reset, 0, 1, number(2)), broken);
    rows("shorter than its length", okOfNine + frame(data, endStream, 1, "body"), lost);
    rows("reset without an error", okOfNine + frame(data, 0, 1, "body") + frame(reset, 0, 1, number(0)),
         lost);
    rows("server goes away at once", frame(goAway, 0, 0, number(0) + number(0)), broken);
    rows("server goes away after the body",
         ok + frame(data, endStream, 1, "body") + frame(goAway, 0, 0, number(1) + number(0)), none);
    rows("server goes away in the body",
         ok + frame(data, 0, 1, "body") + frame(goAway, 0, 0, number(1) + number(0)) +
             frame(data, endStream, 1, "body"),
         none);
    rows("server goes away with an error",
         ok + frame(data, 0, 1, "body") + frame(goAway, 0, 0, number(0) + number(2)), broken);
    rows("broken header block", frame(headers, endHeaders, 1, "\xff\xff\xff\xff\xff\xff"), broken);
    rows("frame of no kind", frame(99, 0, 1, "what") + ok + frame(data, endStream, 1, "body"), none);
}

void SecureConnectionTest::streamEnds()
{
    QFETCH(Source, source);
    QFETCH(QByteArray, answer);
    QFETCH(qint64, code);
    const FrameServer server(m_certificates.identity(u"good"_s), answer);
    Client client(source);
    const QXRequestTrace trace = client.load(server.url());
    if (code == broken)
        QVERIFY2(codeOf(trace) == NSURLErrorNetworkConnectionLost ||
                     codeOf(trace) == NSURLErrorCannotParseResponse,
                 QByteArray::number(codeOf(trace)));
    else
        QCOMPARE(codeOf(trace), code);
    if (code == none) {
        QCOMPARE(client.outcomes[0].version, u"HTTP/2.0"_s);
        QCOMPARE(client.outcomes[0].body, trace.response->body);
    }
}

QStringList SecureConnectionTest::nghttpd(const QStringList &options) const
{
    return QStringList{u"-v"_s, u"-a"_s, u"127.0.0.1"_s, u"-d"_s, m_files.path()} + options +
           QStringList{u"PORT"_s, m_certificates.key(u"good"_s), m_certificates.file(u"good"_s)};
}

QTEST_GUILESS_MAIN(SecureConnectionTest)

#include "SecureConnectionTest.moc"
