#pragma once

#include "PlatformGlobal.h"

#include <QtCore/QString>

#include <functional>
#include <memory>

namespace Quorvix {

/// An observer's registration: it ends when this object goes.
class QUORVIX_CORE_EXPORT NSNotificationObserver
{
public:
    NSNotificationObserver() = default;
    ~NSNotificationObserver();
    NSNotificationObserver(NSNotificationObserver &&) noexcept;
    NSNotificationObserver &operator=(NSNotificationObserver &&) noexcept;

private:
    friend class NSNotificationCenter;
    struct Registration;
    explicit NSNotificationObserver(std::shared_ptr<Registration> registration);

    std::shared_ptr<Registration> m_registration;
};

/// Broadcasts named notifications to whoever observes them.
///
/// Any thread may observe and post; an observer goes in the thread that posts what it observes. Observers are
/// called at once, in the thread that posts and in the order in which they registered; one that registers
/// during a post is first called by the next.
class QUORVIX_CORE_EXPORT NSNotificationCenter
{
public:
    using Callback = std::function<void()>;

    /// The process-wide center; made on first use, lives until the process ends.
    [[nodiscard]] static NSNotificationCenter &defaultCenter();

    /// Calls @p callback for every notification of this name until the returned object goes.
    [[nodiscard]] NSNotificationObserver addObserver(const QString &name, Callback callback);

    void post(const QString &name);

    struct Registry;

private:
    NSNotificationCenter();
    ~NSNotificationCenter() = delete;

    std::shared_ptr<Registry> m_registry;
};

} // namespace Quorvix
