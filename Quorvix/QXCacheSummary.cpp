#include "Quorvix/QXCacheSummary.h"

#include "Platform/NSISO8601DateFormatter.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QStringList>

using namespace Quorvix;
using namespace Qt::StringLiterals;

namespace {

QString localized(const char *text)
{
    return QCoreApplication::translate("Quorvix", text);
}

QString line(const char *label, const QString &value)
{
    return localized(label) + ": "_L1 + value;
}

QStringList summaryLines(const QXCacheFacts &facts)
{
    QStringList lines;
    if (facts.expires)
        lines += line("expires", *facts.expires);
    lines += line("lastAccess", facts.lastAccess);
    if (facts.eTag)
        lines += line("eTag", *facts.eTag);
    if (facts.comment)
        lines += line("comment", *facts.comment);
    return lines;
}

} // namespace

QXCacheFacts::QXCacheFacts(const QXResponseTrace &response)
    : expires(headerValue(response.headers, "Expires"_L1)), eTag(headerValue(response.headers, "ETag"_L1)),
      lastAccess(NSISO8601DateFormatter::string(response.date))
{
    QStringList directives;
    for (const QLatin1StringView name : {"Cache-Control"_L1, "Pragma"_L1}) {
        const auto value = headerValue(response.headers, name);
        if (value && !value->isEmpty())
            directives += *value;
    }
    if (!directives.isEmpty())
        comment = directives.join("; "_L1);
}

std::vector<QXCacheSection> cacheSummary(const std::optional<QXResponseTrace> &response)
{
    if (!response)
        return {
            {localized("Cache data missing"), localized("The cache information is missing from the entry")}};
    return {{localized("After request"), summaryLines(QXCacheFacts(*response)).join(u'\n')}};
}
