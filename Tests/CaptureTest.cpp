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

    std::thread([] { QCOMPARE(QuorvixClient::shared().logLevel(), QXLogLevel::none); }).join();
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

/// Exchanges that run when the application ends, or that start afterwards, must neither crash nor block.
static int endWithExchangesInFlight()
{
    DemoServer server;
    if (!server.start())
        return 1;
    bool heard = false;
    const auto start = [&](const QString &path) {
        auto task = NSURLSession::shared().dataTaskWithRequest(URLRequest(server.url(path)),
                                                               [&](auto, auto, auto) { heard = true; });
        task->resume();
        return task;
    };
    int argc = 1;
    char name[] = "CaptureTest";
    char *argv[] = {name, nullptr};
    {
        const QCoreApplication application(argc, argv);
        std::vector<NSURLSessionDataTaskPtr> tasks;
        for (int i = 0; i < 20; ++i)
            tasks.push_back(start(u"/slow?ms=%1"_s.arg(i * 10)));
        // Some exchanges complete while nothing runs the main thread's tasks.
        while (tasks[4]->state() != NSURLSessionDataTask::State::Completed)
            QThread::yieldCurrentThread();
    }
    start(u"/echo"_s);
    return heard ? 1 : 0;
}

int main(int argc, char *argv[])
{
    int failures = 0;
    {
        const QCoreApplication application(argc, argv);
        CaptureTest test;
        failures = QTest::qExec(&test, argc, argv);
    }
    return failures + endWithExchangesInFlight();
}

#include "CaptureTest.moc"
