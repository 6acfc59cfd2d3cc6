#include "Platform/URLText.h"

#include "Platform/UTF8Text.h"

namespace Quorvix {

QString absoluteString(const QUrl &url)
{
    return QString::fromLatin1(url.toEncoded());
}

QString percentDecoded(QStringView encoded)
{
    const auto decoded = UTF8Text::exact(QByteArray::fromPercentEncoding(encoded.toUtf8()));
    return decoded ? *decoded : encoded.toString();
}

} // namespace Quorvix
