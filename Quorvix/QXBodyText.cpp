#include "Quorvix/QXBodyText.h"

#include "Quorvix/QXLongText.h"
#include "Quorvix/QXTaskSteps.h"

#include "JSON/JSONReader.h"

using namespace Quorvix;

namespace {

/// Reading a JSON text takes this part of the time that writing it takes.
constexpr double readingTime = 0.55;

} // namespace

bool QXBodyText::appendReadable(QString &text, const QByteArray &body, QXTaskProgress *progress)
{
    if (JSONReader::beginsLikeContainer(body)) {
        if (const auto json = JSONReader::parse(body, JSONReader::TopLevel::Container)) {
            const qsizetype size = json.value().size();
            return QXLongText::appendJson(text, json.value(), JSONWriter::KeyOrder::Sorted,
                                          QXTaskSteps(progress, size, qsizetype(double(size) * readingTime)));
        }
    }
    return !isCancelled(progress) && isValidUtf8(body) &&
           QXLongText::appendUtf8(text, body, QXTaskSteps(progress, body.size()));
}

void QXBodyText::appendText(QString &text, const QByteArray &body, QXTaskProgress *progress)
{
    if (!appendReadable(text, body, progress) && !isCancelled(progress))
        static_cast<void>(QXLongText::appendHex(text, body, QXLongText::Digits::InPairs,
                                                QXTaskSteps(progress, body.size())));
    finish(progress);
}

std::optional<QString> QXBodyText::readable(const QByteArray &body, QXTaskProgress *progress)
{
    QString text;
    if (!appendReadable(text, body, progress))
        return std::nullopt;
    finish(progress);
    return text;
}

QString QXBodyText::text(const QByteArray &body, QXTaskProgress *progress)
{
    QString text;
    appendText(text, body, progress);
    return text;
}
