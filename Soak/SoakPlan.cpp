#include "Soak/SoakPlan.h"

#include "Examples/MonkeyRandom.h"

#include <QtCore/QCryptographicHash>
#include <QtCore/QUrlQuery>

#include <array>
#include <cstdio>
#include <cstring>

namespace {

using Fault = SoakFault;

struct Kind
{
    Fault fault;
    const char *name;
    /// How often it is chosen, in relation to the others.
    int weight;
};

constexpr std::array kinds{
    Kind{Fault::Plain, "plain", 24},
    Kind{Fault::Chunked, "chunked", 8},
    Kind{Fault::UntilClose, "until-close", 5},
    Kind{Fault::Gzip, "gzip", 10},
    Kind{Fault::Slow, "slow", 4},
    Kind{Fault::Status, "status", 6},
    Kind{Fault::Empty, "empty", 4},
    Kind{Fault::Redirect, "redirect", 5},
    Kind{Fault::Surplus, "surplus", 2},
    Kind{Fault::GzipCorrupt, "gzip-corrupt", 5},
    Kind{Fault::GzipCut, "gzip-cut", 4},
    Kind{Fault::GzipBadSum, "gzip-bad-sum", 3},
    Kind{Fault::ShortBody, "short-body", 5},
    Kind{Fault::ChunkedCut, "chunked-cut", 4},
    Kind{Fault::ChunkedGarbage, "chunked-garbage", 3},
    Kind{Fault::Reset, "reset", 4},
    Kind{Fault::Drop, "drop", 3},
    Kind{Fault::Garbage, "garbage", 3},
    Kind{Fault::Stall, "stall", 1},
    Kind{Fault::Silence, "silence", 1},
    Kind{Fault::RedirectLoop, "redirect-loop", 1},
    Kind{Fault::Refused, "refused", 3},
    Kind{Fault::UnknownHost, "unknown-host", 1},
};

Fault chooseFault(MonkeyRandom &random)
{
    int sum = 0;
    for (const Kind &kind : kinds)
        sum += kind.weight;
    int chosen = random.below(sum);
    for (const Kind &kind : kinds) {
        chosen -= kind.weight;
        if (chosen < 0)
            return kind.fault;
    }
    return Fault::Plain;
}

/// Mostly small, as in applications, but every size up to 20 MB occurs.
qsizetype chooseSize(MonkeyRandom &random)
{
    if (random.chance(5))
        return 0;
    if (random.chance(60))
        return random.between(1, 5'000);
    if (random.chance(70))
        return random.between(5'000, 200'000);
    if (random.chance(85))
        return random.between(200'000, 2'000'000);
    return random.between(2'000'000, 20'000'000);
}

/// Whether the fault is one of a body, which must not be empty then.
bool needsBody(Fault fault)
{
    return fault >= Fault::GzipCorrupt && fault <= Fault::Reset;
}

/// SplitMix64 of the position @p index in the stream @p seed.
quint64 word(quint64 seed, quint64 index)
{
    quint64 bits = seed + (index + 1) * 0x9e3779b97f4a7c15;
    bits = (bits ^ (bits >> 30)) * 0xbf58476d1ce4e5b9;
    bits = (bits ^ (bits >> 27)) * 0x94d049bb133111eb;
    return bits ^ (bits >> 31);
}

QByteArray randomBytes(quint64 seed, qsizetype size)
{
    QByteArray bytes(size, Qt::Uninitialized);
    for (qsizetype at = 0; at < size; at += 8) {
        const quint64 next = word(seed, quint64(at));
        std::memcpy(bytes.data() + at, &next, size_t(std::min<qsizetype>(8, size - at)));
    }
    return bytes;
}

/// A list of objects, filled with blanks up to exactly @p size bytes.
QByteArray jsonText(quint64 seed, qsizetype size)
{
    if (size < 2)
        return QByteArray(size, '1');
    QByteArray text;
    text.reserve(size);
    text += '[';
    std::array<char, 128> row{};
    for (quint64 i = 0;; ++i) {
        const int length = std::snprintf(row.data(), row.size(),
                                         R"(%s{"id":%llu,"digest":"%016llx","name":"item","isOpen":true})",
                                         i == 0 ? "" : ",\n", static_cast<unsigned long long>(i),
                                         static_cast<unsigned long long>(word(seed, i)));
        if (text.size() + length + 1 > size)
            break;
        text.append(row.data(), length);
    }
    text.append(size - 1 - text.size(), ' ');
    return text += ']';
}

QByteArray target(const SoakPlan &plan)
{
    return "/soak/" + SoakPlan::name(plan.fault) + (plan.isJson ? ".json" : ".bin") +
           "?number=" + QByteArray::number(plan.number) + "&seed=" + QByteArray::number(plan.seed) +
           "&size=" + QByteArray::number(plan.size) + "&status=" + QByteArray::number(plan.status) +
           "&hops=" + QByteArray::number(plan.hops);
}

} // namespace

SoakPlan SoakPlan::make(MonkeyRandom &random, quint64 number)
{
    SoakPlan plan;
    plan.number = number;
    plan.seed = quint64(random.below(1 << 30));
    plan.fault = chooseFault(random);
    plan.isJson = random.chance(60);
    plan.size = chooseSize(random);
    if (needsBody(plan.fault))
        plan.size += 100;
    // Qt takes a connection that closes right behind the head for a lost one.
    if (plan.fault == Fault::UntilClose)
        ++plan.size;
    if (plan.fault == Fault::Empty)
        plan.status = 204;
    if (plan.fault == Fault::Status)
        plan.status = random.oneOf(std::array{201, 206, 400, 403, 404, 409, 418, 429, 500, 502, 503});
    if (plan.status == 204)
        plan.size = 0;
    if (plan.fault == Fault::Redirect)
        plan.hops = random.between(1, 5);
    const bool mayUpload = plan.fault != Fault::Redirect && plan.fault != Fault::RedirectLoop;
    if (mayUpload && random.chance(35)) {
        plan.method = random.oneOf(std::array<QByteArray, 4>{"POST", "PUT", "PATCH", "DELETE"});
        plan.uploadSize = std::min<qsizetype>(chooseSize(random), 2'000'000);
    } else if (plan.fault == Fault::Plain && random.chance(10)) {
        plan.method = "HEAD";
    }
    return plan;
}

std::optional<SoakPlan> SoakPlan::parse(const QByteArray &target)
{
    const QUrl url = QUrl::fromEncoded(target);
    const QByteArray path = url.path().toUtf8();
    const QUrlQuery query(url);
    const auto value = [&](const char *key) {
        return query.queryItemValue(QLatin1StringView(key)).toULongLong();
    };
    for (const Kind &kind : kinds) {
        const QByteArray start = QByteArray("/soak/") + kind.name + '.';
        if (!path.startsWith(start))
            continue;
        SoakPlan plan;
        plan.number = value("number");
        plan.seed = value("seed");
        plan.fault = kind.fault;
        plan.size = qsizetype(value("size"));
        plan.status = int(value("status"));
        plan.hops = int(value("hops"));
        plan.isJson = path.endsWith("json");
        return plan;
    }
    return std::nullopt;
}

QList<SoakFault> SoakPlan::faults()
{
    QList<Fault> faults;
    for (const Kind &kind : kinds)
        faults.append(kind.fault);
    return faults;
}

QByteArray SoakPlan::name(Fault fault)
{
    return kinds[size_t(fault)].name;
}

QUrl SoakPlan::url(quint16 port) const
{
    // Nothing listens on the port "discard" of the loopback interface, and nobody can own a name below
    // .invalid.
    const QByteArray host = fault == Fault::Refused       ? QByteArray("127.0.0.1:9")
                            : fault == Fault::UnknownHost ? QByteArray("soak.invalid")
                                                          : "127.0.0.1:" + QByteArray::number(port);
    return QUrl::fromEncoded("http://" + host + target(*this));
}

QByteArray SoakPlan::nextTarget() const
{
    SoakPlan next = *this;
    --next.hops;
    return target(next);
}

QByteArray SoakPlan::content() const
{
    return isJson ? jsonText(seed, size) : randomBytes(seed, size);
}

std::optional<QByteArray> SoakPlan::upload() const
{
    if (!hasUpload())
        return std::nullopt;
    return randomBytes(~seed, uploadSize);
}

QByteArray SoakPlan::digest(const QByteArray &method, const QByteArray &number, const QByteArray &body)
{
    return method + ' ' + number + ' ' + QByteArray::number(body.size()) + ' ' +
           QCryptographicHash::hash(body, QCryptographicHash::Sha1).toHex();
}

QByteArray SoakPlan::expectedDigest() const
{
    return digest(method, QByteArray::number(number), upload().value_or(QByteArray()));
}
