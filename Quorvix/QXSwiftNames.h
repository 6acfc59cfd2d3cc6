#pragma once

#include "Quorvix/QXSwiftText.h"

#include <cstddef>
#include <memory_resource>
#include <string_view>
#include <vector>

/// The names of the types of one model, which stay until the end. A model can have a million names, and most
/// are looked up once: the table holds a part of the hash beside each index, so that a name that is not there
/// is known with one access to memory.
class QXSwiftNames final
{
public:
    QXSwiftNames() : m_slots(smallestTable) {}

    struct Insertion
    {
        bool isNew = false;
        /// A copy of the name that stays; null if it is not new.
        QXSwiftText::Part name;
        size_t index = 0;
    };

    /// Adds a name unless it is used already.
    Insertion insert(QXSwiftText::Part name);
    /// The first suffix of a used name that may still be free.
    [[nodiscard]] int &nextSuffix(size_t index) { return m_names[index].nextSuffix; }
    /// A copy of any text that stays as long as this object.
    [[nodiscard]] QXSwiftText::Part stored(QXSwiftText::Part text);

private:
    struct Name
    {
        const char *data = nullptr;
        quint32 size = 0;
        int nextSuffix = 0;

        [[nodiscard]] std::string_view utf8() const noexcept { return {data, size}; }
    };
    struct Slot
    {
        quint32 hash = 0;
        /// The index of the name plus one; 0 if the slot is free.
        quint32 index = 0;
    };

    /// A power of two, as each larger size.
    static constexpr size_t smallestTable = 64;

    void grow();

    std::pmr::monotonic_buffer_resource m_memory;
    std::vector<Name> m_names;
    std::vector<Slot> m_slots;
};
