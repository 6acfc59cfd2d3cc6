#include "JSON/SimdjsonFence.h"

#include "JSON/JSONDocument.h"
#include "JSON/JSONSurrogates.h"
#include "JSON/JSONWideNumbers.h"

#include "Platform/LargeMemory.h"
#include "Platform/UTF8Text.h"

#include <QtCore/QByteArray>

// Removes every function that throws from the header, so that none is called by mistake.
#define SIMDJSON_EXCEPTIONS 0
#include <simdjson.h>

#include <algorithm>
#include <optional>
#include <type_traits>
#include <vector>

namespace Quorvix {

using SimdjsonFence::Failure;

static_assert(simdjson::DEFAULT_MAX_DEPTH == JSONDocument::maximumDepth);

// The format of the tape, as far as the header tells it.
static_assert(char(simdjson::internal::tape_type::START_OBJECT) == JSONTape::Object);
static_assert(char(simdjson::internal::tape_type::START_ARRAY) == JSONTape::Array);
static_assert(char(simdjson::internal::tape_type::STRING) == JSONTape::String);
static_assert(char(simdjson::internal::tape_type::INT64) == JSONTape::Int64);
static_assert(char(simdjson::internal::tape_type::UINT64) == JSONTape::UInt64);
static_assert(char(simdjson::internal::tape_type::DOUBLE) == JSONTape::Double);
static_assert(char(simdjson::internal::tape_type::TRUE_VALUE) == JSONTape::True);
static_assert(char(simdjson::internal::tape_type::FALSE_VALUE) == JSONTape::False);
static_assert(char(simdjson::internal::tape_type::NULL_VALUE) == JSONTape::Null);
static_assert(simdjson::SIMDJSON_PADDING >= JSONTape::readable);

namespace {

/// The parsed data. It outlives its parser and the text.
struct ParsedText final : JSONTape
{
    using JSONTape::notANumber;

    /// Lets the tape read what the parser has written.
    void setTape() noexcept
    {
        m_words = document.tape.get();
        m_texts = reinterpret_cast<const char *>(document.string_buf.get());
        m_wideDigits = wideDigits.constData();
        m_wideEnds = wideEnds.data();
    }

    simdjson::dom::document document;
    /// The numbers that no machine number holds, one behind the other, and the end of each.
    QByteArray wideDigits;
    std::vector<size_t> wideEnds;
};

/// Whether simdjson stopped at a number. JSON may allow the number although no machine number holds it.
/// Newer releases have a separate code for most integers beyond 64 bits; 3.0 does not name it.
template<typename Code>
bool isAboutNumber(Code code) noexcept
{
    if constexpr (requires { Code::BIGINT_ERROR; }) {
        if (code == Code::BIGINT_ERROR)
            return true;
    }
    return code == simdjson::NUMBER_ERROR;
}

/// Whether the text is too large for the memory or for simdjson. 4.6 has a third code for this.
template<typename Code>
bool isAboutSize(Code code) noexcept
{
    if constexpr (requires { Code::OUT_OF_CAPACITY; }) {
        if (code == Code::OUT_OF_CAPACITY)
            return true;
    }
    return code == simdjson::CAPACITY || code == simdjson::MEMALLOC;
}

/// Whether simdjson always reports this error first, even for a text that is not UTF-8. The order of the
/// other errors varies: without vector instructions simdjson checks for UTF-8 in strings only.
bool precedesUtf8Check(simdjson::error_code code) noexcept
{
    return code == simdjson::UNCLOSED_STRING || code == simdjson::UNESCAPED_CHARS || isAboutSize(code);
}

Failure failureOf(simdjson::error_code code) noexcept
{
    if (isAboutNumber(code))
        return Failure::MalformedNumber;
    if (isAboutSize(code))
        return Failure::TooLarge;
    switch (code) {
    case simdjson::EMPTY:
        return Failure::Empty;
    case simdjson::UTF8_ERROR:
        return Failure::NotUtf8;
    case simdjson::DEPTH_ERROR:
        return Failure::TooDeep;
    case simdjson::STRING_ERROR:
    case simdjson::UNCLOSED_STRING:
    case simdjson::UNESCAPED_CHARS:
        return Failure::MalformedString;
    default:
        return Failure::NotJson;
    }
}

/// Whether simdjson copies a text. It reads beyond the end of a text, so the memory behind one that is not
/// copied must hold the padding, too.
enum class Padding { Copied, Present };

/// Allocates what simdjson would allocate itself, in large pages. It reserves much more than it uses, so only
/// the pages that are used count. Leaves the allocation of small memory to it.
simdjson::error_code allocate(ParsedText &parsed, simdjson::dom::parser &parser, size_t textSize)
{
    if (textSize < LargeMemory::smallestMapping / sizeof parsed.document.tape[0])
        return simdjson::SUCCESS;
    // The smallest part, the strings, takes five bytes for three of the text. It has to be a mapping, too.
    const size_t capacity = std::max(textSize, LargeMemory::smallestMapping / 5 * 3);
    simdjson::error_code error = parsed.document.allocate(capacity);
    if (error == simdjson::SUCCESS)
        error = parser.allocate(capacity);
    if (error != simdjson::SUCCESS)
        return error;
    LargeMemory::requestLargePages(parsed.document.tape.get(), capacity * sizeof parsed.document.tape[0]);
    LargeMemory::requestLargePages(parsed.document.string_buf.get(),
                                   5 * capacity / 3 + simdjson::SIMDJSON_PADDING);
    // A part of the parser that its header calls private: newer releases may do without.
    if constexpr (requires { parser.implementation->structural_indexes.get(); }) {
        auto &indexes = parser.implementation->structural_indexes;
        LargeMemory::requestLargePages(indexes.get(), capacity * sizeof indexes[0]);
    }
    return simdjson::SUCCESS;
}

simdjson::error_code parseInto(ParsedText &parsed, QByteArrayView text, Padding padding)
{
    // simdjson would copy from a null pointer.
    if (text.isEmpty())
        return simdjson::EMPTY;
    // simdjson would reserve memory for such a text before it refuses it.
    if (size_t(text.size()) > simdjson::SIMDJSON_MAXSIZE_BYTES)
        return simdjson::CAPACITY;
    // Newer releases skip the byte order mark, 3.0 refuses it.
    if (text.startsWith(UTF8Text::byteOrderMark))
        return simdjson::TAPE_ERROR;
    const bool copies = padding == Padding::Copied;
    simdjson::dom::parser parser;
    if (const auto error = allocate(parsed, parser, size_t(text.size())); error != simdjson::SUCCESS)
        return error;
    return parser.parse_into_document(parsed.document, text.data(), size_t(text.size()), copies).error();
}

/// Marks the wide numbers on the tape, which has one word for each value, and a second one for a number.
void mark(ParsedText &parsed, const std::vector<JSONWideNumbers::Number> &numbers)
{
    const size_t end = parsed.size();
    auto next = numbers.begin();
    size_t ordinal = 0;
    for (size_t index = 1; index < end && next != numbers.end(); ++index) {
        if (!JSONTape::isNumber(parsed.type(index)))
            continue;
        ++index;
        if (next->ordinal != ordinal++)
            continue;
        parsed.document.tape[index] = ParsedText::notANumber ^ parsed.wideEnds.size();
        parsed.wideEnds.push_back(next++->digitsEnd);
    }
}

simdjson::error_code parseWideNumbersInto(ParsedText &parsed, QByteArrayView text)
{
    JSONWideNumbers wide = JSONWideNumbers::replacedIn(text);
    wide.text.reserve(wide.text.size() + qsizetype(simdjson::SIMDJSON_PADDING));
    const simdjson::error_code error = parseInto(parsed, wide.text, Padding::Present);
    if (error == simdjson::SUCCESS) {
        parsed.wideDigits = std::move(wide.digits);
        parsed.wideEnds.reserve(wide.numbers.size());
        LargeMemory::requestLargePages(parsed.wideEnds.data(), wide.numbers.size() * sizeof(size_t));
        parsed.setTape();
        mark(parsed, wide.numbers);
    }
    // Newer releases report every unknown word as a malformed number.
    return isAboutNumber(error) && !wide.hasMalformedNumber ? simdjson::TAPE_ERROR : error;
}

/// Tries again where there is a cure for what simdjson refuses.
SimdjsonFence::Outcome parsed(QByteArrayView text, Padding padding)
{
    const auto parsed = std::make_shared<ParsedText>();
    simdjson::error_code error = parseInto(*parsed, text, padding);
    // simdjson stops at the first error, and a text may have both kinds that have a cure.
    std::optional<QByteArray> replaced;
    if (error == simdjson::STRING_ERROR || isAboutNumber(error))
        replaced = withLoneSurrogatesReplaced(text);
    if (replaced) {
        text = *replaced;
        error = parseInto(*parsed, text, Padding::Copied);
    }
    if (isAboutNumber(error))
        error = parseWideNumbersInto(*parsed, text);
    if (error == simdjson::SUCCESS) {
        parsed->setTape();
        return {parsed};
    }
    if (!precedesUtf8Check(error) && !SimdjsonFence::isUtf8(text))
        error = simdjson::UTF8_ERROR;
    return {nullptr, failureOf(error)};
}

} // namespace

SimdjsonFence::Outcome SimdjsonFence::parse(QByteArrayView text)
{
    const auto size = size_t(text.size());
    if (size < LargeMemory::smallestMapping / 8 || size > simdjson::SIMDJSON_MAXSIZE_BYTES)
        return parsed(text, Padding::Copied);
    // simdjson would make the copy in small pages.
    const LargeMemory::Block copy(
        std::max(size + simdjson::SIMDJSON_PADDING, LargeMemory::smallestMapping / 4));
    std::memcpy(copy.data(), text.data(), size);
    std::memset(copy.data() + size, 0, simdjson::SIMDJSON_PADDING);
    return parsed({reinterpret_cast<const char *>(copy.data()), text.size()}, Padding::Present);
}

SimdjsonFence::Outcome SimdjsonFence::parsePadded(QByteArrayView text)
{
    static_assert(padding >= qsizetype(simdjson::SIMDJSON_PADDING));
    return parsed(text, Padding::Present);
}

SimdjsonFence::Outcome SimdjsonFence::parse(QByteArray &&text, qsizetype from)
{
    const QByteArray padded = std::move(text).append(qsizetype(simdjson::SIMDJSON_PADDING), '\0');
    return parsed(QByteArrayView(padded).sliced(from).chopped(qsizetype(simdjson::SIMDJSON_PADDING)),
                  Padding::Present);
}

bool SimdjsonFence::isUtf8(QByteArrayView bytes) noexcept
{
    return simdjson::validate_utf8(bytes.data(), size_t(bytes.size()));
}

JSONValue JSONDocument::root() const noexcept
{
    return {m_tape.get(), JSONTape::root};
}

qsizetype JSONDocument::size() const noexcept
{
    return qsizetype(m_tape->size());
}

std::shared_ptr<const void> JSONDocument::keepTexts(JSONDocument document)
{
    // SimdjsonFence::parse() made the storage, and made it writable.
    auto *parsed = static_cast<ParsedText *>(const_cast<JSONTape *>(document.m_tape.get()));
    if (document.m_tape.use_count() == 1)
        parsed->document.tape.reset();
    return std::move(document.m_tape);
}

} // namespace Quorvix
