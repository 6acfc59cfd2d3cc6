#include "Tests/NetworkPlays.h"

#include <QtCore/QBuffer>
#include <QtCore/QFile>
#include <QtCore/QTimer>
#include <QtNetwork/QHttpMultiPart>
#include <QtNetwork/QNetworkCookieJar>
#include <QtTest/QTest>

using namespace Qt::StringLiterals;

using Stage = NetworkStage;
using Answer = ScriptedServer::Answer;
using Request = QNetworkRequest;

namespace {

const QString text = u"text/plain"_s;

/// A device without a position, whose content arrives bit by bit.
class Stream final : public QIODevice
{
public:
    Stream(const QByteArrayList &bits, QObject *parent) : QIODevice(parent), m_bits(bits)
    {
        open(ReadOnly | Unbuffered);
    }

    [[nodiscard]] bool isSequential() const override { return true; }
    [[nodiscard]] bool atEnd() const override { return m_bits.isEmpty(); }
    [[nodiscard]] qint64 bytesAvailable() const override { return m_bits.value(0).size(); }

protected:
    qint64 readData(char *data, qint64 size) override
    {
        if (m_bits.isEmpty())
            return -1;
        const QByteArray bit = m_bits.first().left(size);
        m_bits.first().remove(0, bit.size());
        memcpy(data, bit.constData(), size_t(bit.size()));
        if (m_bits.first().isEmpty()) {
            m_bits.removeFirst();
            QTimer::singleShot(0, this,
                               m_bits.isEmpty() ? &QIODevice::readChannelFinished : &QIODevice::readyRead);
        }
        return bit.size();
    }
    qint64 writeData(const char *, qint64) override { return -1; }

private:
    QByteArrayList m_bits;
};

QHttpMultiPart *form(QObject *parent)
{
    auto *const form = new QHttpMultiPart(QHttpMultiPart::FormDataType, parent);
    form->setBoundary("fence");
    QHttpPart field;
    field.setHeader(Request::ContentDispositionHeader, u"form-data; name=\"a\""_s);
    field.setBody("1");
    form->append(field);
    return form;
}

} // namespace

void NetworkPlays::row(const QByteArray &name, const Stage::Play &play, Manager manager)
{
    QTest::newRow(name) << play << manager << ScriptedServer::Transport::Plain;
}

void NetworkPlays::secureRow(const QByteArray &name, const Stage::Play &play)
{
    QTest::newRow(name) << play << Manager::Itself << ScriptedServer::Transport::Encrypted;
}

Answer NetworkPlays::inParts(const QByteArray &head, const QByteArrayList &body, bool closes)
{
    return {QByteArrayList{QByteArray(), head + "\r\n"} + body, closes};
}

Answer NetworkPlays::inPartsWithLength(const QByteArray &status, const QByteArrayList &body)
{
    return inParts("HTTP/1.1 " + status + "\r\nContent-Length: " + QByteArray::number(body.join().size()) +
                       "\r\n",
                   body);
}

void NetworkPlays::goOn(Stage &stage, QNetworkReply *reply)
{
    if (reply == stage.diary.replies().front() && !reply->isFinished())
        stage.server.release();
}

void NetworkPlays::goOnAtEachPart(Stage &stage)
{
    for (const char *signal : {"requestSent", "metaDataChanged", "readyRead"})
        stage.each(signal, goOn);
}

void NetworkPlays::addAnswers()
{
    const QByteArray page = "<p>page</p>";
    // "zipped text", ten times.
    const QByteArray gzip = QByteArray::fromBase64("H4sIAAAAAAACA6vKLChITVEoSa0oqaI9EwB+wXhtbgAAAA==");
    const std::pair<const char *, Answer> answers[] = {
        {"200",
         {{httpAnswer("200 OK", page,
                      "Content-Type: text/html; charset=utf-8\r\nETag: \"1\"\r\nServer: s\r\n")}}},
        {"200 without a body", {{httpAnswer("200 OK", "")}}},
        {"204", {{"HTTP/1.1 204 No Content\r\n\r\n"}}},
        {"304", {{"HTTP/1.1 304 Not Modified\r\nETag: \"1\"\r\n\r\n"}}},
        {"401 without a challenge", {{httpAnswer("401 Unauthorized", page)}}},
        {"404", {{httpAnswer("404 Not Found", page)}}},
        {"418 with an unusual reason",
         {{httpAnswer("418 I'm a t\xE9"
                      "apot",
                      page)}}},
        {"500", {{httpAnswer("500 Internal Server Error", page)}}},
        {"503", {{httpAnswer("503 Service Unavailable", page, "Retry-After: 1\r\n")}}},
        {"two cookies",
         {{httpAnswer("200 OK", page, "Set-Cookie: a=1; Path=/\r\nSet-Cookie: b=2; HttpOnly\r\n")}}},
        {"repeated fields", {{httpAnswer("200 OK", page, "X-A: 1\r\nx-b: 2\r\nX-A: 3\r\nX-Empty:\r\n")}}},
        {"known fields",
         {{httpAnswer("200 OK", page,
                      "Last-Modified: Sun, 06 Nov 1994 08:49:37 GMT\r\nContent-Disposition: "
                      "attachment; filename=a\r\nIf-Match: \"2\"\r\nLocation: /x\r\n")}}},
        {"chunked",
         {{"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n3\r\nabc\r\n2;x=y\r\nde\r\n0\r\nT: "
           "1\r\n\r\n"}}},
        {"chunked, broken", {{"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\nxyz\r\nabc\r\n"}, true}},
        {"chunked, closed midway",
         {{"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n9\r\nabc", ""}, true}},
        {"gzip", {{httpAnswer("200 OK", gzip, "Content-Encoding: gzip\r\n")}}},
        {"gzip, broken", {{httpAnswer("200 OK", gzip.left(20) + "broken", "Content-Encoding: gzip\r\n")}}},
        {"gzip, not compressed", {{httpAnswer("200 OK", page, "Content-Encoding: gzip\r\n")}}},
        {"deflate", {{httpAnswer("200 OK", qCompress(page).mid(4), "Content-Encoding: deflate\r\n")}}},
        {"unknown encoding", {{httpAnswer("200 OK", page, "Content-Encoding: other\r\n")}}},
        {"until the connection closes", {{"HTTP/1.1 200 OK\r\n\r\n" + page}, true}},
        {"HTTP/1.0", {{"HTTP/1.0 200 OK\r\n\r\n" + page}, true}},
        {"longer than its length", {{"HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\n" + page}, true}},
        {"shorter than its length", {{"HTTP/1.1 200 OK\r\nContent-Length: 500\r\n\r\n" + page, ""}, true}},
        {"closed within the head", {{"HTTP/1.1 200 OK\r\nContent-"}, true}},
        {"closed at once", {{""}, true}},
        {"no HTTP", {{"hello\r\n\r\n"}, true}},
        {"informational first", {{"HTTP/1.1 100 Continue\r\n\r\n" + httpAnswer("200 OK", page)}}},
    };
    for (const auto &[name, answer] : answers) {
        for (const char *verb : {"GET", "HEAD", "POST"}) {
            // What follows the head would be a second answer.
            if (qstrcmp(verb, "HEAD") == 0 && !answer.parts.first().contains(" 4"))
                continue;
            row(QByteArray(verb) + ' ' + name, [answer = answer, verb](Stage &stage) {
                stage.server.answer("/", {answer});
                stage.manager->setCookieJar(new QNetworkCookieJar);
                stage.on("readyRead", goOn);
                if (answer.parts.first().contains("chunked"))
                    stage.diary.flow();
                Request request = stage.request();
                request.setHeader(Request::ContentTypeHeader, text);
                if (qstrcmp(verb, "POST") == 0)
                    stage.watch(stage.manager->post(request, QByteArray("question")));
                else
                    stage.watch(*verb == 'G' ? stage.manager->get(request) : stage.manager->head(request));
                stage.finish();
                stage.diary.note("cookies", stage.manager->cookieJar()->cookiesForUrl(stage.request().url()));
            });
        }
    }
}

void NetworkPlays::addRequests()
{
    using Send = QNetworkReply *(*)(Stage &, Request &);
    const auto add = [](const char *name, Send send) {
        row(name, [send](Stage &stage) {
            stage.server.answer("/", {{{httpAnswer("200 OK", "")}}});
            Request request = stage.request();
            stage.watch(send(stage, request));
        });
    };
    add("HEAD", [](Stage &s, Request &r) { return s.manager->head(r); });
    add("DELETE", [](Stage &s, Request &r) { return s.manager->deleteResource(r); });
    add("OPTIONS", [](Stage &s, Request &r) { return s.manager->sendCustomRequest(r, "OPTIONS"); });
    add("PATCH bytes",
        [](Stage &s, Request &r) { return s.manager->sendCustomRequest(r, "PATCH", QByteArray("bytes")); });
    add("POST no bytes", [](Stage &s, Request &r) { return s.manager->post(r, QByteArray()); });
    add("POST no device",
        [](Stage &s, Request &r) { return s.manager->post(r, static_cast<QIODevice *>(nullptr)); });
    add("POST many bytes", [](Stage &s, Request &r) { return s.manager->post(r, QByteArray(300'000, 'x')); });
    add("PUT bytes", [](Stage &s, Request &r) { return s.manager->put(r, QByteArray("bytes")); });
    add("POST form", [](Stage &s, Request &r) { return s.manager->post(r, form(s.manager)); });
    add("PATCH form",
        [](Stage &s, Request &r) { return s.manager->sendCustomRequest(r, "PATCH", form(s.manager)); });
    add("POST buffer from its middle", [](Stage &s, Request &r) {
        auto *const buffer = new QBuffer(s.manager);
        buffer->setData("0123456789");
        buffer->open(QIODevice::ReadOnly);
        buffer->seek(4);
        return s.manager->post(r, buffer);
    });
    add("PUT file", [](Stage &s, Request &r) {
        auto *const file = new QFile(s.folder.filePath(u"file"_s), s.manager);
        file->open(QIODevice::ReadWrite);
        file->write(QByteArray(50'000, 'y'));
        file->seek(0);
        return s.manager->put(r, file);
    });
    add("POST closed device",
        [](Stage &s, Request &r) { return s.manager->post(r, new QBuffer(s.manager)); });
    add("POST stream", [](Stage &s, Request &r) { return s.manager->post(r, new Stream(parts, s.manager)); });
    add("POST unbuffered stream", [](Stage &s, Request &r) {
        r.setAttribute(Request::DoNotBufferUploadDataAttribute, true);
        r.setHeader(Request::ContentLengthHeader, parts.join().size());
        return s.manager->post(r, new Stream(parts, s.manager));
    });
    add("GET with everything", [](Stage &s, Request &r) {
        r.setRawHeader("X-Custom", "1");
        r.setHeader(Request::UserAgentHeader, u"host"_s);
        r.setAttribute(Request::User, u"mine"_s);
        r.setAttribute(Request::EmitAllUploadProgressSignalsAttribute, true);
        r.setAttribute(Request::HttpPipeliningAllowedAttribute, true);
        r.setAttribute(Request::Http2AllowedAttribute, false);
        r.setPriority(Request::HighPriority);
        r.setTransferTimeout(60'000);
        r.setOriginatingObject(&s.diary);
        r.setMaximumRedirectsAllowed(7);
        return s.manager->get(r);
    });
}
