#include "Quorvix/QXRawDetails.h"

#include "Quorvix/QXBodyText.h"
#include "Quorvix/QXCacheSummary.h"
#include "Quorvix/QXDisplayFormat.h"
#include "Quorvix/QXTaskSteps.h"

#include "Platform/Localized.h"
#include "Platform/URLText.h"

#include <QtCore/QCoreApplication>

using namespace Quorvix;
using namespace Qt::StringLiterals;

namespace {

/// The labels that differ between the request and the response.
struct Side
{
    const char *headers;
    const char *cookies;
    const char *body;
};

constexpr Side requestSide{QT_TRANSLATE_NOOP("Quorvix", "Request Headers"),
                           QT_TRANSLATE_NOOP("Quorvix", "Request Cookies"),
                           QT_TRANSLATE_NOOP("Quorvix", "Request Body")};
constexpr Side responseSide{QT_TRANSLATE_NOOP("Quorvix", "Response Headers"),
                            QT_TRANSLATE_NOOP("Quorvix", "Response Cookies"),
                            QT_TRANSLATE_NOOP("Quorvix", "Response Body")};

void addBlock(QStringList &lines, const char *label, const QString &value)
{
    const QString rule(83, u'-');
    lines += {rule, localized(label), rule};
    if (!value.isEmpty())
        lines += value;
    lines += QString();
}

void addHeaders(QStringList &lines, const Side &side, const std::optional<HTTPHeaderFields> &headers)
{
    if (!headers || headers->isEmpty())
        return;
    QStringList headerLines;
    for (auto it = headers->cbegin(); it != headers->cend(); ++it)
        headerLines += u"    \""_s + it.key() + u"\" = "_s + it.value() + u';';
    headerLines.sort();
    addBlock(lines, side.headers, u"{\n"_s + headerLines.join(u'\n') + u"\n}"_s);
}

void addCookies(QStringList &lines, const Side &side, const QXExportedTrace &exported)
{
    QStringList cookieLines;
    for (const QNetworkCookie &cookie : exported.storedCookies())
        cookieLines += QString::fromUtf8(cookie.name()) + u" = "_s + QString::fromUtf8(cookie.value());
    if (!cookieLines.isEmpty())
        addBlock(lines, side.cookies, cookieLines.join(u'\n'));
}

void addCache(QStringList &lines, const QXRequestTrace &request)
{
    QStringList entries;
    for (const QXCacheSection &entry : cacheSummary(request.response))
        entries += entry.title + u'\n' + entry.text;
    if (!entries.isEmpty())
        addBlock(lines, QT_TRANSLATE_NOOP("Quorvix", "Response Cache"), entries.join(u"\n\n"_s));
}

QString status(const QXRequestTrace &request)
{
    if (request.response)
        return QCoreApplication::translate("Quorvix", "Completed");
    return request.error ? QCoreApplication::translate("Quorvix", "Failed")
                         : QCoreApplication::translate("Quorvix", "Pending");
}

} // namespace

QString rawDetails(const QXExportedTrace &exported, QXTaskProgress *progress)
{
    return rawDetails(
        exported, [progress](const QByteArray &body) { return QXBodyText::text(body, progress); }, progress);
}

QString rawDetails(const QXExportedTrace &exported,
                   const std::function<QString(const QByteArray &)> &bodyText, QXTaskProgress *progress)
{
    const QXRequestTrace &request = *exported;
    QStringList lines;
    const auto addBody = [&](const Side &side, const auto &half) {
        if (isCancelled(progress))
            return;
        if (half.body)
            addBlock(lines, side.body, bodyText(*half.body));
        else if (half.discardedBodySize)
            addBlock(lines, side.body, QXDisplayFormat::discardedBody(*half.discardedBodySize));
    };
    addBlock(lines, QT_TRANSLATE_NOOP("Quorvix", "URL"),
             request.url ? absoluteString(*request.url) : QCoreApplication::translate("Quorvix", "N/A"));
    addBlock(lines, QT_TRANSLATE_NOOP("Quorvix", "HTTP type"), sentMethod(request.method));
    addHeaders(lines, requestSide, request.headers);
    addCookies(lines, requestSide, exported);
    addBody(requestSide, request);
    addBlock(lines, QT_TRANSLATE_NOOP("Quorvix", "Request time"), QXDisplayFormat::date(request.date));
    addBlock(lines, QT_TRANSLATE_NOOP("Quorvix", "Request status"), status(request));
    if (const auto &response = request.response) {
        addBlock(lines, QT_TRANSLATE_NOOP("Quorvix", "HTTP Response code"),
                 QString::number(response->statusCode));
        addBlock(lines, QT_TRANSLATE_NOOP("Quorvix", "Response Time"), QXDisplayFormat::date(response->date));
        addHeaders(lines, responseSide, response->headers);
        addCookies(lines, responseSide, exported);
        addCache(lines, request);
        addBody(responseSide, *response);
    }
    if (request.duration) {
        addBlock(lines, QT_TRANSLATE_NOOP("Quorvix", "Roundtrip duration"),
                 QXDisplayFormat::seconds(QCoreApplication::translate("Quorvix", "%.6f secs"), "%.6f"_L1,
                                          *request.duration, 6));
    }
    if (request.body || request.discardedBodySize)
        addBlock(
            lines, QT_TRANSLATE_NOOP("Quorvix", "Request Size"),
            QXDisplayFormat::byteCount(request.body ? request.body->size() : *request.discardedBodySize));
    if (isCancelled(progress))
        return {};
    QString text = lines.join(u'\n');
    finish(progress);
    return text;
}
