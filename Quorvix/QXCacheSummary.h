#pragma once

#include "Quorvix/QXResponseTrace.h"

#include "Platform/PlatformGlobal.h"

#include <vector>

/// The cache information in a response's headers. Header names are compared without regard to case.
struct QXCacheFacts
{
    explicit QXCacheFacts(const QXResponseTrace &response);

    /// The value of "Expires", unchanged.
    std::optional<QString> expires;
    /// The value of "ETag", unchanged.
    std::optional<QString> eTag;
    /// The non-empty values of "Cache-Control" and "Pragma", joined by "; ". Absent if there are none.
    std::optional<QString> comment;
    /// The time of the response, in ISO 8601 format.
    QString lastAccess;
};

/// One entry of the cache summary on the details screen: a title and a text.
struct QXCacheSection
{
    QString title;
    QString text;

    bool operator==(const QXCacheSection &) const = default;
};

/// Returns the cache summary of an exchange in the user's language; it has at least one entry. Any thread.
[[nodiscard]] QUORVIX_INTERNAL_EXPORT std::vector<QXCacheSection>
cacheSummary(const std::optional<QXResponseTrace> &response);
