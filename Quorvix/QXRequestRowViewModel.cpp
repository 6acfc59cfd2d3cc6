#include "Quorvix/QXRequestRowViewModel.h"

#include <QtCore/QCoreApplication>

namespace {

constexpr double tintOpacity = 0.12;

QXSystemColor::Value colorForStatusCode(qint64 code)
{
    if (code >= 200 && code <= 299)
        return QXSystemColor::Green;
    if (code == 401)
        return QXSystemColor::Yellow;
    if (code < 400)
        return QXSystemColor::Orange;
    return QXSystemColor::Red;
}

} // namespace

QString QXRequestRowViewModel::title() const
{
    const QString path = request.url ? request.url->path(QUrl::FullyDecoded)
                                     : QCoreApplication::translate("Quorvix", "Unknown");
    return Quorvix::sentMethod(request.method) + u' ' + path;
}

QString QXRequestRowViewModel::statusText() const
{
    if (request.response)
        return QString::number(request.response->statusCode);
    if (request.error)
        return QCoreApplication::translate("Quorvix", "Error");
    return QCoreApplication::translate("Quorvix", "Loading...");
}

QXSystemColor::Value QXRequestRowViewModel::statusColor() const
{
    if (request.error)
        return QXSystemColor::Red;
    if (!request.response)
        return QXSystemColor::Gray;
    return colorForStatusCode(request.response->statusCode);
}

QXRequestRowViewModel::Tint QXRequestRowViewModel::backgroundColor() const
{
    if (!request.response)
        return {QXSystemColor::Clear, 0};
    return {colorForStatusCode(request.response->statusCode), tintOpacity};
}
