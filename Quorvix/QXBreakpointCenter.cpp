#include "Quorvix/QXBreakpointCenter.h"

#include "Quorvix/QXBreakpointStore.h"
#include "Quorvix/QXLog.h"
#include "Quorvix/QXRequestRecorder.h"

#include "Platform/MainActor.h"
#include "Platform/NSNotificationCenter.h"
#include "Platform/URLText.h"

#include <QtCore/QScopedValueRollback>

#include <charconv>

using namespace Quorvix;

using namespace std::chrono_literals;

namespace {

constexpr auto cooldown = 600ms;

void postChange()
{
    NSNotificationCenter::defaultCenter().post(QuorvixBreakpointChanged);
}

/// Parses a decimal integer: one optional sign and ASCII digits, nothing else, within 64 bits.
std::optional<qint64> parseStatusCode(const QString &text)
{
    QByteArray digits = text.toUtf8();
    if (digits.startsWith('+')) {
        digits.remove(0, 1);
        if (digits.startsWith('-'))
            return std::nullopt;
    }
    qint64 value = 0;
    const char *const end = digits.constData() + digits.size();
    const auto [stopped, failure] = std::from_chars(digits.constData(), end, value);
    return failure == std::errc() && stopped == end ? std::optional(value) : std::nullopt;
}

/// Copies the delivered response with a new status code. If @p bodyLength is given, Content-Length is set to
/// it.
NSHTTPURLResponsePtr rebuild(const NSHTTPURLResponsePtr &delivered, qint64 statusCode,
                             std::optional<qsizetype> bodyLength)
{
    const auto contentLength = QStringLiteral("Content-Length");
    const auto contentEncoding = QStringLiteral("Content-Encoding");

    NSHeaderFields fields;
    for (const auto &[name, value] : delivered->allHeaderFields())
        fields.insert_or_assign(description(name), description(value));
    if (bodyLength) {
        fields.insert_or_assign(contentLength, QString::number(*bodyLength));
        // The session has already decoded the body, and an edited body is never encoded.
        if (fields.contains(contentEncoding))
            fields.insert_or_assign(contentEncoding, QStringLiteral("identity"));
    }
    const QUrl url = delivered->url().value_or(QUrl(QStringLiteral("about:blank")));
    auto rebuilt = NSHTTPURLResponse::create(url, statusCode, QStringLiteral("HTTP/1.1"), std::move(fields));
    return rebuilt ? rebuilt : delivered;
}

} // namespace

QXBreakpointCenter &QXBreakpointCenter::shared()
{
    static auto *const center = new QXBreakpointCenter;
    return *center;
}

QXBreakpointCenter::QXBreakpointCenter() : m_now(&std::chrono::steady_clock::now) {}

bool QXBreakpointCenter::check(const URLRequest &request, const QString &requestId,
                               const std::optional<QByteArray> &data, const NSURLResponsePtr &response,
                               const std::optional<NSError> &error,
                               const DataTaskCompletionHandler &completion)
{
    Q_ASSERT(MainActor::isCurrent());
    if (QXLog::level() >= QXLogLevel::debug) {
        QXLog::log(QXLogLevel::debug, QStringLiteral("[Breakpoint] check response: ") +
                                          sentMethod(request.httpMethod) + u' ' +
                                          (request.url ? absoluteString(*request.url) : QString()));
    }
    if (m_skipUntil) {
        if (m_now() < *m_skipUntil) {
            QXLog::log(QXLogLevel::debug, QStringLiteral("[Breakpoint] skip during cooldown"));
            return false;
        }
        m_skipUntil.reset();
    }
    // Nearly always there is no rule, and nothing has been held.
    if (!m_lastContinuedKey && QXBreakpointStore::shared().rules().isEmpty())
        return false;
    const auto key = QXBreakpointKey::make(request.url, request.httpMethod);
    if (m_lastContinuedKey && key == m_lastContinuedKey && m_now() < m_skipUntil.value_or(TimePoint::min())) {
        QXLog::log(QXLogLevel::debug, QStringLiteral("[Breakpoint] skip same endpoint during cooldown"));
        return false;
    }
    if (!key || !QXBreakpointStore::shared().contains(*key))
        return false;
    auto http = std::dynamic_pointer_cast<const NSHTTPURLResponse>(response);
    if (!http)
        return false;

    QXBreakpointItem item{QUuid::createUuid(), request, requestId, std::move(http), data, error, completion};
    if (m_activeBreakpoint) {
        m_queue.push_back(std::move(item));
        QXLog::log(QXLogLevel::info,
                   QStringLiteral("[Breakpoint] queued count=") + QString::number(m_queue.size()));
        return true;
    }
    m_activeBreakpoint = std::move(item);
    QXLog::log(QXLogLevel::info, QStringLiteral("[Breakpoint] activated queue=0"));
    postChange();
    return true;
}

void QXBreakpointCenter::continueActive()
{
    startCooldown();
    QXLog::log(QXLogLevel::info,
               QStringLiteral("[Breakpoint] continue active=%1 queue=%2 main=%3 cooldown=0.6s")
                   .arg(QXLog::boolText(m_activeBreakpoint.has_value()))
                   .arg(m_queue.size())
                   .arg(QXLog::boolText(MainActor::isCurrent())));
    release(std::nullopt, std::nullopt);
}

void QXBreakpointCenter::apply(const std::optional<QString> &statusCode, const std::optional<QString> &body)
{
    QXLog::log(QXLogLevel::info, QStringLiteral("[Breakpoint] apply"));
    startCooldown();
    release(statusCode, body ? body->toUtf8() : QByteArray(""));
}

void QXBreakpointCenter::applyBody(const std::optional<QString> &statusCode, const QByteArray &body)
{
    QXLog::log(QXLogLevel::info, QStringLiteral("[Breakpoint] apply"));
    startCooldown();
    release(statusCode, body);
}

void QXBreakpointCenter::dropAll()
{
    // The destructors of a host's objects can call this center.
    const auto active = std::exchange(m_activeBreakpoint, std::nullopt);
    const auto queue = std::exchange(m_queue, {});
}

void QXBreakpointCenter::startCooldown()
{
    m_skipUntil = m_now() + cooldown;
    m_lastContinuedKey = m_activeBreakpoint ? m_activeBreakpoint->key() : std::nullopt;
}

void QXBreakpointCenter::release(const std::optional<QString> &statusText,
                                 const std::optional<QByteArray> &newBody)
{
    Q_ASSERT(MainActor::isCurrent());
    if (!m_activeBreakpoint || m_activeBreakpoint->id == m_releasing)
        return;
    const QXBreakpointItem item = *m_activeBreakpoint;
    const qint64 statusCode =
        parseStatusCode(statusText.value_or(QString())).value_or(item.response->statusCode());
    const std::optional<QByteArray> body = newBody ? newBody : item.data;
    std::optional<qsizetype> bodyLength;
    if (body)
        bodyLength = body->size();
    const auto response = rebuild(item.response, statusCode, bodyLength);

    QXRequestRecorder::shared().complete(item.requestId, response, body, item.error);
    if (item.completion) {
        const QScopedValueRollback releasing(m_releasing, item.id);
        // The handler can run an event loop that waits for another held response. Only the user can release
        // that one, so it becomes active in the event loop, and not when the handler ends.
        MainActor::schedule([this, token = std::weak_ptr(m_lifetimeToken), id = item.id] {
            if (!token.expired())
                promoteAfter(id);
        });
        item.completion(body, response, item.error);
    }
    promoteAfter(item.id);
}

/// Makes the next held response active. Does nothing if it has already taken the place of the released one.
void QXBreakpointCenter::promoteAfter(const QUuid &released)
{
    if (!m_activeBreakpoint || m_activeBreakpoint->id != released)
        return;
    m_activeBreakpoint.reset();
    if (!m_queue.empty()) {
        m_activeBreakpoint.emplace(std::move(m_queue.front()));
        m_queue.pop_front();
    }
    QXLog::log(QXLogLevel::info, QStringLiteral("[Breakpoint] resolved next=%1 queue=%2")
                                     .arg(QXLog::boolText(m_activeBreakpoint.has_value()))
                                     .arg(m_queue.size()));
    postChange();
}
