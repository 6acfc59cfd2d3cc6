#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayView>

/// Reads Base64 in both of its alphabets (RFC 4648, sections 4 and 5), which may be mixed.
///
/// Strict but for two things: padding may be missing, in whole or in part, and the bits beyond the last byte
/// may be set, which section 3.5 leaves to the decoder. Any other character, "=" before the end, more of them
/// than belong there and a length with a remainder of 1 are refused. Stateless; any thread.
class QXBase64
{
public:
    enum class WhiteSpace { Refused, Skipped };

    /// Whether @p text is Base64, the empty one included.
    ///
    /// One pass that ends at the first character that does not belong. @p bytes, when given, is overwritten:
    /// with what the text stands for, or with nothing of use when it is not Base64. Its room is used again.
    [[nodiscard]] static bool decode(QByteArrayView text, WhiteSpace whiteSpace, QByteArray *bytes = nullptr);
};
