#include "JSON/JSONReader.h"

#include "JSON/JSONWideNumbers.h"

#include <QtCore/QByteArray>
#include <QtCore/QCoreApplication>

#include <simdjson.h>

#include <algorithm>
#include <bit>
#include <type_traits>
#include <vector>

namespace Quorvix {

using simdjson::dom::element_type;

namespace {

/// What the cursors point into.
struct ParsedText final : simdjson::dom::document
{
    /// A number that the tape holds only the nearest double of.
    struct WideNumber
    {
        size_t index;
        QByteArray digits;
    };

    /// In the order of their places on the tape.
    std::vector<WideNumber> wideNumbers;
};

/// simdjson's cursors are two words each, and so is ours: one turns into the other without a copy of
/// anything.
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

/// The value in the form asked for, or that form's nought.
template<typename T, typename Cursor>
T valueOrZero(const Cursor &cursor) noexcept
{
    T value{};
    return element(cursor).get(value) == simdjson::SUCCESS ? value : T{};
}

/// The size that simdjson keeps beside an array or object stops at 24 bits.
constexpr size_t saturatedSize = 0xFFFFFF;

template<typename Range>
qsizetype countedSize(const Range &range, size_t keptSize)
{
    return keptSize < saturatedSize ? qsizetype(keptSize) : std::distance(range.begin(), range.end());
}

const char *sentenceFor(simdjson::error_code code)
{
    switch (code) {
    case simdjson::EMPTY:
        return "The text is empty.";
    case simdjson::UTF8_ERROR:
        return "The text is not valid UTF-8.";
    case simdjson::DEPTH_ERROR:
        return "The JSON text is nested too deeply.";
    case simdjson::NUMBER_ERROR:
        return "The JSON text holds a malformed number.";
    case simdjson::STRING_ERROR:
    case simdjson::UNCLOSED_STRING:
    case simdjson::UNESCAPED_CHARS:
        return "The JSON text holds a malformed string.";
    case simdjson::CAPACITY:
    case simdjson::MEMALLOC:
        return "The JSON text is too large.";
    default:
        return "The text is not valid JSON.";
    }
}

NSError readError(const char *sentence)
{
    return {NSCocoaErrorDomain, NSPropertyListReadCorruptError,
            QCoreApplication::translate("Quorvix", sentence)};
}

simdjson::error_code parseInto(ParsedText &parsed, QByteArrayView text)
{
    simdjson::dom::parser parser;
    return parser.parse_into_document(parsed, text.data(), size_t(text.size())).error();
}

/// Finds the places of wide numbers on the tape: one word for each value, and a second one for a number.
void locate(ParsedText &parsed, std::vector<JSONWideNumbers::Number> numbers)
{
    constexpr int typeShift = 56;
    constexpr quint64 payloadMask = (quint64(1) << typeShift) - 1;
    const size_t end = parsed.tape[0] & payloadMask;
    auto next = numbers.begin();
    size_t ordinal = 0;
    for (size_t index = 1; index < end && next != numbers.end(); ++index) {
        const char type = char(parsed.tape[index] >> typeShift);
        if (type != 'l' && type != 'u' && type != 'd')
            continue;
        if (next->ordinal == ordinal++)
            parsed.wideNumbers.push_back({index, std::move(next++->digits)});
        ++index;
    }
}

simdjson::error_code parseWideNumbersInto(ParsedText &parsed, QByteArrayView text)
{
    JSONWideNumbers wide = JSONWideNumbers::replacedIn(text);
    const simdjson::error_code error = parseInto(parsed, wide.text);
    if (error == simdjson::SUCCESS)
        locate(parsed, std::move(wide.numbers));
    return error;
}

QByteArrayView withoutByteOrderMark(QByteArrayView text)
{
    return text.startsWith("\xEF\xBB\xBF") ? text.sliced(3) : text;
}

} // namespace

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
        break;
    }
    return Kind::Null;
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
    return valueOrZero<double>(m_cursor);
}

QByteArrayView JSONValue::wideNumber() const noexcept
{
    const auto *document = static_cast<const simdjson::dom::document *>(m_cursor.document);
    const auto &numbers = static_cast<const ParsedText *>(document)->wideNumbers;
    const auto found = std::lower_bound(
        numbers.cbegin(), numbers.cend(), m_cursor.index,
        [](const ParsedText::WideNumber &number, size_t index) { return number.index < index; });
    const bool isWide = found != numbers.cend() && found->index == m_cursor.index;
    return isWide ? QByteArrayView(found->digits) : QByteArrayView();
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

JSONValue JSONDocument::root() const noexcept
{
    const auto *document = static_cast<const ParsedText *>(m_storage.get());
    return JSONValue(recast<JSONValue::Cursor>(document->root()));
}

Result<JSONDocument> JSONReader::parse(QByteArrayView utf8, TopLevel topLevel)
{
    static_assert(simdjson::DEFAULT_MAX_DEPTH == maximumDepth);
    const QByteArrayView text = withoutByteOrderMark(utf8);
    // Handed nothing at all, simdjson copies from a null pointer.
    if (text.isEmpty())
        return readError(sentenceFor(simdjson::EMPTY));
    const auto document = std::make_shared<ParsedText>();
    simdjson::error_code error = parseInto(*document, text);
    if (error == simdjson::NUMBER_ERROR)
        error = parseWideNumbersInto(*document, text);
    if (error != simdjson::SUCCESS)
        return readError(sentenceFor(error));

    const simdjson::dom::element root = document->root();
    if (topLevel == TopLevel::Container && !root.is_object() && !root.is_array())
        return readError("The top level of the JSON text is neither an object nor an array.");
    return JSONDocument(document);
}

} // namespace Quorvix
