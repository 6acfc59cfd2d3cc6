#include "Platform/ReplyOutcome.h"

#include <QtNetwork/QNetworkReply>
#include <QtNetwork/QSslError>
#include <QtTest/QTest>

using namespace Quorvix;

using namespace Qt::StringLiterals;

namespace {

/// What Qt reports at the end of an exchange.
class EndedReply final : public QNetworkReply
{
public:
    EndedReply(NetworkError error, const QString &text) { setError(error, text); }
    EndedReply(int status, const RawHeaderPair &header)
    {
        setAttribute(QNetworkRequest::HttpStatusCodeAttribute, status);
        setRawHeader(header.first, header.second);
    }
    void abort() override {}

protected:
    qint64 readData(char *, qint64) override { return -1; }
};

} // namespace

class ReplyOutcomeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void alerts_data();
    void alerts();
    void lengths_data();
    void lengths();
};

void ReplyOutcomeTest::alerts_data()
{
    QTest::addColumn<QNetworkReply::NetworkError>("error");
    QTest::addColumn<QString>("text");
    QTest::addColumn<NSURLErrorCode>("code");
    constexpr auto handshake = QNetworkReply::SslHandshakeFailedError;
    constexpr auto later = QNetworkReply::UnknownNetworkError;
    const auto row = [](const char *name, auto error, const QString &text, NSURLErrorCode code) {
        QTest::newRow(name) << error << text << code;
    };
    row("missing, TLS 1.3", later,
        u"Error while reading: error:0A00045C:SSL routines::tlsv13 alert certificate required"_s,
        NSURLErrorClientCertificateRequired);
    row("missing, OpenSSL 1.1", later,
        u"Error while reading: error:1409445C:SSL routines:ssl3_read_bytes:tlsv13 alert certificate required"_s,
        NSURLErrorClientCertificateRequired);
    row("unknown to the server", handshake, u"SSL: error:0A000418:SSL routines::tlsv1 alert unknown ca"_s,
        NSURLErrorClientCertificateRejected);
    row("expired, behind another error", later,
        u"error:02000068:rsa routines::bad signature, error:0A000415:SSL routines::x"_s,
        NSURLErrorClientCertificateRejected);
    row("nothing in common", handshake, u"error:0A000410:SSL routines::sslv3 alert handshake failure"_s,
        NSURLErrorSecureConnectionFailed);
    row("alert of another kind", later, u"error:0A000438:SSL routines::tlsv1 alert internal error"_s,
        NSURLErrorSecureConnectionFailed);
    row("error of another library", later, u"error:0200045C:rsa routines::x"_s,
        NSURLErrorCannotConnectToHost);
    row("another backend", handshake, u"SSL handshake failed"_s, NSURLErrorSecureConnectionFailed);
    row("no TLS", later, u"Network unreachable"_s, NSURLErrorCannotConnectToHost);
}

void ReplyOutcomeTest::alerts()
{
    QFETCH(const QNetworkReply::NetworkError, error);
    QFETCH(const QString, text);
    QFETCH(const NSURLErrorCode, code);
    EndedReply reply(error, text);
    QCOMPARE(ReplyOutcome::transportError(reply, false), std::optional(code));
    // A certificate that we refuse ourselves is no alert of the server.
    ReplyOutcome::noteCertificateErrors(reply, {QSslError(QSslError::CertificateExpired)});
    if (error == QNetworkReply::SslHandshakeFailedError)
        QCOMPARE(ReplyOutcome::transportError(reply, false),
                 std::optional(NSURLErrorServerCertificateHasBadDate));
}

void ReplyOutcomeTest::lengths_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QNetworkReply::RawHeaderPair>("header");
    QTest::addColumn<QString>("method");
    QTest::addColumn<bool>("isCutShort");
    const auto row = [](const char *name, int status, const QByteArray &header, const QByteArray &value,
                        bool isCut, const QString &method = u"GET"_s) {
        QTest::newRow(name) << status << QNetworkReply::RawHeaderPair(header, value) << method << isCut;
    };
    row("shorter", 200, "Content-Length"_ba, "11"_ba, true);
    row("shorter, not found", 404, "content-length"_ba, "11"_ba, true);
    row("complete", 200, "Content-Length"_ba, "10"_ba, false);
    row("said twice", 200, "Content-Length"_ba, "11, 11"_ba, true);
    row("said differently", 200, "Content-Length"_ba, "11, 12"_ba, false);
    row("no number", 200, "Content-Length"_ba, "many"_ba, false);
    row("negative", 200, "Content-Length"_ba, "-11"_ba, false);
    row("without a length", 200, "Transfer-Encoding"_ba, "chunked"_ba, false);
    row("HEAD", 200, "Content-Length"_ba, "11"_ba, false, u"HEAD"_s);
    row("no content", 204, "Content-Length"_ba, "11"_ba, false);
    row("not modified", 304, "Content-Length"_ba, "11"_ba, false);
    row("not HTTP", 0, "Content-Length"_ba, "11"_ba, false);
}

void ReplyOutcomeTest::lengths()
{
    QFETCH(const int, status);
    QFETCH(const QNetworkReply::RawHeaderPair, header);
    QFETCH(const QString, method);
    QTEST(ReplyOutcome::isCutShort(EndedReply(status, header), 10, method), "isCutShort");
}

QTEST_GUILESS_MAIN(ReplyOutcomeTest)
#include "ReplyOutcomeTest.moc"
