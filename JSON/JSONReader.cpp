#include "JSON/JSONReader.h"

#include "JSON/SimdjsonFence.h"

#include "Platform/UTF8Text.h"

#include <QtCore/QCoreApplication>

namespace Quorvix {

using SimdjsonFence::Failure;

namespace {

const char *sentenceFor(Failure failure)
{
    switch (failure) {
    case Failure::Empty:
        return "The text is empty.";
    case Failure::NotUtf8:
        return "The text is not valid UTF-8.";
    case Failure::TooDeep:
        return "The JSON text is nested too deeply.";
    case Failure::MalformedNumber:
        return "The JSON text holds a malformed number.";
    case Failure::MalformedString:
        return "The JSON text holds a malformed string.";
    case Failure::TooLarge:
        return "The JSON text is too large.";
    case Failure::NotJson:
        break;
    }
    return "The text is not valid JSON.";
}

NSError readError(const char *sentence)
{
    return {NSCocoaErrorDomain, NSPropertyListReadCorruptError,
            QCoreApplication::translate("Quorvix", sentence)};
}

} // namespace

Result<JSONDocument> JSONReader::parse(QByteArrayView utf8, TopLevel topLevel)
{
    SimdjsonFence::Outcome outcome = SimdjsonFence::parse(UTF8Text::withoutByteOrderMark(utf8));
    if (!outcome.storage)
        return readError(sentenceFor(outcome.failure));
    JSONDocument document(std::move(outcome.storage));
    const JSONValue::Kind kind = document.root().kind();
    if (topLevel == TopLevel::Container && kind != JSONValue::Kind::Object && kind != JSONValue::Kind::Array)
        return readError("The top level of the JSON text is neither an object nor an array.");
    return document;
}

} // namespace Quorvix
