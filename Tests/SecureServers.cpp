#include "Tests/SecureServers.h"

#include "Tests/TestKit.h"

#include <QtCore/QRegularExpression>
#include <QtCore/QtEndian>
#include <QtNetwork/QSslKey>
#include <QtNetwork/QTcpSocket>
#include <QtTest/QTest>

using namespace Qt::StringLiterals;

namespace {

constexpr char configuration[] = "[ca]\n"
                                 "default_ca=authority\n"
                                 "[authority]\n"
                                 "database=index\n"
                                 "new_certs_dir=.\n"
                                 "rand_serial=yes\n"
                                 "default_md=sha256\n"
                                 "copy_extensions=copy\n"
                                 "unique_subject=no\n"
                                 "policy=names\n"
                                 "[names]\n"
                                 "commonName=supplied\n";

const QString newKey = u"-newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes"_s;

void write(const QString &path, const QByteArray &content)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot write %s", qPrintable(path));
}

} // namespace

Certificates::Certificates()
{
    write(m_folder.filePath(u"openssl.cnf"_s), configuration);
    write(m_folder.filePath(u"index"_s), {});
}

void Certificates::makeAuthority(const QString &name) const
{
    openssl(u"req -x509 %1 -subj /CN=%2 -addext subjectAltName=IP:127.0.0.1 -keyout %2.key -out %2.pem"_s.arg(
        newKey, name));
}

void Certificates::make(const QString &name, const QString &authority, const QString &address, int from,
                        int until) const
{
    openssl(u"req %1 -subj /CN=%2 -addext subjectAltName=%3 -keyout %2.key -out %2.csr"_s.arg(newKey, name,
                                                                                              address));
    const auto newYear = [](int year) {
        return QString::number(year) + u"0101000000Z"_s;
    };
    openssl(u"ca -batch -config openssl.cnf -cert %1.pem -keyfile %1.key -notext -startdate %2 -enddate %3 "
            "-in %4.csr -out %4.pem"_s.arg(authority, newYear(from), newYear(until), name));
}

QSslCertificate Certificates::certificate(const QString &name) const
{
    return QSslCertificate(contentOf(file(name)));
}

QSslConfiguration Certificates::identity(const QString &name) const
{
    QSslConfiguration made = QSslConfiguration::defaultConfiguration();
    made.setLocalCertificate(certificate(name));
    made.setPrivateKey(QSslKey(contentOf(key(name)), QSsl::Ec));
    return made;
}

void Certificates::openssl(const QString &words) const
{
    QProcess process;
    process.setWorkingDirectory(m_folder.path());
    process.start(u"openssl"_s, words.split(u' '));
    if (!process.waitForFinished() || process.exitCode() != 0)
        qFatal("openssl %s: %s", qPrintable(words), process.readAllStandardError().constData());
}

ServerProcess::ServerProcess(const QString &program, QStringList arguments, const QString &folder)
{
    QTcpServer free;
    if (!free.listen(QHostAddress::LocalHost))
        qFatal("no free port");
    m_port = free.serverPort();
    free.close();
    arguments.replaceInStrings(u"PORT"_s, QString::number(m_port));
    m_process.setWorkingDirectory(folder);
    m_process.setProcessChannelMode(QProcess::MergedChannels);
    m_process.setStandardOutputFile(m_logs.filePath(u"log"_s));
    m_process.start(program, arguments);
    static const QRegularExpression listens(u"^ACCEPT|: listen"_s, QRegularExpression::MultilineOption);
    if (!QTest::qWaitFor([this] { return QString::fromLatin1(output()).contains(listens); }, 10'000))
        qFatal("%s: %s", qPrintable(program), output().constData());
}

ServerProcess::~ServerProcess()
{
    kill();
}

QUrl ServerProcess::url(const QString &path) const
{
    return QUrl(u"https://127.0.0.1:%1%2"_s.arg(m_port).arg(path));
}

QByteArray ServerProcess::output() const
{
    return contentOf(m_logs.filePath(u"log"_s));
}

void ServerProcess::kill()
{
    m_process.kill();
    m_process.waitForFinished();
}

FrameServer::FrameServer(const QSslConfiguration &identity, const QByteArray &answer) : m_answer(answer)
{
    QSslConfiguration configuration = identity;
    configuration.setAllowedNextProtocols({QSslConfiguration::ALPNProtocolHTTP2});
    m_server.setSslConfiguration(configuration);
    QObject::connect(&m_server, &QTcpServer::pendingConnectionAvailable, &m_server, [this] {
        QTcpSocket *const socket = m_server.nextPendingConnection();
        m_arrived.clear();
        QObject::connect(socket, &QTcpSocket::readyRead, &m_server, [this, socket] { read(socket); });
        read(socket);
    });
    if (!m_server.listen(QHostAddress::LocalHost))
        qFatal("no port for the server of frames");
}

QByteArray FrameServer::frame(char type, char flags, quint32 stream, const QByteArray &payload)
{
    QByteArray head(9, '\0');
    qToBigEndian(quint32(payload.size()) << 8, head.data());
    head[3] = type;
    head[4] = flags;
    qToBigEndian(stream, head.data() + 5);
    return head + payload;
}

QUrl FrameServer::url() const
{
    return QUrl(u"https://127.0.0.1:%1/"_s.arg(m_server.serverPort()));
}

void FrameServer::read(QTcpSocket *socket)
{
    const QByteArray preface("PRI * HTTP/2.0\r\n\r\nSM\r\n\r\n");
    constexpr char headersType = 1;
    constexpr char settingsType = 4;
    const bool isNew = m_arrived.size() < preface.size();
    m_arrived += socket->readAll();
    if (isNew && m_arrived.size() >= preface.size())
        socket->write(frame(settingsType, 0, 0, {}));
    // Whole frames follow the preface.
    qsizetype position = preface.size();
    while (m_arrived.size() >= position + 9) {
        const auto *const head = m_arrived.constData() + position;
        const bool isRequest = head[3] == headersType;
        position += 9 + (qFromBigEndian<quint32>(head) >> 8);
        if (isRequest && m_arrived.size() >= position) {
            socket->write(std::exchange(m_answer, {}));
            return;
        }
    }
}
