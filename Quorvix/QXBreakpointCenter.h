#pragma once

#include "Quorvix/QXBreakpointItem.h"
#include "Quorvix/QuorvixNotifications.h"

#include <deque>

/// Holds the responses that match a rule, in one line, and releases them one by one. Main thread only.
class QUORVIX_INTERNAL_EXPORT QXBreakpointCenter
{
public:
    using TimePoint = std::chrono::steady_clock::time_point;
    using Clock = std::function<TimePoint()>;

    /// The one center; made on first use, lives until the process ends.
    [[nodiscard]] static QXBreakpointCenter &shared();

    QXBreakpointCenter();
    QXBreakpointCenter(const QXBreakpointCenter &) = delete;
    QXBreakpointCenter &operator=(const QXBreakpointCenter &) = delete;

    /// The held response now offered to the user.
    [[nodiscard]] const std::optional<QXBreakpointItem> &activeBreakpoint() const
    {
        return m_activeBreakpoint;
    }
    /// Further held responses, oldest first; empty unless one is active.
    [[nodiscard]] const std::deque<QXBreakpointItem> &queue() const { return m_queue; }

    /// Holds the response and returns true; the trace is then completed, and @p completion called, on
    /// release. False when nothing is held and delivery stays with the caller: during the cooldown after a
    /// release, when no rule matches, or when there is no HTTP response.
    [[nodiscard]] bool check(const Quorvix::URLRequest &request, const QString &requestId,
                             const std::optional<QByteArray> &data, const Quorvix::NSURLResponsePtr &response,
                             const std::optional<Quorvix::NSError> &error,
                             const Quorvix::DataTaskCompletionHandler &completion);

    /// Releases the active response with its own status code and body.
    void continueActive();

    /// Releases the active response with an edited status code and body. A status text that is no decimal
    /// integer leaves the code as it was; an absent body text gives an empty body.
    void apply(const std::optional<QString> &statusCode, const std::optional<QString> &body);

    /// Replaces the clock by which the cooldown is measured.
    void setClock(Clock clock) { m_now = std::move(clock); }

private:
    void startCooldown();
    void release(const std::optional<QString> &statusText, bool keepBody,
                 const std::optional<QString> &bodyText);

    std::optional<QXBreakpointItem> m_activeBreakpoint;
    std::deque<QXBreakpointItem> m_queue;
    std::optional<TimePoint> m_skipUntil;
    std::optional<QXBreakpointKey> m_lastContinuedKey;
    Clock m_now;
    /// Set while the host's handler runs: it may reach back here through an event loop of its own.
    bool m_isReleasing = false;
};
