#include "Platform/ObjectRuntime.h"

#include <utility>

namespace Quorvix {

class Method
{
public:
    ObjectClass *owner;
    std::string selector;
    std::type_index type;
    std::size_t slot;
};

ObjectClass::ObjectClass()
{
    publish({});
}

ObjectClass::~ObjectClass() = default;

ObjectClass::Implementation ObjectClass::lookUp(const Method *method) const noexcept
{
    return (*m_current.load(std::memory_order_acquire))[method->slot];
}

Method *ObjectClass::add(QByteArrayView selector, Implementation function, std::type_index type)
{
    const std::scoped_lock lock(m_mutex);
    const std::string text(selector.data(), static_cast<std::size_t>(selector.size()));
    for (const auto &method : m_methods) {
        if (method->selector == text)
            return nullptr;
    }
    Table table = *m_current.load(std::memory_order_relaxed);
    table.push_back(function);
    m_methods.push_back(std::make_unique<Method>(Method{this, text, type, table.size() - 1}));
    publish(std::move(table));
    return m_methods.back().get();
}

void ObjectClass::publish(Table table)
{
    m_tables.push_back(std::make_unique<const Table>(std::move(table)));
    m_current.store(m_tables.back().get(), std::memory_order_release);
}

Method *class_getInstanceMethod(const ObjectClass &objectClass, QByteArrayView selector)
{
    const std::scoped_lock lock(objectClass.m_mutex);
    for (const auto &method : objectClass.m_methods) {
        if (QByteArrayView(method->selector) == selector)
            return method.get();
    }
    return nullptr;
}

bool method_exchangeImplementations(Method *first, Method *second)
{
    if (!first || !second || first->owner != second->owner || first->type != second->type)
        return false;
    ObjectClass &owner = *first->owner;
    const std::scoped_lock lock(owner.m_mutex);
    ObjectClass::Table table = *owner.m_current.load(std::memory_order_relaxed);
    std::swap(table[first->slot], table[second->slot]);
    owner.publish(std::move(table));
    return true;
}

} // namespace Quorvix
