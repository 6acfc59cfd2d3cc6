#include "Quorvix/QXBreakpointKey.h"

#include "Platform/URLRequest.h"

std::optional<QXBreakpointKey> QXBreakpointKey::make(const std::optional<QUrl> &url,
                                                     const std::optional<QString> &method)
{
    if (!url)
        return std::nullopt;
    const QString path = url->path(QUrl::FullyDecoded);
    return QXBreakpointKey{Quorvix::sentMethod(method).toUpper(), url->host(QUrl::FullyDecoded),
                           path.isEmpty() ? QStringLiteral("/") : path};
}

QString QXBreakpointKey::displayText() const
{
    return method + u' ' + host + path;
}
