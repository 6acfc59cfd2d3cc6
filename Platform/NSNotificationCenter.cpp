#include "Platform/NSNotificationCenter.h"

#include <QtCore/QHash>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <vector>

namespace Quorvix {

struct NSNotificationObserver::Registration
{
    QString name;
    NSNotificationCenter::Callback callback;
    std::shared_ptr<NSNotificationCenter::Registry> registry;
    std::atomic<bool> active = true;
};

struct NSNotificationCenter::Registry
{
    using List = std::vector<std::shared_ptr<NSNotificationObserver::Registration>>;

    std::mutex mutex;
    /// A list is replaced and never changed, so that a post can go through the list of its start without
    /// holding the lock.
    QHash<QString, std::shared_ptr<const List>> lists;
};

NSNotificationObserver::NSNotificationObserver(std::shared_ptr<Registration> registration)
    : m_registration(std::move(registration))
{
}

NSNotificationObserver::NSNotificationObserver(NSNotificationObserver &&) noexcept = default;

NSNotificationObserver &NSNotificationObserver::operator=(NSNotificationObserver &&other) noexcept
{
    // The temporary takes the previous registration and ends it when it is destroyed.
    NSNotificationObserver previous(std::move(other));
    std::swap(m_registration, previous.m_registration);
    return *this;
}

NSNotificationObserver::~NSNotificationObserver()
{
    if (!m_registration)
        return;
    m_registration->active = false;
    auto &registry = *m_registration->registry;
    const std::scoped_lock lock(registry.mutex);
    auto &list = registry.lists[m_registration->name];
    auto shorter = std::make_shared<NSNotificationCenter::Registry::List>(*list);
    std::erase(*shorter, m_registration);
    list = std::move(shorter);
}

NSNotificationCenter::NSNotificationCenter() : m_registry(std::make_shared<Registry>()) {}

NSNotificationCenter &NSNotificationCenter::defaultCenter()
{
    static auto *const center = new NSNotificationCenter;
    return *center;
}

NSNotificationObserver NSNotificationCenter::addObserver(const QString &name, Callback callback)
{
    auto registration = std::make_shared<NSNotificationObserver::Registration>();
    registration->name = name;
    registration->callback = std::move(callback);
    registration->registry = m_registry;

    const std::scoped_lock lock(m_registry->mutex);
    auto &list = m_registry->lists[name];
    auto longer = list ? std::make_shared<Registry::List>(*list) : std::make_shared<Registry::List>();
    longer->push_back(registration);
    list = std::move(longer);
    return NSNotificationObserver(std::move(registration));
}

void NSNotificationCenter::post(const QString &name)
{
    std::shared_ptr<const Registry::List> list;
    {
        const std::scoped_lock lock(m_registry->mutex);
        list = m_registry->lists.value(name);
    }
    if (!list)
        return;
    for (const auto &registration : *list) {
        if (registration->active)
            registration->callback();
    }
}

} // namespace Quorvix
