#include "Platform/NSNotificationCenter.h"

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

    struct Entry
    {
        QString name;
        /// It is replaced and never changed, so that a post can go through the list of its start without
        /// holding the lock. Null while there are no observers.
        std::shared_ptr<const List> list;
    };

    /// The observers of a name; null if there never were any.
    std::shared_ptr<const List> *find(QAnyStringView name)
    {
        const auto found =
            std::ranges::find_if(entries, [&](const Entry &entry) { return name == entry.name; });
        return found == entries.end() ? nullptr : &found->list;
    }

    std::mutex mutex;
    /// There are only a few names, and posts are many.
    std::vector<Entry> entries;
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
    auto &list = *registry.find(m_registration->name);
    auto shorter = std::make_shared<NSNotificationCenter::Registry::List>(*list);
    std::erase(*shorter, m_registration);
    list = shorter->empty() ? nullptr : std::move(shorter);
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
    if (!m_registry->find(name))
        m_registry->entries.push_back({name, nullptr});
    auto &list = *m_registry->find(name);
    auto longer = list ? std::make_shared<Registry::List>(*list) : std::make_shared<Registry::List>();
    longer->push_back(registration);
    list = std::move(longer);
    return NSNotificationObserver(std::move(registration));
}

void NSNotificationCenter::post(QAnyStringView name)
{
    std::shared_ptr<const Registry::List> list;
    {
        const std::scoped_lock lock(m_registry->mutex);
        if (const auto *const found = m_registry->find(name))
            list = *found;
    }
    if (!list)
        return;
    for (const auto &registration : *list) {
        if (registration->active)
            registration->callback();
    }
}

} // namespace Quorvix
