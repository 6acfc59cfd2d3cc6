#pragma once

#include "Quorvix/QXTaskSteps.h"

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayView>

/// Decodes Base64 in both alphabets (RFC 4648, sections 4 and 5), which may be mixed.
///
/// The decoder is strict with two exceptions. Padding may be missing, in whole or in part. The unused bits
/// of the last character may be set, which section 3.5 leaves to the decoder. It rejects all other
/// characters, "=" before the end, too many "=", and a length with a remainder of 1. Stateless; any thread.
class QXBase64
{
public:
    enum class WhiteSpace { Refused, Skipped };

    /// Returns whether @p text is Base64. An empty text is.
    ///
    /// Stops at the first invalid character. If @p bytes is given, it is overwritten: with the decoded
    /// bytes, or with undefined content if the text is not Base64. The capacity of @p bytes is reused.
    /// False, too, once the task is cancelled. @p steps has the unit byte.
    [[nodiscard]] static bool decode(QByteArrayView text, WhiteSpace whiteSpace, QByteArray *bytes = nullptr,
                                     QXTaskSteps steps = QXTaskSteps());
};
