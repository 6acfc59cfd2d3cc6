#include "Quorvix/QXRequestRecorder.h"

#include <algorithm>

using namespace Quorvix;

// The recorder forgets at once what it is told: it is always empty, and posts nothing.

QXRequestRecorder &QXRequestRecorder::shared()
{
    static auto *const recorder = new QXRequestRecorder;
    return *recorder;
}

// The budget concerns nothing. A host reads back what it has set.

void QXRequestRecorder::setBodyBudget(std::optional<qsizetype> bytes)
{
    m_bodyBudget = bytes ? std::max<qsizetype>(*bytes, 0) : noBudget;
}

std::optional<qsizetype> QXRequestRecorder::bodyBudget() const noexcept
{
    const qsizetype budget = m_bodyBudget;
    return budget == noBudget ? std::nullopt : std::optional(budget);
}

void QXRequestRecorder::record(const QString &, const URLRequest &, const QXMoment &) {}
void QXRequestRecorder::amend(const QString &, const URLRequest &, std::optional<qsizetype>) {}
void QXRequestRecorder::complete(const QString &, const NSURLResponsePtr &, const std::optional<QByteArray> &,
                                 const std::optional<NSError> &, const QXMoment &, std::optional<qsizetype>)
{
}
void QXRequestRecorder::progress(const QString &, const NSURLResponsePtr &, const std::optional<QByteArray> &,
                                 std::optional<qsizetype>)
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
