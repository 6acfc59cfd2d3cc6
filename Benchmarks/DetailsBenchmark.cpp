// Measures how long a user waits after opening a body of ten megabytes, and what a frame costs while it
// scrolls; for comparison, the time that Qt takes to format the same body, without showing it.

#include "Tests/ScreenDriver.h"

#include "Quorvix/QXRequestRecorder.h"
#include "Quorvix/QuorvixClient.h"

#include "Benchmarks/Contest.h"
#include "Benchmarks/Report.h"
#include "Benchmarks/Samples.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QSettings>
#include <QtCore/QStandardPaths>
#include <QtCore/QThread>
#include <QtGui/QGuiApplication>
#include <QtGui/QTextDocument>

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

    /// The time from a click to the end of the first frame after @p isThere became true.
    template<typename Condition>
    double afterClick(const char *name, Qt::MouseButton button, const Condition &isThere)
    {
        Contest::require(ScreenDriver::waitForRest(m_window, name), name);
        const QPoint at = ScreenDriver::middle(*item(name));
        m_longestTurn = 0;
        m_sinceClick.start();
        QTest::mouseClick(&m_window, button, {}, at);
        return untilFrame(isThere);
    }

    /// The time from the last click to the end of the first frame after @p isThere became true.
    template<typename Condition>
    double untilFrame(const Condition &isThere)
    {
        QDeadlineTimer limit(20'000);
        while (!isThere() && !limit.hasExpired())
            turn();
        for (const int seen = m_frames; m_frames == seen && !limit.hasExpired();)
            turn();
        Contest::require(!limit.hasExpired(), "a frame");
        return double(m_sinceClick.nsecsElapsed()) / 1e6;
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
    QElapsedTimer m_sinceClick;
    int m_frames = 0;
    double m_lastFrame = 0; // milliseconds
    double m_longestTurn = 0;
};

/// A kind of body, and what Qt does for a text of it.
struct Sample
{
    const char *whole;
    const char *first;
    QByteArray body;
    Report::Other (*peer)(const QByteArray &body);
};

constexpr const char *place = "software renderer, click to frame";

void measureBody(Inspector &inspector, const Sample &sample)
{
    inspector.record(sample.body);
    inspector.await("QXRequestRow");
    std::vector<double> firsts;
    std::vector<double> wholes;
    std::vector<double> busy;
    std::vector<double> peers;
    Report::Other peer{};
    for (int turn = 0; turn < turns; ++turn) {
        inspector.rest();
        firsts.push_back(inspector.afterClick("QXRequestRow", Qt::LeftButton,
                                              [&] { return inspector.shows("QXTextView", 0); }));
        wholes.push_back(inspector.untilFrame([&] { return inspector.shows("QXTextView", 100'000); }));
        busy.push_back(inspector.longestTurn());
        inspector.rest();
        if (turn + 1 == turns)
            Contest::printWaits("a frame while scrolling", inspector.scroll("QXRequestDetailsPage"));
        inspector.click("QXBackButton");
        inspector.awaitEnd("QXRequestDetailsView");
        peers.push_back(Contest::milliseconds([&] { peer = sample.peer(sample.body); }));
    }
    peer.value = Contest::median(peers);
    Report::add({.metric = sample.first,
                 .place = place,
                 .unit = "ms",
                 .ours = Contest::median(firsts),
                 .peer = peer,
                 .goal = "60 ms"});
    Report::add({.metric = sample.whole,
                 .place = place,
                 .unit = "ms",
                 .ours = Contest::median(wholes),
                 .peer = peer});
    Report::add({.metric = "of that, the main thread busy at a stretch",
                 .place = "main thread",
                 .unit = "ms",
                 .ours = Contest::median(busy),
                 .goal = "16 ms"});
}

Report::Other formatJson(const QByteArray &body)
{
    const QByteArray text = QJsonDocument::fromJson(body).toJson(QJsonDocument::Indented);
    Contest::require(QString::fromUtf8(text).size() > bodySize, "Qt's JSON");
    return {"QJsonDocument, no frame", 0};
}

Report::Other layOut(const QByteArray &body)
{
    // A tenth, because the whole text takes seconds.
    QTextDocument document;
    document.setPlainText(QString::fromUtf8(body.first(body.size() / 10)));
    Contest::require(document.size().height() > 100'000, "Qt's text");
    return {"QTextDocument, a tenth, no frame", 0};
}

Report::Other makeDigits(const QByteArray &body)
{
    Contest::require(QString::fromLatin1(body.toHex(' ')).size() > bodySize, "Qt's digits");
    return {"QByteArray::toHex, no frame", 0};
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
    Report::add({.metric = "menu of 10 MB of Base64", .place = place, .unit = "ms", .ours = menu});
    Report::add({.metric = "decoded payload of 10 MB of JSON", .place = place, .unit = "ms", .ours = sheet});
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
    const QByteArray json = jsonBody();
    const QByteArray text =
        QByteArray("Some text that a person would read, of a usual length.\n").repeated(bodySize / 55);
    inspector.click("QXFloatingButton");
    std::printf("Bodies of 10 MB, on a phone; median of %d turns\n", turns);
    measureBody(inspector,
                {"JSON of 10 MB, its whole length", "JSON of 10 MB, its first rows", json, formatJson});
    measureBody(inspector,
                {"text of 10 MB, its whole length", "text of 10 MB, its first rows", text, layOut});
    measureBody(inspector, {"bytes of 10 MB, its whole length", "bytes of 10 MB, its first rows",
                            Samples::binaryBytes(bodySize), makeDigits});
    measurePayload(inspector, json);
    return 0;
}
