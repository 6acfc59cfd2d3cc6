// Measures how long a user waits after opening a body of ten megabytes, and what a frame costs while it
// scrolls; for comparison, the time that Qt takes to format the same JSON.

#include "Tests/ScreenDriver.h"

#include "Quorvix/QXRequestRecorder.h"
#include "Quorvix/QuorvixClient.h"

#include "Benchmarks/Contest.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QSettings>
#include <QtCore/QStandardPaths>
#include <QtCore/QThread>
#include <QtGui/QGuiApplication>

#include <algorithm>
#include <cstdio>
#include <vector>

using namespace Quorvix;
using namespace Qt::StringLiterals;

namespace {

constexpr QSize phone(390, 844);
constexpr qsizetype bodySize = 10'000'000;
constexpr int turns = 7;
constexpr int scrolledFrames = 120;
constexpr int step = 40;

QByteArray jsonBody()
{
    QByteArray body = "{\"items\":[";
    for (int i = 0; body.size() < bodySize; ++i) {
        const QByteArray number = QByteArray::number(i);
        body += (i == 0 ? "{\"id\":" : ",{\"id\":") + number + ",\"title\":\"The title of item " + number +
                "\",\"summary\":\"Some text that a person would read, of a usual length.\",\"on\":true}";
    }
    return body + "]}";
}

/// The inspector with one exchange, over an empty window of a host.
class Inspector
{
public:
    Inspector()
    {
        m_window.resize(phone);
        m_window.show();
        QuorvixClient::shared().show();
        QObject::connect(&m_window, &QQuickWindow::afterAnimating, [this] { m_frame.start(); });
        QObject::connect(&m_window, &QQuickWindow::frameSwapped, [this] {
            ++m_frames;
            m_lastFrame = double(m_frame.nsecsElapsed()) / 1e6;
        });
    }

    ~Inspector() { QuorvixClient::shared().hide(); }

    void record(const QByteArray &body)
    {
        QXRequestRecorder::shared().clear();
        const QUrl url(u"https://shop.test/v1/export"_s);
        QXRequestRecorder::shared().record(u"id"_s, URLRequest{url});
        QXRequestRecorder::shared().complete(u"id"_s, NSHTTPURLResponse::create(url, 200, u"HTTP/1.1"_s, {}),
                                             body, {});
    }

    QQuickItem *item(const char *name) { return ScreenDriver::find(m_window, name); }
    void click(const char *name) { ScreenDriver::click(m_window, name); }

    void await(const char *name)
    {
        Contest::require(QTest::qWaitFor([&] { return item(name) != nullptr; }), name);
    }

    void awaitEnd(const char *name)
    {
        Contest::require(QTest::qWaitFor([&] { return item(name) == nullptr; }), name);
    }

    /// The time from the end of a click to the end of the first frame after @p isThere became true.
    template<typename Condition>
    double afterClick(const char *name, Qt::MouseButton button, const Condition &isThere)
    {
        Contest::require(ScreenDriver::waitForRest(m_window, name), name);
        const QPoint at = ScreenDriver::middle(*item(name));
        m_longestTurn = 0;
        QElapsedTimer timer;
        timer.start();
        QTest::mouseClick(&m_window, button, {}, at);
        QDeadlineTimer limit(20'000);
        while (!isThere() && !limit.hasExpired())
            turn();
        for (const int seen = m_frames; m_frames == seen && !limit.hasExpired();)
            turn();
        Contest::require(!limit.hasExpired(), name);
        return double(timer.nsecsElapsed()) / 1e6;
    }

    [[nodiscard]] bool shows(const char *text, qreal rows)
    {
        const QQuickItem *const view = item(text);
        return view && view->height() > 0 && view->property("contentHeight").toReal() > rows;
    }

    /// The time of each frame while a page scrolls by a few lines per frame.
    std::vector<double> scroll(const char *page)
    {
        std::vector<double> frames;
        for (int i = 0; i < scrolledFrames; ++i) {
            QQuickItem *const flickable = item(page);
            flickable->setProperty("contentY", flickable->property("contentY").toReal() + step);
            for (const int seen = m_frames; m_frames == seen;)
                QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 1);
            frames.push_back(m_lastFrame);
        }
        return frames;
    }

    void rest() { QTest::qWait(500); }
    /// The longest time that the main thread was busy without a pause since the last click, in milliseconds.
    [[nodiscard]] double longestTurn() const { return m_longestTurn; }

private:
    void turn()
    {
        QThread::usleep(100); // lets other threads work
        m_longestTurn =
            std::max(m_longestTurn, Contest::milliseconds([] { QCoreApplication::processEvents(); }));
    }

    QQuickWindow m_window;
    QElapsedTimer m_frame;
    int m_frames = 0;
    double m_lastFrame = 0; // milliseconds
    double m_longestTurn = 0;
};

void measureBody(Inspector &inspector, const QByteArray &body)
{
    inspector.record(body);
    inspector.click("QXFloatingButton");
    inspector.await("QXRequestRow");
    std::vector<double> screens;
    std::vector<double> bodies;
    std::vector<double> busy;
    std::vector<double> peers;
    for (int turn = 0; turn < turns; ++turn) {
        inspector.rest();
        screens.push_back(inspector.afterClick("QXRequestRow", Qt::LeftButton, [&] {
            return inspector.item("QXRequestDetailsView") != nullptr;
        }));
        inspector.rest();
        inspector.click("QXBackButton");
        inspector.awaitEnd("QXRequestDetailsView");
        inspector.rest();
        bodies.push_back(inspector.afterClick("QXRequestRow", Qt::LeftButton,
                                              [&] { return inspector.shows("QXTextView", 100'000); }));
        busy.push_back(inspector.longestTurn());
        inspector.rest();
        if (turn + 1 < turns) {
            inspector.click("QXBackButton");
            inspector.awaitEnd("QXRequestDetailsView");
        }
        peers.push_back(Contest::milliseconds([&] {
            const QString text =
                QString::fromUtf8(QJsonDocument::fromJson(body).toJson(QJsonDocument::Indented));
            Contest::require(text.size() > bodySize, "Qt's JSON");
        }));
    }
    Contest::printWaits("click to the screen's first frame", screens);
    Contest::printWaits("click to the body's first frame", bodies);
    Contest::printWaits("main thread busy at a stretch until then", busy);
    Contest::printWaits("QJsonDocument, laying the JSON out anew", peers);
    std::printf("  ratio %.2f\n", Contest::median(bodies) / Contest::median(peers));
    Contest::printWaits("a frame while scrolling", inspector.scroll("QXRequestDetailsPage"));
    inspector.click("QXBackButton");
    inspector.awaitEnd("QXRequestDetailsView");
}

void measurePayload(Inspector &inspector, const QByteArray &body)
{
    inspector.record(body.toBase64());
    inspector.click("QXRequestRow");
    inspector.await("QXTextView");
    inspector.rest();
    const double menu = inspector.afterClick("QXTextView", Qt::RightButton,
                                             [&] { return inspector.item("QXContextMenuCard") != nullptr; });
    const double sheet = inspector.afterClick("QXDecodeValueItem", Qt::LeftButton, [&] {
        return inspector.item("QXDecodedPayloadSheet") && inspector.shows("QXTextView", 100'000);
    });
    Contest::printWaits("right click to the menu's first frame", {menu});
    Contest::printWaits("click to the decoded payload's first frame", {sheet});
    inspector.rest();
    Contest::printWaits("a frame while the payload scrolls", inspector.scroll("QXDecodedPayloadPage"));
}

} // namespace

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    QStandardPaths::setTestModeEnabled(true);
    const QGuiApplication application(argc, argv);
    QCoreApplication::setOrganizationName(u"QuorvixBenchmarks"_s);
    QCoreApplication::setApplicationName(u"DetailsBenchmark"_s);
    Inspector inspector;
    const QByteArray body = jsonBody();
    std::printf("A JSON body of %.0f MB, on a phone; %d turns\n", double(body.size()) / 1e6, turns);
    measureBody(inspector, body);
    std::printf("The same in Base64\n");
    measurePayload(inspector, body);
    return 0;
}
