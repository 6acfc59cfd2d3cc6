#pragma once

#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>
#include <QtCore/QUrl>
#include <QtNetwork/QSslConfiguration>
#include <QtNetwork/QSslServer>

/// Certificates for a test, made by openssl in a folder that lives as long as this object: authorities, and
/// what they have signed.
class Certificates final
{
public:
    Certificates();

    /// Makes an authority, which also is a certificate that has signed itself.
    void makeAuthority(const QString &name) const;
    /// Makes a certificate that @p authority has signed. @p address is a name as in "IP:127.0.0.1", and the
    /// times are years.
    void make(const QString &name, const QString &authority,
              const QString &address = QStringLiteral("IP:127.0.0.1"), int from = 2020,
              int until = 2049) const;

    /// The file of a certificate, and that of its key.
    [[nodiscard]] QString file(const QString &name) const
    {
        return m_folder.filePath(name + QStringLiteral(".pem"));
    }
    [[nodiscard]] QString key(const QString &name) const
    {
        return m_folder.filePath(name + QStringLiteral(".key"));
    }
    [[nodiscard]] QSslCertificate certificate(const QString &name) const;
    /// The default configuration with a certificate of one's own.
    [[nodiscard]] QSslConfiguration identity(const QString &name) const;

private:
    void openssl(const QString &words) const;

    QTemporaryDir m_folder;
};

/// Another program that serves HTTP on the loopback interface.
class ServerProcess final
{
public:
    /// Starts the program, which tells in a line that it listens. "PORT" in an argument stands for a free
    /// port.
    ServerProcess(const QString &program, QStringList arguments, const QString &folder);
    ~ServerProcess();
    Q_DISABLE_COPY_MOVE(ServerProcess)

    [[nodiscard]] QUrl url(const QString &path) const;
    /// What the program has written so far.
    [[nodiscard]] QByteArray output() const;
    void kill();

private:
    QTemporaryDir m_logs;
    QProcess m_process;
    quint16 m_port = 0;
};

/// A server of HTTP/2 that answers the first request of each connection with frames as they are given, on the
/// thread that makes it.
class FrameServer final
{
public:
    FrameServer(const QSslConfiguration &identity, const QByteArray &answer);

    /// A frame (RFC 9113, 4.1).
    static QByteArray frame(char type, char flags, quint32 stream, const QByteArray &payload);
    [[nodiscard]] QUrl url() const;

private:
    void read(QTcpSocket *socket);

    QSslServer m_server;
    QByteArray m_answer;
    QByteArray m_arrived;
};
