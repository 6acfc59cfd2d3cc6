#include "Platform/URLRequest.h"

namespace Quorvix {

URLRequest::URLRequest(const QUrl &requestUrl) : url(requestUrl) {}

std::optional<QString> URLRequest::value(const QString &field) const
{
    return headerValue(allHTTPHeaderFields, field);
}

void URLRequest::setValue(const QString &value, const QString &field)
{
    if (!allHTTPHeaderFields)
        allHTTPHeaderFields.emplace();
    const auto existing = findHeader(*allHTTPHeaderFields, field);
    if (existing != allHTTPHeaderFields->cend())
        allHTTPHeaderFields->erase(existing);
    allHTTPHeaderFields->insert(field, value);
}

void URLRequest::addValue(const QString &value, const QString &field)
{
    if (!allHTTPHeaderFields)
        allHTTPHeaderFields.emplace();
    const auto existing = findHeader(*allHTTPHeaderFields, field);
    if (existing == allHTTPHeaderFields->cend())
        allHTTPHeaderFields->insert(field, value);
    else
        allHTTPHeaderFields->insert(existing.key(), existing.value() + QLatin1StringView(", ") + value);
}

QString sentMethod(const std::optional<QString> &httpMethod)
{
    return httpMethod.value_or(QStringLiteral("GET"));
}

} // namespace Quorvix
