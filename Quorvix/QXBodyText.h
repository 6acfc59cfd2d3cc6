#pragma once

#include "Platform/PlatformGlobal.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <optional>

/// A body as people read it. Stateless; any thread.
class QUORVIX_INTERNAL_EXPORT QXBodyText
{
public:
    /// JSON whose top level is an object or an array, laid out anew with its keys sorted; else the text as it
    /// stands, a byte order mark included; nothing for bytes that are not UTF-8 (RFC 3629).
    [[nodiscard]] static std::optional<QString> readable(const QByteArray &body);

    /// The same, with bytes that are not UTF-8 as two lower-case hexadecimal digits each and a space between.
    [[nodiscard]] static QString text(const QByteArray &body);
};
