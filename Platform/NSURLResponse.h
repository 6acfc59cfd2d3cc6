#pragma once

#include "PlatformGlobal.h"

#include <QtCore/QUrl>

#include <memory>
#include <optional>

namespace Quorvix {

/// The response to a request. Immutable; shared between threads.
class QUORVIX_CORE_EXPORT NSURLResponse
{
public:
    /// A response from @p url, which may be absent.
    explicit NSURLResponse(std::optional<QUrl> url) : m_url(std::move(url)) {}
    virtual ~NSURLResponse();

    NSURLResponse(const NSURLResponse &) = delete;
    NSURLResponse &operator=(const NSURLResponse &) = delete;

    /// The URL that the response comes from, after redirects.
    [[nodiscard]] const std::optional<QUrl> &url() const noexcept { return m_url; }

private:
    std::optional<QUrl> m_url;
};

/// An optional response: null when there is none.
using NSURLResponsePtr = std::shared_ptr<const NSURLResponse>;

} // namespace Quorvix
