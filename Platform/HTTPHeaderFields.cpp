#include "Platform/HTTPHeaderFields.h"

namespace Quorvix {

bool isSameHeaderName(QAnyStringView left, QAnyStringView right) noexcept
{
    return QAnyStringView::compare(left, right, Qt::CaseInsensitive) == 0;
}

HTTPHeaderFields::const_iterator findHeader(const HTTPHeaderFields &fields, QAnyStringView name)
{
    auto it = fields.cbegin();
    while (it != fields.cend() && !isSameHeaderName(it.key(), name))
        ++it;
    return it;
}

std::optional<QString> headerValue(const std::optional<HTTPHeaderFields> &fields, QAnyStringView name)
{
    if (!fields)
        return std::nullopt;
    const auto found = findHeader(*fields, name);
    return found == fields->cend() ? std::nullopt : std::optional(found.value());
}

} // namespace Quorvix
