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
    using mapped_type = QString;
    using const_iterator = HTTPHeaderFields::const_iterator;
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

    StoredHeaderFields(const StoredHeaderFields &other) noexcept;
    StoredHeaderFields(StoredHeaderFields &&other) noexcept : m_block(std::exchange(other.m_block, nullptr))
    {
    }
    StoredHeaderFields &operator=(StoredHeaderFields other) noexcept
    {
        std::swap(m_block, other.m_block);
        return *this;
    }
    ~StoredHeaderFields();

    /// A new map with these headers.
    [[nodiscard]] HTTPHeaderFields toMap() const;
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
    [[nodiscard]] bool contains(const QString &name) const { return exactValue(name).has_value(); }
    [[nodiscard]] QString operator[](const QString &name) const { return value(name); }
    [[nodiscard]] qsizetype size() const noexcept;
    [[nodiscard]] qsizetype count() const noexcept { return size(); }
    [[nodiscard]] bool isEmpty() const noexcept { return size() == 0; }
    [[nodiscard]] bool empty() const noexcept { return size() == 0; }
    [[nodiscard]] QStringList keys() const { return toMap().keys(); }
    [[nodiscard]] QStringList values() const { return toMap().values(); }

    /// These headers as a map, which exists as long as this object or a copy of it.
    [[nodiscard]] const HTTPHeaderFields &map() const;
    [[nodiscard]] const_iterator begin() const { return map().cbegin(); }
    [[nodiscard]] const_iterator end() const { return map().cend(); }
    [[nodiscard]] const_iterator cbegin() const { return map().cbegin(); }
    [[nodiscard]] const_iterator cend() const { return map().cend(); }
    [[nodiscard]] const_iterator constBegin() const { return map().cbegin(); }
    [[nodiscard]] const_iterator constEnd() const { return map().cend(); }
    [[nodiscard]] const_iterator find(const QString &name) const { return map().constFind(name); }
    [[nodiscard]] const_iterator constFind(const QString &name) const { return map().constFind(name); }
    [[nodiscard]] auto keyBegin() const { return map().keyBegin(); }
    [[nodiscard]] auto keyEnd() const { return map().keyEnd(); }
    [[nodiscard]] auto keyValueBegin() const { return map().constKeyValueBegin(); }
    [[nodiscard]] auto keyValueEnd() const { return map().constKeyValueEnd(); }
    [[nodiscard]] auto constKeyValueBegin() const { return map().constKeyValueBegin(); }
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
