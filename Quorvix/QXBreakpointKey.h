#pragma once

#include "Platform/PlatformGlobal.h"

#include <QtCore/QHashFunctions>
#include <QtCore/QString>
#include <QtCore/QUrl>

#include <optional>

/// Names one endpoint: method, host and path. Scheme, port, query and fragment play no part.
///
/// A value; compares and hashes over all three texts, exactly as they stand.
struct QUORVIX_INTERNAL_EXPORT QXBreakpointKey
{
    /// The key of a request; absent when it has no URL.
    [[nodiscard]] static std::optional<QXBreakpointKey> make(const std::optional<QUrl> &url,
                                                             const std::optional<QString> &method);

    /// In upper case; "GET" for a request without one.
    QString method;
    /// Empty for a URL without one; its case is kept.
    QString host;
    /// Percent-decoded; "/" when empty.
    QString path;

    /// The method, a space, and the host with the path right after it.
    [[nodiscard]] QString displayText() const;

    bool operator==(const QXBreakpointKey &) const = default;
};

[[nodiscard]] inline size_t qHash(const QXBreakpointKey &key, size_t seed = 0)
{
    return qHashMulti(seed, key.method, key.host, key.path);
}
