#pragma once

#include "PlatformGlobal.h"

#include <QtCore/QAnyStringView>
#include <QtCore/QString>

#include <functional>
#include <memory>

namespace Quorvix {

/// An observer's registration, which ends when this object is destroyed.
class QUORVIX_CORE_EXPORT NSNotificationObserver
{
public:
    /// An object without a registration.
    NSNotificationObserver() = default;
    ~NSNotificationObserver();
    /// Takes over the registration of another object.
    NSNotificationObserver(NSNotificationObserver &&) noexcept;
    /// Ends the own registration, and takes over that of another object.
    NSNotificationObserver &operator=(NSNotificationObserver &&) noexcept;

private:
    friend class NSNotificationCenter;
    struct Registration;
    explicit NSNotificationObserver(std::shared_ptr<Registration> registration);

    std::shared_ptr<Registration> m_registration;
};

/// Broadcasts named notifications to their observers.
///
/// Any thread may observe and post. The registration of an observer must be destroyed in the thread that
/// posts its notification. A post calls the observers before it returns, in the thread that posts and in the
/// order in which they registered. An observer that registers during a post is first called by the next post.
class QUORVIX_CORE_EXPORT NSNotificationCenter
{
public:
    /// What an observer wants to have called.
    using Callback = std::function<void()>;

    /// The center of the process. It is created on first use and lives until the process ends.
    [[nodiscard]] static NSNotificationCenter &defaultCenter();

    /// Calls @p callback for every notification of this name until the returned object is destroyed.
    [[nodiscard]] NSNotificationObserver addObserver(const QString &name, Callback callback);

    /// Calls the observers of this name, in this thread.
    void post(QAnyStringView name);

    struct Registry;

private:
    NSNotificationCenter();
    ~NSNotificationCenter() = delete;

    std::shared_ptr<Registry> m_registry;
};

} // namespace Quorvix
