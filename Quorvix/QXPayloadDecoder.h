#pragma once

#include "Quorvix/QXDecodedPayload.h"

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayView>
#include <QtCore/QStringView>

#include <optional>

/// Finds Base64 (RFC 4648), JSON Web Tokens (RFC 7519) and data URLs (RFC 2397) in captured texts, and makes
/// what they hold readable.
///
/// Texts come as UTF-8 or as UTF-16, which is converted once. Bytes that are not UTF-8 make nothing fail:
/// they count as characters that belong to nothing that is encoded. Each takes time that grows with the
/// length of the text and no faster. Stateless; any thread.
class QUORVIX_INTERNAL_EXPORT QXPayloadDecoder
{
public:
    /// Decodes the first thing in the text that can be; nothing when there is none.
    [[nodiscard]] static std::optional<QXDecodedPayload> decodePayload(QByteArrayView utf8);
    [[nodiscard]] static std::optional<QXDecodedPayload> decodePayload(QStringView text);

    /// The part of the text that decodePayload() decodes, without its white space; ASCII.
    [[nodiscard]] static std::optional<QByteArray> findEncodedCandidate(QByteArrayView utf8);
    [[nodiscard]] static std::optional<QString> findEncodedCandidate(QStringView text);
    /// Whether there is something to decode. Copies nothing of UTF-8.
    [[nodiscard]] static bool hasEncodedCandidate(QByteArrayView utf8);
    [[nodiscard]] static bool hasEncodedCandidate(QStringView text);

    /// Decodes a token in compact form, as it stands. The signature is neither decoded nor verified.
    [[nodiscard]] static std::optional<QXDecodedPayload> decodeJWT(QByteArrayView utf8);
    [[nodiscard]] static std::optional<QXDecodedPayload> decodeJWT(QStringView text);

    /// Shows bytes as pretty JSON, else as text if they are UTF-8 and not empty, else in hexadecimal. The
    /// title is that of the rendering unless one is given.
    [[nodiscard]] static QXDecodedSection makeSection(QByteArrayView bytes,
                                                      const std::optional<QString> &title = std::nullopt);

    /// A JSON object or array, laid out anew; nothing for other values and for what is not JSON.
    ///
    /// Members keep their order, and all of one name are shown.
    [[nodiscard]] static std::optional<QString> prettyPrintedJSON(QByteArrayView bytes);
    /// Two lower-case digits for each byte, with nothing between them.
    [[nodiscard]] static QString hexString(QByteArrayView bytes);
};
