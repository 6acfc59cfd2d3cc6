#include "Quorvix/QXExchange.h"

#include "Platform/MainActor.h"

#include <QtCore/QUuid>

#include <utility>

using namespace Quorvix;

QString QXExchange::makeId()
{
    return QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
}

QXExchange::QXExchange(const URLRequest &) : m_id(makeId()) {}

QXExchange::QXExchange(QXExchange &&other) noexcept
    : m_id(std::move(other.m_id)), m_isComplete(std::exchange(other.m_isComplete, true))
{
}

QXExchange::~QXExchange() = default;

void QXExchange::amend(const URLRequest &, std::optional<qsizetype>) {}
void QXExchange::setRefresher(std::function<void()>) {}
void QXExchange::progress(const NSURLResponsePtr &, const std::optional<QByteArray> &,
                          std::optional<qsizetype>)
{
}

void QXExchange::complete(const NSURLResponsePtr &, const std::optional<QByteArray> &,
                          const std::optional<NSError> &, std::optional<qsizetype>)
{
    m_isComplete = true;
}

void QXExchange::complete(const NSURLResponsePtr &response, const std::optional<QByteArray> &data,
                          const std::optional<NSError> &error, DataTaskCompletionHandler deliver)
{
    if (std::exchange(m_isComplete, true))
        return;
    // The client waits for it, with the inspector and without.
    MainActor::schedule(
        [response, data, error, deliver = std::move(deliver)] { deliver(data, response, error); });
}
