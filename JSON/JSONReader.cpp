#include "JSON/JSONReader.h"

#include "JSON/JSONEncoding.h"
#include "JSON/SimdjsonFence.h"

#include "Platform/Localized.h"
#include "Platform/UTF8Text.h"

#include <iterator>

namespace Quorvix {

using SimdjsonFence::Failure;

namespace {

/// One sentence for each failure, in the order of the enumerators.
constexpr const char *sentences[] = {
    QT_TRANSLATE_NOOP("Quorvix", "The text is empty."),
    QT_TRANSLATE_NOOP("Quorvix", "The text is not valid UTF-8."),
    QT_TRANSLATE_NOOP("Quorvix", "The JSON text is nested too deeply."),
    QT_TRANSLATE_NOOP("Quorvix", "The JSON text holds a malformed number."),
    QT_TRANSLATE_NOOP("Quorvix", "The JSON text holds a malformed string."),
    QT_TRANSLATE_NOOP("Quorvix", "The JSON text is too large."),
    QT_TRANSLATE_NOOP("Quorvix", "The text is not valid JSON."),
};
static_assert(std::size(sentences) == size_t(Failure::NotJson) + 1);

NSError readError(const char *sentence)
{
    return {NSCocoaErrorDomain, NSPropertyListReadCorruptError, localized(sentence)};
}

SimdjsonFence::Outcome fromMarked(QByteArrayView bytes)
{
    std::optional<QByteArray> utf8 = JSONEncoding::toUtf8(bytes);
    return utf8 ? SimdjsonFence::parse(std::move(*utf8), 0)
                : SimdjsonFence::Outcome{nullptr, Failure::NotUtf8};
}

} // namespace

Result<JSONDocument> JSONReader::documentOf(SimdjsonFence::Outcome outcome, TopLevel topLevel)
{
    if (!outcome.tape)
        return readError(sentences[size_t(outcome.failure)]);
    JSONDocument document(std::move(outcome.tape));
    const JSONValue::Kind kind = document.root().kind();
    if (topLevel == TopLevel::Container && kind != JSONValue::Kind::Object && kind != JSONValue::Kind::Array)
        return readError(QT_TRANSLATE_NOOP(
            "Quorvix", "The top level of the JSON text is neither an object nor an array."));
    return document;
}

Result<JSONDocument> JSONReader::parse(QByteArrayView bytes, TopLevel topLevel)
{
    const auto parsed = [&] {
        return SimdjsonFence::parse(UTF8Text::withoutByteOrderMark(bytes));
    };
    return documentOf(JSONEncoding::isMarked(bytes) ? fromMarked(bytes) : parsed(), topLevel);
}

static_assert(JSONReader::padding >= SimdjsonFence::padding);

Result<JSONDocument> JSONReader::parseInPlace(QByteArray bytes, TopLevel topLevel)
{
    // The capacity also counts room before the text, which is there when its beginning was removed.
    if (bytes.data_ptr().freeSpaceAtEnd() < padding || JSONEncoding::isMarked(bytes))
        return parse(QByteArrayView(bytes), topLevel);
    return documentOf(SimdjsonFence::parsePadded(UTF8Text::withoutByteOrderMark(bytes)), topLevel);
}

Result<JSONDocument> JSONReader::parseAndFree(QByteArray bytes)
{
    const auto parsed = [&] {
        const qsizetype mark = bytes.size() - UTF8Text::withoutByteOrderMark(bytes).size();
        return SimdjsonFence::parse(std::move(bytes), mark);
    };
    return documentOf(JSONEncoding::isMarked(bytes) ? fromMarked(bytes) : parsed(), TopLevel::AnyValue);
}

bool JSONReader::beginsLikeContainer(QByteArrayView bytes) noexcept
{
    // In UTF-16 and UTF-32 there are NUL bytes around ASCII.
    const bool isMarked = JSONEncoding::isMarked(bytes);
    for (const char c : isMarked ? bytes.sliced(2) : UTF8Text::withoutByteOrderMark(bytes)) {
        const bool isBeforeValue = c == ' ' || c == '\t' || c == '\n' || c == '\r';
        if (!isBeforeValue && !(isMarked && (c == '\0' || c == '\xFE' || c == '\xFF')))
            return c == '{' || c == '[';
    }
    return false;
}

} // namespace Quorvix
