#include "Platform/URLRequest.h"

namespace Quorvix {

namespace {

HTTPHeaderFields::iterator findIgnoringCase(HTTPHeaderFields &fields, const QString &field)
{
    auto it = fields.begin();
    while (it != fields.end() && it.key().compare(field, Qt::CaseInsensitive) != 0)
        ++it;
    return it;
}

} // namespace

URLRequest::URLRequest(const QUrl &requestUrl) : url(requestUrl) {}

std::optional<QString> URLRequest::value(const QString &field) const
{
    if (!allHTTPHeaderFields)
        return std::nullopt;
    for (auto it = allHTTPHeaderFields->cbegin(); it != allHTTPHeaderFields->cend(); ++it) {
        if (it.key().compare(field, Qt::CaseInsensitive) == 0)
            return it.value();
    }
    return std::nullopt;
}

void URLRequest::setValue(const QString &value, const QString &field)
{
    if (!allHTTPHeaderFields)
        allHTTPHeaderFields.emplace();
    const auto existing = findIgnoringCase(*allHTTPHeaderFields, field);
    if (existing != allHTTPHeaderFields->end())
        allHTTPHeaderFields->erase(existing);
    allHTTPHeaderFields->insert(field, value);
}

void URLRequest::addValue(const QString &value, const QString &field)
{
    if (!allHTTPHeaderFields)
        allHTTPHeaderFields.emplace();
    const auto existing = findIgnoringCase(*allHTTPHeaderFields, field);
    if (existing == allHTTPHeaderFields->end())
        allHTTPHeaderFields->insert(field, value);
    else
        existing.value() += QLatin1StringView(", ") + value;
}

} // namespace Quorvix
