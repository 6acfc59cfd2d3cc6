#pragma once

#include "JSON/JSONTape.h"

#include "Platform/PlatformGlobal.h"

#include <QtCore/QByteArrayView>
#include <QtCore/QString>

#include <iterator>
#include <optional>

namespace Quorvix {

/// One value of a parsed JSON text: a cursor of two words, valid as long as a JSONDocument of its text lives.
///
/// An object keeps its members in the order of the text, also several members with the same name.
/// Immutable; several threads may read it.
class JSONValue
{
public:
    enum class Kind { Object, Array, String, Number, Boolean, Null };
    /// The narrowest form that holds a number; Double for a number that wideNumber() returns.
    enum class NumberKind { Int64, UInt64, Double };

    class Elements;
    class Members;

    [[nodiscard]] Kind kind() const noexcept;
    /// What a value of this kind adds to JSONDocument::size(), without its name and what it holds.
    [[nodiscard]] static constexpr qsizetype extent(Kind kind) noexcept
    {
        return kind == Kind::Object || kind == Kind::Array || kind == Kind::Number ? 2 : 1;
    }

    /// The text of a String, valid UTF-8; empty for other kinds. It may hold NUL.
    [[nodiscard]] QByteArrayView utf8() const noexcept
    {
        return type() == JSONTape::String ? JSONTape::view(m_tape->stored(m_index)) : QByteArrayView();
    }
    [[nodiscard]] QString text() const { return QString::fromUtf8(utf8()); }

    /// The form of a Number.
    [[nodiscard]] NumberKind numberKind() const noexcept;
    /// The number in this form; 0 when the form cannot hold it, and for other kinds.
    [[nodiscard]] qint64 toInt64() const noexcept;
    [[nodiscard]] quint64 toUInt64() const noexcept;
    [[nodiscard]] QUORVIX_INTERNAL_EXPORT double toDouble() const noexcept;
    /// The text of an integer beyond 64 bits, or of a number beyond the range of a double. For such a number
    /// toDouble() returns only the nearest finite double. Empty for every other value.
    [[nodiscard]] QByteArrayView wideNumber() const noexcept
    {
        return type() == JSONTape::Double ? m_tape->wideNumber(m_index) : QByteArrayView();
    }

    /// Whether this is the value `true`.
    [[nodiscard]] bool isTrue() const noexcept { return type() == JSONTape::True; }

    /// The elements of an Array in order; none for other kinds.
    [[nodiscard]] Elements elements() const noexcept;
    /// The members of an Object in order; none for other kinds.
    [[nodiscard]] Members members() const noexcept;
    /// How many elements or members there are.
    [[nodiscard]] qsizetype size() const noexcept;
    /// The member with this name, or the last one when there are several. Takes linear time.
    [[nodiscard]] QUORVIX_INTERNAL_EXPORT std::optional<JSONValue>
    member(QByteArrayView nameUtf8) const noexcept;

private:
    friend class JSONDocument;

    JSONValue(const JSONTape *tape, size_t index) noexcept : m_tape(tape), m_index(index) {}

    [[nodiscard]] JSONTape::Type type() const noexcept { return m_tape->type(m_index); }

    const JSONTape *m_tape = nullptr;
    size_t m_index = 0;
};

/// A range over the elements of an array.
class JSONValue::Elements
{
public:
    class Iterator
    {
    public:
        using iterator_category = std::input_iterator_tag;
        using value_type = JSONValue;
        using difference_type = std::ptrdiff_t;

        [[nodiscard]] JSONValue operator*() const noexcept { return {m_tape, m_index}; }
        Iterator &operator++() noexcept
        {
            m_index = m_tape->after(m_index);
            return *this;
        }
        bool operator==(const Iterator &) const = default;

    private:
        friend class JSONValue;
        Iterator(const JSONTape *tape, size_t index) noexcept : m_tape(tape), m_index(index) {}

        const JSONTape *m_tape;
        size_t m_index;
    };

    [[nodiscard]] Iterator begin() const noexcept { return m_begin; }
    [[nodiscard]] Iterator end() const noexcept { return m_end; }

private:
    friend class JSONValue;
    Elements(Iterator first, Iterator last) noexcept : m_begin(first), m_end(last) {}

    Iterator m_begin;
    Iterator m_end;
};

/// A range over the members of an object.
class JSONValue::Members
{
public:
    struct Member
    {
        /// Valid UTF-8.
        QByteArrayView name;
        JSONValue value;
    };

    class Iterator
    {
    public:
        using iterator_category = std::input_iterator_tag;
        using value_type = Member;
        using difference_type = std::ptrdiff_t;

        [[nodiscard]] Member operator*() const noexcept
        {
            return {JSONTape::view(m_tape->stored(m_index)), {m_tape, m_index + 1}};
        }
        Iterator &operator++() noexcept
        {
            m_index = m_tape->after(m_index + 1);
            return *this;
        }
        bool operator==(const Iterator &) const = default;

    private:
        friend class JSONValue;
        Iterator(const JSONTape *tape, size_t index) noexcept : m_tape(tape), m_index(index) {}

        const JSONTape *m_tape;
        size_t m_index;
    };

    [[nodiscard]] Iterator begin() const noexcept { return m_begin; }
    [[nodiscard]] Iterator end() const noexcept { return m_end; }

private:
    friend class JSONValue;
    Members(Iterator first, Iterator last) noexcept : m_begin(first), m_end(last) {}

    Iterator m_begin;
    Iterator m_end;
};

inline JSONValue::Kind JSONValue::kind() const noexcept
{
    switch (type()) {
    case JSONTape::Object:
        return Kind::Object;
    case JSONTape::Array:
        return Kind::Array;
    case JSONTape::String:
        return Kind::String;
    case JSONTape::Int64:
    case JSONTape::UInt64:
    case JSONTape::Double:
        return Kind::Number;
    case JSONTape::True:
    case JSONTape::False:
        return Kind::Boolean;
    case JSONTape::Null:
        break;
    }
    return Kind::Null;
}

inline JSONValue::Elements JSONValue::elements() const noexcept
{
    const bool isArray = type() == JSONTape::Array;
    return {{m_tape, m_index + 1}, {m_tape, isArray ? m_tape->lastOf(m_index) : m_index + 1}};
}

inline JSONValue::Members JSONValue::members() const noexcept
{
    const bool isObject = type() == JSONTape::Object;
    return {{m_tape, m_index + 1}, {m_tape, isObject ? m_tape->lastOf(m_index) : m_index + 1}};
}

} // namespace Quorvix
