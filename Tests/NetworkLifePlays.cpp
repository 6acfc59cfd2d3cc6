#include "Tests/NetworkPlays.h"

#include <QtCore/QCryptographicHash>
#include <QtCore/QDateTime>
#include <QtCore/QFile>
#include <QtCore/QTimer>
#include <QtNetwork/QNetworkDiskCache>

#include <algorithm>
#if QT_VERSION >= QT_VERSION_CHECK(6, 7, 0)
#include <QtNetwork/QRestAccessManager>
#include <QtNetwork/QRestReply>
#endif

using namespace Qt::StringLiterals;

using Reply = QNetworkReply;
using Request = QNetworkRequest;
using Stage = NetworkStage;

void NetworkPlays::addCaches()
{
    const QByteArray page("<p>page</p>");
    const QByteArray fresh("Expires: Fri, 01 Jan 2100 00:00:00 GMT\r\n");
    const std::tuple<const char *, QByteArray, QByteArray> answers[] = {
        {"fresh", httpAnswer("200 OK", page, fresh), httpAnswer("200 OK", "another")},
        {"unchanged", httpAnswer("200 OK", page, "ETag: \"1\"\r\nCache-Control: must-revalidate\r\n"),
         "HTTP/1.1 304 Not Modified\r\nETag: \"1\"\r\nX-New: 1\r\n\r\n"},
        {"changed", httpAnswer("200 OK", page, "ETag: \"1\"\r\n"),
         httpAnswer("200 OK", "another", "ETag: \"2\"\r\n")},
        {"not to be stored", httpAnswer("200 OK", page, "Cache-Control: no-store\r\n"),
         httpAnswer("200 OK", "another")},
        {"compressed", httpAnswer("200 OK", qCompress(page).mid(4), "Content-Encoding: deflate\r\n" + fresh),
         ""},
#if QT_VERSION < QT_VERSION_CHECK(6, 5, 0)
        // Newer Qt waits for ever after this failure.
        {"before a failure", "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n4\r\npage\r\n0\r\n\r\n",
         "HTTP/1.1 500 Internal Server Error\r\nTransfer-Encoding: chunked\r\n\r\n"},
#endif
        {"redirect", httpAnswer("301 Moved", page, "Location: /end\r\n" + fresh),
         httpAnswer("200 OK", "another")},
    };
    const std::pair<const char *, int> loads[] = {{"always network", Request::AlwaysNetwork},
                                                  {"prefer network", Request::PreferNetwork},
                                                  {"prefer cache", Request::PreferCache},
                                                  {"always cache", Request::AlwaysCache}};
    for (const auto &[name, first, second] : answers) {
        for (const auto &[load, control] : loads) {
            row(QByteArray("cache, ") + name + ", " + load, [=, first = first, second = second,
                                                             control = control](Stage &stage) {
                // Qt corrupts its memory now and then when it follows a redirect and has a cache.
                stage.manager->setRedirectPolicy(Request::ManualRedirectPolicy);
                auto *const cache = new QNetworkDiskCache(stage.manager);
                cache->setCacheDirectory(stage.folder.path());
                stage.manager->setCache(cache);
                // The new answer never ends where Qt takes the old one in its place.
                const QByteArrayList changed =
                    second.contains("chunked") ? QByteArrayList{second, {}} : QByteArrayList{second};
                stage.server.answer("/", {{{first}}, {changed, second.isEmpty()}});
                stage.each("readyRead", [](Stage &s, Reply *reply) { s.diary.note("read", reply->read(4)); });
                Request request = stage.request();
                stage.get(request);
                stage.finish();
                stage.diary.replies().back()->readAll();
                request.setAttribute(Request::CacheLoadControlAttribute, control);
                stage.get(request);
                stage.finish();
                stage.diary.note("cache", cache->metaData(request.url()).rawHeaders());
                // The failure and what is in the cache come in any order for HEAD.
                if (changed.size() == 1)
                    stage.watch(stage.manager->head(request));
            });
        }
    }
}

void NetworkPlays::addFailures()
{
    for (const char *url : {"http://127.0.0.1:1/", "http://host.invalid/", "http://", "", "unknown:x",
                            "https://127.0.0.1:1/", "//no/scheme", "http://127.0.0.1:99999/"}) {
        row(QByteArray("URL ") + url,
            [url](Stage &stage) { stage.get(Request(QUrl(QString::fromLatin1(url)))); });
        // Qt leaks the body of a POST by a scheme that it does not know.
        if (qstrncmp(url, "http", 4) != 0)
            continue;
        row(QByteArray("POST to URL ") + url, [url](Stage &stage) {
            stage.watch(stage.manager->post(Request(QUrl(QString::fromLatin1(url))), QByteArray("x")));
        });
    }
    for (const char *url : {"file:FOLDER/file", "file:FOLDER/none/file", "file:FOLDER", "qrc:/nothing",
                            "data:,hello", "data:text/html;base64,PGI+", "data:broken"}) {
        row(QByteArray("local URL ") + url, [url](Stage &stage) {
            const QUrl address(QString::fromLatin1(url).replace(u"FOLDER"_s, stage.folder.path()));
            QFile file(stage.folder.filePath(u"file"_s));
            if (file.open(QIODevice::WriteOnly) && file.write("content") > 0 && file.flush())
                file.setFileTime(QDateTime::fromSecsSinceEpoch(1'000'000'000), QFile::FileModificationTime);
            stage.diary.note("class", stage.get(Request(address))->metaObject()->className());
        });
    }
    const std::pair<const char *, ScriptedServer::Answer> silences[] = {
        {"before the head", {{"", ""}}},
        {"within the body", {{"HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nabc", ""}}}};
    for (const auto &[name, silence] : silences) {
        for (const bool isOfManager : {false, true}) {
            row(QByteArray("time-out ") + name + (isOfManager ? " of manager" : " of request"),
                [silence = silence, isOfManager](Stage &stage) {
                    stage.server.answer("/", {silence});
                    Request request = stage.request();
                    if (isOfManager)
                        stage.manager->setTransferTimeout(100);
                    else
                        request.setTransferTimeout(100);
                    stage.get(request);
                });
        }
    }
}

void NetworkPlays::addLives()
{
    for (const bool isOfManager : {false, true}) {
        row(isOfManager ? "auto-delete of manager" : "auto-delete of request", [isOfManager](Stage &stage) {
            stage.server.answer("/", {{{httpAnswer("200 OK", "bytes")}}});
            Request request = stage.request();
            if (isOfManager)
                stage.manager->setAutoDeleteReplies(true);
            else
                request.setAttribute(Request::AutoDeleteReplyOnFinishAttribute, true);
            stage.on("finished", [](Stage &s, Reply *reply) { s.diary.note("read", reply->readAll()); });
            stage.get(request);
        });
    }
    row("delete the manager of running replies", [](Stage &stage) {
        stage.server.answer("/", {{{"", ""}}});
        stage.get();
        stage.get();
        delete stage.manager.data();
    });
    row("delete the manager of a reply that has another parent and runs", [](Stage &stage) {
        stage.server.answer("/", {{{"", ""}}});
        stage.on("requestSent", [](Stage &s, Reply *reply) {
            reply->setParent(nullptr);
            QTimer::singleShot(0, &s.diary, [&s, reply] {
                delete s.manager.data();
                delete reply;
            });
        });
        stage.get();
    });
    row("several replies", [](Stage &stage) {
        stage.isParallel = true;
        stage.server.answer("*", {{{httpAnswer("200 OK", QByteArray(5000, 'x'))}}});
        stage.diary.flow();
        for (const QString &path : {u"/1"_s, u"/2"_s, u"/3"_s, u"/4"_s, u"/5"_s, u"/6"_s, u"/7"_s})
            stage.get(path);
    });
    row("slots that are called later", [](Stage &stage) {
        stage.server.answer("/", {inPartsWithLength("404 Not Found", {"a", "b"})});
        stage.on("requestSent", goOn);
        Reply *const reply = stage.get();
        const auto note = [&stage, reply] {
            stage.diary.note("later", reply->isFinished(), reply->bytesAvailable(), int(reply->error()));
            goOn(stage, reply);
        };
        QObject::connect(reply, &Reply::metaDataChanged, &stage.diary, note, Qt::QueuedConnection);
        QObject::connect(reply, &Reply::readyRead, &stage.diary, note, Qt::QueuedConnection);
        QObject::connect(reply, &Reply::finished, &stage.diary, note, Qt::QueuedConnection);
    });
    for (const Manager manager : {Manager::Subclass, Manager::Wrapped, Manager::OneLine}) {
        row(
            "a host's own manager " + QByteArray::number(int(manager)),
            [](Stage &s) {
                s.get();
                s.finish();
                s.diary.note("class", s.get(Request(QUrl(u"data:,x"_s)))->metaObject()->className());
                s.finish();
                s.watch(s.manager->sendCustomRequest(s.request(), "POST", QByteArray("x")));
            },
            manager);
    }
    for (const char *status : {"200 OK", "404 Not Found", "302 Found"}) {
        row(QByteArray("synchronous ") + status, [status](Stage &stage) {
            stage.server.answer("/", {{{httpAnswer(status, "bytes", "Location: /end\r\n")}}});
            stage.server.answer("/end", {{{httpAnswer("200 OK", "end")}}});
            Request request = stage.request();
            request.setAttribute(Request::SynchronousRequestAttribute, true);
            stage.get(request);
            request.setHeader(Request::ContentTypeHeader, u"text/plain"_s);
            stage.watch(stage.manager->post(request, QByteArray("question")));
        });
    }
#if QT_VERSION >= QT_VERSION_CHECK(6, 7, 0)
    row("REST", [](Stage &stage) {
        stage.server.answer("/", {{{httpAnswer("200 OK", "{\"a\": 1}")}}});
        QRestAccessManager rest(stage.manager);
        stage.watch(rest.get(stage.request(), &stage.diary, [&stage](QRestReply &reply) {
            stage.diary.note("rest", reply.isSuccess(), reply.httpStatus(), reply.readJson()->toJson());
        }));
        stage.watch(
            rest.post(stage.request(), QVariantMap{{u"b"_s, 2}}, &stage.diary, [&stage](QRestReply &reply) {
                stage.diary.note("rest", reply.isSuccess(), reply.readBody());
            }));
        stage.finish();
    });
#endif
}

void NetworkPlays::addFlows()
{
    QByteArray large(20'000'000, 'x');
    for (qsizetype i = 0; i < large.size(); i += 7)
        large[i] = char(i / 7);
    const auto read = [](Stage &stage, Reply *reply, qint64 step) {
        // As slow as the event loop lets it be.
        QCryptographicHash hash(QCryptographicHash::Md5);
        qint64 size = 0;
        qint64 most = 0;
        stage.until([&, reply] {
            most = std::max(most, reply->bytesAvailable());
            const QByteArray bytes = reply->read(step);
            hash.addData(bytes);
            size += bytes.size();
            return reply->isFinished() && reply->bytesAvailable() == 0;
        });
        stage.diary.note("all", size, hash.result().toHex());
        return most;
    };
    for (const qint64 bound : {qint64(1000), qint64(65'536), qint64(1'000'000)}) {
        row("flow, bound of " + QByteArray::number(bound), [=](Stage &stage) {
            stage.diary.flow();
            const QByteArray body = bound < 10'000 ? large.left(200'000) : large;
            stage.server.answer("/", {{{httpAnswer("200 OK", body)}}});
            Reply *const reply = stage.get();
            reply->setReadBufferSize(bound);
            // Nobody reads until the server can send no more.
            qint64 sent = -1;
            stage.until([&] {
                const qint64 before = std::exchange(sent, stage.server.sent());
                return reply->bytesAvailable() > 0 && before == sent;
            });
            stage.diary.note("held back", sent < body.size() || bound < 10'000,
                             reply->bytesAvailable() <= 2 * bound);
            stage.diary.note("bounded", read(stage, reply, bound) <= 2 * bound);
        });
    }
    row("flow, bound that is removed", [=](Stage &stage) {
        stage.diary.flow();
        stage.server.answer("/", {{{httpAnswer("200 OK", large)}}});
        Reply *const reply = stage.get();
        reply->setReadBufferSize(10'000);
        stage.on("readyRead", [](Stage &, Reply *r) { r->setReadBufferSize(0); });
        stage.finish();
        stage.diary.note("at hand", reply->bytesAvailable());
        read(stage, reply, large.size());
    });
    row("progress of each part", [](Stage &stage) {
        stage.diary.keepProgress();
        stage.server.answer("/", {inPartsWithLength("200 OK", {"a", "bc", "def"})});
        for (const char *signal : {"requestSent", "metaDataChanged", "readyRead"}) {
            // Qt leaves out progress within 100 ms of the last one.
            stage.each(signal,
                       [](Stage &s, Reply *r) { QTimer::singleShot(120, r, [&s, r] { goOn(s, r); }); });
        }
        stage.get();
    });
}
