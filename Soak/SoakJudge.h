#pragma once

#include "Soak/SoakLedger.h"

#include <optional>

struct QXRequestTrace;

/// What the user has made of a held response.
struct SoakEdit
{
    int status = 0;
    QByteArray body;
};

/// What a host got.
struct SoakOutcome
{
    /// The status code; absent without a response.
    std::optional<int> status;
    std::optional<QByteArray> data;
    /// What the server has told about the request; empty without a response.
    QByteArray seen;
    /// The failure of the transport, which a status code is not; empty if there was none.
    QString error;
    /// Whether the connection was closed.
    bool isConnectionLost = false;
};

/// Compares what arrived with what the server has sent. Any thread.
namespace SoakJudge {

struct Judgement
{
    SoakVerdict verdict;
    QString detail;
};

[[nodiscard]] Judgement judge(const SoakExchange &exchange, const SoakOutcome &outcome,
                              const std::optional<SoakEdit> &edit);

/// Compares the record of a finished exchange with what the host got. Absent if they agree.
[[nodiscard]] std::optional<QString> difference(const QXRequestTrace &trace, const SoakOutcome &outcome);

/// The judgement for a host that got @p outcome from Qt itself: the trace has to say what the host is not
/// told.
[[nodiscard]] Judgement judgeTrace(const SoakExchange &exchange, const QXRequestTrace &trace,
                                   const SoakOutcome &outcome, const Judgement &host);

} // namespace SoakJudge
