#pragma once

#include "Platform/NSURLSessionTask.h"
#include "Platform/URLRequest.h"

/// One HTTP exchange, as a client of HTTP reports it: any library can be recorded with it.
///
/// @code
/// QXExchange exchange(request); // appears in the list
/// // ... the library does its work ...
/// exchange.complete(response, body, error);
/// @endcode
///
/// The exchange starts when the object is made. An object that is destroyed before it was completed reports
/// that the exchange was cancelled. An object may be used by one thread at a time, which may be any thread:
/// the recorder gets all that is reported on the main thread: at once if the exchange belongs to that thread,
/// else later.
class QUORVIX_CORE_EXPORT QXExchange final
{
public:
    /// Reports that an exchange with this request starts now.
    explicit QXExchange(const Quorvix::URLRequest &request);
    ~QXExchange();

    /// Takes over the exchange of @p other, which reports nothing any more.
    QXExchange(QXExchange &&other) noexcept;
    QXExchange &operator=(QXExchange &&) = delete;
    Q_DISABLE_COPY(QXExchange)

    /// A new identifier, as every exchange has one: a UUID in upper case (RFC 9562).
    [[nodiscard]] static QString makeId();

    /// The identifier of this exchange, which its trace has, too.
    [[nodiscard]] const QString &id() const noexcept { return m_id; }

    /// Replaces what was reported about the request: for clients that know headers or the body only later.
    /// Does nothing after complete(). @p discardedBodySize is the size in bytes of a body that the client has
    /// not kept, because it is larger than QXRequestRecorder::bodyBudget().
    void amend(const Quorvix::URLRequest &request, std::optional<qsizetype> discardedBodySize = {});

    /// Sets what is called on the main thread when the user opens the details while the exchange runs: it
    /// makes the client call progress(), at once or later. It may be called until the exchange is complete.
    void setRefresher(std::function<void()> refresher);

    /// Reports what has arrived so far of a response that takes long. It is kept until the next report.
    /// @p discardedBodySize is the size in bytes so far of a body that the client does not keep; @p data is
    /// absent then.
    void progress(const Quorvix::NSURLResponsePtr &response, const std::optional<QByteArray> &data,
                  std::optional<qsizetype> discardedBodySize = {});

    /// Reports the result; the duration ends now. A response that is not an HTTP response is ignored,
    /// together with its data. Only the first call has an effect. @p discardedBodySize is the size in bytes
    /// of a body that the client has not kept; @p data is absent then.
    void complete(const Quorvix::NSURLResponsePtr &response, const std::optional<QByteArray> &data,
                  const std::optional<Quorvix::NSError> &error,
                  std::optional<qsizetype> discardedBodySize = {});

    /// Reports the result and hands it to @p deliver on the main thread: at once if no breakpoint rule
    /// matches the request, else when the user releases the response, possibly edited.
    void complete(const Quorvix::NSURLResponsePtr &response, const std::optional<QByteArray> &data,
                  const std::optional<Quorvix::NSError> &error, Quorvix::DataTaskCompletionHandler deliver);

private:
    template<typename Task>
    void report(Task task);

    QString m_id;
    Quorvix::URLRequest m_request;
    /// Whether the recorder has the trace already, or else gets it with a scheduled task.
    bool m_isRecorded = false;
    bool m_isComplete = false;
};
