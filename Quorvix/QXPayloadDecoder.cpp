#include "Quorvix/QXPayloadDecoder.h"

#include "Quorvix/QXBase64.h"
#include "Quorvix/QXEncodedCandidate.h"
#include "Quorvix/QXJWTPieces.h"
#include "Quorvix/QXTaskSteps.h"
#include "Quorvix/QXWhiteSpace.h"

#include "Platform/Localized.h"
#include "JSON/JSONReader.h"
#include "JSON/JSONWriter.h"

#include "Platform/HexDigit.h"
#include "Platform/UTF8Text.h"

#include <QtCore/QCoreApplication>

#include <array>
#include <cstring>

using namespace Quorvix;

namespace {

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
std::optional<QXDecodedPayload> decodedJWT(View token)
{
    const auto pieces = QXJWTPieces<View>::split(token);
    if (!pieces || pieces->header.isEmpty() || pieces->body.isEmpty() || pieces->signature.isEmpty())
        return std::nullopt;
    QByteArray header;
    QByteArray body;
    if (!QXBase64::decode(asUtf8(pieces->header), QXBase64::WhiteSpace::Refused, &header) ||
        !QXBase64::decode(asUtf8(pieces->body), QXBase64::WhiteSpace::Refused, &body))
        return std::nullopt;
    return QXDecodedPayload(
        QCoreApplication::translate("Quorvix", "Decoded JWT"),
        {QXPayloadDecoder::makeSection(header, QCoreApplication::translate("Quorvix", "Header")),
         QXPayloadDecoder::makeSection(body, QCoreApplication::translate("Quorvix", "Body")),
         QXDecodedSection(QCoreApplication::translate("Quorvix", "Signature"), asText(pieces->signature))});
}

/// The two hexadecimal digits of every byte.
constexpr auto hexDigits = [] {
    std::array<std::array<char16_t, 2>, 256> table{};
    for (unsigned byte = 0; byte < table.size(); ++byte)
        table[byte] = {char16_t(hexDigit(byte >> 4)), char16_t(hexDigit(byte & 0xF))};
    return table;
}();

} // namespace

std::optional<QXDecodedPayload> QXPayloadDecoder::decodePayload(QByteArrayView utf8, QXTaskProgress *progress)
{
    QByteArray bytes;
    const auto candidate = QXEncodedCandidate::find(utf8, &bytes, progress);
    if (!candidate || isCancelled(progress))
        return std::nullopt;
    if (candidate->kind == QXEncodedCandidate::Kind::JWT)
        return decodeJWT(QXWhiteSpace::removed(candidate->text));
    return QXDecodedPayload(QCoreApplication::translate("Quorvix", "Decoded Base64"), {makeSection(bytes)});
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
    return QXEncodedCandidate::find(utf8, nullptr, progress).has_value() && !isCancelled(progress);
}

bool QXPayloadDecoder::hasEncodedCandidate(QStringView text, QXTaskProgress *progress)
{
    return hasEncodedCandidate(text.toUtf8(), progress);
}

std::optional<QXDecodedPayload> QXPayloadDecoder::decodeJWT(QByteArrayView utf8)
{
    return decodedJWT(utf8);
}

std::optional<QXDecodedPayload> QXPayloadDecoder::decodeJWT(QStringView text)
{
    return decodedJWT(text);
}

QXDecodedSection QXPayloadDecoder::makeSection(QByteArrayView bytes, const std::optional<QString> &title)
{
    const auto section = [&](const char *defaultTitle, QString content) {
        return QXDecodedSection(title ? *title : localized(defaultTitle), std::move(content));
    };
    if (auto json = prettyPrintedJSON(bytes))
        return section(QT_TRANSLATE_NOOP("Quorvix", "JSON"), std::move(*json));
    // A byte order mark alone does not count as text: fromUtf8() removes it, and the result is empty.
    if (QString text = isValidUtf8(bytes) ? QString::fromUtf8(bytes) : QString(); !text.isEmpty())
        return section(QT_TRANSLATE_NOOP("Quorvix", "Text"), std::move(text));
    return section(QT_TRANSLATE_NOOP("Quorvix", "Bytes"), hexString(bytes));
}

std::optional<QString> QXPayloadDecoder::prettyPrintedJSON(QByteArrayView bytes)
{
    if (!JSONReader::beginsLikeContainer(bytes))
        return std::nullopt;
    const auto document = JSONReader::parse(bytes, JSONReader::TopLevel::Container);
    if (!document)
        return std::nullopt;
    JSONWriter writer;
    writer.value(document.value().root(), JSONWriter::KeyOrder::Document);
    return QString::fromUtf8(writer.takeBuffer());
}

QString QXPayloadDecoder::hexString(QByteArrayView bytes)
{
    constexpr qsizetype digitsPerByte = 2;
    QString text(bytes.size() * digitsPerByte, Qt::Uninitialized);
    QChar *to = text.data();
    for (const char byte : bytes) {
        std::memcpy(static_cast<void *>(to), hexDigits[uchar(byte)].data(), digitsPerByte * sizeof(QChar));
        to += digitsPerByte;
    }
    return text;
}
