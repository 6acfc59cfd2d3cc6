#include "Quorvix/QXResponseTrace.h"

using namespace Quorvix;

namespace {

template<typename T>
size_t hashOptional(const std::optional<T> &value, size_t seed)
{
    return value ? qHashMulti(seed, 1, *value) : qHash(0, seed);
}

/// Not shared with the response: its block is of another thread's memory, which would be in pieces soon if
/// what stays lay between what the thread takes and frees for each exchange.
std::optional<StoredHeaderFields> kept(const std::optional<StoredHeaderFields> &fields)
{
    return fields ? std::optional(fields->unshared()) : std::nullopt;
}

} // namespace

QXResponseTrace::QXResponseTrace(const NSHTTPURLResponse &response, std::optional<QByteArray> data)
    : QXResponseTrace(response, std::move(data), std::chrono::system_clock::now())
{
}

QXResponseTrace::QXResponseTrace(const NSHTTPURLResponse &response, std::optional<QByteArray> data,
                                 std::chrono::system_clock::time_point time)
    : statusCode(response.statusCode()), headers(kept(response.storedHeaderFields())), body(std::move(data)),
      date(time)
{
}

size_t qHash(const QXResponseTrace &trace, size_t seed)
{
    seed = qHash(trace.statusCode, seed);
    if (trace.headers) {
        seed = qHash(1, seed);
        trace.headers->forEach(
            [&](const QString &name, const QString &value) { seed = qHashMulti(seed, name, value); });
    } else {
        seed = qHash(0, seed);
    }
    seed = hashOptional(trace.body, seed);
    seed = hashOptional(trace.discardedBodySize, seed);
    return qHash(qint64(trace.date.time_since_epoch().count()), seed);
}
