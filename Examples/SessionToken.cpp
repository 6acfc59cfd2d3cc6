#include "Examples/SessionToken.h"

#include <QtCore/QCryptographicHash>
#include <QtCore/QDateTime>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QMessageAuthenticationCode>
#include <QtCore/QUuid>

namespace {

constexpr qint64 lifetime = 3600;
constexpr auto base64Url = QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals;

/// The signing key; unless one is given it is random and valid only in this process, like the tokens.
QByteArray &key()
{
    static QByteArray key = QUuid::createUuid().toRfc4122() + QUuid::createUuid().toRfc4122();
    return key;
}

QByteArray encode(const QJsonObject &object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact).toBase64(base64Url);
}

QByteArray signature(const QByteArray &message)
{
    return QMessageAuthenticationCode::hash(message, key(), QCryptographicHash::Sha256).toBase64(base64Url);
}

} // namespace

void SessionToken::useKey(const QByteArray &newKey)
{
    key() = newKey;
}

QByteArray SessionToken::sign(const QString &email)
{
    const qint64 now = QDateTime::currentSecsSinceEpoch();
    const QJsonObject header{{QStringLiteral("alg"), QStringLiteral("HS256")},
                             {QStringLiteral("typ"), QStringLiteral("JWT")}};
    const QJsonObject claims{
        {QStringLiteral("iss"), QStringLiteral("https://store.example")},
        {QStringLiteral("sub"), email},
        {QStringLiteral("aud"), QStringLiteral("store-app")},
        {QStringLiteral("iat"), now},
        {QStringLiteral("exp"), now + lifetime},
        {QStringLiteral("roles"), QJsonArray{QStringLiteral("customer"), QStringLiteral("beta")}}};
    const QByteArray message = encode(header) + '.' + encode(claims);
    return message + '.' + signature(message);
}

std::optional<QString> SessionToken::verify(const QByteArray &token)
{
    const qsizetype end = token.lastIndexOf('.');
    if (end < 0 || token.mid(end + 1) != signature(token.left(end)))
        return std::nullopt;
    const QByteArray payload = token.left(end).mid(token.indexOf('.') + 1);
    const QJsonObject claims = QJsonDocument::fromJson(QByteArray::fromBase64(payload, base64Url)).object();
    if (claims.value(QStringLiteral("exp")).toInteger() < QDateTime::currentSecsSinceEpoch())
        return std::nullopt;
    return claims.value(QStringLiteral("sub")).toString();
}
