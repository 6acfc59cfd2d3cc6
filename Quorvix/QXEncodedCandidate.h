#pragma once

#include <QtCore/QByteArrayView>

#include <optional>

class QByteArray;
class QXTaskProgress;

/// A part of a text that can be decoded: Base64, or a JSON Web Token (RFC 7519). A view of that text.
///
/// The search takes time that is linear in the length of any text.
struct QXEncodedCandidate
{
    enum class Kind { Base64, JWT };

    /// ASCII, except that white space of any kind may be anywhere inside; it is ignored.
    QByteArrayView text;
    Kind kind;

    /// Searches the whole text, then the content of its first data URL, then its words and the values after
    /// a name and "=" in them. Returns the first part that can be decoded.
    ///
    /// Characters beyond ASCII, and bytes that are not UTF-8, are never part of encoded text. A byte order
    /// mark is ignored. @p decoded, if given, is overwritten. If the result is Base64, it holds the decoded
    /// bytes, so that the caller need not decode again. Absent, too, once the task is cancelled; its stages
    /// up to @p end cover the search. Any thread.
    [[nodiscard]] static std::optional<QXEncodedCandidate> find(QByteArrayView utf8,
                                                                QByteArray *decoded = nullptr,
                                                                QXTaskProgress *progress = nullptr,
                                                                double end = 1);
};
