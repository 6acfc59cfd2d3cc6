#include "Tests/ScriptedServer.h"
#include "Tests/SessionKit.h"

#include "Platform/ContentDecoder.h"

#include <QtCore/QBuffer>
#include <QtCore/QRandomGenerator>
#include <QtTest/QTest>

#include <brotli/decode.h>
#include <brotli/encode.h>
#include <zlib.h>
#include <zstd.h>

using namespace Quorvix;

using namespace Qt::StringLiterals;

namespace {

// What the libraries' own functions for whole bodies make of it

constexpr int zlibFormat = MAX_WBITS;
constexpr int rawFormat = -MAX_WBITS;
constexpr int gzipFormat = MAX_WBITS + 16;

QByteArray deflated(const QByteArray &data, int format)
{
    z_stream stream{};
    deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, format, 8, Z_DEFAULT_STRATEGY);
    QByteArray coded(qsizetype(deflateBound(&stream, uLong(data.size()))), Qt::Uninitialized);
    stream.next_in = reinterpret_cast<Bytef *>(const_cast<char *>(data.data()));
    stream.avail_in = uInt(data.size());
    stream.next_out = reinterpret_cast<Bytef *>(coded.data());
    stream.avail_out = uInt(coded.size());
    deflate(&stream, Z_FINISH);
    coded.resize(qsizetype(stream.total_out));
    deflateEnd(&stream);
    return coded;
}

QByteArray gzip(const QByteArray &data)
{
    return deflated(data, gzipFormat);
}

QByteArray br(const QByteArray &data)
{
    size_t size = BrotliEncoderMaxCompressedSize(size_t(data.size()));
    QByteArray coded(qsizetype(size), Qt::Uninitialized);
    BrotliEncoderCompress(5, BROTLI_DEFAULT_WINDOW, BROTLI_MODE_GENERIC, size_t(data.size()),
                          reinterpret_cast<const uint8_t *>(data.data()), &size,
                          reinterpret_cast<uint8_t *>(coded.data()));
    return coded.first(qsizetype(size));
}

QByteArray zstd(const QByteArray &data)
{
    ZSTD_CCtx *const context = ZSTD_createCCtx();
    ZSTD_CCtx_setParameter(context, ZSTD_c_checksumFlag, 1);
    QByteArray coded(qsizetype(ZSTD_compressBound(size_t(data.size()))), Qt::Uninitialized);
    coded.truncate(qsizetype(
        ZSTD_compress2(context, coded.data(), size_t(coded.size()), data.data(), size_t(data.size()))));
    ZSTD_freeCCtx(context);
    return coded;
}

using Peer = std::optional<QByteArray> (*)(QByteArray coded);

constexpr qsizetype roomForPeers = 1 << 20;

std::optional<QByteArray> inflatedByPeer(QByteArray coded)
{
    QByteArray data(roomForPeers, Qt::Uninitialized);
    z_stream stream{};
    inflateInit2(&stream, gzipFormat);
    stream.next_in = reinterpret_cast<Bytef *>(coded.data());
    stream.avail_in = uInt(coded.size());
    stream.next_out = reinterpret_cast<Bytef *>(data.data());
    stream.avail_out = uInt(data.size());
    const bool isWhole = inflate(&stream, Z_FINISH) == Z_STREAM_END && stream.avail_in == 0;
    data.truncate(qsizetype(stream.total_out));
    inflateEnd(&stream);
    return isWhole ? std::optional(data) : std::nullopt;
}

std::optional<QByteArray> brByPeer(QByteArray coded)
{
    QByteArray data(roomForPeers, Qt::Uninitialized);
    auto size = size_t(data.size());
    const auto outcome =
        BrotliDecoderDecompress(size_t(coded.size()), reinterpret_cast<uint8_t *>(coded.data()), &size,
                                reinterpret_cast<uint8_t *>(data.data()));
    return outcome == BROTLI_DECODER_RESULT_SUCCESS ? std::optional(data.first(qsizetype(size)))
                                                    : std::nullopt;
}

std::optional<QByteArray> zstdByPeer(QByteArray coded)
{
    QByteArray data(roomForPeers, Qt::Uninitialized);
    const size_t size = ZSTD_decompress(data.data(), size_t(data.size()), coded.data(), size_t(coded.size()));
    return ZSTD_isError(size) ? std::nullopt : std::optional(data.first(qsizetype(size)));
}

/// Text that compresses like that of an interface, with something that does not.
QByteArray sample(qsizetype size)
{
    QByteArray data;
    QRandomGenerator random(7);
    while (data.size() < size)
        data += R"({"id": )" + QByteArray::number(random.bounded(1000000)) + R"(, "name": "somebody"},)";
    return data;
}

QByteArray changed(QByteArray data, qsizetype position)
{
    data[position < 0 ? data.size() + position : position] ^= 0x55;
    return data;
}

/// A device that hands out its bytes one by one.
class SlowDevice final : public QIODevice
{
public:
    explicit SlowDevice(const QByteArray &bytes) : m_rest(bytes) { open(ReadOnly | Unbuffered); }
    [[nodiscard]] bool isSequential() const override { return true; }

protected:
    qint64 readData(char *data, qint64 maxSize) override
    {
        const QByteArray read = m_rest.first(std::min<qint64>({maxSize, 1, m_rest.size()}));
        std::copy(read.begin(), read.end(), data);
        m_rest = m_rest.sliced(read.size());
        return read.size();
    }
    qint64 writeData(const char *, qint64) override { return -1; }

private:
    QByteArray m_rest;
};

Result<QByteArray> decode(
    const QByteArray &coded, const QByteArray &contentEncoding,
    const std::function<bool()> &isCancelled = [] { return false; })
{
    QBuffer buffer;
    buffer.setData(coded);
    buffer.open(QIODevice::ReadOnly);
    return ContentDecoder::decode(buffer, contentEncoding, roomForPeers, isCancelled);
}

} // namespace

class ContentCodingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void arrives_data();
    void arrives();
    void partsArriveAsSent();
    void fails_data();
    void fails();
    void slowDevices();
    void everyDamageIsFound_data();
    void everyDamageIsFound();
    void whatTheRequestAccepts_data();
    void whatTheRequestAccepts();
    void limit();
    void cancelling();

private:
    Outcome exchange(NSURLSession &session, const QByteArray &answer, const QString &method = u"GET"_s)
    {
        m_server.answer("*", {{.parts = {answer}, .closes = true}});
        URLRequest request(m_server.url(u"/"_s));
        request.httpMethod = method;
        return load(session, request);
    }

    ScriptedServer m_server;
    NSURLSession m_session;
};

void ContentCodingTest::arrives_data()
{
    QTest::addColumn<QByteArray>("coding");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QByteArray>("data");
    const auto row = [](const char *name, const QByteArray &coding, const QByteArray &body,
                        const QByteArray &data) {
        QTest::newRow(name) << coding << body << data;
    };
    const QByteArray text = sample(300);
    const QByteArray large = sample(3'000'000);
    const QByteArray zeros(30'000'000, '\0');
    row("gzip", "gzip", gzip(text), text);
    row("other names", "X-GZip", gzip(text), text);
    row("several members", "gzip", gzip(text) + gzip({}) + gzip(text), text + text);
    row("deflate", "deflate", deflated(text, zlibFormat), text);
    row("deflate without a header", "deflate", deflated(text, rawFormat), text);
    row("deflate in the format of gzip", "deflate", gzip(text), text);
    row("gzip in the format of deflate", "gzip", deflated(text, zlibFormat), text);
    row("br", "br", br(text), text);
    row("zstd, several frames", "zstd", zstd(text) + zstd(text), text + text);
    row("several codings", "gzip, identity, br", br(gzip(text)), text);
    row("large, gzip", "gzip", gzip(large), large);
    row("large, br", "br", br(large), large);
    row("large, zstd", "zstd", zstd(large), large);
    row("large, several codings", "deflate,zstd", zstd(deflated(large, rawFormat)), large);
    row("compressed further than Qt expects, gzip", "gzip", gzip(zeros), zeros);
    row("compressed further than Qt expects, br", "br", br(zeros), zeros);
    row("nothing, coded", "gzip", gzip({}), {});
    row("nothing at all", "gzip", {}, {});
    row("no coding", "identity", text, text);
    row("unknown coding", "compress", text, text);
    row("unknown coding among others", "gzip, compress", gzip(text), gzip(text));
}

void ContentCodingTest::arrives()
{
    QFETCH(const QByteArray, coding);
    QFETCH(const QByteArray, body);
    QFETCH(const QByteArray, data);
    const Outcome outcome =
        exchange(m_session, httpAnswer("200 OK", body, "Content-Encoding: " + coding + "\r\n"));
    QVERIFY(!outcome.error);
    QVERIFY(outcome.data == data);
    QCOMPARE(outcome.data->capacity(), data.size());
    const NSHeaderFields &fields = outcome.http()->allHeaderFields();
    QVERIFY(fields.contains(u"Content-Encoding"_s));
    // The length of the coded body is not that of the data.
    QCOMPARE(fields.contains(u"Content-Length"_s), body == data);
}

/// The application puts the parts together.
void ContentCodingTest::partsArriveAsSent()
{
    const QByteArray part = gzip(sample(300)).sliced(50);
    const QByteArray fields = "Content-Encoding: gzip\r\nContent-Range: bytes 50-99/100\r\n";
    QCOMPARE(exchange(m_session, httpAnswer("206 Partial Content", part, fields)).data, part);
}

void ContentCodingTest::fails_data()
{
    QTest::addColumn<QByteArray>("coding");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<NSURLErrorCode>("code");
    const auto row = [](const char *name, const QByteArray &coding, const QByteArray &body,
                        NSURLErrorCode code = NSURLErrorCannotDecodeRawData) {
        QTest::newRow(name) << coding << body << code;
    };
    const QByteArray text = sample(300);
    const QByteArray large = sample(3'000'000);
    row("gzip: plain text", "gzip", text);
    row("gzip: one byte", "gzip", "\x1f");
    row("gzip: ends in the middle", "gzip", gzip(large).chopped(5000));
    row("gzip: ends before its last byte", "gzip", gzip(text).chopped(1));
    row("gzip: checksum", "gzip", changed(gzip(text), -8));
    row("gzip: size", "gzip", changed(gzip(text), -1));
    row("gzip: more behind the end", "gzip", gzip(text) + text);
    row("gzip: a byte behind the end", "gzip", gzip(text) + '\0');
    row("gzip: the second member is damaged", "gzip", gzip(text) + changed(gzip(text), -8));
    row("gzip in the format of deflate: checksum", "gzip", changed(deflated(text, zlibFormat), -1));
    row("gzip without a header", "gzip", deflated(text, rawFormat));
    row("deflate: plain text", "deflate", text);
    row("deflate: ends in the middle", "deflate", deflated(text, rawFormat).chopped(10));
    row("deflate: more behind the end", "deflate", deflated(text, rawFormat) + text);
    row("br: plain text", "br", text);
    row("br: ends in the middle", "br", br(large).chopped(5000));
    row("br: more behind the end", "br", br(text) + '\0');
    row("zstd: plain text", "zstd", text);
    row("zstd: ends in the middle", "zstd", zstd(large).chopped(5000));
    row("zstd: checksum", "zstd", changed(zstd(text), -1));
    row("several codings: the first is broken", "gzip, br", br(text));
    row("several codings: the last is broken", "gzip, br", gzip(text));
    row("too many codings", QByteArray("gzip,").repeated(6), text, NSURLErrorCannotDecodeContentData);
}

/// The response arrives, and the error says why there is no data.
void ContentCodingTest::fails()
{
    QFETCH(const QByteArray, coding);
    QFETCH(const QByteArray, body);
    QFETCH(const NSURLErrorCode, code);
    for (const QByteArray &status : {"200 OK"_ba, "404 Not Found"_ba}) {
        const Outcome outcome =
            exchange(m_session, httpAnswer(status, body, "Content-Encoding: " + coding + "\r\n"));
        QCOMPARE(outcome.error, std::optional(makeURLError(code)));
        QCOMPARE(outcome.status(), status.first(3).toInt());
        QVERIFY(!outcome.data);
        // All headers are as they were sent.
        QCOMPARE(description(outcome.http()->allHeaderFields().at(u"Content-Length"_s)).toLongLong(),
                 body.size());
    }
}

void ContentCodingTest::slowDevices()
{
    const QByteArray text = sample(300);
    for (const QByteArray &coded : {gzip(text), deflated(text, zlibFormat), deflated(text, rawFormat)}) {
        SlowDevice device(coded);
        const auto decoded = ContentDecoder::decode(device, "deflate", roomForPeers, [] { return false; });
        QVERIFY(decoded && decoded.value() == text);
    }
}

void ContentCodingTest::everyDamageIsFound_data()
{
    QTest::addColumn<QByteArray>("coding");
    QTest::addColumn<QByteArray>("coded");
    QTest::addColumn<Peer>("peer");
    const QByteArray text = sample(300);
    QTest::newRow("gzip") << "gzip"_ba << gzip(text) << Peer(inflatedByPeer);
    QTest::newRow("br") << "br"_ba << br(text) << Peer(brByPeer);
    QTest::newRow("zstd") << "zstd"_ba << zstd(text) << Peer(zstdByPeer);
}

/// The library that made the body says what can be decoded, and to what.
void ContentCodingTest::everyDamageIsFound()
{
    QFETCH(const QByteArray, coding);
    QFETCH(const QByteArray, coded);
    QFETCH(const Peer, peer);
    const auto compare = [&](const QByteArray &damaged) {
        const auto decoded = decode(damaged, coding);
        const auto expected = peer(damaged);
        QCOMPARE(bool(decoded), expected.has_value());
        if (decoded)
            QCOMPARE(decoded.value(), *expected);
        else
            QCOMPARE(decoded.error().code, qint64(NSURLErrorCannotDecodeRawData));
    };
    for (qsizetype at = 0; at < coded.size() && !QTest::currentTestFailed(); ++at) {
        compare(changed(coded, at));
        if (at > 0)
            compare(coded.first(at));
    }
}

void ContentCodingTest::whatTheRequestAccepts_data()
{
    QTest::addColumn<QString>("set");
    QTest::addColumn<QByteArray>("sent");
    QTest::newRow("not set") << QString() << "zstd, br, gzip, deflate"_ba;
    QTest::newRow("one coding") << u"gzip;q=0.5"_s << "gzip;q=0.5"_ba;
    QTest::newRow("none") << u"identity"_s << "identity"_ba;
    QTest::newRow("empty, which means none") << u""_s << "identity"_ba;
}

/// What the application accepts is sent as it is, and what comes back is decoded all the same.
void ContentCodingTest::whatTheRequestAccepts()
{
    QFETCH(const QString, set);
    QFETCH(const QByteArray, sent);
    m_server.answer("*", {{.parts = {httpAnswer("200 OK", gzip("data"), "Content-Encoding: gzip\r\n")}}});
    URLRequest request(m_server.url(u"/"_s));
    if (!set.isNull())
        request.setValue(set, u"Accept-Encoding"_s);
    QCOMPARE(load(m_session, request).data, "data"_ba);
    QVERIFY(m_server.arrived().constLast().toLower().contains("\r\naccept-encoding: " + sent + "\r\n"));
}

void ContentCodingTest::limit()
{
    NSURLSessionConfiguration configuration;
    configuration.maximumDecodedSize = 100'000;
    NSURLSession session(configuration);
    for (const qsizetype size : {100'000, 100'001, 5'000'000}) {
        const QByteArray data(size, 'x');
        const Outcome plain = exchange(session, httpAnswer("200 OK", data));
        QCOMPARE(plain.data->size(), size);
        const QByteArray answer = httpAnswer("200 OK", gzip(data), "Content-Encoding: gzip\r\n");
        const Outcome outcome = exchange(session, answer);
        QCOMPARE(outcome.status(), 200);
        QCOMPARE(outcome.data.has_value(), size == 100'000);
        if (size > 100'000)
            QCOMPARE(outcome.error, std::optional(makeURLError(NSURLErrorDataLengthExceedsMaximum)));
    }
}

void ContentCodingTest::cancelling()
{
    const QByteArray coded = gzip(QByteArray(roomForPeers, '\0'));
    int questions = 0;
    const auto decoded = decode(coded, "gzip", [&] { return ++questions == 3; });
    QVERIFY(!decoded);
    QCOMPARE(decoded.error().code, qint64(NSURLErrorCancelled));
    QCOMPARE(questions, 3);

    // Members of nothing, under another coding: whoever asks for the end need not wait for all of them.
    const QByteArray nothing = gzip({}).repeated(40'000);
    questions = 0;
    QVERIFY(!decode(zstd(nothing), "gzip, zstd", [&] { return ++questions == 16; }));

    // Without a look at the task, this is decoded up to the usual limit.
    const QByteArray answer = httpAnswer("200 OK", coded.repeated(20'000), "Content-Encoding: gzip\r\n");
    m_server.answer("*", {{.parts = {answer}}});
    const qint64 before = m_server.sent();
    const Outcome outcome =
        load(m_session, URLRequest(m_server.url(u"/"_s)), [&](NSURLSessionDataTask &task) {
            QTRY_VERIFY(m_server.sent() - before == answer.size());
            task.cancel();
        });
    QCOMPARE(outcome.error, std::optional(makeURLError(NSURLErrorCancelled)));
}

QTEST_GUILESS_MAIN(ContentCodingTest)
#include "ContentCodingTest.moc"
