#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QUrl>

#include <optional>

class MonkeyRandom;

/// What the server does wrong in an exchange, or in which form it sends what is right.
enum class SoakFault {
    // The client gets all of the content.
    Plain,
    Chunked,
    UntilClose,
    Gzip,
    Slow,
    Status,
    Empty,
    Redirect,
    Surplus,
    // The client cannot get all of the content, and has to be told.
    GzipCorrupt,
    GzipCut,
    GzipBadSum,
    ShortBody,
    ChunkedCut,
    ChunkedGarbage,
    Reset,
    Drop,
    Garbage,
    Stall,
    Silence,
    RedirectLoop,
    Refused,
    UnknownHost,
};

/// One exchange: what is sent, and what the server has to do with it. The URL contains it all, so the server
/// needs nothing else, and both sides compute the content from the number. A value; any thread.
struct SoakPlan
{
    using Fault = SoakFault;

    /// A random plan. The same generator makes the same plans.
    [[nodiscard]] static SoakPlan make(MonkeyRandom &random, quint64 number);
    /// The plan in the target of a request line; absent if there is none.
    [[nodiscard]] static std::optional<SoakPlan> parse(const QByteArray &target);
    /// All faults, in the order of their declaration.
    [[nodiscard]] static QList<Fault> faults();
    [[nodiscard]] static QByteArray name(Fault fault);

    /// @p port is that of the server.
    [[nodiscard]] QUrl url(quint16 port) const;
    /// The target of the next request after a redirect.
    [[nodiscard]] QByteArray nextTarget() const;
    /// Whether the client gets all of the content if nobody interferes.
    [[nodiscard]] bool isRight() const { return fault < Fault::GzipCorrupt; }
    /// Whether the server never ends the exchange by itself.
    [[nodiscard]] bool isEndless() const { return fault == Fault::Stall || fault == Fault::Silence; }
    /// What the server sends as the body, before any content coding.
    [[nodiscard]] QByteArray content() const;
    /// Whether the request has a body.
    [[nodiscard]] bool hasUpload() const { return method != "GET" && method != "HEAD"; }
    /// The body of the request; absent if its method has none.
    [[nodiscard]] std::optional<QByteArray> upload() const;
    /// What the server writes about a request: its method, the number in its header, and length and digest of
    /// its body.
    [[nodiscard]] static QByteArray digest(const QByteArray &method, const QByteArray &number,
                                           const QByteArray &body);
    /// What the server writes about the request of this plan.
    [[nodiscard]] QByteArray expectedDigest() const;

    /// Identifies the exchange within the run.
    quint64 number = 0;
    /// The seed of the content.
    quint64 seed = 0;
    Fault fault = Fault::Plain;
    QByteArray method = "GET";
    /// The size of the content in bytes.
    qsizetype size = 0;
    qsizetype uploadSize = 0;
    int status = 200;
    /// How often the server redirects first.
    int hops = 0;
    /// Whether the content is JSON instead of random bytes.
    bool isJson = false;
};

/// The header in which a request names its plan.
inline constexpr QLatin1StringView soakNumberHeader{"X-Soak-Number"};
/// The header in which a response tells what has arrived.
inline constexpr QLatin1StringView soakSeenHeader{"X-Soak-Seen"};
