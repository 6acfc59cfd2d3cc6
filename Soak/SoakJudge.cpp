#include "Soak/SoakJudge.h"

#include "Quorvix/QXRequestTrace.h"

namespace {

using Judgement = SoakJudge::Judgement;
using Verdict = SoakVerdict;

QByteArray expectedContent(const SoakPlan &plan)
{
    return plan.method == "HEAD" ? QByteArray() : plan.content();
}

/// What differs from a whole and right exchange; empty if nothing does.
QString deviation(const SoakPlan &plan, const SoakOutcome &outcome)
{
    if (outcome.status != plan.status)
        return QStringLiteral("status %1 in place of %2").arg(outcome.status.value_or(0)).arg(plan.status);
    if (const QByteArray content = expectedContent(plan); outcome.data.value_or(QByteArray()) != content)
        return QStringLiteral("%1 bytes that are not the %2 of the server")
            .arg(outcome.data.value_or(QByteArray()).size())
            .arg(content.size());
    if (outcome.seen != plan.expectedDigest())
        return QStringLiteral("the server saw the request \"%1\"").arg(QString::fromLatin1(outcome.seen));
    return {};
}

/// Whether Qt keeps the fault to itself: that an uncoded chunked body ends early or in garbage, and that what
/// a manager has decompressed was cut.
bool isHidden(const SoakExchange &exchange)
{
    const bool isManager =
        exchange.source == SoakSource::ManagerOnMain || exchange.source == SoakSource::ManagerOnThread;
    switch (exchange.plan.fault) {
    case SoakFault::ChunkedCut:
    case SoakFault::ChunkedGarbage:
        return true;
    case SoakFault::GzipCut:
        return isManager;
    default:
        return false;
    }
}

} // namespace

Judgement SoakJudge::judge(const SoakExchange &exchange, const SoakOutcome &outcome,
                           const std::optional<SoakEdit> &edit)
{
    const SoakPlan &plan = exchange.plan;
    if (edit && outcome.status == edit->status && outcome.data == edit->body)
        return {Verdict::Edited, {}};
    if (!outcome.error.isEmpty()) {
        if (exchange.isCancelled)
            return {Verdict::Cancelled, {}};
        if (plan.isRight() && outcome.isConnectionLost)
            return {Verdict::Beside, {}};
        return {plan.isRight() ? Verdict::Wrong : Verdict::Told,
                QStringLiteral("fails with ") + outcome.error};
    }
    if (edit)
        return {Verdict::Wrong, QStringLiteral("status %1 and %2 bytes in place of the edited %3 and %4")
                                    .arg(outcome.status.value_or(0))
                                    .arg(outcome.data.value_or(QByteArray()).size())
                                    .arg(edit->status)
                                    .arg(edit->body.size())};
    const QString detail = deviation(plan, outcome);
    if (detail.isEmpty())
        return {Verdict::Right, {}};
    // A part from the beginning can be all that Qt shows; other bytes are never right.
    if (isHidden(exchange) && outcome.status == plan.status &&
        plan.content().startsWith(outcome.data.value_or(QByteArray())))
        return {Verdict::Untold, detail};
    return {plan.isRight() ? Verdict::Wrong : Verdict::Silent, detail};
}

std::optional<QString> SoakJudge::difference(const QXRequestTrace &trace, const SoakOutcome &outcome)
{
    if (!trace.duration)
        return QStringLiteral("the recorder has no result yet");
    if (trace.error.has_value() == outcome.error.isEmpty())
        return QStringLiteral("the error of the trace is \"%1\", that of the host \"%2\"")
            .arg(trace.error ? trace.error->localizedDescription : QString(), outcome.error);
    if (trace.response.has_value() != outcome.status.has_value())
        return QStringLiteral("only one of trace and host has a response");
    if (!trace.response)
        return std::nullopt;
    if (trace.response->statusCode != outcome.status)
        return QStringLiteral("the status in the trace is %1, that of the host %2")
            .arg(trace.response->statusCode)
            .arg(*outcome.status);
    if (!trace.response->discardedBodySize &&
        trace.response->body.value_or(QByteArray()) != outcome.data.value_or(QByteArray()))
        return QStringLiteral("the bodies of trace and host differ");
    return std::nullopt;
}

Judgement SoakJudge::judgeTrace(const SoakExchange &exchange, const QXRequestTrace &trace,
                                const SoakOutcome &outcome, const Judgement &host)
{
    if (exchange.isCancelled)
        return host;
    if (host.verdict >= Verdict::Untold && host.verdict <= Verdict::Silent && trace.error)
        return {Verdict::OnlyTraced, {}};
    const bool isComparable =
        host.verdict == Verdict::Right || (host.verdict == Verdict::Edited && exchange.plan.isRight());
    if (!isComparable)
        return host;
    if (const auto detail = difference(trace, outcome)) {
        // The content is whole, but the trace may know that the server has sent more than that, such as a
        // wrong sum.
        const bool isOnlyError = !exchange.plan.isRight() && trace.error && trace.duration;
        return isOnlyError ? host : Judgement{Verdict::Wrong, *detail};
    }
    return host;
}
