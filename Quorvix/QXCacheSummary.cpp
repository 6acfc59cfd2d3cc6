#include "Quorvix/QXCacheSummary.h"

#include "Platform/Localized.h"
#include "Platform/NSISO8601DateFormatter.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QStringList>

using namespace Quorvix;
using namespace Qt::StringLiterals;

namespace {

QString line(const char *label, const QString &value)
{
    return localized(label) + ": "_L1 + value;
}

QStringList summaryLines(const QXCacheFacts &facts)
{
    QStringList lines;
    if (facts.expires)
        lines += line(QT_TRANSLATE_NOOP("Quorvix", "expires"), *facts.expires);
    lines += line(QT_TRANSLATE_NOOP("Quorvix", "lastAccess"), facts.lastAccess);
    if (facts.eTag)
        lines += line(QT_TRANSLATE_NOOP("Quorvix", "eTag"), *facts.eTag);
    if (facts.comment)
        lines += line(QT_TRANSLATE_NOOP("Quorvix", "comment"), *facts.comment);
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
        return {{QCoreApplication::translate("Quorvix", "Cache data missing"),
                 QCoreApplication::translate("Quorvix", "The cache information is missing from the entry")}};
    return {{QCoreApplication::translate("Quorvix", "After request"),
             summaryLines(QXCacheFacts(*response)).join(u'\n')}};
}
