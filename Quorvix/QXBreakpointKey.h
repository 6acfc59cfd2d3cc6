#pragma once

#include "Platform/PlatformGlobal.h"

#include <QtCore/QHashFunctions>
#include <QtCore/QString>
#include <QtCore/QUrl>

#include <optional>

/// Identifies one endpoint by method, host and path. Scheme, port, query and fragment are ignored.
///
/// A value; any thread. Comparison and hash use all three texts and are case-sensitive.
struct QUORVIX_CORE_EXPORT QXBreakpointKey
{
    /// The key of a request; absent when it has no URL. A request without a method counts as a GET.
    [[nodiscard]] static std::optional<QXBreakpointKey> make(const std::optional<QUrl> &url,
                                                             const std::optional<QString> &method);

    /// In upper case; "GET" if the request has no method.
    QString method;
    /// Empty if the URL has no host; its case is not changed.
    QString host;
    /// Percent-decoded; "/" if the URL's path is empty.
    QString path;

    /// The text for display: method, space, host and path, as in "GET example.com/users".
    [[nodiscard]] QString displayText() const;

    /// Whether all three texts are equal, with regard to case.
    bool operator==(const QXBreakpointKey &) const = default;
};

/// The hash over all three texts. Any thread.
[[nodiscard]] inline size_t qHash(const QXBreakpointKey &key, size_t seed = 0)
{
    return qHashMulti(seed, key.method, key.host, key.path);
}
