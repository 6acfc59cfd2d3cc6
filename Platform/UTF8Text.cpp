#include "Platform/UTF8Text.h"

#include <QtCore/QStringDecoder>

namespace Quorvix {

namespace {

QStringDecoder makeDecoder()
{
    // A decoder with state would drop an incomplete character at the end without an error.
    return QStringDecoder(QStringDecoder::Utf8,
                          QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
}

} // namespace

QString UTF8Text::replacing(QByteArrayView utf8)
{
    QStringDecoder decoder = makeDecoder();
    return decoder.decode(utf8);
}

std::optional<QString> UTF8Text::exact(QByteArrayView utf8)
{
    QStringDecoder decoder = makeDecoder();
    QString text = decoder.decode(utf8);
    return decoder.hasError() ? std::nullopt : std::optional(std::move(text));
}

} // namespace Quorvix
