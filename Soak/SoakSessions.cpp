#include "Soak/SoakSessions.h"

#include "Soak/SoakBreakpoints.h"
#include "Soak/SoakJudge.h"

#include "Examples/MonkeyRandom.h"
#include "Platform/NSURLSession.h"
#include "Quorvix/QXRequestRecorder.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QThread>
#include <QtCore/QTimer>

using namespace Quorvix;

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr int threadCount = 3;
constexpr auto shortTimeout = 1s;
constexpr auto interval = 15ms;

SoakOutcome outcomeOf(const std::optional<QByteArray> &data, const NSURLResponsePtr &response,
                      const std::optional<NSError> &error)
{
    SoakOutcome outcome;
    outcome.data = data;
    if (error)
        outcome.error = error->localizedDescription;
    outcome.isConnectionLost = error && error->code == NSURLErrorNetworkConnectionLost;
    if (const auto http = std::dynamic_pointer_cast<const NSHTTPURLResponse>(response)) {
        outcome.status = int(http->statusCode());
        for (const auto &[name, value] : http->allHeaderFields()) {
            if (description(name).compare(soakSeenHeader, Qt::CaseInsensitive) == 0)
                outcome.seen = description(value).toLatin1();
        }
    }
    return outcome;
}

/// What the recorder lacks at the moment of the completion; empty if nothing.
QString recordProblem(const SoakExchange &exchange, const SoakOutcome &outcome, quint64 clears)
{
    const QXTraceList requests = QXRequestRecorder::shared().requests();
    for (const QXRequestTrace &trace : requests) {
        if (trace.url == exchange.url)
            return SoakJudge::difference(trace, outcome).value_or(QString());
    }
    // A clear() in between removes the trace, and nothing else does.
    return exchange.clears == clears ? QStringLiteral("the recorder does not know it") : QString();
}

} // namespace

/// Starts and cancels for one thread.
class SoakSessions::Starter
{
public:
    Starter(SoakSessions &owner, SoakSource source, quint64 seed)
        : m_owner(owner), m_source(source), m_random(seed)
    {
    }

    void step()
    {
        cancelDue();
        if (m_owner.m_isActive) {
            if (const SoakExchangePtr exchange = m_owner.m_ledger.begin(m_owner.m_port, m_source))
                start(exchange);
        }
    }

private:
    struct Victim
    {
        Clock::time_point due;
        NSURLSessionDataTaskPtr task;
        SoakExchangePtr exchange;
    };

    void start(const SoakExchangePtr &exchange)
    {
        const SoakPlan &plan = exchange->plan;
        URLRequest request(exchange->url);
        request.httpMethod = QString::fromLatin1(plan.method);
        request.httpBody = plan.upload();
        request.setValue(QString::number(plan.number), soakNumberHeader);
        if (plan.isEndless())
            request.timeoutInterval = shortTimeout;
        // Sessions come and go in applications; the tasks of one that is gone continue.
        std::optional<NSURLSession> own;
        if (m_random.chance(20))
            own.emplace();
        NSURLSession &session = own ? *own : NSURLSession::shared();
        const auto task = session.dataTaskWithRequest(
            request, [&owner = m_owner, exchange](const std::optional<QByteArray> &data,
                                                  const NSURLResponsePtr &response,
                                                  const std::optional<NSError> &error) {
                complete(owner, *exchange, outcomeOf(data, response, error));
            });
        task->resume();
        if (m_random.chance(12))
            m_victims.push_back(
                {Clock::now() + std::chrono::milliseconds(m_random.below(m_random.oneOf(latestCancels))),
                 task, exchange});
    }

    static void complete(SoakSessions &owner, SoakExchange &exchange, const SoakOutcome &outcome)
    {
        if (++exchange.completions != 1)
            return owner.m_ledger.complain(QStringLiteral("completed again: ") + exchange.url.toString());
        if (QThread::currentThread() != QCoreApplication::instance()->thread())
            owner.m_ledger.complain(QStringLiteral("completed on another thread: ") +
                                    exchange.url.toString());
        owner.m_ledger.countReceived(outcome.data.value_or(QByteArray()).size());
        const QString problem = recordProblem(exchange, outcome, owner.m_ledger.clears());
        if (!problem.isEmpty())
            return owner.m_ledger.end(exchange, SoakVerdict::Wrong, problem);
        const auto [verdict, detail] =
            SoakJudge::judge(exchange, outcome, owner.m_breakpoints.takeEdit(exchange.plan.number));
        owner.m_ledger.end(exchange, verdict, detail);
    }

    void cancelDue()
    {
        std::erase_if(m_victims, [now = Clock::now()](const Victim &victim) {
            if (victim.due > now)
                return false;
            victim.exchange->isCancelled = true;
            victim.task->cancel();
            return true;
        });
    }

    SoakSessions &m_owner;
    const SoakSource m_source;
    MonkeyRandom m_random;
    std::vector<Victim> m_victims;
};

SoakSessions::SoakSessions(SoakLedger &ledger, SoakBreakpoints &breakpoints, quint16 port, quint64 seed)
    : m_ledger(ledger), m_breakpoints(breakpoints), m_port(port)
{
    for (int i = 0; i < threadCount; ++i)
        m_threads.emplace_back(&SoakSessions::run, this, SoakSource::SessionOnThread, seed + quint64(i) + 1);
    auto timer = std::make_unique<QTimer>();
    timer->callOnTimeout(
        [starter = std::make_shared<Starter>(*this, SoakSource::SessionOnMain, seed)] { starter->step(); });
    timer->start(interval);
    m_onMain = std::move(timer);
}

SoakSessions::~SoakSessions()
{
    m_ends = true;
    for (std::thread &thread : m_threads)
        thread.join();
}

void SoakSessions::run(SoakSource source, quint64 seed)
{
    Starter starter(*this, source, seed);
    while (!m_ends) {
        starter.step();
        std::this_thread::sleep_for(interval);
    }
}
