#include "Platform/URLLoadManager.h"

#include <QtCore/QPointer>

#include <algorithm>
#include <climits>
#include <utility>

namespace Quorvix {

URLLoadWatch::URLLoadWatch(QNetworkReply *reply, std::optional<std::chrono::milliseconds> timeout)
    : QObject(reply), m_timeout(timeout)
{
    if (m_timeout)
        connect(reply, &QNetworkReply::readyRead, this, [this] { m_lastSign = Clock::now(); });
}

URLLoadWatch::Clock::time_point URLLoadWatch::due() const noexcept
{
    return m_timeout ? m_lastSign + *m_timeout : Clock::time_point::max();
}

URLLoadManager::URLLoadManager(QObject *parent) : QNetworkAccessManager(parent), m_timer(this)
{
    m_timer.setSingleShot(true);
    // Behind the events that have arrived in the meantime, which may be signs of life.
    connect(&m_timer, &QTimer::timeout, this, &URLLoadManager::abortSilent, Qt::QueuedConnection);
}

QNetworkReply *URLLoadManager::sendGet(const QNetworkRequest &request)
{
    return createRequest(GetOperation, request);
}

void URLLoadManager::observe(const URLLoadWatch &watch)
{
    const auto due = watch.due();
    if (due >= m_nextCheck)
        return;
    m_nextCheck = due;
    const auto wait = std::chrono::ceil<std::chrono::milliseconds>(due - URLLoadWatch::Clock::now());
    m_timer.start(int(std::clamp<qint64>(wait.count(), 0, INT_MAX)));
}

void URLLoadManager::abortSilent()
{
    m_nextCheck = URLLoadWatch::Clock::time_point::max();
    const auto now = URLLoadWatch::Clock::now();
    const auto replies = findChildren<QNetworkReply *>(Qt::FindDirectChildrenOnly);
    QList<QPointer<QNetworkReply>> silent;
    for (QNetworkReply *const reply : replies) {
        const auto *const watch = reply->findChild<URLLoadWatch *>(QString(), Qt::FindDirectChildrenOnly);
        if (!watch || reply->isFinished())
            continue;
        if (watch->due() <= now)
            silent.append(reply);
        else
            observe(*watch);
    }
    // The host's handler runs in here.
    for (const QPointer<QNetworkReply> &reply : std::as_const(silent)) {
        if (reply)
            reply->abort();
    }
}

} // namespace Quorvix
