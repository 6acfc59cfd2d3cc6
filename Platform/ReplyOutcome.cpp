#include "Platform/ReplyOutcome.h"

#include "Platform/HTTPHeaderName.h"
#include "Platform/NSHTTPURLResponse.h"
#include "Platform/UTF8Text.h"

#include <QtCore/QHash>
#include <QtCore/QRegularExpression>
#include <QtNetwork/QNetworkReply>
#include <QtNetwork/QSslError>

#include <algorithm>
#include <array>

namespace Quorvix {

namespace {

constexpr char certificateErrorProperty[] = "certificateError";

NSURLErrorCode codeForCertificate(QSslError::SslError error)
{
    switch (error) {
    case QSslError::CertificateExpired:
        return NSURLErrorServerCertificateHasBadDate;
    case QSslError::CertificateNotYetValid:
        return NSURLErrorServerCertificateNotYetValid;
    case QSslError::SelfSignedCertificateInChain:
    case QSslError::UnableToGetLocalIssuerCertificate:
        return NSURLErrorServerCertificateHasUnknownRoot;
    default:
        return NSURLErrorServerCertificateUntrusted;
    }
}

NSURLErrorCode codeForAlert(uint alert)
{
    // RFC 8446, 6.2. The server complains about what it was sent, which is the client's certificate.
    constexpr std::array<uint, 7> refusals{
        42, // bad_certificate
        43, // unsupported_certificate
        44, // certificate_revoked
        45, // certificate_expired
        46, // certificate_unknown
        48, // unknown_ca
        49, // access_denied
    };
    constexpr uint certificateRequired = 116;
    if (alert == certificateRequired)
        return NSURLErrorClientCertificateRequired;
    return std::ranges::find(refusals, alert) != refusals.end() ? NSURLErrorClientCertificateRejected
                                                                : NSURLErrorSecureConnectionFailed;
}

/// The error of TLS in the text of an error; absent when there is none. Qt passes on the texts of OpenSSL,
/// whose words depend on its version, but not their numbers: those of the library for TLS, and of the reason,
/// which is 1000 more than the number of the alert that the server has sent.
std::optional<NSURLErrorCode> codeForTls(const QString &errorString)
{
    static const QRegularExpression number(QStringLiteral("\\berror:([0-9A-Fa-f]{8}):"));
    constexpr uint tlsLibrary = 20;
    constexpr uint firstAlert = 1000;
    std::optional<NSURLErrorCode> code;
    for (auto it = number.globalMatch(errorString); it.hasNext();) {
        const uint packed = it.next().capturedView(1).toUInt(nullptr, 16);
        // OpenSSL 3 has moved the library's number.
        if ((packed >> 23) != tlsLibrary && (packed >> 24) != tlsLibrary)
            continue;
        const uint reason = packed & 0xFFF;
        code = reason >= firstAlert ? codeForAlert(reason - firstAlert) : NSURLErrorSecureConnectionFailed;
        if (code != NSURLErrorSecureConnectionFailed)
            break;
    }
    return code;
}

/// The length that the header declares for the body as it comes over the wire; absent when it declares none,
/// or several.
std::optional<qint64> declaredLength(const QNetworkReply &reply)
{
    // A length beside a transfer coding does not count (RFC 9112, 6.3).
    if (reply.hasRawHeader("Transfer-Encoding"))
        return std::nullopt;
    std::optional<qint64> length;
    const QList<QByteArray> values = reply.rawHeader("Content-Length").split(',');
    for (const QByteArray &value : values) {
        bool isNumber = false;
        const qint64 number = value.trimmed().toLongLong(&isNumber);
        if (!isNumber || number < 0 || (length && *length != number))
            return std::nullopt;
        length = number;
    }
    return length;
}

/// The texts of names that this thread has met. An object that is destroyed at the end of the program, such
/// as a manager in a static variable, can ask for a name after they are gone.
struct KnownNames
{
    ~KnownNames() { areGone = true; }

    QHash<QByteArray, QString> texts;
    static thread_local bool areGone;
};

thread_local bool KnownNames::areGone = false;

} // namespace

QString ReplyOutcome::fieldText(const QByteArray &bytes)
{
    // Nearly all are ASCII, for which the check of UTF-8 takes several times as long as this one.
    if (std::all_of(bytes.begin(), bytes.end(), [](char c) { return static_cast<uchar>(c) < 0x80; }))
        return QString::fromLatin1(bytes);
    const std::optional<QString> text = UTF8Text::exact(bytes);
    return text ? *text : QString::fromLatin1(bytes);
}

QString ReplyOutcome::fieldName(const QByteArray &bytes)
{
    // Servers send the same few names again and again. So the traces share their texts.
    constexpr qsizetype mostNames = 256;
    constexpr qsizetype longestName = 64;
    if (KnownNames::areGone)
        return fieldText(HTTPHeaderName::usualSpelling(bytes));
    static thread_local KnownNames known;
    QHash<QByteArray, QString> &names = known.texts;
    const auto found = names.constFind(bytes);
    if (found != names.cend())
        return *found;
    QString name = fieldText(HTTPHeaderName::usualSpelling(bytes));
    if (names.size() < mostNames && bytes.size() <= longestName)
        names.insert(bytes, name);
    return name;
}

URLRequest ReplyOutcome::request(const QNetworkReply &reply, const QString &method,
                                 const std::optional<QByteArray> &body)
{
    const QNetworkRequest sent = reply.request();
    URLRequest request(sent.url());
    request.httpMethod = method;
    request.httpBody = body;
    const QList<QByteArray> names = sent.rawHeaderList();
    if (!names.isEmpty())
        request.allHTTPHeaderFields.emplace();
    for (const QByteArray &name : names)
        request.allHTTPHeaderFields->insert(fieldName(name), fieldText(sent.rawHeader(name)));
    return request;
}

NSURLResponsePtr ReplyOutcome::response(const QNetworkReply &reply, BodyLength length)
{
    const QVariant status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute);
    if (!status.isValid())
        return reply.error() == QNetworkReply::NoError ? std::make_shared<const NSURLResponse>(reply.url())
                                                       : nullptr;
    const bool http2 = reply.attribute(QNetworkRequest::Http2WasUsedAttribute).toBool();
    NSHeaderFields fields;
    for (const auto &[name, value] : reply.rawHeaderPairs()) {
        if (length == BodyLength::AsSent || name.compare("Content-Length", Qt::CaseInsensitive) != 0)
            fields.insert_or_assign(fieldName(name), fieldText(value));
    }
    return std::make_shared<const NSHTTPURLResponse>(
        reply.url(), status.toLongLong(), http2 ? QStringLiteral("HTTP/2.0") : QStringLiteral("HTTP/1.1"),
        std::move(fields));
}

void ReplyOutcome::noteCertificateErrors(QNetworkReply &reply, const QList<QSslError> &errors)
{
    if (!errors.isEmpty())
        reply.setProperty(certificateErrorProperty, int(errors.constFirst().error()));
}

std::optional<NSURLErrorCode> ReplyOutcome::transportError(const QNetworkReply &reply, bool isCancelled)
{
    // Qt also reports a status of 400 and above as an error.
    const bool isStatus = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt() >= 400;
    switch (reply.error()) {
    case QNetworkReply::NoError:
        return std::nullopt;
    case QNetworkReply::OperationCanceledError:
        return isCancelled ? NSURLErrorCancelled : NSURLErrorTimedOut;
    case QNetworkReply::TimeoutError:
    case QNetworkReply::ProxyTimeoutError:
        return NSURLErrorTimedOut;
    case QNetworkReply::HostNotFoundError:
    case QNetworkReply::ProxyNotFoundError:
        return NSURLErrorCannotFindHost;
    case QNetworkReply::ConnectionRefusedError:
    case QNetworkReply::ProxyConnectionRefusedError:
        return NSURLErrorCannotConnectToHost;
    case QNetworkReply::RemoteHostClosedError:
    case QNetworkReply::ProxyConnectionClosedError:
    case QNetworkReply::NetworkSessionFailedError:
        return NSURLErrorNetworkConnectionLost;
    case QNetworkReply::TemporaryNetworkFailureError:
        return NSURLErrorNotConnectedToInternet;
    case QNetworkReply::SslHandshakeFailedError: {
        const QVariant certificate = reply.property(certificateErrorProperty);
        if (certificate.isValid())
            return codeForCertificate(QSslError::SslError(certificate.toInt()));
        return codeForTls(reply.errorString()).value_or(NSURLErrorSecureConnectionFailed);
    }
    case QNetworkReply::TooManyRedirectsError:
        return NSURLErrorHTTPTooManyRedirects;
    case QNetworkReply::ProtocolUnknownError:
        return NSURLErrorUnsupportedURL;
    case QNetworkReply::ProtocolFailure:
        return NSURLErrorCannotParseResponse;
    case QNetworkReply::ProtocolInvalidOperationError:
        if (!isStatus)
            return NSURLErrorCannotParseResponse;
        break;
    case QNetworkReply::ContentNotFoundError:
    case QNetworkReply::ContentAccessDenied:
    case QNetworkReply::ContentGoneError:
        if (!isStatus)
            return NSURLErrorResourceUnavailable;
        break;
    case QNetworkReply::UnknownContentError:
        if (!isStatus)
            return NSURLErrorCannotDecodeContentData;
        break;
    case QNetworkReply::UnknownNetworkError:
        // With TLS 1.3 the server looks at the client's certificate after the client has ended the handshake.
        return codeForTls(reply.errorString()).value_or(NSURLErrorCannotConnectToHost);
    case QNetworkReply::UnknownProxyError:
        return NSURLErrorCannotConnectToHost;
    case QNetworkReply::InternalServerError:
    case QNetworkReply::UnknownServerError:
    case QNetworkReply::ContentReSendError:
        // So Qt calls it when a server of HTTP/2 ends a stream or the connection.
        if (!isStatus)
            return NSURLErrorNetworkConnectionLost;
        break;
    default:
        break;
    }
    return isStatus ? std::nullopt : std::optional(NSURLErrorUnknown);
}

bool ReplyOutcome::isCutShort(const QNetworkReply &reply, qint64 receivedBytes, const QString &method)
{
    const int status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    // RFC 9110, 6.4.1
    if (method == QLatin1StringView("HEAD") || status < 200 || status == 204 || status == 304)
        return false;
    return receivedBytes < declaredLength(reply).value_or(0);
}

} // namespace Quorvix
