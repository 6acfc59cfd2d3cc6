#pragma once

#include "Platform/NSURLSessionConfiguration.h"

#include <QtCore/QTimer>
#include <QtNetwork/QNetworkAccessManager>
#include <QtNetwork/QNetworkReply>

#include <chrono>
#include <optional>

namespace Quorvix {

/// Knows since when a reply has been silent. Belongs to the reply. In the loading thread only.
class URLLoadWatch : public QObject
{
    Q_OBJECT

public:
    using Clock = std::chrono::steady_clock;

    /// Without @p timeout the reply may be silent for ever, or Qt sees to it.
    URLLoadWatch(QNetworkReply *reply, std::optional<std::chrono::milliseconds> timeout);

    /// When the reply has been silent for too long, if nothing more arrives.
    [[nodiscard]] Clock::time_point due() const noexcept;

private:
    const std::optional<std::chrono::milliseconds> m_timeout;
    Clock::time_point m_lastSign = Clock::now();
};

/// The network access manager of a session. In the loading thread only.
class URLLoadManager final : public QNetworkAccessManager
{
    Q_OBJECT

public:
    explicit URLLoadManager(QObject *parent);

    /// Sends a GET. Like get(), but the manager emits no signal about the reply: those connections take a
    /// tenth of the time of a short exchange.
    [[nodiscard]] QNetworkReply *sendGet(const QNetworkRequest &request);

    /// Aborts the reply of @p watch as soon as it has been silent for too long. Qt would set a timer of its
    /// own anew for each part of each exchange, each time with an event that wakes the thread.
    void observe(const URLLoadWatch &watch);

private:
    void abortSilent();

    QTimer m_timer;
    /// When the timer goes off; far in the future while it does not run.
    URLLoadWatch::Clock::time_point m_nextCheck = URLLoadWatch::Clock::time_point::max();
};

} // namespace Quorvix
