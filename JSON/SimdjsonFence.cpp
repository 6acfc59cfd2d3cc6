#include "JSON/SimdjsonFence.h"

#include "JSON/JSONDocument.h"
#include "JSON/JSONSurrogates.h"
#include "JSON/JSONWideNumbers.h"

#include "Platform/UTF8Text.h"

#include <QtCore/QByteArray>

// Removes every function that throws from the header, so that none is called by mistake.
#define SIMDJSON_EXCEPTIONS 0
#include <simdjson.h>

#include <bit>
#include <cmath>
#include <limits>
#include <optional>
#include <type_traits>
#include <vector>

namespace Quorvix {

using simdjson::dom::element_type;
using SimdjsonFence::Failure;

static_assert(simdjson::DEFAULT_MAX_DEPTH == JSONDocument::maximumDepth);

namespace {

/// The parsed data that the cursors point into. It outlives its parser and the text.
struct ParsedText final : simdjson::dom::document
{
    /// The numbers that no machine number holds, one behind the other, and the end of each. The tape holds
    /// their index in a NaN, which no JSON text has.
    QByteArray wideDigits;
    std::vector<size_t> wideEnds;
};

constexpr quint64 notANumber = std::bit_cast<quint64>(std::numeric_limits<double>::quiet_NaN());

/// The index of a wide number for which the tape has this double; absent for other numbers.
std::optional<qsizetype> wideIndex(double onTape) noexcept
{
    return std::isnan(onTape) ? std::optional(qsizetype(std::bit_cast<quint64>(onTape) ^ notANumber))
                              : std::nullopt;
}

/// Converts between simdjson's cursors and ours, which are two words each, so that no data is copied. The
/// first word points to the document, the second one is a position on the tape.
template<typename To, typename From>
To recast(const From &cursor) noexcept
{
    static_assert(sizeof(To) == sizeof(From) && std::is_trivially_copyable_v<To> &&
                  std::is_trivially_copyable_v<From>);
    return std::bit_cast<To>(cursor);
}

template<typename Cursor>
simdjson::dom::element element(const Cursor &cursor) noexcept
{
    return recast<simdjson::dom::element>(cursor);
}

QByteArrayView view(std::string_view text) noexcept
{
    return {text.data(), qsizetype(text.size())};
}

/// The value as a T, or zero when it is not one.
template<typename T, typename Cursor>
T valueOrZero(const Cursor &cursor) noexcept
{
    T value{};
    return element(cursor).get(value) == simdjson::SUCCESS ? value : T{};
}

/// simdjson stores the size of an array or object in 24 bits. This value means "this many or more".
constexpr size_t saturatedSize = 0xFFFFFF;

template<typename Range>
qsizetype countedSize(const Range &range, size_t keptSize)
{
    return keptSize < saturatedSize ? qsizetype(keptSize) : std::distance(range.begin(), range.end());
}

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

simdjson::error_code parseInto(ParsedText &parsed, QByteArrayView text, Padding padding = Padding::Copied)
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
    return parser.parse_into_document(parsed, text.data(), size_t(text.size()), copies).error();
}

/// A word on the tape: the type is above this bit, a size or a place below.
constexpr int typeShift = 56;

size_t tapeSize(const simdjson::dom::document &parsed) noexcept
{
    return parsed.tape[0] & ((quint64(1) << typeShift) - 1);
}

/// Marks the wide numbers on the tape, which has one word for each value, and a second one for a number.
void mark(ParsedText &parsed, const std::vector<JSONWideNumbers::Number> &numbers)
{
    const size_t end = tapeSize(parsed);
    auto next = numbers.begin();
    size_t ordinal = 0;
    for (size_t index = 1; index < end && next != numbers.end(); ++index) {
        const char type = char(parsed.tape[index] >> typeShift);
        if (type != 'l' && type != 'u' && type != 'd')
            continue;
        ++index;
        if (next->ordinal != ordinal++)
            continue;
        parsed.tape[index] = notANumber ^ parsed.wideEnds.size();
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
        mark(parsed, wide.numbers);
    }
    // Newer releases report every unknown word as a malformed number.
    return isAboutNumber(error) && !wide.hasMalformedNumber ? simdjson::TAPE_ERROR : error;
}

} // namespace

SimdjsonFence::Outcome SimdjsonFence::parse(QByteArrayView text)
{
    const auto parsed = std::make_shared<ParsedText>();
    simdjson::error_code error = parseInto(*parsed, text);
    // simdjson stops at the first error, and a text may have both kinds that have a cure.
    std::optional<QByteArray> replaced;
    if (error == simdjson::STRING_ERROR || isAboutNumber(error))
        replaced = withLoneSurrogatesReplaced(text);
    if (replaced) {
        text = *replaced;
        error = parseInto(*parsed, text);
    }
    if (isAboutNumber(error))
        error = parseWideNumbersInto(*parsed, text);
    if (error == simdjson::SUCCESS)
        return {parsed};
    if (!precedesUtf8Check(error) && !isUtf8(text))
        error = simdjson::UTF8_ERROR;
    return {nullptr, failureOf(error)};
}

bool SimdjsonFence::isUtf8(QByteArrayView bytes) noexcept
{
    return simdjson::validate_utf8(bytes.data(), size_t(bytes.size()));
}

JSONValue JSONDocument::root() const noexcept
{
    const auto *parsed = static_cast<const ParsedText *>(m_storage.get());
    return JSONValue(recast<JSONValue::Cursor>(parsed->root()));
}

qsizetype JSONDocument::size() const noexcept
{
    return qsizetype(tapeSize(*static_cast<const ParsedText *>(m_storage.get())));
}

std::shared_ptr<const void> JSONDocument::keepTexts(JSONDocument document)
{
    // SimdjsonFence::parse() made the storage, and made it writable.
    auto *parsed = static_cast<ParsedText *>(const_cast<void *>(document.m_storage.get()));
    if (document.m_storage.use_count() == 1)
        parsed->tape.reset();
    return std::move(document.m_storage);
}

JSONValue::Kind JSONValue::kind() const noexcept
{
    switch (element(m_cursor).type()) {
    case element_type::OBJECT:
        return Kind::Object;
    case element_type::ARRAY:
        return Kind::Array;
    case element_type::STRING:
        return Kind::String;
    case element_type::INT64:
    case element_type::UINT64:
    case element_type::DOUBLE:
        return Kind::Number;
    case element_type::BOOL:
        return Kind::Boolean;
    case element_type::NULL_VALUE:
    // Newer headers have a type for big integers, which a parser produces only when the caller enables it.
    default:
        return Kind::Null;
    }
}

QByteArrayView JSONValue::utf8() const noexcept
{
    return view(valueOrZero<std::string_view>(m_cursor));
}

JSONValue::NumberKind JSONValue::numberKind() const noexcept
{
    switch (element(m_cursor).type()) {
    case element_type::INT64:
        return NumberKind::Int64;
    case element_type::UINT64:
        return NumberKind::UInt64;
    default:
        return NumberKind::Double;
    }
}

qint64 JSONValue::toInt64() const noexcept
{
    return valueOrZero<int64_t>(m_cursor);
}

quint64 JSONValue::toUInt64() const noexcept
{
    return valueOrZero<uint64_t>(m_cursor);
}

double JSONValue::toDouble() const noexcept
{
    const auto value = valueOrZero<double>(m_cursor);
    return std::isnan(value) ? nearestDouble(wideNumber()) : value;
}

QByteArrayView JSONValue::wideNumber() const noexcept
{
    const auto index = wideIndex(valueOrZero<double>(m_cursor));
    if (!index)
        return {};
    const auto *document = static_cast<const simdjson::dom::document *>(m_cursor.document);
    const auto *parsed = static_cast<const ParsedText *>(document);
    const size_t begin = *index == 0 ? 0 : parsed->wideEnds[size_t(*index) - 1];
    const size_t end = parsed->wideEnds[size_t(*index)];
    return QByteArrayView(parsed->wideDigits).sliced(qsizetype(begin), qsizetype(end - begin));
}

bool JSONValue::isTrue() const noexcept
{
    return valueOrZero<bool>(m_cursor);
}

JSONValue::Elements JSONValue::elements() const noexcept
{
    simdjson::dom::array array;
    if (element(m_cursor).get(array) != simdjson::SUCCESS)
        return {Elements::Iterator({}), Elements::Iterator({})};
    return {Elements::Iterator(recast<Cursor>(array.begin())),
            Elements::Iterator(recast<Cursor>(array.end()))};
}

JSONValue::Members JSONValue::members() const noexcept
{
    simdjson::dom::object object;
    if (element(m_cursor).get(object) != simdjson::SUCCESS)
        return {Members::Iterator({}), Members::Iterator({})};
    return {Members::Iterator(recast<Cursor>(object.begin())),
            Members::Iterator(recast<Cursor>(object.end()))};
}

qsizetype JSONValue::size() const noexcept
{
    simdjson::dom::array array;
    if (element(m_cursor).get(array) == simdjson::SUCCESS)
        return countedSize(array, array.size());
    simdjson::dom::object object;
    if (element(m_cursor).get(object) == simdjson::SUCCESS)
        return countedSize(object, object.size());
    return 0;
}

std::optional<JSONValue> JSONValue::member(QByteArrayView nameUtf8) const noexcept
{
    std::optional<JSONValue> found;
    for (const auto &[name, value] : members()) {
        if (name == nameUtf8)
            found = value;
    }
    return found;
}

JSONValue JSONValue::Elements::Iterator::operator*() const noexcept
{
    return JSONValue(recast<Cursor>(*recast<simdjson::dom::array::iterator>(m_cursor)));
}

JSONValue::Elements::Iterator &JSONValue::Elements::Iterator::operator++() noexcept
{
    m_cursor = recast<Cursor>(++recast<simdjson::dom::array::iterator>(m_cursor));
    return *this;
}

JSONValue::Members::Member JSONValue::Members::Iterator::operator*() const noexcept
{
    const auto iterator = recast<simdjson::dom::object::iterator>(m_cursor);
    return {view(iterator.key()), JSONValue(recast<Cursor>(iterator.value()))};
}

JSONValue::Members::Iterator &JSONValue::Members::Iterator::operator++() noexcept
{
    m_cursor = recast<Cursor>(++recast<simdjson::dom::object::iterator>(m_cursor));
    return *this;
}

} // namespace Quorvix
