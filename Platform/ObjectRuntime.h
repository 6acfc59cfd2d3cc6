#pragma once

#include "PlatformGlobal.h"

#include <QtCore/QByteArrayView>

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <typeindex>
#include <vector>

namespace Quorvix {

/// An instance method of a class, found by its selector text. Lives as long as its class.
class Method;

/// A class whose instance methods can be looked up, added and exchanged while the program runs.
///
/// A send reads one atomic pointer to the current table and makes one indirect call through it. A published
/// table never changes: adding or exchanging builds a new one, so that a sender sees either the whole
/// exchange or nothing of it. Any thread may send, look up, add and exchange at any time.
class QUORVIX_CORE_EXPORT ObjectClass
{
public:
    /// The untyped form in which implementations are stored.
    using Implementation = void (*)();

    ObjectClass();
    ~ObjectClass();

    ObjectClass(const ObjectClass &) = delete;
    ObjectClass &operator=(const ObjectClass &) = delete;

    /// The current implementation of @p method. It must be called with the signature that it was added with.
    template<typename Signature>
    [[nodiscard]] Signature *implementation(const Method *method) const noexcept
    {
        return reinterpret_cast<Signature *>(lookUp(method));
    }

    /// Adds an instance method. Returns null and changes nothing when the selector is already in use.
    template<typename Signature>
    Method *addMethod(QByteArrayView selector, Signature *function)
    {
        return add(selector, reinterpret_cast<Implementation>(function), typeid(Signature));
    }

private:
    friend QUORVIX_CORE_EXPORT Method *class_getInstanceMethod(const ObjectClass &, QByteArrayView);
    friend QUORVIX_CORE_EXPORT bool method_exchangeImplementations(Method *, Method *);

    using Table = std::vector<Implementation>;

    [[nodiscard]] Implementation lookUp(const Method *method) const noexcept;
    Method *add(QByteArrayView selector, Implementation function, std::type_index type);
    void publish(Table table);

    std::atomic<const Table *> m_current;
    mutable std::mutex m_mutex;
    std::vector<std::unique_ptr<Method>> m_methods;
    /// All tables, old ones included, because a sender may still read an old one.
    std::vector<std::unique_ptr<const Table>> m_tables;
};

/// The instance method of @p objectClass for @p selector, or null. Any thread.
[[nodiscard]] QUORVIX_CORE_EXPORT Method *class_getInstanceMethod(const ObjectClass &objectClass,
                                                                  QByteArrayView selector);

/// Exchanges the implementations of two methods of one class; every later send uses the new ones. Returns
/// false and changes nothing when a method is null, or when their classes or signatures differ. Any thread.
QUORVIX_CORE_EXPORT bool method_exchangeImplementations(Method *first, Method *second);

} // namespace Quorvix
