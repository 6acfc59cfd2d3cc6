// Checks the cookies of the archive against a simple reading of the headers, and that the cookies of the
// details go only to the servers that RFC 6265 allows.

#include "FuzzCheck.h"
#include "FuzzParts.h"

#include "Quorvix/QXHeaderCookies.h"
#include "Quorvix/QXRequestCookies.h"
#include "Quorvix/QXRequestTrace.h"

#include "Platform/HTTPCookieStorage.h"
#include "Platform/ReplyOutcome.h"

#include <QtCore/QDateTime>
#include <QtCore/QRegularExpression>
#include <QtCore/QStringList>

#include <algorithm>

using namespace Quorvix;
using namespace Qt::StringLiterals;

namespace {

using Pairs = QList<std::pair<QString, QString>>;

void addPair(Pairs &pairs, const QString &cookie)
{
    const QString name = cookie.section(u'=', 0, 0);
    const QString value = cookie.section(u'=', 1);
    if (!name.isEmpty() && !value.isEmpty())
        pairs.append({name, value});
}

Pairs simpleRequestCookies(const QString &header)
{
    static const QRegularExpression around(u"\\A[ \\t]+|[ \\t]+\\z"_s);
    Pairs pairs;
    for (QString piece : header.split(u';'))
        addPair(pairs, piece.remove(around));
    return pairs;
}

Pairs simpleResponseCookies(const QString &header)
{
    static const QRegularExpression lineBreak(u"[\\n\\v\\f\\r\\x{85}\\x{2028}\\x{2029}]"_s);
    Pairs pairs;
    for (const QString &line : header.split(lineBreak))
        addPair(pairs, line.section(u';', 0, 0));
    return pairs;
}

Pairs pairsOf(const QList<QXHeaderCookie> &cookies)
{
    Pairs pairs;
    for (const QXHeaderCookie &cookie : cookies)
        pairs.append({cookie.name, cookie.value});
    return pairs;
}

void checkHeaderCookies(const QString &cookie, const QString &setCookie)
{
    const HTTPHeaderFields headers{{u"Cookie"_s, cookie}, {u"Set-Cookie"_s, setCookie}};
    check(pairsOf(requestCookies(headers)) == simpleRequestCookies(cookie), "the cookies of a request");
    check(pairsOf(responseCookies(headers)) == simpleResponseCookies(setCookie), "the cookies of a response");
    const HTTPHeaderFields lower{{u"cookie"_s, cookie}, {u"set-cookie"_s, setCookie}};
    check(requestCookies(lower).isEmpty() && responseCookies(lower).isEmpty(), "only the exact names count");
}

bool isForHost(const QNetworkCookie &cookie, const QString &host)
{
    const QString domain = cookie.domain().startsWith(u'.') ? cookie.domain().sliced(1) : cookie.domain();
    return host == domain || host.endsWith(u'.' + domain);
}

void checkStoredCookies(const QUrl &from, const QUrl &to, const QByteArray &setCookie)
{
    auto &storage = HTTPCookieStorage::shared();
    storage.removeAllCookies();
    const QList<QNetworkCookie> received = QNetworkCookie::parseCookies(setCookie);
    const bool isStored = storage.setCookies(received, from);
    for (const QUrl &url : {from, to}) {
        const QXRequestTrace trace(u"id"_s, URLRequest(url));
        const QList<QNetworkCookie> sent = sharedCookies(trace);
        check(isStored || sent.isEmpty(), "what is not stored is not sent");
        for (const QNetworkCookie &cookie : sent) {
            check(std::any_of(received.cbegin(), received.cend(),
                              [&](const QNetworkCookie &one) {
                                  return one.name() == cookie.name() && one.value() == cookie.value();
                              }),
                  "a cookie is one of those received");
            check(isForHost(cookie, url.host()) && isForHost(cookie, from.host()),
                  "a cookie stays with its servers");
            check(!cookie.isSecure() || url.scheme() == "https"_L1, "a secure cookie goes over TLS only");
            check(cookie.isSessionCookie() ||
                      cookie.expirationDate() > QDateTime::currentDateTimeUtc().addSecs(-1),
                  "no cookie is sent that has expired");
        }
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzParts parts(view(data, size));
    const QUrl from = QUrl::fromEncoded(parts.take());
    const QUrl to = QUrl::fromEncoded(parts.take());
    const QByteArray cookie = parts.take();
    const QByteArray setCookie = parts.takeRest();
    checkHeaderCookies(ReplyOutcome::fieldText(cookie), ReplyOutcome::fieldText(setCookie));
    checkStoredCookies(from, to, setCookie);
    return 0;
}
