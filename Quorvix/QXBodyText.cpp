#include "Quorvix/QXBodyText.h"

#include "JSON/JSONReader.h"
#include "JSON/JSONWriter.h"

#include <QtCore/QStringDecoder>

using namespace Quorvix;

std::optional<QString> QXBodyText::readable(const QByteArray &body)
{
    if (const auto json = JSONReader::parse(body, JSONReader::TopLevel::Container)) {
        JSONWriter writer;
        writer.value(json.value().root(), JSONWriter::KeyOrder::Sorted);
        return QString::fromUtf8(writer.takeBuffer());
    }
    if (!isValidUtf8(body))
        return std::nullopt;
    // QString::fromUtf8() would drop the mark.
    return QStringDecoder(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom).decode(body);
}

QString QXBodyText::text(const QByteArray &body)
{
    if (auto text = readable(body))
        return std::move(*text);
    return QString::fromLatin1(body.toHex(' '));
}
