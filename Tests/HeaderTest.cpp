#include "Tests/Exchanges.h"
#include "Tests/NetworkKit.h"
#include "Tests/ScriptedServer.h"

#include "Platform/NSURLSession.h"
#include "Quorvix/QXArchiveWriter.h"
#include "Quorvix/QXCurlCommandBuilder.h"
#include "Quorvix/QXNetworkAccessManager.h"
#include "Quorvix/QXRedaction.h"
#include "Quorvix/QXRequestDetailsViewModel.h"
#include "Quorvix/QXRequestSections.h"
#include "Quorvix/QXSessionHook.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtNetwork/QNetworkReply>

#include <numeric>

using namespace Quorvix;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// "name: value" for each header or cookie of an array of the archive.
QStringList pairs(const QJsonValue &array)
{
    QStringList found;
    for (const QJsonValue pair : array.toArray())
        found += pair[u"name"_s].toString() + u": "_s + pair[u"value"_s].toString();
    return found;
}

QByteArray archiveOf(const QXRequestTrace &trace)
{
    return QXArchiveWriter::archive(QXArchiveWriter::sourceOf(std::span(&trace, 1)));
}

QJsonValue entryOf(const QXRequestTrace &trace)
{
    return QJsonDocument::fromJson(archiveOf(trace))[u"log"_s][u"entries"_s][0];
}

QStringList shown(const QXRequestTrace &trace, const QString &title)
{
    QStringList found;
    for (const QXRequestSection &section : requestSections(trace)) {
        for (const QXRequestValue &value : section.values) {
            if (section.title == title && value.label.endsWith(u" more"_s))
                found += value.text.split(u'\n');
            else if (section.title == title)
                found += value.label + u": "_s + value.text;
        }
    }
    return found;
}

/// The milliseconds that it takes, the least of several attempts.
template<typename Function>
double cost(Function function, int attempts = 3)
{
    double least = 1e9;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        QElapsedTimer timer;
        timer.start();
        function();
        least = std::min(least, double(timer.nsecsElapsed()) / 1e6);
    }
    return least;
}

} // namespace

/// What a header is, from the wire to everything that shows or exports it.
class HeaderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QXSessionHook::install(); }
    void init() { startAfresh(); }
    void isTheSameEverywhere_data();
    void isTheSameEverywhere();
    void isRefusedWithAReason_data();
    void isRefusedWithAReason();
    void isSentAsItIsShown();
    void costsLinearTime_data();
    void costsLinearTime();

private:
    /// Loads the URL with a session, or with a manager.
    void load(const QUrl &url, bool withManager, std::chrono::milliseconds timeout = 60s);

    ScriptedServer m_server;
};

void HeaderTest::load(const QUrl &url, bool withManager, std::chrono::milliseconds timeout)
{
    if (withManager) {
        QXNetworkAccessManager manager;
        QNetworkRequest request(url);
        request.setTransferTimeout(int(timeout.count()));
        const std::unique_ptr<QNetworkReply> reply(manager.get(request));
        QTRY_VERIFY(reply->isFinished());
        return;
    }
    URLRequest request(url);
    request.timeoutInterval = timeout;
    NSURLSession::shared().dataTaskWithRequest(request, [](auto, auto, auto) {})->resume();
    newest();
}

void HeaderTest::isTheSameEverywhere_data()
{
    QTest::addColumn<bool>("withManager");
    QTest::addColumn<QByteArray>("fields");
    QTest::addColumn<QStringList>("headers");
    QTest::addColumn<QStringList>("cookies");
    QTest::addColumn<QString>("mimeType");
    for (const bool withManager : {false, true}) {
        const auto row = [&](const char *name, const QByteArray &fields, const QStringList &headers,
                             const QStringList &cookies = {},
                             const QString &mimeType = u"application/octet-stream"_s) {
            QTest::addRow("%s: %s", withManager ? "manager" : "session", name)
                << withManager << fields << headers << cookies << mimeType;
        };
        for (const char *name : {"content-type", "Content-Type", "CONTENT-TYPE", "cOnTent-tYpe"})
            row(name, name + ": text/css\r\n"_ba, {u"Content-Type: text/css"_s}, {}, u"text/css"_s);
        for (const char *name : {"set-cookie", "SET-COOKIE"})
            row(name, name + ": a=1; Path=/\r\nSet-cookie: b=2\r\n"_ba, {u"Set-Cookie: a=1; Path=/\nb=2"_s},
                {u"a: 1"_s, u"b: 2"_s});
        row("repeated", "x-one: 1\r\nx-one: 2\r\nx-one: 1\r\n", {u"X-One: 1, 2, 1"_s});
        row("empty", "X-Empty:\r\nX-Full: 1\r\nx-void:   \r\n",
            {u"X-Empty: "_s, u"X-Full: 1"_s, u"X-Void: "_s});
        row("commas in cookies", "Set-Cookie: a=1, b=2; Expires=Wed, 21 Oct 2015 07:28:00 GMT\r\n",
            {u"Set-Cookie: a=1, b=2; Expires=Wed, 21 Oct 2015 07:28:00 GMT"_s}, {u"a: 1, b=2"_s});
        row("hostile cookies",
            "Set-Cookie: =;=\r\nSet-Cookie: ;a=1\r\nSet-Cookie: \"a\"=<b>\\\r\nSet-Cookie: c\r\n",
            {u"Set-Cookie: =;=\n;a=1\n\"a\"=<b>\\\nc"_s}, {u"\"a\": <b>\\"_s});
        row("not ASCII",
            "X-Text: Gr\xC3\xBC\xC3\x9F"
            "e\r\nX-Latin: \xFC\r\n",
            {u"X-Latin: \u00fc"_s, u"X-Text: Grüße"_s});
        QByteArray many;
        QStringList all;
        for (int number = 10; number < 100; ++number) {
            many += "X-" + QByteArray::number(number) + ": " + QByteArray(2000, 'v') + "\r\n";
            all += u"X-%1: %2"_s.arg(number).arg(QString(2000, u'v'));
        }
        row("many", many, all);
        row("large", "X-Large: " + QByteArray(100'000, 'v') + "\r\n",
            {u"X-Large: "_s + QString(100'000, u'v')});
    }
}

void HeaderTest::isTheSameEverywhere()
{
    QFETCH(const bool, withManager);
    QFETCH(const QByteArray, fields);
    QFETCH(QStringList, headers);
    m_server.answer("/", {{{"HTTP/1.1 200 OK\r\nContent-Length: 1\r\n" + fields + "\r\nx"}}});
    load(m_server.url(u"/"_s), withManager);
    const QXRequestTrace trace = newest();
    QVERIFY(trace.response);
    headers.prepend(u"Content-Length: 1"_s);
    headers.sort();
    // Some releases of Qt report no header without a value.
    headers.removeIf([&](const QString &header) {
        return header.endsWith(u": "_s) && !shown(trace, u"RESPONSE HEADERS"_s).contains(header);
    });

    const QJsonValue response = entryOf(trace)[u"response"_s];
    QCOMPARE(pairs(response[u"headers"_s]), headers);
    QCOMPARE(shown(trace, u"RESPONSE HEADERS"_s), headers);
    QTEST(pairs(response[u"cookies"_s]), "cookies");
    QTEST(response[u"content"_s][u"mimeType"_s].toString(), "mimeType");
}

void HeaderTest::isRefusedWithAReason_data()
{
    QTest::addColumn<bool>("withManager");
    QTest::addColumn<QByteArray>("fields");
    for (const bool withManager : {false, true}) {
        const char *const source = withManager ? "manager" : "session";
        QByteArray many;
        for (int number = 0; number < 10'000; ++number)
            many += "X-" + QByteArray::number(number) + ": v\r\n";
        QTest::addRow("%s: many", source) << withManager << many;
        QTest::addRow("%s: large", source)
            << withManager << "X-Large: " + QByteArray(1'000'000, 'v') + "\r\n";
    }
}

/// Qt takes a hundred headers, and 100 KiB for each. Some of its releases then wait until the time is over.
void HeaderTest::isRefusedWithAReason()
{
    QFETCH(const bool, withManager);
    QFETCH(const QByteArray, fields);
    m_server.answer("/", {{{"HTTP/1.1 200 OK\r\nContent-Length: 1\r\n" + fields + "\r\nx"}}});
    load(m_server.url(u"/"_s), withManager, 300ms);
    const QXRequestTrace trace = newest();
    QVERIFY(trace.error && !trace.error->localizedDescription.isEmpty());
    QVERIFY(!trace.response || !trace.response->headers || trace.response->headers->size() < 200);
}

/// The details, the archive and the command tell what arrives at the server.
void HeaderTest::isSentAsItIsShown()
{
    m_server.answer("/", {{{"HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n"}}});
    URLRequest request(m_server.url(u"/"_s));
    request.addValue(u"1"_s, u"X-Repeated"_s);
    request.addValue(u"2"_s, u"x-repeated"_s);
    request.setValue(u"v"_s, u"X-mixed"_s);
    request.setValue(u""_s, u"X-Empty"_s);
    request.setValue(QString(60'000, u'v'), u"X-Large"_s);
    for (int number = 100; number < 400; ++number)
        request.setValue(u"v"_s, u"X-%1"_s.arg(number));
    NSURLSession::shared().dataTaskWithRequest(request, [](auto, auto, auto) {})->resume();
    const QXRequestTrace trace = newest();
    const QStringList headers = shown(trace, u"REQUEST HEADERS"_s);
    QCOMPARE(headers.size(), 304);
    QCOMPARE(pairs(entryOf(trace)[u"request"_s][u"headers"_s]), headers);
    const QString command = QXCurlCommandBuilder::build(trace).value();
    const QByteArray arrived = m_server.arrived().constLast().toLower();
    for (const QString &header : headers) {
        QVERIFY(command.contains(u"-H '"_s + header + u'\''));
        const QByteArray line =
            "\r\n" + header.toUtf8().toLower() + "\r\n"; // as newer releases of Qt send it
        QVERIFY2(arrived.contains(line), qPrintable(header.left(50)));
    }
}

void HeaderTest::costsLinearTime_data()
{
    QTest::addColumn<HTTPHeaderFields>("small");
    QTest::addColumn<HTTPHeaderFields>("large");
    const auto many = [](int count) {
        HTTPHeaderFields fields;
        for (int number = 0; number < count; ++number)
            fields.insert(u"X-Header-%1"_s.arg(number), u"value"_s);
        return fields;
    };
    const auto cookies = [](const QString &unit, qsizetype count) {
        const QString text = unit.repeated(count);
        return HTTPHeaderFields{{u"Cookie"_s, text}, {u"Set-Cookie"_s, text}};
    };
    QTest::newRow("number of headers") << many(1000) << many(10'000);
    for (const char *unit : {"a=1;\n", ";", "\n", " "})
        QTest::addRow("1 MB of cookies: %s", QByteArray(unit).replace('\n', "line break").constData())
            << cookies(QString::fromLatin1(unit), 100'000 / qstrlen(unit))
            << cookies(QString::fromLatin1(unit), 1'000'000 / qstrlen(unit));
}

/// From the completion on the main thread to the details and all exports, none is slower than its input is
/// long.
void HeaderTest::costsLinearTime()
{
    QFETCH(const HTTPHeaderFields, small);
    QFETCH(const HTTPHeaderFields, large);
    using Task = std::function<void(const HTTPHeaderFields &)>;
    const auto traceWith = [](const HTTPHeaderFields &fields) {
        QXRequestTrace trace = Exchanges::makeTrace(u"https://h.example/"_s, fields);
        trace.response = Exchanges::makeResponseTrace(200, "x", fields);
        return trace;
    };
    const QList<std::pair<const char *, Task>> tasks{
        {"details",
         [&](const HTTPHeaderFields &fields) {
             const QXRequestDetailsViewModel model(traceWith(fields));
             for (int row = 0; row < model.rowCount(); ++row) {
                 const auto values =
                     model.data(model.index(row), QXRequestDetailsViewModel::ValuesRole).toList();
                 QVERIFY(values.size() <= 201); // the screen has an item for each
             }
         }},
        {"archive",
         [&](const HTTPHeaderFields &fields) {
             (void)archiveOf(traceWith(fields));
         }},
        {"command",
         [&](const HTTPHeaderFields &fields) {
             (void)QXCurlCommandBuilder::build(traceWith(fields));
         }},
    };
    // The response is made on the thread that loads.
    const auto completion = [&](const HTTPHeaderFields &fields) {
        NSHeaderFields all;
        for (auto it = fields.cbegin(); it != fields.cend(); ++it)
            all.emplace(it.key(), it.value());
        const auto response = Exchanges::makeResponse(200, std::move(all));
        double least = 1e9;
        for (int attempt = 0; attempt < 5; ++attempt) {
            recorder().clear();
            Exchanges::record(u"ID"_s, u"https://h.example/"_s);
            least = std::min(least, cost([&] { recorder().complete(u"ID"_s, response, "x", {}); }, 1));
        }
        return least;
    };
    const auto check = [](const char *name, double before, double after) {
        // Ten times as much; a hundred times as long if the time were quadratic.
        QVERIFY2(after < 35 * before || after < 5,
                 qPrintable(u"%1: %2 ms, %3 ms"_s.arg(QLatin1StringView(name)).arg(before).arg(after)));
    };
    check("completion", completion(small), completion(large));
    for (const auto &task : tasks)
        check(task.first, cost([&] { task.second(small); }), cost([&] { task.second(large); }));
}

QTEST_MAIN(HeaderTest)
#include "HeaderTest.moc"
