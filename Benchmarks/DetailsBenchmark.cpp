// Measures how long a user waits after opening a body of ten megabytes, and what a frame costs while it
// scrolls; for comparison, the time that Qt takes to format the same body, without showing it.

#include "Quorvix/QXRequestRecorder.h"

#include "Benchmarks/Report.h"
#include "Benchmarks/Samples.h"
#include "Benchmarks/Screens.h"

#include <QtCore/QJsonDocument>
#include <QtGui/QTextDocument>

#include <cstdio>
#include <vector>

using namespace Quorvix;
using namespace Qt::StringLiterals;

namespace {

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

/// The inspector with one exchange.
class Inspector : public Screens::Inspector
{
public:
    Inspector() : Screens::Inspector(Screens::phone, Screens::ownMilliseconds)
    {
        QObject::connect(&window(), &QQuickWindow::afterAnimating, [this] { m_frame.start(); });
        QObject::connect(&window(), &QQuickWindow::frameSwapped,
                         [this] { m_lastFrame = double(m_frame.nsecsElapsed()) / 1e6; });
    }

    void record(const QByteArray &body)
    {
        QXRequestRecorder::shared().clear();
        const QUrl url(u"https://shop.test/v1/export"_s);
        QXRequestRecorder::shared().record(u"id"_s, URLRequest{url});
        QXRequestRecorder::shared().complete(u"id"_s, NSHTTPURLResponse::create(url, 200, u"HTTP/1.1"_s, {}),
                                             body, {});
    }

    /// The time from a click to the end of the first frame after @p isThere became true.
    template<typename Condition>
    double afterClick(const char *name, Qt::MouseButton button, const Condition &isThere)
    {
        m_click = clickAtRest(name, button);
        m_sinceClick.start();
        return untilFrame(isThere);
    }

    /// The time from the last click to the end of the first frame after @p isThere became true.
    template<typename Condition>
    double untilFrame(const Condition &isThere)
    {
        QDeadlineTimer limit(20'000);
        while (!isThere() && !limit.hasExpired())
            turn();
        for (const int seen = frames(); frames() == seen && !limit.hasExpired();)
            turn();
        Contest::require(!limit.hasExpired(), "a frame");
        return m_click + double(m_sinceClick.nsecsElapsed()) / 1e6;
    }

    [[nodiscard]] bool shows(const char *text, qreal rows)
    {
        const QQuickItem *const view = item(text);
        return view && view->height() > 0 && view->property("contentHeight").toReal() > rows;
    }

    /// The time of each frame while a page scrolls by a few lines per frame.
    std::vector<double> scroll(const char *page)
    {
        std::vector<double> times;
        for (int i = 0; i < scrolledFrames; ++i) {
            QQuickItem *const flickable = item(page);
            flickable->setProperty("contentY", flickable->property("contentY").toReal() + step);
            for (const int seen = frames(); frames() == seen;)
                QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 1);
            times.push_back(m_lastFrame);
        }
        return times;
    }

    void wait() { QTest::qWait(500); }

private:
    QElapsedTimer m_frame;
    QElapsedTimer m_sinceClick;
    double m_click = 0;     // milliseconds
    double m_lastFrame = 0; // milliseconds
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
        inspector.wait();
        firsts.push_back(inspector.afterClick("QXRequestRow", Qt::LeftButton,
                                              [&] { return inspector.shows("QXTextView", 0); }));
        wholes.push_back(inspector.untilFrame([&] { return inspector.shows("QXTextView", 100'000); }));
        busy.push_back(inspector.longestTurn());
        inspector.wait();
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
                 .goal = "60 ms",
                 .goalValue = 60});
    Report::add({.metric = sample.whole,
                 .place = place,
                 .unit = "ms",
                 .ours = Contest::median(wholes),
                 .peer = peer});
    const QByteArray stretch = QByteArray(sample.whole) + ": longest stretch";
    Report::add({.metric = stretch.constData(),
                 .place = "main thread, without waits for a processor",
                 .unit = "ms",
                 .ours = Contest::median(busy),
                 .goal = "16 ms",
                 .goalValue = 16});
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
    inspector.wait();
    const double menu = inspector.afterClick("QXTextView", Qt::RightButton,
                                             [&] { return inspector.item("QXContextMenuCard") != nullptr; });
    const double sheet = inspector.afterClick("QXDecodeValueItem", Qt::LeftButton, [&] {
        return inspector.item("QXDecodedPayloadSheet") && inspector.shows("QXTextView", 100'000);
    });
    Report::add({.metric = "menu of 10 MB of Base64", .place = place, .unit = "ms", .ours = menu});
    Report::add({.metric = "decoded payload of 10 MB of JSON", .place = place, .unit = "ms", .ours = sheet});
    inspector.wait();
    Contest::printWaits("a frame while the payload scrolls", inspector.scroll("QXDecodedPayloadPage"));
}

} // namespace

int main(int argc, char *argv[])
{
    const Screens::Program<> program(argc, argv, "DetailsBenchmark");
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
