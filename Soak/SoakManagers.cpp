#include "Soak/SoakManagers.h"

#include "Soak/SoakBreakpoints.h"
#include "Soak/SoakJudge.h"

#include "Examples/MonkeyRandom.h"
#include "Quorvix/QXNetworkAccessManager.h"
#include "Quorvix/QXRequestRecorder.h"

#include <QtCore/QBuffer>
#include <QtCore/QCoreApplication>
#include <QtCore/QPointer>
#include <QtCore/QTimer>
#include <QtNetwork/QNetworkReply>

#include <chrono>

namespace {

using namespace std::chrono_literals;

constexpr int threadCount = 2;
constexpr auto interval = 15ms;
constexpr auto shortTimeout = 1s;
/// Some replies of Qt 6.4 never finish when their connection breaks.
constexpr auto longTimeout = 30s;
/// How long the trace of a finished reply may take to reach the recorder, which the main thread fills.
constexpr auto traceTimeout = 20s;

/// Qt reports the status codes from 400 on as errors, too.
bool isTransportError(const QNetworkReply &reply)
{
    const int status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    const bool isStatus = status >= 400 && reply.error() > QNetworkReply::UnknownProxyError;
    return reply.error() != QNetworkReply::NoError && !isStatus;
}

SoakOutcome outcomeOf(const QNetworkReply &reply, const QByteArray &data)
{
    SoakOutcome outcome;
    const QVariant status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute);
    if (status.isValid())
        outcome.status = status.toInt();
    outcome.data = data;
    outcome.seen = reply.rawHeader(soakSeenHeader.data());
    if (isTransportError(reply))
        outcome.error = reply.errorString();
    outcome.isConnectionLost = reply.error() == QNetworkReply::RemoteHostClosedError;
    return outcome;
}

/// Waits for the trace of an exchange and judges it with what the host got. Main thread.
class TraceCheck
{
public:
    TraceCheck(SoakLedger &ledger, SoakExchangePtr exchange, SoakOutcome outcome, SoakJudge::Judgement host)
        : m_ledger(ledger), m_exchange(std::move(exchange)), m_outcome(std::move(outcome)),
          m_host(std::move(host))
    {
    }

    void run(const std::shared_ptr<TraceCheck> &self)
    {
        const QXTraceList requests = QXRequestRecorder::shared().requests();
        for (const QXRequestTrace &trace : requests) {
            if (trace.url != m_exchange->url)
                continue;
            if (!trace.duration)
                return waitFor(self);
            return end(SoakJudge::judgeTrace(*m_exchange, trace, m_outcome, m_host));
        }
        if (m_exchange->clears == m_ledger.clears())
            return waitFor(self);
        // Only the trace could have told.
        if (m_host.verdict == SoakVerdict::Silent)
            m_host.verdict = SoakVerdict::OnlyTraced;
        end(m_host);
    }

private:
    void waitFor(const std::shared_ptr<TraceCheck> &self)
    {
        if (m_begin.msecsTo(QDateTime::currentDateTimeUtc()) >
            std::chrono::milliseconds(traceTimeout).count())
            return end({SoakVerdict::Wrong, QStringLiteral("the recorder gets no result")});
        QTimer::singleShot(20ms, qApp, [self] { self->run(self); });
    }

    void end(const SoakJudge::Judgement &judgement)
    {
        m_ledger.end(*m_exchange, judgement.verdict, judgement.detail);
    }

    SoakLedger &m_ledger;
    const SoakExchangePtr m_exchange;
    const SoakOutcome m_outcome;
    SoakJudge::Judgement m_host;
    const QDateTime m_begin = QDateTime::currentDateTimeUtc();
};

} // namespace

/// A host with a manager, in the thread in which it is made.
class SoakManager final : public QObject
{
public:
    SoakManager(SoakLedger &ledger, SoakBreakpoints &breakpoints, quint16 port, quint64 seed,
                SoakSource source, const std::atomic<bool> &isActive)
        : m_ledger(ledger), m_breakpoints(breakpoints), m_port(port), m_source(source), m_random(seed),
          m_isActive(isActive), m_manager(std::make_unique<QXNetworkAccessManager>())
    {
        startTimer(interval);
    }

protected:
    void timerEvent(QTimerEvent * /*event*/) override
    {
        if (!m_isActive)
            return;
        if (m_random.below(400) == 0)
            replaceManager();
        if (const SoakExchangePtr exchange = m_ledger.begin(m_port, m_source))
            start(exchange);
    }

private:
    /// How a host reads a reply.
    enum class Reading { AtEnd, AsItComes, Limited };

    struct Read
    {
        QByteArray data;
        bool isFinished = false;
    };

    void replaceManager()
    {
        for (const SoakExchangePtr &exchange : std::as_const(m_running))
            exchange->isCancelled = true;
        m_manager = std::make_unique<QXNetworkAccessManager>();
    }

    QNetworkReply *send(const SoakPlan &plan, const QNetworkRequest &request)
    {
        const std::optional<QByteArray> body = plan.upload();
        if (plan.method == "HEAD")
            return m_manager->head(request);
        if (!body)
            return m_manager->get(request);
        if (m_random.chance(50))
            return m_manager->sendCustomRequest(request, plan.method, *body);
        auto *const device = new QBuffer;
        device->setData(*body);
        device->open(QBuffer::ReadOnly);
        QNetworkReply *const reply = m_manager->sendCustomRequest(request, plan.method, device);
        device->setParent(reply);
        return reply;
    }

    void start(const SoakExchangePtr &exchange)
    {
        const SoakPlan &plan = exchange->plan;
        QNetworkRequest request(exchange->url);
        request.setRawHeader(soakNumberHeader.data(), QByteArray::number(plan.number));
        if (plan.uploadSize > 0 || plan.method != "GET")
            request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/octet-stream"));
        const std::chrono::milliseconds timeout = plan.isEndless() ? shortTimeout : longTimeout;
        request.setTransferTimeout(int(timeout.count()));
        QNetworkReply *const reply = send(plan, request);
        m_running.insert(reply, exchange);
        follow(*reply, exchange);
        if (m_random.chance(12))
            endEarly(*reply, exchange);
    }

    void follow(QNetworkReply &reply, const SoakExchangePtr &exchange)
    {
        constexpr qsizetype smallBuffer = 65'536;
        const auto read = std::make_shared<Read>();
        const auto reading = Reading(m_random.below(3));
        if (reading == Reading::Limited)
            reply.setReadBufferSize(smallBuffer);
        if (reading != Reading::AtEnd)
            connect(&reply, &QNetworkReply::readyRead, this,
                    [&reply, read] { read->data += reply.readAll(); });
        connect(&reply, &QNetworkReply::finished, this, [this, &reply, exchange, read] {
            if (++exchange->completions != 1)
                return m_ledger.complain(QStringLiteral("finished again: ") + exchange->url.toString());
            // An aborted reply is closed.
            if (reply.isOpen())
                read->data += reply.readAll();
            read->isFinished = true;
            finish(reply, exchange, *read);
            reply.deleteLater();
        });
        connect(&reply, &QObject::destroyed, this, [this, &reply, exchange, read] {
            m_running.remove(&reply);
            if (!read->isFinished)
                m_ledger.end(*exchange, exchange->isCancelled ? SoakVerdict::Cancelled : SoakVerdict::Wrong,
                             QStringLiteral("the reply is gone"));
        });
    }

    void finish(const QNetworkReply &reply, const SoakExchangePtr &exchange, const Read &read)
    {
        m_ledger.countReceived(read.data.size());
        const SoakOutcome outcome = outcomeOf(reply, read.data);
        const auto host = SoakJudge::judge(*exchange, outcome, m_breakpoints.takeEdit(exchange->plan.number));
        const auto check = std::make_shared<TraceCheck>(m_ledger, exchange, outcome, host);
        QMetaObject::invokeMethod(
            qApp, [check] { check->run(check); }, Qt::QueuedConnection);
    }

    void endEarly(QNetworkReply &reply, const SoakExchangePtr &exchange)
    {
        const bool isDeleted = m_random.chance(30);
        QTimer::singleShot(m_random.below(m_random.oneOf(latestCancels)), &reply,
                           [&reply, exchange, isDeleted] {
                               if (exchange->completions > 0)
                                   return;
                               exchange->isCancelled = true;
                               if (isDeleted)
                                   delete &reply;
                               else
                                   reply.abort();
                           });
    }

    SoakLedger &m_ledger;
    SoakBreakpoints &m_breakpoints;
    const quint16 m_port;
    const SoakSource m_source;
    MonkeyRandom m_random;
    const std::atomic<bool> &m_isActive;
    QHash<QNetworkReply *, SoakExchangePtr> m_running;
    std::unique_ptr<QXNetworkAccessManager> m_manager;
};

SoakManagers::SoakManagers(SoakLedger &ledger, SoakBreakpoints &breakpoints, quint16 port, quint64 seed)
    : m_onMain(std::make_unique<SoakManager>(ledger, breakpoints, port, seed, SoakSource::ManagerOnMain,
                                             m_isActive))
{
    for (int i = 1; i <= threadCount; ++i) {
        m_threads.emplace_back(QThread::create([this, &ledger, &breakpoints, port, seed, i] {
            SoakManager manager(ledger, breakpoints, port, seed + quint64(i), SoakSource::ManagerOnThread,
                                m_isActive);
            QEventLoop().exec();
        }));
        m_threads.back()->start();
    }
}

SoakManagers::~SoakManagers()
{
    for (const auto &thread : m_threads) {
        thread->quit();
        thread->wait();
    }
}
