#include "Quorvix/QXBodyText.h"

#include "Quorvix/QXTaskSteps.h"

#include "JSON/JSONReader.h"
#include "JSON/JSONWriter.h"

#include "Platform/UTF8Text.h"

using namespace Quorvix;

std::optional<QString> QXBodyText::readable(const QByteArray &body, QXTaskProgress *progress)
{
    if (const auto json = JSONReader::parse(body, JSONReader::TopLevel::Container)) {
        JSONWriter writer;
        QXTaskSteps steps(progress, json.value().size());
        JSONWriter::Checkpoint checkpoint;
        if (progress)
            checkpoint = [&](qsizetype done) {
                return steps.goOn(done);
            };
        writer.value(json.value().root(), JSONWriter::KeyOrder::Sorted, checkpoint);
        if (isCancelled(progress))
            return std::nullopt;
        return QString::fromUtf8(writer.takeBuffer());
    }
    return isValidUtf8(body) ? std::optional(UTF8Text::replacing(body)) : std::nullopt;
}

QString QXBodyText::text(const QByteArray &body, QXTaskProgress *progress)
{
    if (auto text = readable(body, progress))
        return std::move(*text);
    return isCancelled(progress) ? QString() : QString::fromLatin1(body.toHex(' '));
}
