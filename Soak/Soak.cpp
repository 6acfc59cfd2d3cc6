#include "Soak/Soak.h"

#include "Platform/FreedMemory.h"
#include "Quorvix/QXBreakpointCenter.h"
#include "Quorvix/QXRequestRecorder.h"
#include "Quorvix/QuorvixClient.h"

#include <QtCore/QTimer>
#include <QtTest/QTest>

#include <cstdio>

namespace {

using namespace std::chrono_literals;

constexpr auto roundTime = 25s;
/// How long the last exchanges of a round may take. Time-outs of one second and late releases are the
/// slowest.
constexpr int mostWait = 120'000; // ms
/// How long the memory of a round may take to return.
constexpr int settleTime = 3'000; // ms

} // namespace

Soak::Soak(quint16 port, quint64 seed)
    : m_seed(seed), m_ledger(seed), m_breakpoints(m_ledger, seed), m_exports(m_ledger, seed), m_screens(seed),
      m_memory(m_ledger), m_sessions(m_ledger, m_breakpoints, port, seed),
      m_managers(m_ledger, m_breakpoints, port, seed)
{
}

bool Soak::run(std::chrono::seconds time)
{
    constexpr auto minute = 60'000; // ms
    std::printf("The soak runs with seed %llu\n", static_cast<unsigned long long>(m_seed));
    m_clock.start();
    QTimer minutes;
    minutes.callOnTimeout([this] { printLine(); });
    minutes.start(minute);
    QTimer peaks;
    peaks.callOnTimeout([this] { m_memory.measurePeak(); });
    peaks.start(100ms);
    const qint64 end = std::chrono::milliseconds(time).count();
    while (m_clock.elapsed() < end && m_ledger.running() == 0)
        playRound(std::min<std::chrono::seconds>(roundTime,
                                                 std::chrono::seconds((end - m_clock.elapsed()) / 1000 + 1)));
    printLine();
    m_ledger.checkBeside();
    m_ledger.print();
    std::printf("\n%llu held responses released, %llu of them edited; %llu exports, %llu times cleared; "
                "%llu clicks and keys on the screens\n",
                static_cast<unsigned long long>(m_breakpoints.released()),
                static_cast<unsigned long long>(m_breakpoints.edited()),
                static_cast<unsigned long long>(m_exports.exports()),
                static_cast<unsigned long long>(m_ledger.clears()),
                static_cast<unsigned long long>(m_screens.actions()));
    m_memory.print();
    const int problems = m_ledger.problems() + MonkeyGuard::complaints();
    std::printf("%d problems; the seed is %llu\n", problems, static_cast<unsigned long long>(m_seed));
    return problems == 0 && m_ledger.ended() > 0;
}

void Soak::playRound(std::chrono::seconds time)
{
    m_screens.open();
    setActive(true);
    QTest::qWait(int(std::chrono::milliseconds(time).count()));
    endRound();
}

void Soak::endRound()
{
    setActive(false);
    if (!QTest::qWaitFor([this] { return m_ledger.running() == 0; }, mostWait))
        m_ledger.complain(QStringLiteral("never ended: ") + m_ledger.describeRunning());
    if (QXBreakpointCenter::shared().activeBreakpoint() &&
        !QTest::qWaitFor([] { return !QXBreakpointCenter::shared().activeBreakpoint(); }, mostWait))
        m_ledger.complain(QStringLiteral("a response stays at its breakpoint"));
    m_screens.close();
    QXRequestRecorder::shared().setBodyBudget(std::nullopt);
    m_exports.clear();
    m_breakpoints.forgetEdits();
    // As after a large exchange: what was freed returns to the system a moment later.
    constexpr qsizetype large = 10'000'000;
    Quorvix::FreedMemory::note(large);
    QTest::qWait(settleTime);
    m_memory.measureRound();
}

void Soak::setActive(bool active)
{
    m_breakpoints.setActive(active);
    m_exports.setActive(active);
    m_sessions.setActive(active);
    m_managers.setActive(active);
}

void Soak::printLine() const
{
    std::printf(
        "%3lld min %02lld s: %llu exchanges, %lld MB received, %lld running, %lld MB resident, %d problems\n",
        static_cast<long long>(m_clock.elapsed() / 60'000),
        static_cast<long long>(m_clock.elapsed() / 1000 % 60),
        static_cast<unsigned long long>(m_ledger.ended()),
        static_cast<long long>(m_ledger.receivedBytes() / 1'000'000),
        static_cast<long long>(m_ledger.running()),
        static_cast<long long>(SoakMemory::resident() / 1'000'000),
        m_ledger.problems() + MonkeyGuard::complaints());
    std::fflush(stdout);
}
