#include "Quorvix/QXRawDetails.h"

#include "Quorvix/QXBodyText.h"
#include "Quorvix/QXCacheSummary.h"
#include "Quorvix/QXDisplayFormat.h"
#include "Quorvix/QXTaskSteps.h"

#include "Platform/Localized.h"
#include "Platform/NSByteCountFormatter.h"
#include "Platform/URLText.h"

#include <QtCore/QCoreApplication>

#include <algorithm>

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

void addLine(QString &text, QStringView line)
{
    if (!text.isEmpty())
        text += u'\n';
    text += line;
}

/// Adds a block whose value @p appendValue appends.
void addBlock(QString &text, const char *label, const std::function<void(QString &)> &appendValue)
{
    const QString rule(83, u'-');
    for (const QString &line : {rule, localized(label), rule})
        addLine(text, line);
    text += u'\n';
    const qsizetype before = text.size();
    appendValue(text);
    if (text.size() > before)
        text += u'\n';
}

void addBlock(QString &text, const char *label, const QString &value)
{
    addBlock(text, label, [&value](QString &end) { end += value; });
}

void addHeaders(QString &text, const Side &side, const std::optional<HTTPHeaderFields> &headers)
{
    if (!headers || headers->isEmpty())
        return;
    QStringList headerLines;
    for (auto it = headers->cbegin(); it != headers->cend(); ++it)
        headerLines += u"    \""_s + it.key() + u"\" = "_s + it.value() + u';';
    headerLines.sort();
    addBlock(text, side.headers, u"{\n"_s + headerLines.join(u'\n') + u"\n}"_s);
}

void addCookies(QString &text, const Side &side, const QXExportedTrace &exported)
{
    QStringList cookieLines;
    for (const QNetworkCookie &cookie : exported.storedCookies())
        cookieLines += QString::fromUtf8(cookie.name()) + u" = "_s + QString::fromUtf8(cookie.value());
    if (!cookieLines.isEmpty())
        addBlock(text, side.cookies, cookieLines.join(u'\n'));
}

void addCache(QString &text, const QXRequestTrace &request)
{
    QStringList entries;
    for (const QXCacheSection &entry : cacheSummary(request.response))
        entries += entry.title + u'\n' + entry.text;
    if (!entries.isEmpty())
        addBlock(text, QT_TRANSLATE_NOOP("Quorvix", "Response Cache"), entries.join(u"\n\n"_s));
}

QString status(const QXRequestTrace &request)
{
    if (request.response)
        return QCoreApplication::translate("Quorvix", "Completed");
    return request.error ? QCoreApplication::translate("Quorvix", "Failed")
                         : QCoreApplication::translate("Quorvix", "Pending");
}

using BodyAppender = std::function<void(QString &text, const QByteArray &body)>;

QString details(const QXExportedTrace &exported, const BodyAppender &appendBody, QXTaskProgress *progress)
{
    const QXRequestTrace &request = *exported;
    const double requestSize = request.body ? double(request.body->size()) : 0;
    const double responseSize =
        request.response && request.response->body ? double(request.response->body->size()) : 0;
    QString text;
    const auto addBody = [&](const Side &side, const auto &half, double end) {
        if (!beginStage(progress, end))
            return;
        if (half.body)
            addBlock(text, side.body, [&](QString &to) { appendBody(to, *half.body); });
        else if (half.discardedBodySize)
            addBlock(text, side.body, QXDisplayFormat::discardedBody(*half.discardedBodySize));
    };
    addBlock(text, QT_TRANSLATE_NOOP("Quorvix", "URL"),
             request.url ? absoluteString(*request.url) : QCoreApplication::translate("Quorvix", "N/A"));
    addBlock(text, QT_TRANSLATE_NOOP("Quorvix", "HTTP type"), sentMethod(request.method));
    addHeaders(text, requestSide, request.headers);
    addCookies(text, requestSide, exported);
    // The bodies take nearly all of the time.
    addBody(requestSide, request, requestSize / std::max(requestSize + responseSize, 1.0));
    addBlock(text, QT_TRANSLATE_NOOP("Quorvix", "Request time"), QXDisplayFormat::date(request.date));
    addBlock(text, QT_TRANSLATE_NOOP("Quorvix", "Request status"), status(request));
    if (const auto &response = request.response) {
        addBlock(text, QT_TRANSLATE_NOOP("Quorvix", "HTTP Response code"),
                 QString::number(response->statusCode));
        addBlock(text, QT_TRANSLATE_NOOP("Quorvix", "Response Time"), QXDisplayFormat::date(response->date));
        addHeaders(text, responseSide, response->headers);
        addCookies(text, responseSide, exported);
        addCache(text, request);
        addBody(responseSide, *response, 1);
    }
    if (request.duration) {
        addBlock(text, QT_TRANSLATE_NOOP("Quorvix", "Roundtrip duration"),
                 QXDisplayFormat::seconds(QCoreApplication::translate("Quorvix", "%.6f secs"), "%.6f"_L1,
                                          *request.duration, 6));
    }
    if (request.body || request.discardedBodySize)
        addBlock(
            text, QT_TRANSLATE_NOOP("Quorvix", "Request Size"),
            NSByteCountFormatter::string(request.body ? request.body->size() : *request.discardedBodySize));
    if (!beginStage(progress, 1))
        return {};
    finish(progress);
    return text;
}

} // namespace

QString rawDetails(const QXExportedTrace &exported, QXTaskProgress *progress)
{
    return details(
        exported,
        [progress](QString &text, const QByteArray &body) { QXBodyText::appendText(text, body, progress); },
        progress);
}

QString rawDetails(const QXExportedTrace &exported,
                   const std::function<QString(const QByteArray &)> &bodyText, QXTaskProgress *progress)
{
    return details(
        exported, [&bodyText](QString &text, const QByteArray &body) { text += bodyText(body); }, progress);
}
