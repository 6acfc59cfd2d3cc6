#include "Platform/HTTPCookieStorage.h"

#include <QtNetwork/QNetworkCookieJar>

#include <mutex>

namespace Quorvix {

class HTTPCookieStorage::Store final : public QNetworkCookieJar
{
public:
    void removeAll() { setAllCookies({}); }

    std::mutex mutex;
};

namespace {

class SharedJar final : public QNetworkCookieJar
{
public:
    QList<QNetworkCookie> cookiesForUrl(const QUrl &url) const override
    {
        return HTTPCookieStorage::shared().cookiesForURL(url);
    }

    bool setCookiesFromUrl(const QList<QNetworkCookie> &cookies, const QUrl &url) override
    {
        return HTTPCookieStorage::shared().setCookies(cookies, url);
    }
};

} // namespace

HTTPCookieStorage::HTTPCookieStorage() : m_store(std::make_unique<Store>()) {}

HTTPCookieStorage &HTTPCookieStorage::shared()
{
    static auto *const storage = new HTTPCookieStorage;
    return *storage;
}

QList<QNetworkCookie> HTTPCookieStorage::cookiesForURL(const QUrl &url) const
{
    const std::scoped_lock lock(m_store->mutex);
    return m_store->cookiesForUrl(url);
}

bool HTTPCookieStorage::setCookies(const QList<QNetworkCookie> &cookies, const QUrl &url)
{
    const std::scoped_lock lock(m_store->mutex);
    return m_store->setCookiesFromUrl(cookies, url);
}

void HTTPCookieStorage::removeAllCookies()
{
    const std::scoped_lock lock(m_store->mutex);
    m_store->removeAll();
}

std::unique_ptr<QNetworkCookieJar> HTTPCookieStorage::makeJar()
{
    return std::make_unique<SharedJar>();
}

} // namespace Quorvix
