#include "Tests/ReplyDiary.h"

#include <QtCore/QDebug>
#include <QtNetwork/QAuthenticator>
#include <QtNetwork/QNetworkProxy>
#include <QtNetwork/QSslCipher>
#include <QtNetwork/QSslConfiguration>
#include <QtNetwork/QSslError>

#include <algorithm>
#include <type_traits>

namespace {

constexpr auto lastKnownHeader = QNetworkRequest::IfNoneMatchHeader;
constexpr int lastAttribute = QNetworkRequest::User + 2;

} // namespace

ReplyDiary::ReplyDiary(QNetworkAccessManager &manager) : m_manager(manager)
{
    hear(&manager, "manager.finished", &QNetworkAccessManager::finished);
    hear(&manager, "manager.encrypted", &QNetworkAccessManager::encrypted);
    hear(&manager, "manager.sslErrors", &QNetworkAccessManager::sslErrors);
    hear(&manager, "manager.authenticationRequired", &QNetworkAccessManager::authenticationRequired);
    hear(&manager, "manager.proxyAuthenticationRequired",
         &QNetworkAccessManager::proxyAuthenticationRequired);
}

void ReplyDiary::watch(QNetworkReply *reply)
{
    m_replies.emplace_back(reply);
    write("new " + state(reply) + (reply->parent() == &m_manager ? " child" : " parentless"));
    hear(reply, "socketStartedConnecting", &QNetworkReply::socketStartedConnecting);
    hear(reply, "requestSent", &QNetworkReply::requestSent);
    hear(reply, "metaDataChanged", &QNetworkReply::metaDataChanged);
    hear(reply, "finished", &QNetworkReply::finished);
    hear(reply, "errorOccurred", &QNetworkReply::errorOccurred);
    hear(reply, "encrypted", &QNetworkReply::encrypted);
    hear(reply, "sslErrors", &QNetworkReply::sslErrors);
    hear(reply, "redirected", &QNetworkReply::redirected);
    hear(reply, "redirectAllowed", &QNetworkReply::redirectAllowed);
    hear(reply, "uploadProgress", &QNetworkReply::uploadProgress);
    hear(reply, "downloadProgress", &QNetworkReply::downloadProgress);
    hear<QIODevice>(reply, "readyRead", &QIODevice::readyRead);
    hear<QIODevice>(reply, "channelReadyRead", &QIODevice::channelReadyRead);
    hear<QIODevice>(reply, "bytesWritten", &QIODevice::bytesWritten);
    hear<QIODevice>(reply, "readChannelFinished", &QIODevice::readChannelFinished);
    hear<QIODevice>(reply, "aboutToClose", &QIODevice::aboutToClose);
    const QByteArray name = text(reply);
    connect(reply, &QObject::destroyed, this, [this, name] { write(name + " destroyed"); });
}

void ReplyDiary::write(const QByteArray &line)
{
    if (m_flows && line.startsWith("readyRead"))
        return;
    m_lines.append(line);
    Q_EMIT written();
}

void ReplyDiary::describe(const QNetworkReply &reply)
{
    note("state", state(&reply));
    note("error", int(reply.error()), reply.errorString());
    note("url", reply.url());
    note("request", int(reply.operation()), text(reply.request()));
    for (const auto &[name, value] : reply.rawHeaderPairs())
        note("raw header", name, value);
    for (int header = 0; header <= lastKnownHeader; ++header)
        note("header", header, reply.header(QNetworkRequest::KnownHeaders(header)));
    for (int attribute = 0; attribute <= lastAttribute; ++attribute) {
        const QVariant value = reply.attribute(QNetworkRequest::Attribute(attribute));
        // The bytes of the download buffer have no end that could be seen.
        if (value.isValid())
            note("attribute", attribute,
                 value.canConvert<QSharedPointer<char>>() ? QByteArray(value.typeName()) : text(value));
    }
    note("device", int(reply.openMode()), reply.isSequential(), reply.isTextModeEnabled(), reply.isReadable(),
         reply.isWritable());
    note("place", reply.size(), reply.pos(), reply.atEnd(), reply.canReadLine(), reply.bytesToWrite(),
         reply.readBufferSize(), reply.isTransactionStarted(), reply.currentReadChannel(),
         reply.readChannelCount());
    note("properties", text(reply.dynamicPropertyNames()), reply.objectName());
    note("owner", reply.parent() == &m_manager, reply.manager() == &m_manager, reply.signalsBlocked());
    note("security", reply.sslConfiguration());
}

bool ReplyDiary::isComplete() const
{
    return std::all_of(m_replies.begin(), m_replies.end(),
                       [](const auto &reply) { return !reply || reply->isFinished(); });
}

QByteArray ReplyDiary::text(QNetworkReply *reply) const
{
    const auto found = std::find(m_replies.begin(), m_replies.end(), reply);
    return found == m_replies.end() ? QByteArray("unknown reply")
                                    : "reply" + QByteArray::number(found - m_replies.begin() + 1);
}

QByteArray ReplyDiary::text(QAuthenticator *authenticator)
{
    return (authenticator->realm() + u'/' + authenticator->user()).toUtf8();
}

QByteArray ReplyDiary::text(const QNetworkRequest &request)
{
    QByteArray all = text(request.url());
    const auto names = request.rawHeaderList();
    for (const QByteArray &name : names)
        all += '\n' + name + ": " + request.rawHeader(name);
    for (int attribute = 0; attribute <= lastAttribute; ++attribute) {
        const QVariant value = request.attribute(QNetworkRequest::Attribute(attribute));
        if (value.isValid())
            all += '\n' + QByteArray::number(attribute) + '=' + text(value);
    }
    return all + '\n' + text(request.priority()) + text(request.transferTimeout()) +
           text(request.maximumRedirectsAllowed()) + text(request.peerVerifyName()) +
           (request.originatingObject() ? request.originatingObject()->objectName().toUtf8() : QByteArray());
}

QByteArray ReplyDiary::text(const QSslConfiguration &configuration)
{
    return text(configuration.peerCertificate()) + text(configuration.sessionProtocol()) +
           text(configuration.sessionCipher()) + text(configuration.peerVerifyMode());
}

QByteArray ReplyDiary::state(const QNetworkReply *reply) const
{
    return text(const_cast<QNetworkReply *>(reply)) + (reply->isOpen() ? " open" : " closed") +
           (reply->isFinished() ? " finished" : "") + (reply->isRunning() ? " running " : " ") +
           text(reply->error()) + (m_flows ? QByteArray() : ' ' + text(reply->bytesAvailable()));
}

template<typename Sender, typename... Arguments>
void ReplyDiary::hear(Sender *sender, const char *name, void (Sender::*signal)(Arguments...))
{
    auto *const owner = qobject_cast<QNetworkReply *>(sender);
    connect(sender, signal, this, [this, name, owner](Arguments... arguments) {
        QNetworkReply *reply = owner;
        if constexpr ((std::is_same_v<Arguments, QNetworkReply *> || ...))
            reply = std::get<QNetworkReply *>(std::tuple(arguments...));
        if (reply && isLucky(name, reply))
            return;
        if constexpr (std::is_same_v<std::tuple<Arguments...>, std::tuple<qint64, qint64>>) {
            if (!isWritten(name, reply, arguments...))
                return;
        }
        const QPointer<QNetworkReply> guard(reply);
        const QByteArray words = (QByteArray(name) + ... + (' ' + text(arguments)));
        write(words + " | " + (reply ? state(reply) : QByteArray()));
        if (m_reaction)
            m_reaction(name, guard);
    });
}

bool ReplyDiary::isWritten(const QByteArray &signal, QNetworkReply *reply, qint64 done, qint64 total)
{
    qint64 &progress = m_progress[signal + text(reply)];
    const qint64 former = std::exchange(progress, done);
    if (former > done)
        return true;
    // Qt sends a request again when the connection breaks early, as often as it is lucky.
    if (former == done && signal == "uploadProgress" && !reply->isFinished())
        return false;
    return m_keepsProgress || (signal == "uploadProgress" ? done == total : reply->isFinished());
}

bool ReplyDiary::isLucky(const QByteArray &signal, QNetworkReply *reply)
{
    if (signal == "metaDataChanged")
        m_isSent = false;
    if (signal != "socketStartedConnecting" && signal != "requestSent")
        return false;
    return reply->isFinished() || reply != m_replies.front() ||
           std::exchange(signal == "requestSent" ? m_isSent : m_isConnecting, true);
}
