#include "Benchmarks/Guard/HotPaths.h"

#include "Quorvix/QXApiTreeParser.h"
#include "Quorvix/QXArchiveWriter.h"
#include "Quorvix/QXPayloadDecoder.h"
#include "Quorvix/QXRequestDetailsViewModel.h"
#include "Quorvix/QXRequestListViewModel.h"
#include "Quorvix/QXRequestRecorder.h"
#include "Quorvix/QXSessionHook.h"

#include "Text/QXTextRows.h"

#include "Platform/BackgroundThread.h"
#include "Platform/NSURLSession.h"
#include "Platform/ObjectRuntime.h"

#include "Benchmarks/Contest.h"
#include "Benchmarks/Samples.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QThread>

#include <atomic>
#include <memory>

using namespace Quorvix;
using namespace Qt::StringLiterals;
using Contest::require;

namespace {

constexpr int columnsOfAPhone = 42;

QByteArray jsonBody(qsizetype size)
{
    QByteArray body = "{\"items\":[";
    for (int i = 0; body.size() < size; ++i) {
        const QByteArray number = QByteArray::number(i);
        body += (i == 0 ? "{\"id\":" : ",{\"id\":") + number + ",\"title\":\"The \\\"title\\\" of item " +
                number + "\",\"city\":\"Genève\",\"price\":" + number + ".25,\"on\":true}";
    }
    return body + "]}";
}

URLRequest requestOf(int number)
{
    URLRequest request(QUrl(u"https://api.example.com/v1/products/%1?page=%2"_s.arg(number).arg(number % 7)));
    request.setValue(u"application/json"_s, u"Accept"_s);
    return request;
}

NSURLResponsePtr jsonResponse()
{
    return NSHTTPURLResponse::create(QUrl(u"https://api.example.com/"_s), 200, u"HTTP/1.1"_s,
                                     {{u"Content-Type"_s, u"application/json"_s}});
}

QString idOf(int number)
{
    return u"6BA7B810-9DAD-11D1-80B4-%1"_s.arg(number, 12, 10, QChar(u'0'));
}

void fillStore(int count)
{
    for (int i = 0; i < count; ++i)
        QXRequestRecorder::shared().record(idOf(i), requestOf(i));
    QCoreApplication::processEvents();
}

/// Waits without instructions of its own, so that only the work of all threads counts.
template<typename Condition>
void await(const Condition &condition)
{
    while (!condition())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

/// Waits until nothing is left to do in the background, because where the work ends would otherwise depend on
/// which thread is faster.
void awaitBackground()
{
    for (const auto post : {&BackgroundThread::post, &BackgroundThread::postTask}) {
        std::atomic<bool> isDone = false;
        post(
            [&] {
                isDone = true;
                QMetaObject::invokeMethod(
                    QCoreApplication::instance(), [] {}, Qt::QueuedConnection);
            },
            {});
        await([&] { return isDone.load(); });
    }
    QCoreApplication::processEvents();
}

struct Exchange
{
    QString id;
    URLRequest request;
};

std::vector<Exchange> exchangesAfter(int known, int count)
{
    std::vector<Exchange> exchanges;
    for (int i = known; i < known + count; ++i)
        exchanges.push_back({idOf(i), requestOf(i)});
    return exchanges;
}

/// Records and completes exchanges, each in a turn of the event loop.
void complete(const std::vector<Exchange> &exchanges, const NSURLResponsePtr &response,
              const QByteArray &body)
{
    for (const Exchange &exchange : exchanges) {
        QXRequestRecorder::shared().record(exchange.id, exchange.request);
        QCoreApplication::processEvents();
        QXRequestRecorder::shared().complete(exchange.id, response, body, {});
        QCoreApplication::processEvents();
    }
}

std::function<void()> record(int amount)
{
    constexpr int known = 10'000;
    const int count = 10 * amount;
    fillStore(known);
    return [count, exchanges = exchangesAfter(known, count), response = jsonResponse(),
            body = QByteArray(1000, 'x')] {
        complete(exchanges, response, body);
        require(QXRequestRecorder::shared().requests().size() == known + count, "exchanges");
    };
}

/// The list shows the changes of a few milliseconds together. How many that are must not depend on the time
/// that they take here: each step makes all of its changes in one turn of the event loop, and waits until
/// they are shown.
std::function<void()> recordWithOpenList(int amount)
{
    constexpr int known = 10'000;
    constexpr int step = 20;
    const int steps = 10 * amount / step;
    fillStore(known);
    const auto model = std::make_shared<QXRequestListViewModel>();
    QCoreApplication::processEvents();
    return [model, exchanges = exchangesAfter(known, steps * step), response = jsonResponse(),
            body = QByteArray(1000, 'x')] {
        for (auto first = exchanges.cbegin(); first != exchanges.cend(); first += step) {
            const auto end = first + step;
            for (auto exchange = first; exchange != end; ++exchange)
                QXRequestRecorder::shared().record(exchange->id, exchange->request);
            await([&] { return model->trace(0).id == std::prev(end)->id; });
            for (auto exchange = first; exchange != end; ++exchange)
                QXRequestRecorder::shared().complete(exchange->id, response, body, {});
            await([&] { return model->trace(0).response.has_value(); });
        }
        require(model->rowCount() == known + int(exchanges.size()), "rows");
    };
}

/// What the rows of a list show while it is scrolled.
std::function<void()> scroll(int amount)
{
    const int count = 10 * amount;
    fillStore(count);
    const auto model = std::make_shared<QXRequestListViewModel>();
    QCoreApplication::processEvents();
    return [model, count] {
        qsizetype letters = 0;
        const QList<int> roles = model->roleNames().keys();
        for (int row = 0; row < count; ++row) {
            for (const int role : roles)
                letters += model->data(model->index(row), role).toString().size();
        }
        require(letters > qsizetype(10) * count, "titles");
    };
}

/// Types a word, of which each letter is a keystroke.
std::function<void()> search(int amount)
{
    const int count = 200 * amount;
    fillStore(count);
    const auto model = std::make_shared<QXRequestListViewModel>();
    QCoreApplication::processEvents();
    require(model->rowCount() == count, "an open list");
    return [model, count] {
        const QString word = u"products/99"_s;
        for (int letters = 1; letters <= word.size(); ++letters) {
            model->setSearchText(word.left(letters));
            if (letters == 1)
                await([&] { return model->rowCount() == count; });
        }
        // 99, 990 to 999, 9900 to 9999.
        await([&] { return model->rowCount() == 111; });
    };
}

/// The way of an exchange through a captured session, but for its loading: a thread calls the completion
/// handlers.
std::function<void()> sessionHook(int amount)
{
    static std::vector<DataTaskCompletionHandler> handlers;
    const int count = 10 * amount;
    ObjectClass &session = NSURLSession::objectClass();
    constexpr QByteArrayView selector{"guard_dataTaskWith:completionHandler:"};
    session.addMethod<NSURLSession::DataTaskImplementation>(
        selector, [](NSURLSession &, const URLRequest &, DataTaskCompletionHandler handler) {
            handlers.push_back(std::move(handler));
            return NSURLSessionDataTaskPtr();
        });
    method_exchangeImplementations(class_getInstanceMethod(session, NSURLSession::dataTaskSelector),
                                   class_getInstanceMethod(session, selector));
    QXSessionHook::install();
    handlers.reserve(std::size_t(count));
    return [count, exchanges = exchangesAfter(0, count), response = jsonResponse(),
            body = QByteArray(1000, 'x')] {
        int completed = 0;
        for (const Exchange &exchange : exchanges) {
            std::ignore = NSURLSession::shared().dataTaskWithRequest(
                exchange.request, [&](const auto &, const auto &, const auto &) { ++completed; });
        }
        const std::unique_ptr<QThread> thread(QThread::create([&] {
            for (const auto &handler : handlers)
                handler(body, response, {});
        }));
        thread->start();
        thread->wait();
        await([&] { return completed == count; });
        require(QXRequestRecorder::shared().requests().size() == count, "captured exchanges");
    };
}

std::function<void()> archiveOf(int count, const QByteArray &body)
{
    std::vector<QXRequestTrace> traces;
    const NSHTTPURLResponse response(QUrl(u"https://api.example.com/"_s), 200, u"HTTP/1.1"_s,
                                     {{u"Content-Type"_s, u"application/json"_s}});
    for (int i = 0; i < count; ++i) {
        traces.emplace_back(idOf(i), requestOf(i));
        traces.back().response = QXResponseTrace(response, body);
    }
    return [traces, size = count * body.size()] {
        const QByteArray text = QXArchiveWriter::archive(QXArchiveWriter::sourceOf(traces));
        require(text.size() > size, "an archive");
    };
}

std::function<void()> archive(int amount)
{
    return archiveOf(amount / 2, jsonBody(20'000));
}

std::function<void()> binaryArchive(int amount)
{
    return archiveOf(amount / 2, Samples::binaryBytes(20'000));
}

std::function<void()> decode(int amount)
{
    const QByteArray body = jsonBody(qsizetype(10'000) * amount);
    return [text = body.toBase64(), size = body.size()] {
        const auto payload = QXPayloadDecoder::decodePayload(QByteArrayView(text));
        require(payload && payload->sections.front().content.size() > size, "a payload");
    };
}

std::function<void()> tree(int amount)
{
    return [body = jsonBody(qsizetype(10'000) * amount)] {
        const auto fields = QXApiTreeParser::parse(QByteArrayView(body));
        require(bool(fields) && !fields.value().isEmpty(), "a tree");
    };
}

QXTextDocument *bodyOf(const QXRequestDetailsViewModel &model)
{
    for (int row = 0; row < model.rowCount(); ++row) {
        const QVariant document = model.data(model.index(row), QXRequestDetailsViewModel::DocumentRole);
        if (auto *const found = document.value<QXTextDocument *>())
            return found;
    }
    return nullptr;
}

/// What happens after a click on an exchange, in all threads: until the rows of its body can be drawn, and
/// what is found out of the body then.
std::function<void()> bodyShown(int amount)
{
    QXRequestTrace trace(idOf(0), requestOf(0));
    const qsizetype size = qsizetype(10'000) * amount;
    trace.response =
        QXResponseTrace(NSHTTPURLResponse(QUrl(u"https://api.example.com/"_s), 200, u"HTTP/1.1"_s,
                                          {{u"Content-Type"_s, u"application/json"_s}}),
                        jsonBody(size));
    return [trace, size] {
        QXRequestDetailsViewModel model(trace);
        await([&] { return bodyOf(model) != nullptr; });
        const QXTextDocument &document = *bodyOf(model);
        QXTextRows rows;
        document.content().breakInto(rows, columnsOfAPhone);
        require(document.length() > size && rows.count() > int(size / columnsOfAPhone), "the rows of a body");
        awaitBackground();
    };
}

} // namespace

const std::vector<HotPath> &hotPaths()
{
    static const std::vector<HotPath> paths{
        {"1,000 exchanges recorded and completed, at 10,000", record},
        {"1,000 exchanges with the list open, at 10,000", recordWithOpenList},
        {"1,000 exchanges through the hook of a session", sessionHook},
        {"a word typed into the search, at 20,000", search},
        {"1,000 rows of the list", scroll},
        {"HAR of 50 bodies of 20 KB of text", archive},
        {"HAR of 50 binary bodies of 20 KB", binaryArchive},
        {"JSON of 1 MB as a tree", tree},
        {"JSON of 1 MB opened", bodyShown},
        {"JSON of 1 MB decoded from Base64", decode},
    };
    return paths;
}
