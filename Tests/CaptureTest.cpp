#include "Examples/DemoServer.h"

#include "Quorvix/QXBreakpointCenter.h"
#include "Quorvix/QXBreakpointStore.h"
#include "Quorvix/QXRequestRecorder.h"
#include "Quorvix/QXSessionHook.h"
#include "Quorvix/QuorvixClient.h"

#include "Platform/NSNotificationCenter.h"
#include "Platform/NSURLSession.h"
#include "Platform/ObjectRuntime.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QRegularExpression>
#include <QtCore/QSemaphore>
#include <QtCore/QThread>
#include <QtTest/QTest>

#include <thread>
#include <vector>

using namespace Quorvix;

using namespace std::chrono_literals;

using namespace Qt::StringLiterals;

namespace {

QXRequestRecorder &recorder()
{
    return QXRequestRecorder::shared();
}

} // namespace

class CaptureTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void nothingIsCapturedBeforeTheClientIsTouched();
    void handlersRunOnTheThreadThatIsAskedFor_data();
    void handlersRunOnTheThreadThatIsAskedFor();
    void hookIsInstalled();
    void exchangeIsRecordedBeforeTheHostHears();
    void errorsReachRecordAndHostAlike();
    void taskWithoutHandlerIsNotCaptured();
    void clearInBetweenLosesOnlyTheRecord();
    void breakpointKeepsTheHostWaiting();
    void thousandExchangesFromManyThreads();

private:
    [[nodiscard]] URLRequest request(const QString &path) const { return URLRequest(m_server.url(path)); }
    void start(const QString &path, const DataTaskCompletionHandler &handler)
    {
        m_session.dataTaskWithRequest(request(path), handler)->resume();
    }

    DemoServer m_server;
    NSURLSession m_session;
};

void CaptureTest::initTestCase()
{
    QVERIFY(m_server.start());
}

void CaptureTest::init()
{
    QXBreakpointStore::shared().setRules({});
    recorder().clear();
}

void CaptureTest::nothingIsCapturedBeforeTheClientIsTouched()
{
    QSemaphore done;
    start(u"/echo"_s, [&](auto, auto, auto) { done.release(); });
    QVERIFY(done.tryAcquire(1, 10'000)); // called on another thread, because this one runs no event loop now
    QCoreApplication::processEvents();
    QVERIFY(recorder().requests().isEmpty());
}

void CaptureTest::handlersRunOnTheThreadThatIsAskedFor_data()
{
    QTest::addColumn<bool>("hooked");
    QTest::addColumn<bool>("switched");
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("cancelled");
    for (const bool hooked : {false, true}) { // in this order, because the hook stays
        for (const bool switched : {false, true}) {
            const auto row = [&](const char *outcome, const QString &path, bool cancelled) {
                QTest::addRow("%s, %s: %s", hooked ? "captured" : "not captured", switched ? "on" : "off",
                              outcome)
                    << hooked << switched << path << cancelled;
            };
            row("success", u"/echo"_s, false);
            row("error", u"/drop"_s, false);
            row("cancelled", u"/slow?ms=15000"_s, true);
        }
    }
}

void CaptureTest::handlersRunOnTheThreadThatIsAskedFor()
{
    QFETCH(const bool, hooked);
    QFETCH(const bool, switched);
    QFETCH(const QString, path);
    QFETCH(const bool, cancelled);
    if (hooked)
        std::thread([] { QCOMPARE(QuorvixClient::shared().logLevel(), QXLogLevel::none); }).join();
    NSURLSessionConfiguration configuration;
    configuration.completesOnMainThread = switched;
    NSURLSession configured(configuration);
    NSURLSession changed;
    changed.setCompletesOnMainThread(switched);

    std::atomic<int> onMain = 0;
    std::atomic<int> elsewhere = 0;
    std::atomic<int> failed = 0;
    for (NSURLSession *const session : {&configured, &changed}) {
        const auto task = session->dataTaskWithRequest(request(path), [&](auto, auto, auto error) {
            failed += error.has_value();
            ++(QThread::currentThread() == QCoreApplication::instance()->thread() ? onMain : elsewhere);
        });
        session->setCompletesOnMainThread(!switched); // tasks that are made keep their thread
        task->resume();
        if (cancelled)
            task->cancel();
        while (task->state() != NSURLSessionDataTask::State::Completed)
            QThread::yieldCurrentThread();
    }
    QVERIFY(onMain == 0); // not before a later turn of the event loop
    const bool goesToMain = hooked || switched;
    QTRY_COMPARE(goesToMain ? onMain.load() : elsewhere.load(), 2);
    QCOMPARE(onMain + elsewhere, 2);
    QCOMPARE(failed.load(), path == u"/echo"_s ? 0 : 2);
}

void CaptureTest::hookIsInstalled()
{
    QVERIFY(class_getInstanceMethod(NSURLSession::objectClass(), "qx_hookedDataTaskWith:completionHandler:"));
    ObjectClass bare; // a class without the method is not changed
    QXSessionHook::exchange(bare);
    QVERIFY(!class_getInstanceMethod(bare, "qx_hookedDataTaskWith:completionHandler:"));
}

void CaptureTest::exchangeIsRecordedBeforeTheHostHears()
{
    bool heard = false;
    const char *hostBytes = nullptr;
    std::optional<bool> wasPending;
    const auto observer = NSNotificationCenter::defaultCenter().addObserver(QuorvixRequestsChanged, [&] {
        if (!wasPending)
            wasPending = !recorder().requests()[0].duration;
    });
    start(u"/binary?size=5000"_s, [&](auto data, auto response, auto error) {
        const auto &trace = recorder().requests()[0];
        heard = QThread::currentThread() == QCoreApplication::instance()->thread() && trace.duration &&
                !error && trace.response->statusCode == 200 &&
                dynamic_cast<const NSHTTPURLResponse *>(response.get());
        hostBytes = data->constData();
    });
    QVERIFY(recorder().requests().isEmpty());
    QTRY_VERIFY(wasPending);
    QVERIFY(*wasPending);
    QCOMPARE(recorder().requests().size(), 1);
    const QRegularExpression identity(u"^[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}$"_s);
    QVERIFY(identity.match(recorder().requests()[0].id).hasMatch());
    QTRY_VERIFY(heard);
    QCOMPARE(recorder().requests()[0].response->body->constData(), hostBytes); // shared, not copied
}

void CaptureTest::errorsReachRecordAndHostAlike()
{
    std::optional<NSError> delivered;
    start(u"/drop"_s, [&](auto data, auto response, auto error) {
        if (!data && !response)
            delivered = error;
    });
    QTRY_VERIFY(delivered.has_value());
    const QXRequestTrace &trace = recorder().requests()[0];
    QCOMPARE(trace.error->code, delivered->code);
    QVERIFY(trace.duration && !trace.response);
}

void CaptureTest::taskWithoutHandlerIsNotCaptured()
{
    const auto task = m_session.dataTaskWithRequest(request(u"/echo"_s));
    task->resume();
    QTRY_COMPARE(task->state(), NSURLSessionDataTask::State::Completed);
    QCoreApplication::processEvents();
    QVERIFY(recorder().requests().isEmpty());
}

void CaptureTest::clearInBetweenLosesOnlyTheRecord()
{
    bool heard = false;
    start(u"/slow?ms=50"_s, [&](auto, auto, auto) { heard = true; });
    QTRY_COMPARE(recorder().requests().size(), 1);
    recorder().clear();
    QTRY_VERIFY(heard);
    QVERIFY(recorder().requests().isEmpty());
}

void CaptureTest::breakpointKeepsTheHostWaiting()
{
    QXBreakpointStore::shared().insert(*QXBreakpointKey::make(m_server.url(u"/echo"_s), {}));
    std::optional<QByteArray> body;
    start(u"/echo"_s, [&](auto data, auto, auto) { body = data; });
    QTRY_VERIFY(QXBreakpointCenter::shared().activeBreakpoint());
    QVERIFY(!body && !recorder().requests()[0].duration);
    QXBreakpointCenter::shared().apply(u"202"_s, u"edited"_s);
    QCOMPARE(body, "edited"_ba);
    QCOMPARE(recorder().requests()[0].response->statusCode, 202);
}

void CaptureTest::thousandExchangesFromManyThreads()
{
    constexpr int threads = 4;
    constexpr int each = 250;
    int heard = 0;
    int wrong = 0;
    std::vector<std::thread> makers;
    for (int thread = 0; thread < threads; ++thread) {
        makers.emplace_back([&, thread] {
            for (int i = 0; i < each; ++i) {
                const int size = 1 + thread * each + i;
                start(u"/binary?size=%1"_s.arg(size), [&, size](auto data, auto, auto error) {
                    ++heard;
                    wrong += error || data->size() != size;
                });
            }
        });
    }
    for (std::thread &maker : makers)
        maker.join();
    QTRY_COMPARE_WITH_TIMEOUT(heard, threads * each, 60'000);
    QCOMPARE(wrong, 0);
    QSet<QString> identities;
    QSet<qsizetype> sizes;
    for (const QXRequestTrace &trace : recorder().requests()) {
        identities.insert(trace.id);
        sizes.insert(trace.response->body->size());
    }
    QCOMPARE(identities.size(), threads * each);
    QCOMPARE(sizes.size(), threads * each);
}

namespace {

/// What became of handlers.
struct Fates
{
    int made = 0;
    std::atomic<int> called = 0;
    std::atomic<int> destroyedHere = 0;
    std::atomic<int> destroyedElsewhere = 0;
};

/// Captured by a handler.
class Witness
{
public:
    explicit Witness(Fates &fates) : m_fates(fates) { ++m_fates.made; }
    ~Witness()
    {
        const bool isHere = std::this_thread::get_id() == m_thread;
        ++(isHere ? m_fates.destroyedHere : m_fates.destroyedElsewhere);
    }
    Q_DISABLE_COPY_MOVE(Witness)

private:
    Fates &m_fates;
    const std::thread::id m_thread = std::this_thread::get_id();
};

NSURLSessionDataTaskPtr makeWitnessedTask(const QUrl &url, Fates &fates)
{
    return NSURLSession::shared().dataTaskWithRequest(
        URLRequest(url),
        [&fates, witness = std::make_shared<Witness>(fates)](auto, auto, auto) { ++fates.called; });
}

/// Has one response held by a breakpoint, and another one wait behind it.
template<typename Resume>
void holdResponses(const DemoServer &server, const Resume &resume)
{
    QXBreakpointStore::shared().setRules({*QXBreakpointKey::make(server.url(u"/echo"_s), {})});
    resume(u"/echo"_s);
    resume(u"/echo"_s);
    while (QXBreakpointCenter::shared().queue().empty())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

/// Ends an application in the middle of exchanges. Their handlers are not called, but destroyed on the main
/// thread.
void endWithExchangesInFlight(DemoServer &server, Fates &fates, bool isCaptured, int argc, char *argv[])
{
    std::vector<NSURLSessionDataTaskPtr> kept;
    const QCoreApplication application(argc, argv);
    const auto resume = [&](const QString &path) {
        auto task = makeWitnessedTask(server.url(path), fates);
        task->resume();
        return task;
    };
    if (isCaptured)
        holdResponses(server, resume);

    for (int i = 0; i < 20; ++i)
        kept.push_back(resume(u"/slow?ms=%1"_s.arg(i * 10)));
    // Some complete while nothing runs the main thread's tasks.
    while (kept[4]->state() != NSURLSessionDataTask::State::Completed)
        QThread::yieldCurrentThread();
    kept.push_back(makeWitnessedTask(server.url(), fates)); // never resumed
    std::thread([task = makeWitnessedTask(server.url(), fates)]() mutable { task.reset(); }).join();
    // A handler that keeps its own task alive.
    const auto self = std::make_shared<NSURLSessionDataTaskPtr>();
    *self = NSURLSession::shared().dataTaskWithRequest(
        URLRequest(server.url(u"/slow?ms=15000"_s)),
        [self, witness = std::make_shared<Witness>(fates)](auto, auto, auto) {});
    (*self)->resume();
    // The application ends before the loading thread reaches all of these.
    for (int i = 0; i < 100; ++i)
        resume(u"/slow?ms=15000"_s);
}

/// With a session that is captured, or with one whose switch is on.
int checkTheEnd(bool isCaptured, int argc, char *argv[])
{
    DemoServer server;
    Fates fates;
    if (!server.start())
        return 1;
    NSURLSession::shared().setCompletesOnMainThread(!isCaptured);
    // Later than the cooldown of the release before.
    if (isCaptured)
        QXBreakpointCenter::shared().setClock([] { return std::chrono::steady_clock::now() + 1s; });
    for (int round = 0; round < 3; ++round)
        endWithExchangesInFlight(server, fates, isCaptured, argc, argv);
    if (fates.called || fates.destroyedElsewhere || fates.destroyedHere != fates.made) {
        qWarning("handlers: made %d, called %d, destroyed here %d, elsewhere %d", fates.made,
                 fates.called.load(), fates.destroyedHere.load(), fates.destroyedElsewhere.load());
        return 1;
    }
    // An exchange between two applications belongs to the second one.
    Fates late;
    QXBreakpointStore::shared().setRules({});
    makeWitnessedTask(server.url(u"/echo"_s), late)->resume();
    const QCoreApplication application(argc, argv);
    return QTest::qWaitFor([&] { return late.called == 1 && late.destroyedHere == 1; }) ? 0 : 1;
}

} // namespace

int main(int argc, char *argv[])
{
    int failures = checkTheEnd(false, argc, argv);
    {
        const QCoreApplication application(argc, argv);
        CaptureTest test;
        failures += QTest::qExec(&test, argc, argv);
    }
    return failures + checkTheEnd(true, argc, argv);
}

#include "CaptureTest.moc"
