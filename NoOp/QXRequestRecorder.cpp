#include "Quorvix/QXRequestRecorder.h"

using namespace Quorvix;

// The recorder forgets at once what it is told: it is always empty, and posts nothing.

QXRequestRecorder &QXRequestRecorder::shared()
{
    static auto *const recorder = new QXRequestRecorder;
    return *recorder;
}

void QXRequestRecorder::record(const QString &, const URLRequest &, const QXMoment &) {}
void QXRequestRecorder::amend(const QString &, const URLRequest &) {}
void QXRequestRecorder::complete(const QString &, const NSURLResponsePtr &, const std::optional<QByteArray> &,
                                 const std::optional<NSError> &, const QXMoment &)
{
}
void QXRequestRecorder::progress(const QString &, const NSURLResponsePtr &, const std::optional<QByteArray> &)
{
}
void QXRequestRecorder::setRefresher(const QString &, std::function<void()>) {}
void QXRequestRecorder::addSource(std::function<bool(const QString &)>) {}
void QXRequestRecorder::clear() {}

bool QXRequestRecorder::refresh(const QString &)
{
    return false;
}

QList<QXRequestTrace>
QXRequestRecorder::findRequests(const std::function<bool(const QXRequestTrace &)> &) const
{
    return {};
}

QList<QXRequestTrace> QXRequestRecorder::findRequestsByPath(const QString &) const
{
    return {};
}

QList<QXRequestTrace> QXRequestRecorder::findRequestsByStatusCode(qint64) const
{
    return {};
}

QList<QXRequestTrace> QXRequestRecorder::findRequestsByMethod(const QString &) const
{
    return {};
}
