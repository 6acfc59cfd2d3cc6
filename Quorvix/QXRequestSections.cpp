#include "Quorvix/QXRequestSections.h"

#include "Quorvix/QXCacheSummary.h"
#include "Quorvix/QXDisplayFormat.h"
#include "Quorvix/QXRequestCookies.h"

#include "Platform/Localized.h"
#include "Platform/URLText.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QLocale>

using namespace Quorvix;
using namespace Qt::StringLiterals;

namespace {

using Group = QXRequestSection::Group;
using Kind = QXRequestSection::Kind;
using Sections = std::vector<QXRequestSection>;
using Values = QList<QXRequestValue>;

/// The titles and the group that differ between the request and the response.
struct Side
{
    const char *headersTitle = nullptr;
    const char *cookiesTitle = nullptr;
    const char *bodyTitle = nullptr;
    Group cookies = Group::RequestCookies;
};

constexpr Side requestSide{QT_TRANSLATE_NOOP("Quorvix", "REQUEST HEADERS"),
                           QT_TRANSLATE_NOOP("Quorvix", "REQUEST COOKIES"),
                           QT_TRANSLATE_NOOP("Quorvix", "REQUEST BODY"), Group::RequestCookies};
constexpr Side responseSide{QT_TRANSLATE_NOOP("Quorvix", "RESPONSE HEADERS"),
                            QT_TRANSLATE_NOOP("Quorvix", "RESPONSE COOKIES"),
                            QT_TRANSLATE_NOOP("Quorvix", "RESPONSE BODY"), Group::ResponseCookies};

/// Unlike in the request list, no status code is yellow here.
QXSystemColor::Value colorForStatusCode(qint64 code)
{
    if (code >= 200 && code <= 299)
        return QXSystemColor::Green;
    return code >= 400 ? QXSystemColor::Red : QXSystemColor::Orange;
}

/// The screen has an item for each value, which takes it a quarter of a millisecond. So a host or a server
/// with thousands of headers or cookies would keep it busy for seconds: all behind the first ones are one
/// text.
constexpr qsizetype mostItems = 200;

Values withFewItems(Values values)
{
    if (values.size() <= mostItems)
        return values;
    QString others;
    for (qsizetype index = mostItems; index < values.size(); ++index)
        others += values[index].label + u": "_s + values[index].text + u'\n';
    others.chop(1);
    const QString count = QLocale().toString(values.size() - mostItems);
    values.resize(mostItems);
    values.append({QCoreApplication::translate("Quorvix", "%1 more").arg(count), others});
    return values;
}

void addValues(Sections &sections, const char *title, Values values)
{
    if (!values.isEmpty())
        sections.push_back({Kind::Values, localized(title), withFewItems(std::move(values)), {}, {}});
}

void addGroup(Sections &sections, const char *title, Group group, Values values)
{
    if (!values.isEmpty())
        sections.push_back({Kind::Group, localized(title), withFewItems(std::move(values)), group, {}});
}

void addHeaders(Sections &sections, const Side &side, const std::optional<HTTPHeaderFields> &headers)
{
    if (!headers)
        return;
    Values values;
    for (auto it = headers->cbegin(); it != headers->cend(); ++it)
        values.append({it.key(), it.value()});
    addValues(sections, side.headersTitle, std::move(values));
}

void addCookies(Sections &sections, const Side &side, const QXRequestTrace &request)
{
    Values values;
    for (const QNetworkCookie &cookie : sharedCookies(request))
        values.append({QString::fromUtf8(cookie.name()), QString::fromUtf8(cookie.value())});
    addGroup(sections, side.cookiesTitle, side.cookies, std::move(values));
}

void addCache(Sections &sections, const QXRequestTrace &request)
{
    Values values;
    for (const QXCacheSection &entry : cacheSummary(request.response))
        values.append({entry.title, entry.text});
    addGroup(sections, QT_TRANSLATE_NOOP("Quorvix", "RESPONSE CACHE"), Group::ResponseCache,
             std::move(values));
}

/// Works for the request and for the response.
void addBody(Sections &sections, const Side &side, const auto &half)
{
    if (half.body)
        sections.push_back({Kind::Body, localized(side.bodyTitle), {}, {}, *half.body});
    else if (half.discardedBodySize)
        addValues(sections, side.bodyTitle,
                  {{QCoreApplication::translate("Quorvix", "Note"),
                    QXDisplayFormat::discardedBody(*half.discardedBodySize)}});
}

void addRequest(Sections &sections, const QXRequestTrace &request)
{
    Values values{
        {QCoreApplication::translate("Quorvix", "URL"),
         request.url ? absoluteString(*request.url) : QCoreApplication::translate("Quorvix", "N/A")},
        {QCoreApplication::translate("Quorvix", "Method"), sentMethod(request.method)},
        {QCoreApplication::translate("Quorvix", "Time"), QXDisplayFormat::date(request.date)}};
    if (request.duration)
        values.append({QCoreApplication::translate("Quorvix", "Duration"),
                       QXDisplayFormat::seconds(QCoreApplication::translate("Quorvix", "%.3f seconds"),
                                                "%.3f"_L1, *request.duration, 3)});
    addValues(sections, QT_TRANSLATE_NOOP("Quorvix", "REQUEST"), std::move(values));
    sections.push_back({Kind::Breakpoint, QCoreApplication::translate("Quorvix", "BREAKPOINT"), {}, {}, {}});
    addHeaders(sections, requestSide, request.headers);
    addCookies(sections, requestSide, request);
    addBody(sections, requestSide, request);
}

void addResponse(Sections &sections, const QXRequestTrace &request, const QXResponseTrace &response)
{
    addValues(sections, QT_TRANSLATE_NOOP("Quorvix", "RESPONSE"),
              {{QCoreApplication::translate("Quorvix", "Status Code"), QString::number(response.statusCode),
                colorForStatusCode(response.statusCode)},
               {QCoreApplication::translate("Quorvix", "Time"), QXDisplayFormat::date(response.date)}});
    addHeaders(sections, responseSide, response.headers);
    addCookies(sections, responseSide, request);
    addCache(sections, request);
    addBody(sections, responseSide, response);
}

} // namespace

bool QXRequestSection::showsTheSameAs(const QXRequestSection &other) const
{
    return kind == other.kind && title == other.title && values == other.values && group == other.group &&
           body.isSharedWith(other.body);
}

std::vector<QXRequestSection> requestSections(const QXRequestTrace &request)
{
    Sections sections;
    addRequest(sections, request);
    if (request.response)
        addResponse(sections, request, *request.response);
    if (request.error) {
        addValues(
            sections, QT_TRANSLATE_NOOP("Quorvix", "ERROR"),
            {{QCoreApplication::translate("Quorvix", "Description"), request.error->localizedDescription},
             {QCoreApplication::translate("Quorvix", "Domain"), request.error->domain},
             {QCoreApplication::translate("Quorvix", "Code"), QString::number(request.error->code)}});
    }
    return sections;
}
