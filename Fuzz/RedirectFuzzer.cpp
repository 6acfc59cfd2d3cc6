// Checks chains of redirects: where they lead, that they end, and what the next request still carries.

#include "FuzzCheck.h"
#include "FuzzParts.h"

#include "Platform/HTTPRedirect.h"
#include "Platform/NSError.h"
#include "Platform/ReplyOutcome.h"

#include <QtCore/QStringList>

#include <tuple>

using namespace Quorvix;
using namespace Qt::StringLiterals;

namespace {

auto originOf(const QUrl &url)
{
    return std::tuple(url.scheme(), url.host(), url.port(url.scheme() == "https"_L1 ? 443 : 80));
}

bool carries(const URLRequest &request, QStringView name)
{
    return request.value(name.toString()).has_value();
}

void checkHeaders(const URLRequest &from, const URLRequest &next, bool isElsewhere, bool isWithoutBody)
{
    static const QStringList credentials{u"authorization"_s, u"cookie"_s};
    static const QStringList aboutBody{u"content-type"_s, u"content-length"_s, u"content-encoding"_s};
    const HTTPHeaderFields before = from.allHTTPHeaderFields.value_or(HTTPHeaderFields());
    const HTTPHeaderFields after = next.allHTTPHeaderFields.value_or(HTTPHeaderFields());
    for (auto it = before.cbegin(); it != before.cend(); ++it) {
        const bool isRemoved = (isElsewhere && credentials.contains(it.key(), Qt::CaseInsensitive)) ||
                               (isWithoutBody && aboutBody.contains(it.key(), Qt::CaseInsensitive));
        check(after.contains(it.key()) != isRemoved, "exactly the headers that no longer apply are removed");
        check(isRemoved || after[it.key()] == it.value(), "the other headers stay");
    }
    check(after.size() <= before.size(), "no header is added");
}

void checkRedirect(const URLRequest &from, const URLRequest &next, int status, const QUrl &location)
{
    const bool isElsewhere = originOf(*from.url) != originOf(*next.url);
    check(!isElsewhere || (!carries(next, u"Authorization") && !carries(next, u"COOKIE")),
          "credentials stay with their origin");
    check(!isElsewhere || next.url->userInfo() == location.userInfo(),
          "the user's name stays with its origin");
    check(next.url->hasFragment() || from.url->fragment().isEmpty(), "a fragment is kept");

    const QString method = sentMethod(from.httpMethod);
    const bool becomesGet = status == 303 ? method != "HEAD"_L1 : status <= 302 && method == "POST"_L1;
    check(sentMethod(next.httpMethod) == (becomesGet ? u"GET"_s : method), "the method");
    check(becomesGet ? !next.httpBody : next.httpBody == from.httpBody, "the body");
    checkHeaders(from, next, isElsewhere, becomesGet);
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzParts parts(view(data, size));
    URLRequest request(QUrl::fromEncoded(parts.take()));
    request.httpMethod = QString::fromUtf8(parts.take());
    for (const auto &[name, value] : parts.takeFields())
        request.setValue(ReplyOutcome::fieldText(value), ReplyOutcome::fieldText(name));
    request.httpBody = parts.take();
    const auto answers = parts.takeFields(); // a status and a location each

    // A server can answer for ever: the answers begin again behind the last one.
    int followed = 0;
    for (qsizetype i = 0; !answers.isEmpty(); ++i) {
        const auto &[statusText, location] = answers[i % answers.size()];
        const int status = statusText.toInt();
        const auto next = HTTPRedirect::follow(request, status, location);
        const bool isRedirect = QList{301, 302, 303, 307, 308}.contains(status) && !location.isEmpty();
        check(next.has_value() == isRedirect, "a redirect is a status with a location");
        if (!next)
            break;
        checkRedirect(request, *next, status, QUrl::fromEncoded(location));
        const auto problem = HTTPRedirect::problem(*next, ++followed);
        check(problem || followed <= 20, "a chain ends");
        if (problem)
            break;
        const QString scheme = next->url->scheme();
        check(next->url->isValid() && (scheme == "http"_L1 || scheme == "https"_L1),
              "a redirect leads to the web");
        request = *next;
    }
    return 0;
}
