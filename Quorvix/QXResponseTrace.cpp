#include "Quorvix/QXResponseTrace.h"

using namespace Quorvix;

namespace {

/// Converts all names and values to text. Absent if one of them is not text, because an incomplete map would
/// be misleading.
std::optional<HTTPHeaderFields> textHeaders(const NSHeaderFields &fields)
{
    HTTPHeaderFields headers;
    for (const auto &[name, value] : fields) {
        const auto *nameText = std::get_if<QString>(&name);
        const auto *valueText = std::get_if<QString>(&value);
        if (!nameText || !valueText)
            return std::nullopt;
        headers.insert(headers.cend(), *nameText, *valueText);
    }
    return headers;
}

template<typename T>
size_t hashOptional(const std::optional<T> &value, size_t seed)
{
    return value ? qHashMulti(seed, 1, *value) : qHash(0, seed);
}

} // namespace

QXResponseTrace::QXResponseTrace(const NSHTTPURLResponse &response, std::optional<QByteArray> data)
    : statusCode(response.statusCode()), headers(textHeaders(response.allHeaderFields())),
      body(std::move(data)), date(std::chrono::system_clock::now())
{
}

size_t qHash(const QXResponseTrace &trace, size_t seed)
{
    seed = qHash(trace.statusCode, seed);
    if (trace.headers) {
        seed = qHash(1, seed);
        for (auto it = trace.headers->cbegin(); it != trace.headers->cend(); ++it)
            seed = qHashMulti(seed, it.key(), it.value());
    } else {
        seed = qHash(0, seed);
    }
    seed = hashOptional(trace.body, seed);
    seed = hashOptional(trace.discardedBodySize, seed);
    return qHash(qint64(trace.date.time_since_epoch().count()), seed);
}
