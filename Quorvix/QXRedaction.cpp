#include "Quorvix/QXRedaction.h"

#include "Platform/HTTPHeaderFields.h"

#include <algorithm>
#include <atomic>
#include <mutex>

using namespace Qt::StringLiterals;

namespace {

struct List
{
    static List &instance()
    {
        static auto *const list = new List;
        return *list;
    }

    /// An export asks for each header, and nearly always there is no list.
    std::atomic<bool> isEmpty = true;
    std::mutex mutex;
    QStringList names;
};

} // namespace

QStringList QXRedaction::credentials()
{
    return {u"Authorization"_s, u"Cookie"_s, u"Set-Cookie"_s, u"Proxy-Authorization"_s};
}

void QXRedaction::setHeaders(const QStringList &names)
{
    List &list = List::instance();
    const std::scoped_lock lock(list.mutex);
    list.names = names;
    list.isEmpty = names.isEmpty();
}

QStringList QXRedaction::headers()
{
    List &list = List::instance();
    const std::scoped_lock lock(list.mutex);
    return list.names;
}

bool QXRedaction::concerns(QStringView header)
{
    if (List::instance().isEmpty)
        return false;
    const QStringList names = headers();
    return std::any_of(names.cbegin(), names.cend(), [&](const QString &name) {
        return Quorvix::isSameHeaderName(name.trimmed(), header.trimmed());
    });
}
