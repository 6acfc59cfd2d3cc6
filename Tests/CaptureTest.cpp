#include "Examples/DemoServer.h"

#include "Quorvix/QXBreakpointCenter.h"
#include "Quorvix/QXBreakpointStore.h"
#include "Quorvix/QXRequestRecorder.h"
#include "Quorvix/QXSessionHook.h"
#include "Quorvix/QuorvixClient.h"

#include "Platform/NSURLSession.h"
#include "Platform/ObjectRuntime.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QRegularExpression>
#include <QtCore/QSemaphore>
#include <QtCore/QThread>
#include <QtTest/QTest>

#include <thread>

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
    void cleanup();
    void nothingIsCapturedBeforeTheClientIsTouched();
    void classWithoutTheMethodIsLeftAlone();
    void exchangeIsRecordedBeforeTheHostHears();
    void everyTaskHasItsOwnIdentity();
    void errorsReachRecordAndHostAlike();
    void taskWithoutHandlerIsNotCaptured();
    void clearInBetweenLosesOnlyTheRecord();
    void breakpointKeepsTheHostWaiting();
    void thousandExchangesFromManyThreads();

private:
    URLRequest request(const QString &path) const { return URLRequest(m_server.url(path)); }

    DemoServer m_server;
    NSURLSession m_session;
};

void CaptureTest::initTestCase()
{
    QVERIFY(m_server.start());
}

void CaptureTest::cleanup()
{
    QXBreakpointStore::shared().setRules({});
    recorder().clear();
}

void CaptureTest::nothingIsCapturedBeforeTheClientIsTouched()
{
    QSemaphore done;
    m_session
        .dataTaskWithRequest(request(QStringLiteral("/echo")), [&](auto, auto, auto) { done.release(); })
        ->resume();
    QVERIFY(done.tryAcquire(1, 10'000)); // called elsewhere: this thread runs no event loop now
    QCoreApplication::processEvents();
    QVERIFY(recorder().requests().isEmpty());

    std::thread([] { QCOMPARE(QuorvixClient::shared().logLevel(), QXLogLevel::none); }).join();
    QVERIFY(class_getInstanceMethod(NSURLSession::objectClass(), "qx_hookedDataTaskWith:completionHandler:"));
}

void CaptureTest::classWithoutTheMethodIsLeftAlone()
{
    ObjectClass bare;
    QXSessionHook::exchange(bare);
    QVERIFY(!class_getInstanceMethod(bare, "qx_hookedDataTaskWith:completionHandler:"));
}

void CaptureTest::exchangeIsRecordedBeforeTheHostHears()
{
    bool heard = false;
    const char *hostBytes = nullptr;
    m_session
        .dataTaskWithRequest(request(QStringLiteral("/binary?size=5000")),
                             [&](auto data, auto response, auto error) {
                                 const auto &trace = recorder().requests()[0];
                                 heard = QThread::currentThread() == qApp->thread() && trace.duration &&
                                         !error && trace.response->statusCode == 200 &&
                                         dynamic_cast<const NSHTTPURLResponse *>(response.get());
                                 hostBytes = data->constData();
                             })
        ->resume();
    QVERIFY(recorder().requests().isEmpty());
    QTRY_COMPARE(recorder().requests().size(), 1);
    QVERIFY(!recorder().requests()[0].duration);
    const QString id = recorder().requests()[0].id;
    QVERIFY(QRegularExpression(QStringLiteral("^[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}$"))
                .match(id)
                .hasMatch());
    QTRY_VERIFY(heard);
    QCOMPARE(recorder().requests()[0].response->body->constData(), hostBytes); // shared, not copied
}

void CaptureTest::everyTaskHasItsOwnIdentity()
{
    int heard = 0;
    for (int i = 0; i < 2; ++i)
        m_session.dataTaskWithRequest(request(QStringLiteral("/echo")), [&](auto, auto, auto) { ++heard; })
            ->resume();
    QTRY_COMPARE(heard, 2);
    QCOMPARE(recorder().requests().size(), 2);
    QVERIFY(recorder().requests()[0].id != recorder().requests()[1].id);
}

void CaptureTest::errorsReachRecordAndHostAlike()
{
    std::optional<NSError> delivered;
    m_session
        .dataTaskWithRequest(request(QStringLiteral("/drop")),
                             [&](auto data, auto response, auto error) {
                                 if (!data && !response)
                                     delivered = error;
                             })
        ->resume();
    QTRY_VERIFY(delivered.has_value());
    const QXRequestTrace &trace = recorder().requests()[0];
    QCOMPARE(trace.error->code, delivered->code);
    QVERIFY(trace.duration && !trace.response);
}

void CaptureTest::taskWithoutHandlerIsNotCaptured()
{
    const auto task = m_session.dataTaskWithRequest(request(QStringLiteral("/echo")));
    task->resume();
    QTRY_COMPARE(task->state(), NSURLSessionDataTask::State::Completed);
    QCoreApplication::processEvents();
    QVERIFY(recorder().requests().isEmpty());
}

void CaptureTest::clearInBetweenLosesOnlyTheRecord()
{
    bool heard = false;
    m_session
        .dataTaskWithRequest(request(QStringLiteral("/slow?ms=50")), [&](auto, auto, auto) { heard = true; })
        ->resume();
    QTRY_COMPARE(recorder().requests().size(), 1);
    recorder().clear();
    QTRY_VERIFY(heard);
    QVERIFY(recorder().requests().isEmpty());
}

void CaptureTest::breakpointKeepsTheHostWaiting()
{
    const URLRequest held = request(QStringLiteral("/echo"));
    QXBreakpointStore::shared().insert(*QXBreakpointKey::make(held.url, held.httpMethod));
    std::optional<QByteArray> body;
    m_session.dataTaskWithRequest(held, [&](auto data, auto, auto) { body = data; })->resume();
    QTRY_VERIFY(QXBreakpointCenter::shared().activeBreakpoint());
    QVERIFY(!body && !recorder().requests()[0].duration);
    QXBreakpointCenter::shared().apply(QStringLiteral("202"), QStringLiteral("edited"));
    QCOMPARE(body, QByteArray("edited"));
    QCOMPARE(recorder().requests()[0].response->statusCode, 202);
}

void CaptureTest::thousandExchangesFromManyThreads()
{
    constexpr int threads = 4;
    constexpr int each = 250;
    int heard = 0;
    std::vector<std::unique_ptr<QThread>> makers;
    for (int i = 0; i < threads; ++i) {
        makers.emplace_back(QThread::create([&] {
            for (int j = 0; j < each; ++j) {
                m_session
                    .dataTaskWithRequest(request(QStringLiteral("/binary?size=100")),
                                         [&](auto, auto, auto) { ++heard; })
                    ->resume();
            }
        }));
        makers.back()->start();
    }
    QTRY_COMPARE_WITH_TIMEOUT(heard, threads * each, 60'000);
    for (auto &maker : makers)
        maker->wait();
    QCOMPARE(recorder().requests().size(), threads * each);
    for (const QXRequestTrace &trace : recorder().requests())
        QVERIFY(trace.response && trace.response->body->size() == 100);
}

/// Exchanges under way when the application ends, and others begun after it, must neither crash nor block.
static int endWithExchangesInFlight()
{
    DemoServer server;
    if (!server.start())
        return 1;
    bool heard = false;
    const auto start = [&](const QString &path) {
        NSURLSession::shared()
            .dataTaskWithRequest(URLRequest(server.url(path)), [&](auto, auto, auto) { heard = true; })
            ->resume();
    };
    int argc = 1;
    char name[] = "CaptureTest";
    char *argv[] = {name, nullptr};
    {
        const QCoreApplication application(argc, argv);
        for (int i = 0; i < 20; ++i)
            start(QStringLiteral("/slow?ms=%1").arg(i * 10));
        QThread::msleep(50); // some complete now, with nobody to run the main thread's tasks
    }
    start(QStringLiteral("/echo"));
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
