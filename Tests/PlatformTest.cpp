#include "Platform/MainActor.h"
#include "Platform/NSHTTPURLResponse.h"
#include "Platform/NSNotificationCenter.h"
#include "Platform/ObjectRuntime.h"
#include "Platform/URLRequest.h"

#include <QtCore/QCoreApplication>
#include <QtTest/QTest>

#include <thread>

namespace {

using Sender = int(int);

int twice(int value)
{
    return value * 2;
}

int negative(int value)
{
    return -value;
}

double half(double value)
{
    return value / 2;
}

} // namespace

class PlatformTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void exchangeSwapsWhatBothSelectorsRun();
    void exchangeRefusesWhatWouldCrash();
    void sendersNeverSeeHalfAnExchange();
    void observersHearOnlyTheirNameAndOnlyWhileTheyLive();
    void observerMayLeaveDuringThePost();
    void tasksRunInOrderOnTheApplicationsThread();
    void headerNamesIgnoreCaseInRequests();
    void statusText_data();
    void statusText();
};

void PlatformTest::exchangeSwapsWhatBothSelectorsRun()
{
    ObjectClass numbers;
    const Method *const first = numbers.addMethod<Sender>("twice:", &twice);
    numbers.addMethod<Sender>("negative:", &negative);
    QCOMPARE(numbers.addMethod<Sender>("twice:", &negative), nullptr);
    QCOMPARE(numbers.implementation<Sender>(first)(3), 6);

    QVERIFY(method_exchangeImplementations(class_getInstanceMethod(numbers, "twice:"),
                                           class_getInstanceMethod(numbers, "negative:")));
    QCOMPARE(numbers.implementation<Sender>(first)(3), -3);
    QCOMPARE(numbers.implementation<Sender>(class_getInstanceMethod(numbers, "negative:"))(3), 6);
}

void PlatformTest::exchangeRefusesWhatWouldCrash()
{
    ObjectClass numbers;
    ObjectClass others;
    Method *const integer = numbers.addMethod<Sender>("twice:", &twice);
    Method *const real = numbers.addMethod<double(double)>("half:", &half);
    Method *const foreign = others.addMethod<Sender>("twice:", &twice);
    QVERIFY(!method_exchangeImplementations(integer, class_getInstanceMethod(numbers, "missing:")));
    QVERIFY(!method_exchangeImplementations(integer, real));
    QVERIFY(!method_exchangeImplementations(integer, foreign));
    QCOMPARE(numbers.implementation<Sender>(integer)(4), 8);
}

void PlatformTest::sendersNeverSeeHalfAnExchange()
{
    // A replacement that sends to the other selector would call itself if it saw only one half.
    static ObjectClass numbers;
    static thread_local int depth = 0;
    static std::atomic<int> deepest = 0;
    static const Method *original = nullptr;
    static const Method *replaced = nullptr;
    original = numbers.addMethod<Sender>("run:", [](int value) { return value; });
    replaced = numbers.addMethod<Sender>("hooked:", [](int value) {
        ++depth;
        deepest = std::max(deepest.load(), depth);
        const int result = depth > 8 ? value : numbers.implementation<Sender>(replaced)(value);
        --depth;
        return result;
    });
    std::atomic<bool> stop = false;
    std::atomic<int> wrong = 0;
    std::vector<std::thread> senders;
    senders.reserve(3);
    for (int i = 0; i < 3; ++i) {
        senders.emplace_back([&] {
            while (!stop)
                wrong += numbers.implementation<Sender>(original)(7) != 7;
        });
    }
    QVERIFY(method_exchangeImplementations(class_getInstanceMethod(numbers, "run:"),
                                           class_getInstanceMethod(numbers, "hooked:")));
    QTRY_COMPARE(deepest.load(), 1);
    stop = true;
    for (auto &sender : senders)
        sender.join();
    QCOMPARE(wrong.load(), 0);
    QCOMPARE(deepest.load(), 1);
}

void PlatformTest::observersHearOnlyTheirNameAndOnlyWhileTheyLive()
{
    auto &center = NSNotificationCenter::defaultCenter();
    QStringList heard;
    const auto first =
        center.addObserver(QStringLiteral("a"), [&] { heard.append(QStringLiteral("first")); });
    {
        const auto second =
            center.addObserver(QStringLiteral("a"), [&] { heard.append(QStringLiteral("second")); });
        center.post(QStringLiteral("a"));
        center.post(QStringLiteral("b"));
    }
    center.post(QStringLiteral("a"));
    QCOMPARE(heard,
             QStringList({QStringLiteral("first"), QStringLiteral("second"), QStringLiteral("first")}));
}

void PlatformTest::observerMayLeaveDuringThePost()
{
    auto &center = NSNotificationCenter::defaultCenter();
    int calls = 0;
    NSNotificationObserver second;
    const auto first = center.addObserver(QStringLiteral("leave"), [&] { second = {}; });
    second = center.addObserver(QStringLiteral("leave"), [&] { ++calls; });
    center.post(QStringLiteral("leave"));
    QCOMPARE(calls, 0);
}

void PlatformTest::tasksRunInOrderOnTheApplicationsThread()
{
    QList<int> order;
    bool elsewhere = false;
    std::thread([&] {
        for (int i = 0; i < 100; ++i) {
            MainActor::schedule([&order, &elsewhere, i] {
                order.append(i);
                elsewhere |= !MainActor::isCurrent();
            });
        }
    }).join();
    QVERIFY(order.isEmpty());
    QTRY_COMPARE(order.size(), 100);
    QVERIFY(std::is_sorted(order.cbegin(), order.cend()));
    QVERIFY(!elsewhere);
}

void PlatformTest::headerNamesIgnoreCaseInRequests()
{
    URLRequest request(QUrl(QStringLiteral("http://host/")));
    QVERIFY(!request.allHTTPHeaderFields);
    request.setValue(QStringLiteral("text/html"), QStringLiteral("Accept"));
    request.addValue(QStringLiteral("image/png"), QStringLiteral("accept"));
    QCOMPARE(request.value(QStringLiteral("ACCEPT")), QStringLiteral("text/html, image/png"));
    request.setValue(QStringLiteral("*/*"), QStringLiteral("aCCept"));
    QCOMPARE(request.allHTTPHeaderFields->size(), 1);
}

void PlatformTest::statusText_data()
{
    QTest::addColumn<qint64>("code");
    QTest::addColumn<QString>("text");
    QTest::newRow("registered") << qint64(404) << QStringLiteral("not found");
    QTest::newRow("success has a phrase of its own") << qint64(200) << QStringLiteral("no error");
    QTest::newRow("unregistered falls back to its class") << qint64(299) << QStringLiteral("success");
    QTest::newRow("outside every class") << qint64(-7) << QStringLiteral("server error");
}

void PlatformTest::statusText()
{
    QFETCH(const qint64, code);
    QFETCH(const QString, text);
    QCOMPARE(NSHTTPURLResponse::localizedStringForStatusCode(code), text);
}

QTEST_GUILESS_MAIN(PlatformTest)
#include "PlatformTest.moc"
