#include "Platform/URLText.h"

#include "Platform/UTF8Text.h"

#include <algorithm>

namespace Quorvix {

QString absoluteString(const QUrl &url)
{
    return QString::fromLatin1(url.toEncoded());
}

QString percentDecoded(QStringView encoded)
{
    const auto isPlain = [](QChar c) {
        return c != u'%' && c < QChar(0x80);
    };
    if (std::all_of(encoded.begin(), encoded.end(), isPlain))
        return encoded.toString();
    const auto decoded = UTF8Text::exact(QByteArray::fromPercentEncoding(encoded.toUtf8()));
    return decoded ? *decoded : encoded.toString();
}

} // namespace Quorvix
