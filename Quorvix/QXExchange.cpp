#include "Quorvix/QXExchange.h"

#include "Quorvix/QXBreakpointCenter.h"
#include "Quorvix/QXExitArchive.h"
#include "Quorvix/QXRequestRecorder.h"

#include "Platform/MainActor.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QRandomGenerator>
#include <QtCore/QScopedValueRollback>

#include <array>
#include <utility>

using namespace Quorvix;

namespace {

/// Whether the recorder changes now: its observers may themselves begin or end an exchange. Main thread only.
bool isReporting = false;

/// The bytes of one identifier. To ask the system for few random bytes takes about as long as for many, and
/// longer than all else that the start of an exchange costs. A child that goes on after fork() without exec()
/// can repeat those of a few exchanges, in a list of its own.
QByteArrayView nextRandomBytes()
{
    constexpr size_t size = 16;
    static thread_local std::array<quint64, 32> random;
    static thread_local size_t used = sizeof random;
    if (used == sizeof random) {
        QRandomGenerator::system()->fillRange(random.data(), qsizetype(random.size()));
        used = 0;
    }
    const QByteArrayView bytes(reinterpret_cast<const char *>(random.data()) + used, size);
    used += size;
    return bytes;
}

void followApplication()
{
    QXExitArchive::begin();
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(followApplication)

QString QXExchange::makeId()
{
    constexpr QLatin1StringView digits{"0123456789ABCDEF"};
    const QByteArrayView bytes = nextRandomBytes();
    QString id(36, Qt::Uninitialized);
    QChar *place = id.data();
    for (int i = 0; i < bytes.size(); ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10)
            *place++ = u'-';
        auto byte = uchar(bytes[i]);
        // The version and the variant (RFC 9562, 5.4)
        if (i == 6)
            byte = (byte & 0x0F) | 0x40;
        else if (i == 8)
            byte = (byte & 0x3F) | 0x80;
        *place++ = digits[byte >> 4];
        *place++ = digits[byte & 0x0F];
    }
    return id;
}

QXExchange::QXExchange(const URLRequest &request)
    : m_id(makeId()), m_request(request), m_isRecorded(MainActor::isCurrent() && !isReporting)
{
    report([id = m_id, request, now = QXMoment::now()] {
        QXRequestRecorder::shared().record(id, request, now);
    });
}

QXExchange::QXExchange(QXExchange &&other) noexcept
    : m_id(std::move(other.m_id)), m_request(std::move(other.m_request)), m_isRecorded(other.m_isRecorded),
      m_isComplete(std::exchange(other.m_isComplete, true))
{
}

QXExchange::~QXExchange()
{
    if (!m_isComplete)
        complete(nullptr, std::nullopt, makeURLError(NSURLErrorCancelled));
}

/// Tells the recorder, at once where that is possible: a scheduled task wakes the event loop, which takes
/// longer than the task. The reports of an exchange that began on another thread stay in their order.
template<typename Task>
void QXExchange::report(Task task)
{
    if (!m_isRecorded || !MainActor::isCurrent() || isReporting)
        return MainActor::scheduleReport(std::move(task));
    const QScopedValueRollback reporting(isReporting, true);
    task();
}

void QXExchange::amend(const URLRequest &request, std::optional<qsizetype> discardedBodySize)
{
    if (m_isComplete)
        return;
    m_request = request;
    report([id = m_id, request, discardedBodySize] {
        QXRequestRecorder::shared().amend(id, request, discardedBodySize);
    });
}

void QXExchange::setRefresher(std::function<void()> refresher)
{
    if (m_isComplete)
        return;
    report([id = m_id, refresher = std::move(refresher)] {
        QXRequestRecorder::shared().setRefresher(id, refresher);
    });
}

void QXExchange::progress(const NSURLResponsePtr &response, const std::optional<QByteArray> &data,
                          std::optional<qsizetype> discardedBodySize)
{
    if (m_isComplete)
        return;
    report([id = m_id, response, data, discardedBodySize] {
        QXRequestRecorder::shared().progress(id, response, data, discardedBodySize);
    });
}

void QXExchange::complete(const NSURLResponsePtr &response, const std::optional<QByteArray> &data,
                          const std::optional<NSError> &error, std::optional<qsizetype> discardedBodySize)
{
    if (std::exchange(m_isComplete, true))
        return;
    // The object can live on for long, and the recorder may have removed the body of the request.
    m_request.httpBody.reset();
    report([id = m_id, response, data, error, now = QXMoment::now(), discardedBodySize] {
        QXRequestRecorder::shared().complete(id, response, data, error, now, discardedBodySize);
    });
}

void QXExchange::complete(const NSURLResponsePtr &response, const std::optional<QByteArray> &data,
                          const std::optional<NSError> &error, DataTaskCompletionHandler deliver)
{
    if (std::exchange(m_isComplete, true))
        return;
    auto report = [id = m_id, response, data, error, now = QXMoment::now()] {
        QXRequestRecorder::shared().complete(id, response, data, error, now);
    };
    auto task = [id = m_id, request = std::move(m_request), response, data, error, report,
                 deliver = std::move(deliver)] {
        if (QXBreakpointCenter::shared().check(request, id, data, response, error, deliver))
            return;
        report();
        deliver(data, response, error);
    };
    MainActor::scheduleReport(std::move(task), std::move(report));
}
