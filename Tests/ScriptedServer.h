#pragma once

#include <QtCore/QHash>
#include <QtCore/QSemaphore>
#include <QtCore/QThread>
#include <QtCore/QUrl>
#include <QtNetwork/QSslCertificate>
#include <QtNetwork/QSslConfiguration>
#include <QtNetwork/QTcpServer>

/// A whole answer with its length; each of @p fields ends with a line break.
QByteArray httpAnswer(const QByteArray &status, const QByteArray &body, const QByteArray &fields = {});

/// A server on the loopback interface that answers each path by a script and remembers what arrived. It works
/// on a thread of its own, and all its functions may be called on any other thread. It also plays a proxy:
/// only the path of an absolute URL in the request line counts.
class ScriptedServer final
{
public:
    enum class Transport { Plain, Encrypted };

    /// An answer byte by byte as it goes over the wire.
    struct Answer
    {
        /// The first part goes out at once, each further part with the next release().
        QByteArrayList parts;
        /// Whether the connection closes behind the last part.
        bool closes = false;
    };

    explicit ScriptedServer(Transport transport = Transport::Plain);
    /// An encrypted server with a certificate of the caller's.
    explicit ScriptedServer(const QSslConfiguration &identity);
    ~ScriptedServer();
    Q_DISABLE_COPY_MOVE(ScriptedServer)

    /// Sets the answers to successive requests for a path; the last one is repeated. Other paths get the
    /// answers of the path "*", and 404 when there are none.
    void answer(const QByteArray &path, const QList<Answer> &answers);
    /// Sends the next part, now or as soon as a connection has one to send.
    void release();

    /// The certificate of all encrypted servers of the process, which nobody else trusts.
    static QSslCertificate certificate();
    [[nodiscard]] quint16 port() const noexcept { return m_port; }
    [[nodiscard]] QUrl url(const QString &path) const;
    /// All requests: head and body as they arrived.
    [[nodiscard]] QByteArrayList arrived() const;
    /// The number of bytes that the system has taken from this server.
    [[nodiscard]] qint64 sent() const;

private:
    struct Connection
    {
        QByteArray arrived;
        Answer answer;
    };

    void listen(std::unique_ptr<QTcpServer> server);
    void accept();
    void read(QTcpSocket *socket);
    void proceed(QTcpSocket *socket);
    template<typename Function>
    void onThread(Function function) const
    {
        // ThreadSanitizer knows semaphores, but not how Qt waits for a blocking call.
        QSemaphore done;
        QMetaObject::invokeMethod(m_server.get(), [&] {
            function();
            done.release();
        });
        done.acquire();
    }

    QThread m_thread;
    std::unique_ptr<QTcpServer> m_server;
    quint16 m_port = 0;
    QString m_scheme;
    // All below belongs to the thread of the server.
    QHash<QTcpSocket *, Connection> m_connections;
    QHash<QByteArray, QList<Answer>> m_answers;
    QByteArrayList m_arrived;
    qint64 m_written = 0;
    int m_released = 0;
};
