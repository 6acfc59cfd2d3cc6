#pragma once

#include "Platform/NSHTTPURLResponse.h"
#include "Platform/NSURLSession.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QSemaphore>

namespace Quorvix {

/// What a task ends with.
struct Outcome
{
    std::optional<QByteArray> data;
    NSURLResponsePtr response;
    std::optional<NSError> error;

    [[nodiscard]] const NSHTTPURLResponse *http() const
    {
        return dynamic_cast<const NSHTTPURLResponse *>(response.get());
    }

    [[nodiscard]] qint64 status() const { return http() ? http()->statusCode() : 0; }
    [[nodiscard]] QJsonObject json() const
    {
        return QJsonDocument::fromJson(data.value_or(QByteArray())).object();
    }
};

/// Runs a task to its end, which is told on a thread of the session's own.
inline Outcome load(NSURLSession &session, const URLRequest &request,
                    const std::function<void(NSURLSessionDataTask &)> &afterwards = {})
{
    Outcome outcome;
    QSemaphore done;
    const auto task = session.dataTaskWithRequest(request, [&](auto data, auto response, auto error) {
        outcome = {std::move(data), std::move(response), std::move(error)};
        done.release();
    });
    task->resume();
    if (afterwards)
        afterwards(*task);
    if (!done.tryAcquire(1, 10'000))
        qFatal("no completion");
    return outcome;
}

} // namespace Quorvix
