#include "Quorvix/QXRequestCookies.h"

#include "Quorvix/QXRequestTrace.h"

#include "Platform/HTTPCookieStorage.h"

QList<QNetworkCookie> sharedCookies(const QXRequestTrace &request)
{
    return request.url ? Quorvix::HTTPCookieStorage::shared().cookiesForURL(*request.url)
                       : QList<QNetworkCookie>();
}
