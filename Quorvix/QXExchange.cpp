#include "Quorvix/QXExchange.h"

#include "Quorvix/QXBreakpointCenter.h"
#include "Quorvix/QXExitArchive.h"
#include "Quorvix/QXRequestRecorder.h"

#include "Platform/MainActor.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QRandomGenerator>
#include <QtCore/QScopedValueRollback>

#include <array>
#include <bit>
#include <random>
#include <utility>

using namespace Quorvix;

namespace {

/// Whether the recorder changes now: its observers may themselves begin or end an exchange. Main thread only.
bool isReporting = false;

/// The bytes of one identifier. The source of the system takes longer for them than all else that the start
/// of an exchange costs: on many processors it is one slow instruction for each few bytes. So it only seeds a
/// generator. A child that goes on after fork() repeats the identifiers of its parent, in a list of its own.
std::array<uchar, 16> randomBytes()
{
    static thread_local std::mt19937_64 generator = [] {
        std::array<quint32, 8> seed{};
        QRandomGenerator::system()->fillRange(seed.data(), qsizetype(seed.size()));
        std::seed_seq sequence(seed.begin(), seed.end());
        return std::mt19937_64(sequence);
    }();
    return std::bit_cast<std::array<uchar, 16>>(std::array<quint64, 2>{generator(), generator()});
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
    std::array<uchar, 16> bytes = randomBytes();
    // The version and the variant (RFC 9562, 5.4)
    bytes[6] = (bytes[6] & 0x0F) | 0x40;
    bytes[8] = (bytes[8] & 0x3F) | 0x80;
    QString id(36, u'-');
    QChar *place = id.data();
    for (size_t i = 0; i < bytes.size(); ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10)
            ++place;
        *place++ = digits[bytes[i] >> 4];
        *place++ = digits[bytes[i] & 0x0F];
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
