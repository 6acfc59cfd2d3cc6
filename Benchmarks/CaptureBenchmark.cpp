// Measures exchanges per second over loopback sockets, alternately with and without capture.

#include "Examples/DemoServer.h"

#include "Quorvix/QXRequestRecorder.h"
#include "Quorvix/QuorvixClient.h"

#include "Platform/NSURLSession.h"
#include "Platform/ObjectRuntime.h"

#include "Benchmarks/Contest.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QEventLoop>

#include <atomic>
#include <cstdio>
#include <vector>

using namespace Quorvix;

namespace {

using Clock = std::chrono::steady_clock;

constexpr int rounds = 9;
constexpr int exchanges = 1'500;
constexpr int concurrent = 12;

/// Runs the exchanges, several at a time, each sent by @p send, and returns the number per second.
double exchangesPerSecond(NSURLSession &session, const QUrl &url, NSURLSession::DataTaskImplementation *send)
{
    QEventLoop loop;
    int started = 0;
    int ended = 0;
    std::function<void()> next = [&] {
        if (started == exchanges)
            return;
        ++started;
        send(session, URLRequest(url), [&](auto, auto, auto) {
            // Both cases count on the main thread, so that only the capture makes a difference.
            QMetaObject::invokeMethod(
                qApp,
                [&] {
                    if (++ended == exchanges)
                        loop.quit();
                    else
                        next();
                },
                Qt::QueuedConnection);
        })->resume();
    };
    const auto start = Clock::now();
    for (int i = 0; i < concurrent; ++i)
        next();
    loop.exec();
    return exchanges / std::chrono::duration<double>(Clock::now() - start).count();
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    DemoServer server;
    if (!server.start())
        return 1;
    const QUrl url = server.url(QStringLiteral("/binary?size=1000"));
    std::ignore = QuorvixClient::shared();

    // The two methods are exchanged: each selector runs the implementation of the other one.
    const auto &sessionClass = NSURLSession::objectClass();
    const auto implementation = [&](QByteArrayView selector) {
        return sessionClass.implementation<NSURLSession::DataTaskImplementation>(
            class_getInstanceMethod(sessionClass, selector));
    };
    auto *const captured = implementation(NSURLSession::dataTaskSelector);
    auto *const plain = implementation("qx_hookedDataTaskWith:completionHandler:");

    NSURLSession session;
    exchangesPerSecond(session, url, plain); // warms up
    std::vector<double> with;
    std::vector<double> without;
    std::vector<double> ratios;
    for (int round = 0; round < rounds; ++round) {
        without.push_back(exchangesPerSecond(session, url, plain));
        with.push_back(exchangesPerSecond(session, url, captured));
        ratios.push_back(with.back() / without.back());
    }
    std::printf("Exchanges per second over loopback, 1,000-byte bodies, median of %d turns\n", rounds);
    std::printf("  without capture  %8.0f\n  with capture     %8.0f\n  ratio            %8.3f\n",
                Contest::median(without), Contest::median(with), Contest::median(ratios));
    std::printf("  captured         %8d\n", int(QXRequestRecorder::shared().requests().size()));
    return 0;
}
