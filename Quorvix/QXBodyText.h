#pragma once

#include "Platform/PlatformGlobal.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <optional>

class QXTaskProgress;

/// Converts a body to text for display. Stateless; any thread.
///
/// The current stage of @p progress covers the work. A task that is cancelled gives an incomplete text or
/// none.
class QUORVIX_INTERNAL_EXPORT QXBodyText
{
public:
    /// If the body is JSON with an object or an array at the top level, returns it pretty-printed with
    /// sorted keys. Otherwise returns the text unchanged, including a byte order mark. Absent if the bytes
    /// are not UTF-8 (RFC 3629).
    [[nodiscard]] static std::optional<QString> readable(const QByteArray &body,
                                                         QXTaskProgress *progress = nullptr);

    /// readable() in UTF-8. Shares @p body if it is returned unchanged.
    [[nodiscard]] static std::optional<QByteArray> readableUtf8(const QByteArray &body,
                                                                QXTaskProgress *progress = nullptr);

    /// Like readable(), but bytes that are not UTF-8 are shown as two lower-case hexadecimal digits each,
    /// separated by spaces.
    [[nodiscard]] static QString text(const QByteArray &body, QXTaskProgress *progress = nullptr);
    /// Appends text(), without a copy of it.
    static void appendText(QString &text, const QByteArray &body, QXTaskProgress *progress = nullptr);

private:
    static bool appendReadable(QString &text, const QByteArray &body, QXTaskProgress *progress);
};
