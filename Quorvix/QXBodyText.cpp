#include "Quorvix/QXBodyText.h"

#include "JSON/JSONReader.h"
#include "JSON/JSONWriter.h"

#include "Platform/UTF8Text.h"

using namespace Quorvix;

std::optional<QString> QXBodyText::readable(const QByteArray &body)
{
    if (const auto json = JSONReader::parse(body, JSONReader::TopLevel::Container)) {
        JSONWriter writer;
        writer.value(json.value().root(), JSONWriter::KeyOrder::Sorted);
        return QString::fromUtf8(writer.takeBuffer());
    }
    return isValidUtf8(body) ? std::optional(UTF8Text::replacing(body)) : std::nullopt;
}

QString QXBodyText::text(const QByteArray &body)
{
    if (auto text = readable(body))
        return std::move(*text);
    return QString::fromLatin1(body.toHex(' '));
}
