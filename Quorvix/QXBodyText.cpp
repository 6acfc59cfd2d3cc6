#include "Quorvix/QXBodyText.h"

#include "Quorvix/QXLongText.h"
#include "Quorvix/QXTaskSteps.h"

#include "JSON/JSONReader.h"

#include "Platform/LargeText.h"

using namespace Quorvix;

namespace {

/// Reading a JSON text takes this part of the time that writing it takes.
constexpr double readingTime = 0.55;

/// The JSON that a body holds; absent if it does not.
std::optional<JSONDocument> jsonIn(const QByteArray &body)
{
    if (!JSONReader::beginsLikeContainer(body))
        return std::nullopt;
    auto json = JSONReader::parse(body, JSONReader::TopLevel::Container);
    return json ? std::optional(std::move(json).value()) : std::nullopt;
}

/// The steps of writing what was read.
QXTaskSteps writingSteps(const JSONDocument &json, QXTaskProgress *progress)
{
    return QXTaskSteps(progress, json.size(), qsizetype(double(json.size()) * readingTime));
}

} // namespace

bool QXBodyText::appendReadable(QString &text, const QByteArray &body, QXTaskProgress *progress)
{
    if (const auto json = jsonIn(body))
        return QXLongText::appendJson(text, *json, JSONWriter::KeyOrder::Sorted,
                                      writingSteps(*json, progress));
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

std::optional<QByteArray> QXBodyText::readableUtf8(const QByteArray &body, QXTaskProgress *progress)
{
    QByteArray utf8 = body;
    if (const auto json = jsonIn(body)) {
        utf8.clear();
        LargeText::reserve(utf8, body.size() + body.size() / 2);
        if (!QXLongText::appendJson(utf8, *json, JSONWriter::KeyOrder::Sorted, writingSteps(*json, progress)))
            return std::nullopt;
        utf8.squeeze();
    } else if (isCancelled(progress) || !isValidUtf8(body)) {
        return std::nullopt;
    }
    finish(progress);
    return utf8;
}

QString QXBodyText::text(const QByteArray &body, QXTaskProgress *progress)
{
    QString text;
    appendText(text, body, progress);
    return text;
}
