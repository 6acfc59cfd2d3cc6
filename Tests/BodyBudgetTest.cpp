#include "Examples/DemoServer.h"

#include "Tests/NetworkKit.h"

#include "Quorvix/QXNetworkAccessManager.h"

#include <QtCore/QCryptographicHash>
#include <QtCore/QFile>
#include <QtCore/QTemporaryFile>
#include <QtNetwork/QNetworkReply>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype megabyte = 1'000'000;

/// The memory of this process that is in use now, in bytes; 0 where it cannot be told.
qsizetype resident()
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return 0; // a sanitizer keeps freed memory
#endif
    QFile status(u"/proc/self/statm"_s);
    if (!status.open(QFile::ReadOnly))
        return 0;
    return status.readAll().split(' ').at(1).toLongLong() * 4096;
}

/// Sends one response of this size, no faster than it is received.
class Flood final
{
public:
    explicit Flood(qsizetype size) : m_size(size)
    {
        QObject::connect(&m_server, &QTcpServer::newConnection, &m_server, [this] {
            QTcpSocket *const socket = m_server.nextPendingConnection();
            QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
                socket->readAll();
                socket->write("HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(m_size) +
                              "\r\n\r\n");
            });
            QObject::connect(socket, &QTcpSocket::bytesWritten, socket, [this, socket] {
                if (socket->bytesToWrite() > 0 || m_sent == m_size)
                    return;
                const QByteArray piece = pieceAt(m_sent).first(std::min(pieceSize, m_size - m_sent));
                m_sent += piece.size();
                socket->write(piece);
            });
        });
        m_server.listen(QHostAddress::LocalHost);
    }

    [[nodiscard]] QNetworkRequest request() const
    {
        return QNetworkRequest(QUrl(u"http://127.0.0.1:%1/"_s.arg(m_server.serverPort())));
    }
    [[nodiscard]] QByteArray hash() const
    {
        QCryptographicHash hash(QCryptographicHash::Md5);
        for (qsizetype sent = 0; sent < m_size; sent += pieceSize)
            hash.addData(pieceAt(sent).first(std::min(pieceSize, m_size - sent)));
        return hash.result();
    }

private:
    static constexpr qsizetype pieceSize = 100'000;
    [[nodiscard]] static QByteArray pieceAt(qsizetype position)
    {
        return QByteArray::number(position).rightJustified(10).repeated(pieceSize / 10);
    }

    qsizetype m_size;
    qsizetype m_sent = 0;
    QTcpServer m_server;
};

} // namespace

/// What a captured manager keeps of a body that alone exceeds the budget of the recorder.
class BodyBudgetTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(m_server.start()); }
    void init();
    void cleanup() { recorder().setBodyBudget(std::nullopt); }
    void limitsDownloads_data();
    void limitsDownloads();
    void limitsUploads();

private:
    DemoServer m_server;
};

void BodyBudgetTest::init()
{
    startAfresh();
    recorder().setBodyBudget(megabyte);
}

void BodyBudgetTest::limitsDownloads_data()
{
    QTest::addColumn<qsizetype>("size");
    QTest::addColumn<qsizetype>("bufferSize");
    QTest::addColumn<qsizetype>("readSize");
    QTest::addColumn<bool>("isKept");
    QTest::newRow("read as it arrives") << 64 * megabyte << qsizetype(0) << 64 * megabyte << false;
    QTest::newRow("read in small pieces") << 8 * megabyte << qsizetype(0) << qsizetype(777) << false;
    QTest::newRow("bounded buffer") << 64 * megabyte << qsizetype(65'536) << 64 * megabyte << false;
    QTest::newRow("read at the end") << 4 * megabyte << qsizetype(0) << qsizetype(0) << false;
    QTest::newRow("within the budget") << megabyte << qsizetype(0) << megabyte << true;
}

void BodyBudgetTest::limitsDownloads()
{
    QFETCH(qsizetype, size);
    QFETCH(qsizetype, bufferSize);
    QFETCH(qsizetype, readSize);
    QFETCH(bool, isKept);
    Flood flood(size);
    QXNetworkAccessManager manager;
    const std::unique_ptr<QNetworkReply> reply(manager.get(flood.request()));
    reply->setReadBufferSize(bufferSize);
    QCryptographicHash received(QCryptographicHash::Md5);
    const qsizetype before = resident();
    qsizetype growth = 0;
    connect(reply.get(), &QNetworkReply::readyRead, reply.get(), [&] {
        while (readSize > 0 && reply->bytesAvailable() > 0)
            received.addData(reply->read(readSize));
        growth = std::max(growth, resident() - before);
    });
    QSignalSpy finished(reply.get(), &QNetworkReply::finished);
    QVERIFY(finished.wait(60'000));
    received.addData(reply->readAll());

    QCOMPARE(reply->error(), QNetworkReply::NoError);
    QCOMPARE(received.result(), flood.hash());
    // Qt itself needs several megabytes when this thread is late.
    if (readSize > 0)
        QVERIFY2(growth < 20 * megabyte, qPrintable(QString::number(growth)));
    const QXRequestTrace trace = newest();
    QCOMPARE(trace.response->body.has_value(), isKept);
    QCOMPARE(trace.response->discardedBodySize, isKept ? std::nullopt : std::optional(size));
}

void BodyBudgetTest::limitsUploads()
{
    QTemporaryFile file;
    QVERIFY(file.open());
    file.write(QByteArray(3 * megabyte, 'x'));
    file.seek(0);
    QXNetworkAccessManager manager;
    QNetworkRequest sent(m_server.url(u"/echo"_s));
    sent.setHeader(QNetworkRequest::ContentTypeHeader, u"text/plain"_s);
    const std::unique_ptr<QNetworkReply> reply(manager.post(sent, &file));
    QSignalSpy finished(reply.get(), &QNetworkReply::finished);
    QVERIFY(finished.wait());

    QVERIFY(reply->readAll().contains(QByteArray(3 * megabyte, 'x').toBase64())); // the server has got it all
    const QXRequestTrace trace = newest();
    QVERIFY(!trace.body && !trace.response->body);
    QCOMPARE(trace.discardedBodySize, 3 * megabyte);
}

QTEST_GUILESS_MAIN(BodyBudgetTest)
#include "BodyBudgetTest.moc"
