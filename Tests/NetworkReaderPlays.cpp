#include "Tests/NetworkPlays.h"

#include <QtCore/QDataStream>

using namespace Qt::StringLiterals;

using Answer = ScriptedServer::Answer;
using Request = QNetworkRequest;
using Stage = NetworkStage;

void NetworkPlays::addReaders()
{
    using Read = void (*)(ReplyDiary &, QNetworkReply &);
    QList<std::pair<const char *, Read>> readers;
    const auto add = [&readers](const char *name, Read read) {
        readers.append({name, read});
    };
    add("nothing", [](ReplyDiary &, QNetworkReply &) {});
    add("all", [](ReplyDiary &d, QNetworkReply &r) { d.note("read", r.readAll()); });
    add("three bytes",
        [](ReplyDiary &d, QNetworkReply &r) { d.note("read", r.read(3), r.read(0), r.atEnd()); });
    add("more than there is", [](ReplyDiary &d, QNetworkReply &r) {
        char data[100];
        d.note("read", r.read(data, 100));
        d.note("beyond", r.read(data, 1), r.getChar(data), r.atEnd(), r.errorString());
    });
    add("whole lines", [](ReplyDiary &d, QNetworkReply &r) {
        while (r.canReadLine())
            d.note("line", r.readLine());
    });
    add("lines", [](ReplyDiary &d, QNetworkReply &r) { d.note("line", r.readLine(), r.canReadLine()); });
    add("short lines", [](ReplyDiary &d, QNetworkReply &r) { d.note("line", r.readLine(4)); });
    add("peeking",
        [](ReplyDiary &d, QNetworkReply &r) { d.note("peek", r.peek(4), r.peek(99), r.bytesAvailable()); });
    add("peeking first",
        [](ReplyDiary &d, QNetworkReply &r) { d.note("peek", r.peek(2)), d.note("read", r.readAll()); });
    add("back again", [](ReplyDiary &d, QNetworkReply &r) {
        char c = 0;
        d.note("got", r.getChar(&c), c);
        r.ungetChar('x');
        d.note("back", r.bytesAvailable(), r.peek(3), r.pos());
    });
    add("in text mode", [](ReplyDiary &d, QNetworkReply &r) {
        r.setTextModeEnabled(true);
        d.note("text", r.readAll());
    });
    add("skipping",
        [](ReplyDiary &d, QNetworkReply &r) { d.note("skip", r.skip(4)), d.note("read", r.read(4)); });
    add("in transactions", [](ReplyDiary &d, QNetworkReply &r) {
        r.startTransaction();
        d.note("tried", r.read(20), r.isTransactionStarted());
        r.rollbackTransaction();
        d.note("back", r.bytesAvailable(), r.peek(5));
        r.startTransaction();
        d.note("tried", r.read(20));
        r.commitTransaction();
    });
    add("within one transaction", [](ReplyDiary &d, QNetworkReply &r) {
        if (!r.isTransactionStarted())
            r.startTransaction();
        d.note("tried", r.read(5), r.bytesAvailable());
    });
    add("from a stream", [](ReplyDiary &d, QNetworkReply &r) {
        QDataStream stream(&r);
        QByteArray bytes(30, ' ');
        stream.startTransaction();
        stream.readRawData(bytes.data(), 30);
        d.note("whole", stream.commitTransaction(), bytes);
    });
    add("and what a reply cannot do", [](ReplyDiary &d, QNetworkReply &r) {
        d.note("write", r.write("x"), r.putChar('x'), r.seek(0), r.reset(), r.size());
        d.note("wait", r.waitForReadyRead(1), r.waitForBytesWritten(1), r.open(QIODevice::ReadOnly));
    });
    add("and aborting", [](ReplyDiary &d, QNetworkReply &r) {
        r.abort();
        d.note("read", r.readAll(), r.bytesAvailable());
    });
    add("with a bound that comes and goes", [](ReplyDiary &d, QNetworkReply &r) {
        r.setReadBufferSize(r.readBufferSize() == 0 ? 1000 : 0);
        d.note("read", r.read(2), r.readBufferSize());
    });
    const auto chunk = [](const QByteArray &bytes) {
        return QByteArray::number(bytes.size(), 16) + "\r\n" + bytes + "\r\n";
    };
    // Not compressed, so that each part yields something.
    const QByteArray zipped = qCompress(parts.join(), 0).mid(4);
    const std::tuple<const char *, Answer, qint64> bodies[] = {
        {"with a length", inPartsWithLength("200 OK", parts), 0},
        {"without the download buffer", inPartsWithLength("200 OK", parts), -1},
        {"with a bound", inPartsWithLength("200 OK", parts), 1000},
        {"in chunks",
         inParts("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n",
                 {chunk(parts[0]), chunk(parts[1]), chunk(parts[2]) + chunk({})}),
         0},
        {"until it closes", inParts("HTTP/1.1 200 OK\r\n", parts, true), 0},
        {"compressed",
         inPartsWithLength("200 OK\r\nContent-Encoding: deflate", {zipped.left(20), zipped.mid(20)}), 0},
        {"compressed, with a bound",
         inPartsWithLength("200 OK\r\nContent-Encoding: deflate", {zipped.left(20), zipped.mid(20)}), 1000},
        {"of a failure", inPartsWithLength("404 Not Found", parts), 0},
    };
    for (const auto &[body, answer, bound] : bodies) {
        for (const auto &[way, read] : std::as_const(readers)) {
            row(QByteArray("body ") + body + ", read " + way,
                [answer = answer, bound = bound, read = read](Stage &stage) {
                    stage.server.answer("/", {answer});
                    goOnAtEachPart(stage);
                    stage.each("readyRead", [read](Stage &s, QNetworkReply *reply) {
                        read(s.diary, *reply);
                        goOn(s, reply);
                    });
                    stage.on("finished", [read](Stage &s, QNetworkReply *reply) { read(s.diary, *reply); });
                    Request request = stage.request();
                    if (bound < 0)
                        request.setAttribute(Request::MaximumDownloadBufferSizeAttribute, 0);
                    QNetworkReply *const reply = stage.get(request);
                    if (bound > 0)
                        reply->setReadBufferSize(bound);
                });
        }
    }
}
