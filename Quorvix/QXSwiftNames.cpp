#include "Quorvix/QXSwiftNames.h"

#include <cstring>
#include <functional>

QXSwiftNames::Insertion QXSwiftNames::insert(QXSwiftText::Part name)
{
    if (2 * (m_names.size() + 1) > m_slots.size())
        grow();
    const auto hash = quint32(std::hash<std::string_view>()(name.utf8));
    const size_t mask = m_slots.size() - 1;
    size_t at = hash & mask;
    for (; m_slots[at].index != 0; at = (at + 1) & mask) {
        const size_t index = m_slots[at].index - 1;
        if (m_slots[at].hash == hash && m_names[index].utf8() == name.utf8)
            return {false, {}, index};
    }
    const QXSwiftText::Part kept = stored(name);
    m_names.push_back({kept.utf8.data(), quint32(kept.utf8.size()), 0});
    m_slots[at] = {hash, quint32(m_names.size())};
    return {true, kept, m_names.size() - 1};
}

QXSwiftText::Part QXSwiftNames::stored(QXSwiftText::Part text)
{
    const size_t size = text.utf8.size();
    auto *const memory = static_cast<char *>(m_memory.allocate(size + 1, 1));
    std::memcpy(memory, text.utf8.data(), size);
    return {{memory, size}, text.excess};
}

void QXSwiftNames::grow()
{
    std::vector<Slot> larger(2 * m_slots.size());
    const size_t mask = larger.size() - 1;
    for (const Slot slot : m_slots) {
        if (slot.index == 0)
            continue;
        size_t at = slot.hash & mask;
        while (larger[at].index != 0)
            at = (at + 1) & mask;
        larger[at] = slot;
    }
    m_slots = std::move(larger);
}
