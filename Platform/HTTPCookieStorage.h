#pragma once

#include "PlatformGlobal.h"

#include <QtCore/QList>
#include <QtCore/QUrl>
#include <QtNetwork/QNetworkCookie>

#include <memory>

class QNetworkCookieJar;

namespace Quorvix {

/// The cookies of the process (RFC 6265). All sessions send them and store new ones here, in memory only.
/// Any thread.
class QUORVIX_CORE_EXPORT HTTPCookieStorage
{
public:
    /// The only storage. It is created on first use and lives until the process ends.
    [[nodiscard]] static HTTPCookieStorage &shared();

    /// The cookies that a request to @p url would carry.
    [[nodiscard]] QList<QNetworkCookie> cookiesForURL(const QUrl &url) const;
    /// Stores the cookies that a response from @p url sets; false when none is accepted.
    bool setCookies(const QList<QNetworkCookie> &cookies, const QUrl &url);
    /// Removes the cookies of all servers.
    void removeAllCookies();

    /// A jar for a network access manager that reads and writes this storage.
    [[nodiscard]] static std::unique_ptr<QNetworkCookieJar> makeJar();

private:
    HTTPCookieStorage();
    ~HTTPCookieStorage() = delete;

    class Store;
    std::unique_ptr<Store> m_store;
};

} // namespace Quorvix
