// Tells ThreadSanitizer how Qt hands work from one thread to another.
//
// Debian's Qt is compiled without the sanitizer, which therefore does not see its atomic operations and takes
// each queued signal for a race. The functions here have the names of functions of Qt, of the C++ library and
// of the system. The linker finds those of the program first. Each adds the order that the original
// guarantees, and no other: two threads that share an object without Qt between them are still reported.
// HandOverControl proves both.

#include <QtCore/QCoreApplication>
#include <QtCore/QDeadlineTimer>
#include <QtCore/QEvent>
#include <QtCore/QObject>
#include <QtCore/QRunnable>
#include <QtCore/QSemaphore>
#include <QtCore/QThread>
#include <QtCore/QThreadPool>

#include <condition_variable>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <mutex>
#include <new>
#include <string_view>
#include <unordered_map>

#include <dlfcn.h>
#include <link.h>
#include <pthread.h>
#include <sanitizer/tsan_interface.h>

// The runtime of the sanitizer has them, but no header of g++ declares them.
extern "C" void AnnotateIgnoreWritesBegin(const char *file, int line);
extern "C" void AnnotateIgnoreWritesEnd(const char *file, int line);

namespace {

/// The function that ours stands for.
template<typename Function>
Function original(const char *symbol)
{
    void *const found = dlsym(RTLD_NEXT, symbol);
    if (!found) {
        std::fprintf(stderr, "QtHandOver: there is no %s\n", symbol);
        std::abort();
    }
    return reinterpret_cast<Function>(found);
}

/// Where the code of the program and of QtCore is.
class Code
{
public:
    static const Code &instance()
    {
        static const Code instance;
        return instance;
    }

    [[nodiscard]] bool isOfProgram(const void *address) const { return m_program.contains(address); }
    [[nodiscard]] bool isOfQtCore(const void *address) const { return m_qtCore.contains(address); }

private:
    struct Range
    {
        [[nodiscard]] bool contains(const void *address) const
        {
            const auto value = reinterpret_cast<quintptr>(address);
            return value >= begin && value < end;
        }

        quintptr begin = 0;
        quintptr end = 0;
    };

    Code() { dl_iterate_phdr(&add, this); }

    static int add(dl_phdr_info *object, size_t /*size*/, void *data)
    {
        auto *const self = static_cast<Code *>(data);
        const std::string_view name(object->dlpi_name);
        // The program has no name.
        if (name.empty() && self->m_program.end == 0)
            self->m_program = rangeOf(*object);
        else if (name.find("libQt6Core.so") != std::string_view::npos)
            self->m_qtCore = rangeOf(*object);
        return 0;
    }

    static Range rangeOf(const dl_phdr_info &object)
    {
        Range range{~quintptr(0), 0};
        for (int i = 0; i < object.dlpi_phnum; ++i) {
            const auto &header = object.dlpi_phdr[i];
            if (header.p_type != PT_LOAD)
                continue;
            range.begin = std::min<quintptr>(range.begin, object.dlpi_addr + header.p_vaddr);
            range.end = std::max<quintptr>(range.end, object.dlpi_addr + header.p_vaddr + header.p_memsz);
        }
        return range;
    }

    Range m_program;
    Range m_qtCore;
};

} // namespace

// Events

namespace {

/// Runs in the receiver's thread before each event is delivered.
bool eventComes(void **data)
{
    __tsan_acquire(data[1]);
    return false;
}

[[maybe_unused]] const bool isListening =
    QInternal::registerCallback(QInternal::EventNotifyCallback, &eventComes);

} // namespace

void QCoreApplication::postEvent(QObject *receiver, QEvent *event, int priority)
{
    static const auto post =
        original<void (*)(QObject *, QEvent *, int)>("_ZN16QCoreApplication9postEventEP7QObjectP6QEventi");
    __tsan_release(event);
    post(receiver, event, priority);
}

/// QtCore calls its own postEvent() for queued signals and calls, and for deleteLater(). The thread that
/// posts such an event has made it just before, so what it did until then happens before the delivery.
void *operator new(std::size_t size)
{
    // Far larger than an event.
    constexpr std::size_t largestEvent = 512;
    const void *const caller = __builtin_return_address(0);
    const Code &code = Code::instance();
    // Writes of the libraries are not checked, and making an object is one.
    const bool isOfLibrary = !code.isOfProgram(caller);
    if (isOfLibrary)
        AnnotateIgnoreWritesBegin(__FILE__, __LINE__);
    void *const memory = std::malloc(size == 0 ? 1 : size);
    if (isOfLibrary)
        AnnotateIgnoreWritesEnd(__FILE__, __LINE__);
    if (!memory)
        std::abort();
    if (size <= largestEvent && code.isOfQtCore(caller))
        __tsan_release(memory);
    return memory;
}

// Calls

namespace {

/// Posts a call while writes of this thread are not checked: a thread that posts a function destroys it when
/// the other thread has run it before that. Qt counts the references to the function.
template<typename Post>
bool postCall(const QObject *receiver, Qt::ConnectionType type, const Post &post)
{
    const bool isPosted = type == Qt::QueuedConnection || receiver->thread() != QThread::currentThread();
    if (isPosted)
        AnnotateIgnoreWritesBegin(__FILE__, __LINE__);
    const bool isDone = post();
    if (isPosted)
        AnnotateIgnoreWritesEnd(__FILE__, __LINE__);
    return isDone;
}

} // namespace

#if QT_VERSION >= QT_VERSION_CHECK(6, 7, 0)
bool QMetaObject::invokeMethodImpl(QObject *object, QtPrivate::QSlotObjectBase *slot, Qt::ConnectionType type,
                                   qsizetype count, const void *const *parameters, const char *const *names,
                                   const QtPrivate::QMetaTypeInterface *const *types)
{
    using Function =
        bool (*)(QObject *, QtPrivate::QSlotObjectBase *, Qt::ConnectionType, qsizetype, const void *const *,
                 const char *const *, const QtPrivate::QMetaTypeInterface *const *);
    static const auto invoke = original<Function>("_ZN11QMetaObject16invokeMethodImplEP7QObjectPN9QtPrivate15"
                                                  "QSlotObjectBaseEN2Qt14ConnectionTypeExPKPKvPKPKcPKPK"
                                                  "NS2_18QMetaTypeInterfaceE");
    return postCall(object, type,
                    [&] { return invoke(object, slot, type, count, parameters, names, types); });
}
#else
bool QMetaObject::invokeMethodImpl(QObject *object, QtPrivate::QSlotObjectBase *slot, Qt::ConnectionType type,
                                   void *result)
{
    static const auto invoke = original<bool (*)(QObject *, QtPrivate::QSlotObjectBase *, Qt::ConnectionType,
                                                 void *)>(
        "_ZN11QMetaObject16invokeMethodImplEP7QObjectPN9QtPrivate15QSlotObjectBaseEN2Qt14ConnectionTypeEPv");
    return postCall(object, type, [&] { return invoke(object, slot, type, result); });
}
#endif

namespace {

void freeUnchecked(void *memory)
{
    AnnotateIgnoreWritesBegin(__FILE__, __LINE__);
    std::free(memory);
    AnnotateIgnoreWritesEnd(__FILE__, __LINE__);
}

/// Inlined, so that the callers are those of operator delete.
[[gnu::always_inline]] inline void freeForCaller(void *memory)
{
    const Code &code = Code::instance();
    if (!code.isOfProgram(__builtin_return_address(0)))
        return freeUnchecked(memory);
        // The program has frame pointers, so that its functions know the callers of their callers.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wframe-address"
    const void *const callerOfCaller = __builtin_return_address(1);
#pragma GCC diagnostic pop
    if (code.isOfQtCore(callerOfCaller))
        return freeUnchecked(memory);
    std::free(memory);
}

} // namespace

/// QtCore tells a slot to destroy itself when the last reference to it goes. It counts the references of all
/// threads, so the slot has returned everywhere. Only this memory is not checked; what the slot has captured
/// is.
void operator delete(void *memory) noexcept
{
    freeForCaller(memory);
}

void operator delete(void *memory, std::size_t /*size*/) noexcept
{
    freeForCaller(memory);
}

// Processes

/// A child of QProcess shares the memory of the program until it runs another one. The function of the
/// sanitizer would switch its checks off in the child, and so in the thread of the parent.
extern "C" int clone(int (*function)(void *), void *stack, int flags, void *argument, ...)
{
    using Clone = int (*)(int (*)(void *), void *, int, void *, ...);
    static const auto cloneOfSystem =
        reinterpret_cast<Clone>(dlsym(dlopen("libc.so.6", RTLD_LAZY | RTLD_NOLOAD), "clone"));
    va_list rest;
    va_start(rest, argument);
    void *const parentId = va_arg(rest, void *);
    void *const storage = va_arg(rest, void *);
    void *const childId = va_arg(rest, void *);
    va_end(rest);
    return cloneOfSystem(function, stack, flags, argument, parentId, storage, childId);
}

// Threads

namespace {

/// What QThread::wait() waits for.
class ThreadEnd
{
public:
    using Ends = std::unordered_map<const void *, std::shared_ptr<ThreadEnd>>;

    static std::shared_ptr<ThreadEnd> make(const void *thread)
    {
        const std::scoped_lock lock(mutex());
        return ends()[thread] = std::make_shared<ThreadEnd>();
    }

    static std::shared_ptr<ThreadEnd> take(const void *thread)
    {
        const std::scoped_lock lock(mutex());
        auto found = ends().extract(thread);
        return found ? std::move(found.mapped()) : nullptr;
    }

    void reach()
    {
        const std::scoped_lock lock(m_mutex);
        m_isReached = true;
        m_reached.notify_all();
    }

    void wait()
    {
        std::unique_lock lock(m_mutex);
        m_reached.wait(lock, [this] { return m_isReached; });
    }

private:
    static std::mutex &mutex()
    {
        static auto *const mutex = new std::mutex;
        return *mutex;
    }
    static Ends &ends()
    {
        static auto *const ends = new Ends;
        return *ends;
    }

    std::mutex m_mutex;
    std::condition_variable m_reached;
    bool m_isReached = false;
};

struct Start
{
    void *(*routine)(void *);
    void *argument;
    std::shared_ptr<ThreadEnd> end;
};

void *runThread(void *data)
{
    const std::unique_ptr<Start> start(static_cast<Start *>(data));
    void *const result = start->routine(start->argument);
    start->end->reach();
    return result;
}

} // namespace

/// The argument of QThread is the QThread.
extern "C" int pthread_create(pthread_t *thread, const pthread_attr_t *attributes, void *(*routine)(void *),
                              void *argument) noexcept
{
    static const auto create = original<decltype(&pthread_create)>("pthread_create");
    if (!Code::instance().isOfQtCore(__builtin_return_address(0)))
        return create(thread, attributes, routine, argument);
    auto start = std::make_unique<Start>(Start{routine, argument, ThreadEnd::make(argument)});
    const int error = create(thread, attributes, &runThread, start.get());
    if (error == 0)
        static_cast<void>(start.release());
    return error;
}

/// QThread is done a little earlier than its routine; this waits for the routine.
bool QThread::wait(QDeadlineTimer deadline)
{
    static const auto wait =
        original<bool (*)(QThread *, QDeadlineTimer)>("_ZN7QThread4waitE14QDeadlineTimer");
    const bool hasEnded = wait(this, deadline);
    if (!hasEnded)
        return false;
    if (const auto end = ThreadEnd::take(this))
        end->wait();
    return true;
}

// Thread pools

namespace {

class Ordered final : public QRunnable
{
public:
    Ordered(QThreadPool *pool, QRunnable *inner) : m_pool(pool), m_inner(inner) { __tsan_release(this); }

    void run() override
    {
        __tsan_acquire(this);
        const bool isOurs = m_inner->autoDelete();
        m_inner->run();
        if (isOurs)
            delete m_inner;
        __tsan_release(m_pool);
    }

private:
    QThreadPool *const m_pool;
    QRunnable *const m_inner;
};

} // namespace

void QThreadPool::start(QRunnable *runnable, int priority)
{
    static const auto start =
        original<void (*)(QThreadPool *, QRunnable *, int)>("_ZN11QThreadPool5startEP9QRunnablei");
    start(this, new Ordered(this, runnable), priority);
}

// Newer releases of Qt have these functions in the header, where they call the others.
#if QT_VERSION < QT_VERSION_CHECK(6, 6, 0)
void QThreadPool::start(std::function<void()> function, int priority)
{
    start(QRunnable::create(std::move(function)), priority);
}
#endif

#if QT_VERSION < QT_VERSION_CHECK(6, 8, 0)
bool QThreadPool::waitForDone(int timeout)
{
    static const auto wait = original<bool (*)(QThreadPool *, int)>("_ZN11QThreadPool11waitForDoneEi");
#else
bool QThreadPool::waitForDone(QDeadlineTimer timeout)
{
    static const auto wait =
        original<bool (*)(QThreadPool *, QDeadlineTimer)>("_ZN11QThreadPool11waitForDoneE14QDeadlineTimer");
#endif
    const bool isDone = wait(this, timeout);
    __tsan_acquire(this);
    return isDone;
}

// Semaphores

void QSemaphore::release(int count)
{
    static const auto release = original<void (*)(QSemaphore *, int)>("_ZN10QSemaphore7releaseEi");
    __tsan_release(this);
    release(this, count);
}

void QSemaphore::acquire(int count)
{
    static const auto acquire = original<void (*)(QSemaphore *, int)>("_ZN10QSemaphore7acquireEi");
    acquire(this, count);
    __tsan_acquire(this);
}

bool QSemaphore::tryAcquire(int count)
{
    static const auto tryAcquire = original<bool (*)(QSemaphore *, int)>("_ZN10QSemaphore10tryAcquireEi");
    const bool isAcquired = tryAcquire(this, count);
    __tsan_acquire(this);
    return isAcquired;
}

#if QT_VERSION < QT_VERSION_CHECK(6, 6, 0)
bool QSemaphore::tryAcquire(int count, int timeout)
{
    static const auto tryAcquire =
        original<bool (*)(QSemaphore *, int, int)>("_ZN10QSemaphore10tryAcquireEii");
#else
bool QSemaphore::tryAcquire(int count, QDeadlineTimer timeout)
{
    static const auto tryAcquire = original<bool (*)(QSemaphore *, int, QDeadlineTimer)>(
        "_ZN10QSemaphore10tryAcquireEi14QDeadlineTimer");
#endif
    const bool isAcquired = tryAcquire(this, count, timeout);
    __tsan_acquire(this);
    return isAcquired;
}
