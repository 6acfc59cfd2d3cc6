#pragma once

#include "Quorvix/QXResponseTrace.h"

#include "Platform/PlatformGlobal.h"

#include <vector>

/// What a response's headers say about caching. A header counts in any spelling of its name.
struct QXCacheFacts
{
    explicit QXCacheFacts(const QXResponseTrace &response);

    /// "Expires", as it stands in the header.
    std::optional<QString> expires;
    /// "ETag", as it stands in the header.
    std::optional<QString> eTag;
    /// "Cache-Control" and "Pragma", those that are not empty, joined by "; ". Absent rather than empty.
    std::optional<QString> comment;
    /// When the response came, in ISO 8601 form.
    QString lastAccess;
};

/// A titled block of the details screen's cache summary.
struct QXCacheSection
{
    QString title;
    QString text;

    bool operator==(const QXCacheSection &) const = default;
};

/// The cache summary of an exchange, in the user's language; one section at least. Any thread.
[[nodiscard]] QUORVIX_INTERNAL_EXPORT std::vector<QXCacheSection>
cacheSummary(const std::optional<QXResponseTrace> &response);
