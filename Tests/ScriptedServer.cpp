#include "Tests/ScriptedServer.h"

#include <QtCore/QProcess>
#include <QtNetwork/QSslConfiguration>
#include <QtNetwork/QSslKey>
#include <QtNetwork/QSslServer>
#include <QtNetwork/QTcpSocket>

using namespace Qt::StringLiterals;

namespace {

/// Makes a certificate for the loopback interface with its key.
QSslConfiguration makeIdentity()
{
    QProcess openssl;
    openssl.start(u"openssl"_s,
                  {u"req"_s, u"-x509"_s, u"-nodes"_s, u"-newkey"_s, u"ec"_s, u"-pkeyopt"_s,
                   u"ec_paramgen_curve:prime256v1"_s, u"-subj"_s, u"/CN=loopback"_s, u"-addext"_s,
                   u"subjectAltName=IP:127.0.0.1"_s, u"-keyout"_s, u"-"_s, u"-out"_s, u"-"_s});
    openssl.waitForFinished();
    const QByteArray pem = openssl.readAllStandardOutput();
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.setLocalCertificate(QSslCertificate(pem.mid(pem.indexOf("-----BEGIN CERTIFICATE"))));
    configuration.setPrivateKey(QSslKey(pem, QSsl::Ec));
    if (configuration.localCertificate().isNull() || configuration.privateKey().isNull())
        qFatal("openssl made no certificate: %s", openssl.readAllStandardError().constData());
    return configuration;
}

const QSslConfiguration &identity()
{
    static const QSslConfiguration identity = makeIdentity();
    return identity;
}

std::unique_ptr<QTcpServer> serverWith(const QSslConfiguration &identity)
{
    auto server = std::make_unique<QSslServer>();
    server->setSslConfiguration(identity);
    return server;
}

/// The path of a request line, without its query.
QByteArray pathOf(const QByteArray &request)
{
    const QByteArray target = request.mid(request.indexOf(' ') + 1);
    return QUrl::fromEncoded(target.left(target.indexOf(' '))).path().toUtf8();
}

/// The size of a request with its body; -1 when it is not known yet.
qsizetype sizeOf(const QByteArray &request)
{
    const qsizetype head = request.indexOf("\r\n\r\n");
    if (head < 0)
        return -1;
    const QByteArray field("\r\ncontent-length: ");
    const qsizetype found = request.left(head + 2).toLower().indexOf(field);
    const QByteArray length = found < 0 ? "0" : request.mid(found + field.size());
    return head + 4 + length.left(length.indexOf('\r')).toLongLong();
}

} // namespace

QByteArray httpAnswer(const QByteArray &status, const QByteArray &body, const QByteArray &fields)
{
    return "HTTP/1.1 " + status + "\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n" + fields +
           "\r\n" + body;
}

ScriptedServer::ScriptedServer(Transport transport)
{
    if (transport == Transport::Encrypted)
        listen(serverWith(identity()));
    else
        listen(std::make_unique<QTcpServer>());
}

ScriptedServer::ScriptedServer(const QSslConfiguration &identity)
{
    listen(serverWith(identity));
}

void ScriptedServer::listen(std::unique_ptr<QTcpServer> server)
{
    m_scheme = qobject_cast<QSslServer *>(server.get()) ? u"https"_s : u"http"_s;
    m_server = std::move(server);
    QObject::connect(m_server.get(), &QTcpServer::pendingConnectionAvailable, m_server.get(),
                     [this] { accept(); });
    // The whole loopback network, so that 127.0.0.2 is another host.
    if (!m_server->listen(QHostAddress::AnyIPv4))
        qFatal("no port for the scripted server");
    m_port = m_server->serverPort();
    m_server->moveToThread(&m_thread);
    m_thread.start();
}

ScriptedServer::~ScriptedServer()
{
    onThread([this, caller = QThread::currentThread()] {
        const auto sockets = m_connections.keys();
        m_connections.clear();
        qDeleteAll(sockets);
        m_server->close();
        m_server->moveToThread(caller);
    });
    m_thread.quit();
    m_thread.wait();
}

void ScriptedServer::answer(const QByteArray &path, const QList<Answer> &answers)
{
    onThread([&] { m_answers.insert(path, answers); });
}

void ScriptedServer::release()
{
    onThread([this] {
        ++m_released;
        const auto sockets = m_connections.keys();
        for (QTcpSocket *socket : sockets)
            proceed(socket);
    });
}

QSslCertificate ScriptedServer::certificate()
{
    return identity().localCertificate();
}

QUrl ScriptedServer::url(const QString &path) const
{
    return QUrl(u"%1://127.0.0.1:%2%3"_s.arg(m_scheme).arg(m_port).arg(path));
}

QByteArrayList ScriptedServer::arrived() const
{
    QByteArrayList arrived;
    onThread([&] { arrived = m_arrived; });
    return arrived;
}

qint64 ScriptedServer::sent() const
{
    qint64 sent = 0;
    onThread([&] {
        sent = m_written;
        for (const QTcpSocket *socket : m_connections.keys())
            sent -= socket->bytesToWrite();
    });
    return sent;
}

void ScriptedServer::accept()
{
    while (QTcpSocket *socket = m_server->nextPendingConnection()) {
        m_connections.insert(socket, {});
        QObject::connect(socket, &QTcpSocket::readyRead, m_server.get(), [this, socket] { read(socket); });
        QObject::connect(socket, &QTcpSocket::disconnected, m_server.get(), [this, socket] {
            if (m_connections.remove(socket))
                socket->deleteLater();
        });
        read(socket);
    }
}

void ScriptedServer::read(QTcpSocket *socket)
{
    Connection &connection = m_connections[socket];
    connection.arrived += socket->readAll();
    const qsizetype size = sizeOf(connection.arrived);
    if (size < 0 || connection.arrived.size() < size)
        return;
    const QByteArray path = pathOf(connection.arrived);
    QList<Answer> &answers = m_answers[m_answers.contains(path) ? path : QByteArray("*")];
    m_arrived += std::exchange(connection.arrived, {});
    if (answers.isEmpty())
        connection.answer = {{httpAnswer("404 Not Found", "no script")}};
    else
        connection.answer = answers.size() > 1 ? answers.takeFirst() : answers.first();
    m_written += socket->write(connection.answer.parts.takeFirst());
    proceed(socket);
}

void ScriptedServer::proceed(QTcpSocket *socket)
{
    Answer &answer = m_connections[socket].answer;
    for (; m_released > 0 && !answer.parts.isEmpty(); --m_released)
        m_written += socket->write(answer.parts.takeFirst());
    socket->flush();
    if (answer.closes && answer.parts.isEmpty())
        socket->disconnectFromHost();
}
