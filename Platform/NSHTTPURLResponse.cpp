#include "Platform/NSHTTPURLResponse.h"

#include <QtCore/QLocale>

namespace Quorvix {

NSURLResponse::~NSURLResponse() = default;

QString description(const NSHeaderValue &value)
{
    if (const auto *text = std::get_if<QString>(&value))
        return *text;
    if (const auto *integer = std::get_if<qint64>(&value))
        return QString::number(*integer);
    return QString::number(std::get<double>(value), 'g', QLocale::FloatingPointShortest);
}

NSHTTPURLResponsePtr NSHTTPURLResponse::create(const QUrl &url, qint64 statusCode, const QString &httpVersion,
                                               NSHeaderFields headerFields)
{
    if (!url.isValid())
        return nullptr;
    return std::make_shared<const NSHTTPURLResponse>(url, statusCode, httpVersion, std::move(headerFields));
}

NSHTTPURLResponse::NSHTTPURLResponse(std::optional<QUrl> url, qint64 statusCode, QString httpVersion,
                                     NSHeaderFields headerFields)
    : NSURLResponse(std::move(url)), m_statusCode(statusCode), m_httpVersion(std::move(httpVersion)),
      m_headerFields(std::move(headerFields)),
      m_storedHeaderFields(StoredHeaderFields::fromFields(m_headerFields))
{
}

NSHTTPURLResponse::~NSHTTPURLResponse() = default;

} // namespace Quorvix
