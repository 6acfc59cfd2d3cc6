#pragma once

#include "Quorvix/QXBreakpointItem.h"
#include "Quorvix/QuorvixNotifications.h"

#include <deque>
#include <memory>

/// Holds the responses that match a rule of QXBreakpointStore in one queue and releases them one by one. Main
/// thread only.
///
/// With the screens, the user releases them. A program without screens does it itself: it observes
/// QuorvixBreakpointChanged and calls continueActive() or apply(). Until then the host gets nothing of the
/// response, for any length of time.
///
/// @code
/// const auto observer = Quorvix::NSNotificationCenter::defaultCenter().addObserver(
///     QuorvixBreakpointChanged, [] {
///         auto &center = QXBreakpointCenter::shared();
///         if (center.activeBreakpoint())
///             center.apply(u"503"_s, u"down"_s);
///     });
/// @endcode
///
/// After a release nothing is held for 0.6 seconds, so that a burst of requests does not stop at each one.
class QUORVIX_CORE_EXPORT QXBreakpointCenter
{
public:
    /// A moment on the clock that measures the cooldown.
    using TimePoint = std::chrono::steady_clock::time_point;
    /// Returns the current moment.
    using Clock = std::function<TimePoint()>;

    /// The only center; created on first use, lives until the process ends.
    [[nodiscard]] static QXBreakpointCenter &shared();

    /// A center of its own, which holds nothing until its check() is called. Main thread.
    QXBreakpointCenter();
    QXBreakpointCenter(const QXBreakpointCenter &) = delete;
    QXBreakpointCenter &operator=(const QXBreakpointCenter &) = delete;

    /// The held response that can be edited and released now; absent if nothing is held.
    [[nodiscard]] const std::optional<QXBreakpointItem> &activeBreakpoint() const
    {
        return m_activeBreakpoint;
    }
    /// The other held responses, oldest first. Empty if no response is active.
    [[nodiscard]] const std::deque<QXBreakpointItem> &queue() const { return m_queue; }

    /// Holds the response and returns true. The center then completes the trace and calls @p completion when
    /// the response is released.
    ///
    /// Returns false if it does not hold the response; the caller must then deliver it. This is the case
    /// during the cooldown after a release, if no rule matches, or if the response is not an HTTP response.
    [[nodiscard]] bool check(const Quorvix::URLRequest &request, const QString &requestId,
                             const std::optional<QByteArray> &data, const Quorvix::NSURLResponsePtr &response,
                             const std::optional<Quorvix::NSError> &error,
                             const Quorvix::DataTaskCompletionHandler &completion);

    /// Releases the active response with its original status code and body: completes its trace, calls the
    /// handler of the host before it returns, and makes the next held response the active one. Does nothing
    /// if no response is active, or while the handler of the active one runs.
    void continueActive();

    /// Releases the active response with an edited status code and body. If the status text is not a decimal
    /// integer, the status code stays as it was. An absent body text gives an empty body.
    /// A body text is sent as UTF-8. Otherwise like continueActive().
    void apply(const std::optional<QString> &statusCode, const std::optional<QString> &body);
    /// Like apply(), for a body of any bytes. It takes the same time for a body of any size.
    void applyBody(const std::optional<QString> &statusCode, const QByteArray &body);

    /// Destroys the held responses without delivering them. Called when the application ends; nobody is
    /// notified.
    void dropAll();

    /// Replaces the clock that measures the cooldown, for tests.
    void setClock(Clock clock) { m_now = std::move(clock); }

private:
    void startCooldown();
    /// Without a new body the response keeps its own.
    void release(const std::optional<QString> &statusText, const std::optional<QByteArray> &newBody);

    void promoteAfter(const QUuid &released);

    std::optional<QXBreakpointItem> m_activeBreakpoint;
    std::deque<QXBreakpointItem> m_queue;
    std::optional<TimePoint> m_skipUntil;
    std::optional<QXBreakpointKey> m_lastContinuedKey;
    Clock m_now;
    /// The item whose completion handler runs; null while none does. The handler can run an event loop, in
    /// which release() can be called again.
    QUuid m_releasing;
    /// Expires with the center; scheduled tasks check it.
    std::shared_ptr<const void> m_lifetimeToken = std::make_shared<char>();
};
