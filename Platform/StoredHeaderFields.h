#pragma once

#include "HTTPHeaderFields.h"
#include "NSHeaderFields.h"
#include "PlatformGlobal.h"

#include <initializer_list>
#include <memory>
#include <type_traits>
#include <utility>

namespace Quorvix {

/// The header names and values that a trace keeps: the same as HTTPHeaderFields, in a tenth of its memory.
///
/// It reads like a map, and becomes one where a map is expected. All of it is in one block, which copies
/// share. The functions that return an iterator or a reference make a map, which stays as long as the block:
/// code that goes through many traces uses forEach(), value() or a map of its own, from toMap(). A value;
/// copies may be read by several threads.
class QUORVIX_CORE_EXPORT StoredHeaderFields
{
public:
    /// As of a map.
    using key_type = QString;
    /// As of a map.
    using mapped_type = QString;
    /// As of a map that cannot be changed.
    using const_iterator = HTTPHeaderFields::const_iterator;
    /// The same.
    using iterator = const_iterator;

    /// No headers.
    StoredHeaderFields() noexcept = default;
    /// Copies the texts of @p fields.
    StoredHeaderFields(const HTTPHeaderFields &fields); // NOLINT(google-explicit-constructor)
    /// The same, of a list as HTTPHeaderFields takes it.
    StoredHeaderFields(std::initializer_list<std::pair<QString, QString>> fields)
        : StoredHeaderFields(HTTPHeaderFields(fields))
    {
    }
    /// Copies all names and values. Absent if one of them is not text, because an incomplete map would be
    /// misleading.
    [[nodiscard]] static std::optional<StoredHeaderFields> fromFields(const NSHeaderFields &fields);

    /// Shares the headers.
    StoredHeaderFields(const StoredHeaderFields &other) noexcept;
    /// Takes the headers over.
    StoredHeaderFields(StoredHeaderFields &&other) noexcept : m_block(std::exchange(other.m_block, nullptr))
    {
    }
    /// Shares or takes over the headers.
    StoredHeaderFields &operator=(StoredHeaderFields other) noexcept
    {
        std::swap(m_block, other.m_block);
        return *this;
    }
    ~StoredHeaderFields();

    /// A copy of the headers in a block of the calling thread's memory.
    [[nodiscard]] StoredHeaderFields unshared() const;

    /// A new map with these headers.
    [[nodiscard]] HTTPHeaderFields toMap() const;
    /// The same as toMap().
    operator HTTPHeaderFields() const { return toMap(); } // NOLINT(google-explicit-constructor)

    /// Calls @p visit with each name and value, in ascending order of name.
    template<typename Visit>
    void forEach(Visit &&visit) const
    {
        visitAll(&visit, [](void *visitor, const QString &name, const QString &value) {
            (*static_cast<std::remove_reference_t<Visit> *>(visitor))(name, value);
        });
    }
    /// The value of the header with exactly this name; absent if there is none.
    [[nodiscard]] std::optional<QString> exactValue(const QString &name) const;
    /// The value of the header with exactly this name, or @p otherwise.
    [[nodiscard]] QString value(const QString &name, const QString &otherwise = {}) const
    {
        return exactValue(name).value_or(otherwise);
    }
    /// Whether there is a header with exactly this name.
    [[nodiscard]] bool contains(const QString &name) const { return exactValue(name).has_value(); }
    /// The value of the header with exactly this name; empty if there is none.
    [[nodiscard]] QString operator[](const QString &name) const { return value(name); }
    /// The number of headers.
    [[nodiscard]] qsizetype size() const noexcept;
    /// The number of headers.
    [[nodiscard]] qsizetype count() const noexcept { return size(); }
    /// Whether there are no headers.
    [[nodiscard]] bool isEmpty() const noexcept { return size() == 0; }
    /// Whether there are no headers.
    [[nodiscard]] bool empty() const noexcept { return size() == 0; }
    /// The names, in ascending order.
    [[nodiscard]] QStringList keys() const { return toMap().keys(); }
    /// The values, in ascending order of name.
    [[nodiscard]] QStringList values() const { return toMap().values(); }

    /// These headers as a map, which exists as long as this object or a copy of it.
    [[nodiscard]] const HTTPHeaderFields &map() const;
    /// The first header of map().
    [[nodiscard]] const_iterator begin() const { return map().cbegin(); }
    /// Behind the last header of map().
    [[nodiscard]] const_iterator end() const { return map().cend(); }
    /// The first header of map().
    [[nodiscard]] const_iterator cbegin() const { return map().cbegin(); }
    /// Behind the last header of map().
    [[nodiscard]] const_iterator cend() const { return map().cend(); }
    /// The first header of map().
    [[nodiscard]] const_iterator constBegin() const { return map().cbegin(); }
    /// Behind the last header of map().
    [[nodiscard]] const_iterator constEnd() const { return map().cend(); }
    /// The header with exactly this name, or end().
    [[nodiscard]] const_iterator find(const QString &name) const { return map().constFind(name); }
    /// The header with exactly this name, or end().
    [[nodiscard]] const_iterator constFind(const QString &name) const { return map().constFind(name); }
    /// As of a map.
    [[nodiscard]] auto keyBegin() const { return map().keyBegin(); }
    /// As of a map.
    [[nodiscard]] auto keyEnd() const { return map().keyEnd(); }
    /// As of a map.
    [[nodiscard]] auto keyValueBegin() const { return map().constKeyValueBegin(); }
    /// As of a map.
    [[nodiscard]] auto keyValueEnd() const { return map().constKeyValueEnd(); }
    /// As of a map.
    [[nodiscard]] auto constKeyValueBegin() const { return map().constKeyValueBegin(); }
    /// As of a map.
    [[nodiscard]] auto constKeyValueEnd() const { return map().constKeyValueEnd(); }

    /// Sets a header, as of a map.
    void insert(const QString &name, const QString &value);
    /// Removes a header, as of a map. Returns how many there were.
    qsizetype remove(const QString &name);

    /// Whether all names and values are equal.
    friend bool operator==(const StoredHeaderFields &left, const StoredHeaderFields &right) noexcept
    {
        return left.isSame(right);
    }
    /// Whether all names and values are equal.
    friend bool operator==(const StoredHeaderFields &left, const HTTPHeaderFields &right)
    {
        return left.isSame(StoredHeaderFields(right));
    }

private:
    struct Block;

    template<typename Visit>
    static Block *packed(const Visit &visitFields);
    [[nodiscard]] bool isSame(const StoredHeaderFields &other) const noexcept;
    void visitAll(void *visitor, void (*visit)(void *, const QString &, const QString &)) const;

    /// Null if there are no headers.
    Block *m_block = nullptr;
};

/// The value of the first header with this name in any case; absent when there is no such header or
/// @p fields is absent. Any thread.
[[nodiscard]] QUORVIX_CORE_EXPORT std::optional<QString>
headerValue(const std::optional<StoredHeaderFields> &fields, QAnyStringView name);

} // namespace Quorvix
