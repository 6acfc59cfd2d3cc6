#include "Platform/FreedMemory.h"

#include "Platform/BackgroundThread.h"
#include "Platform/NSNotificationCenter.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QPointer>
#include <QtCore/QTimer>

#include <algorithm>
#include <cstdlib>
#include <utility>
#include <vector>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace Quorvix {

namespace {

using namespace std::chrono_literals;

/// Less is not worth the milliseconds that a collection and the allocator take.
constexpr qsizetype largeAmount = 1'000'000;
/// Several screens and models are destroyed together, some of them a few turns of the event loop later.
constexpr auto delay = 200ms;

#if defined(__GLIBC__)
/// The size of a block that is never mapped on its own, and the largest size of one part of an arena.
constexpr std::size_t blockSize = 1 << 16;
constexpr std::size_t arenaPartSize = 1 << 26;
/// Each block makes one page of memory resident for a moment.
constexpr std::size_t largestFill = 4 * arenaPartSize;

/// The free memory up to which it is returned, beside what was noted. It takes about 0.1 ms for each megabyte
/// and keeps other threads from allocating meanwhile. A host that keeps more free memory than this for itself
/// is not kept waiting.
constexpr std::size_t otherFreeMemory = 64'000'000;
/// The free memory for each byte that was noted: what was built from a body and is destroyed with it.
constexpr std::size_t factor = 16;

/// malloc_trim() returns all free memory except the end of the arenas of other threads than the main one.
/// That of the current thread becomes free memory in the middle while a block is in use behind it: so the
/// blocks have to fill all that is free before the end, and one part more.
void trim([[maybe_unused]] std::size_t noted)
{
    std::size_t free = arenaPartSize;
#if __GLIBC_PREREQ(2, 33)
    free = mallinfo2().fordblks;
    if (free > otherFreeMemory + factor * noted)
        return;
#endif
    std::vector<void *> blocks((std::min(free, largestFill) + arenaPartSize) / blockSize);
    for (void *&block : blocks)
        block = std::malloc(blockSize);
    void *const last = blocks.back();
    blocks.pop_back();
    for (void *const block : blocks)
        std::free(block);
    malloc_trim(0);
    std::free(last);
}
#endif

/// What was noted since memory was returned last. Main thread only.
std::size_t noted = 0;
/// The values that wait for their destruction. Main thread only.
std::vector<std::shared_ptr<const void>> discarded;
/// Those that have waited for one collection. The script engine can keep its copy until the next one.
std::vector<std::shared_ptr<const void>> collected;

void returnMemory()
{
    NSNotificationCenter::defaultCenter().post(FreedMemory::willReturn);
    if (!collected.empty())
        BackgroundThread::post([values = std::exchange(collected, {})]() mutable { values.clear(); });
    collected = std::exchange(discarded, {});
    const std::size_t bytes = std::exchange(noted, 0);
    if (!collected.empty())
        FreedMemory::note(std::max(qsizetype(bytes), largeAmount));
#if defined(__GLIBC__)
    // Behind the destruction, and in the thread of the tasks, because each thread has memory of its own.
    BackgroundThread::post([bytes] {
        trim(bytes);
        BackgroundThread::postBehindTasks([bytes] { trim(bytes); });
    });
#endif
}

} // namespace

void FreedMemory::note(qsizetype bytes)
{
    static QPointer<QTimer> timer;

    QCoreApplication *const application = QCoreApplication::instance();
    if (bytes < largeAmount || !application)
        return;
    noted += std::size_t(bytes);
    if (!timer) {
        timer = new QTimer(application);
        timer->setSingleShot(true);
        timer->setInterval(delay);
        QObject::connect(timer, &QTimer::timeout, application, returnMemory);
    }
    if (!timer->isActive())
        timer->start();
}

void FreedMemory::discardShared(std::shared_ptr<const void> value, qsizetype bytes)
{
    if (bytes >= largeAmount && QCoreApplication::instance())
        discarded.push_back(std::move(value));
    note(bytes);
}

} // namespace Quorvix
