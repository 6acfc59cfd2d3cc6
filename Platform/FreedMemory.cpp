#include "Platform/FreedMemory.h"

#include "Platform/BackgroundThread.h"
#include "Platform/NSNotificationCenter.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QPointer>
#include <QtCore/QTimer>

#include <cstdlib>
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

/// malloc_trim() returns all free memory except the end of the arenas of other threads than the main one.
/// That of the current thread becomes free memory in the middle while a block is in use behind it.
void trim()
{
    std::vector<void *> blocks(arenaPartSize / blockSize);
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

void returnMemory()
{
    NSNotificationCenter::defaultCenter().post(FreedMemory::willReturn);
#if defined(__GLIBC__)
    BackgroundThread::post(trim);
#endif
}

} // namespace

void FreedMemory::note(qsizetype bytes)
{
    static QPointer<QTimer> timer;

    QCoreApplication *const application = QCoreApplication::instance();
    if (bytes < largeAmount || !application)
        return;
    if (!timer) {
        timer = new QTimer(application);
        timer->setSingleShot(true);
        timer->setInterval(delay);
        QObject::connect(timer, &QTimer::timeout, application, returnMemory);
    }
    if (!timer->isActive())
        timer->start();
}

} // namespace Quorvix
