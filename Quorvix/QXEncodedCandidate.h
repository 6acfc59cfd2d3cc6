#pragma once

#include <QtCore/QByteArrayView>

#include <optional>

class QByteArray;

/// A part of a text that would decode: Base64, or a JSON Web Token (RFC 7519). A view of that text.
///
/// Found in time that grows with the length of the text and no faster, whatever the text.
struct QXEncodedCandidate
{
    enum class Kind { Base64, JWT };

    /// ASCII but for white space, which may be anywhere inside and does not count.
    QByteArrayView text;
    Kind kind;

    /// Looks at the text as a whole, then at the content of its first data URL, then at its words and at what
    /// follows a name and "=" in them; takes the first that would decode.
    ///
    /// Characters beyond ASCII, and bytes that are not UTF-8, belong to nothing that is encoded. A byte order
    /// mark does not count. @p decoded, when given, is overwritten, with the bytes of what was found if it is
    /// Base64; it spares a second pass. Any thread.
    [[nodiscard]] static std::optional<QXEncodedCandidate> find(QByteArrayView utf8,
                                                                QByteArray *decoded = nullptr);
};
