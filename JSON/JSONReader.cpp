#include "JSON/JSONReader.h"

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

} // namespace

Result<JSONDocument> JSONReader::parse(QByteArrayView utf8, TopLevel topLevel)
{
    SimdjsonFence::Outcome outcome = SimdjsonFence::parse(UTF8Text::withoutByteOrderMark(utf8));
    if (!outcome.storage)
        return readError(sentences[size_t(outcome.failure)]);
    JSONDocument document(std::move(outcome.storage));
    const JSONValue::Kind kind = document.root().kind();
    if (topLevel == TopLevel::Container && kind != JSONValue::Kind::Object && kind != JSONValue::Kind::Array)
        return readError(QT_TRANSLATE_NOOP(
            "Quorvix", "The top level of the JSON text is neither an object nor an array."));
    return document;
}

} // namespace Quorvix
