#pragma once

#include "Quorvix/QXDecodedPayload.h"

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayView>
#include <QtCore/QStringView>

#include <optional>

class QXTaskProgress;

/// Finds Base64 (RFC 4648), JSON Web Tokens (RFC 7519) and data URLs (RFC 2397) in captured texts, and makes
/// their content readable.
///
/// Texts are UTF-8 or UTF-16; UTF-16 is converted once. Bytes that are not UTF-8 never cause an error: they
/// count as characters that are not part of encoded text. Every function takes time that is linear in the
/// length of the text. A task that is cancelled gives an absent result, or false, or an
/// incomplete section. Stateless; any thread.
class QUORVIX_INTERNAL_EXPORT QXPayloadDecoder
{
public:
    /// Decodes the first encoded part of the text; absent if there is none.
    [[nodiscard]] static std::optional<QXDecodedPayload> decodePayload(QByteArrayView utf8,
                                                                       QXTaskProgress *progress = nullptr);
    [[nodiscard]] static std::optional<QXDecodedPayload> decodePayload(QStringView text,
                                                                       QXTaskProgress *progress = nullptr);

    /// Returns the part of the text that decodePayload() decodes, without its white space; ASCII.
    [[nodiscard]] static std::optional<QByteArray> findEncodedCandidate(QByteArrayView utf8);
    [[nodiscard]] static std::optional<QString> findEncodedCandidate(QStringView text);
    /// Whether decodePayload() finds something to decode. The UTF-8 overload copies nothing.
    [[nodiscard]] static bool hasEncodedCandidate(QByteArrayView utf8, QXTaskProgress *progress = nullptr);
    [[nodiscard]] static bool hasEncodedCandidate(QStringView text, QXTaskProgress *progress = nullptr);

    /// Decodes a token in compact form that must be the whole text. The signature is neither decoded nor
    /// verified.
    [[nodiscard]] static std::optional<QXDecodedPayload> decodeJWT(QByteArrayView utf8,
                                                                   QXTaskProgress *progress = nullptr);
    [[nodiscard]] static std::optional<QXDecodedPayload> decodeJWT(QStringView text);

    /// Makes a section that shows bytes as pretty-printed JSON, or as text if they are UTF-8 and not empty,
    /// or else in hexadecimal. Without @p title, the title names the format.
    [[nodiscard]] static QXDecodedSection makeSection(const QByteArray &bytes,
                                                      const std::optional<QString> &title = std::nullopt,
                                                      QXTaskProgress *progress = nullptr);

    /// Pretty-prints a JSON object or array; absent for other values and for text that is not JSON.
    ///
    /// Members keep their order, and members with the same name are all shown.
    [[nodiscard]] static std::optional<QString> prettyPrintedJSON(const QByteArray &bytes,
                                                                  QXTaskProgress *progress = nullptr);
    /// Returns two lower-case hexadecimal digits for each byte, without separators.
    [[nodiscard]] static QString hexString(QByteArrayView bytes, QXTaskProgress *progress = nullptr);
};
