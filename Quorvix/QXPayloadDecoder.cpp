#include "Quorvix/QXPayloadDecoder.h"

#include "Quorvix/QXBase64.h"
#include "Quorvix/QXEncodedCandidate.h"
#include "Quorvix/QXJWTPieces.h"
#include "Quorvix/QXLongText.h"
#include "Quorvix/QXTaskSteps.h"
#include "Quorvix/QXWhiteSpace.h"

#include "Platform/LargeText.h"
#include "Platform/Localized.h"
#include "JSON/JSONReader.h"
#include "JSON/JSONWriter.h"

#include "Platform/UTF8Text.h"

#include <QtCore/QCoreApplication>

using namespace Quorvix;

namespace {

/// The share of the time that it takes to find the encoded text and to decode it; the rest formats it.
constexpr double searchShare = 0.4;

QByteArrayView asUtf8(QByteArrayView utf8)
{
    return utf8;
}

QByteArray asUtf8(QStringView text)
{
    return text.toUtf8();
}

QString asText(QByteArrayView utf8)
{
    return QString::fromUtf8(utf8);
}

QString asText(QStringView text)
{
    return text.toString();
}

template<typename View>
std::optional<QXDecodedPayload> decodedJWT(View token, QXTaskProgress *progress = nullptr)
{
    const auto pieces = QXJWTPieces<View>::split(token);
    if (!pieces || pieces->header.isEmpty() || pieces->body.isEmpty() || pieces->signature.isEmpty())
        return std::nullopt;
    QByteArray header;
    QByteArray body;
    if (!QXBase64::decode(asUtf8(pieces->header), QXBase64::WhiteSpace::Refused, &header) ||
        !QXBase64::decode(asUtf8(pieces->body), QXBase64::WhiteSpace::Refused, &body, QXTaskSteps(progress)))
        return std::nullopt;
    return QXDecodedPayload(
        QCoreApplication::translate("Quorvix", "Decoded JWT"),
        {QXPayloadDecoder::makeSection(header, QCoreApplication::translate("Quorvix", "Header")),
         QXPayloadDecoder::makeSection(body, QCoreApplication::translate("Quorvix", "Body"), progress),
         QXDecodedSection(QCoreApplication::translate("Quorvix", "Signature"), asText(pieces->signature))});
}

} // namespace

std::optional<QXDecodedPayload> QXPayloadDecoder::decodePayload(QByteArrayView utf8, QXTaskProgress *progress)
{
    QByteArray bytes;
    const auto candidate = QXEncodedCandidate::find(utf8, &bytes, progress, searchShare);
    if (!candidate || !beginStage(progress, 1))
        return std::nullopt;
    auto payload =
        candidate->kind == QXEncodedCandidate::Kind::JWT
            ? decodeJWT(QXWhiteSpace::removed(candidate->text), progress)
            : std::optional(QXDecodedPayload(QCoreApplication::translate("Quorvix", "Decoded Base64"),
                                             {makeSection(bytes, std::nullopt, progress)}));
    if (isCancelled(progress))
        return std::nullopt;
    finish(progress);
    return payload;
}

std::optional<QXDecodedPayload> QXPayloadDecoder::decodePayload(QStringView text, QXTaskProgress *progress)
{
    return decodePayload(text.toUtf8(), progress);
}

std::optional<QByteArray> QXPayloadDecoder::findEncodedCandidate(QByteArrayView utf8)
{
    const auto candidate = QXEncodedCandidate::find(utf8);
    return candidate ? std::optional(QXWhiteSpace::removed(candidate->text)) : std::nullopt;
}

std::optional<QString> QXPayloadDecoder::findEncodedCandidate(QStringView text)
{
    const auto candidate = findEncodedCandidate(text.toUtf8());
    return candidate ? std::optional(QString::fromLatin1(*candidate)) : std::nullopt;
}

bool QXPayloadDecoder::hasEncodedCandidate(QByteArrayView utf8, QXTaskProgress *progress)
{
    const bool isThere = QXEncodedCandidate::find(utf8, nullptr, progress).has_value();
    if (isCancelled(progress))
        return false;
    finish(progress);
    return isThere;
}

bool QXPayloadDecoder::hasEncodedCandidate(QStringView text, QXTaskProgress *progress)
{
    return hasEncodedCandidate(text.toUtf8(), progress);
}

std::optional<QXDecodedPayload> QXPayloadDecoder::decodeJWT(QByteArrayView utf8, QXTaskProgress *progress)
{
    return decodedJWT(utf8, progress);
}

std::optional<QXDecodedPayload> QXPayloadDecoder::decodeJWT(QStringView text)
{
    return decodedJWT(text);
}

QXDecodedSection QXPayloadDecoder::makeSection(const QByteArray &bytes, const std::optional<QString> &title,
                                               QXTaskProgress *progress)
{
    const auto section = [&](const char *defaultTitle, QString content) {
        return QXDecodedSection(title ? *title : localized(defaultTitle), std::move(content));
    };
    if (auto json = prettyPrintedJSON(bytes, progress))
        return section(QT_TRANSLATE_NOOP("Quorvix", "JSON"), std::move(*json));
    // A byte order mark alone does not count as text.
    const QByteArrayView utf8 = UTF8Text::withoutByteOrderMark(bytes);
    if (QString text; !utf8.isEmpty() && !isCancelled(progress) && isValidUtf8(utf8) &&
                      QXLongText::appendUtf8(text, utf8, QXTaskSteps(progress, utf8.size())))
        return section(QT_TRANSLATE_NOOP("Quorvix", "Text"), std::move(text));
    return section(QT_TRANSLATE_NOOP("Quorvix", "Bytes"),
                   isCancelled(progress) ? QString() : hexString(bytes, progress));
}

std::optional<QString> QXPayloadDecoder::prettyPrintedJSON(const QByteArray &bytes, QXTaskProgress *progress)
{
    if (!JSONReader::beginsLikeContainer(bytes))
        return std::nullopt;
    const auto document = JSONReader::parseInPlace(bytes, JSONReader::TopLevel::Container);
    if (!document)
        return std::nullopt;
    QString text;
    LargeText::reserve(text, bytes.size() + bytes.size() / 2);
    const QXTaskSteps steps(progress, document.value().size());
    if (!QXLongText::appendJson(text, document.value(), JSONWriter::KeyOrder::Document, steps))
        return std::nullopt;
    text.squeeze();
    return text;
}

QString QXPayloadDecoder::hexString(QByteArrayView bytes, QXTaskProgress *progress)
{
    QString text;
    const QXTaskSteps steps(progress, bytes.size());
    static_cast<void>(QXLongText::appendHex(text, bytes, QXLongText::Digits::Together, steps));
    return text;
}
