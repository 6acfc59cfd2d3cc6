#include "Quorvix/QXArchiveWriter.h"

#include "Quorvix/QXCacheSummary.h"
#include "Quorvix/QXDisplayFormat.h"
#include "Quorvix/QXExportedTrace.h"
#include "Quorvix/QXRequestTrace.h"
#include "Quorvix/QXTaskSteps.h"
#include "Quorvix/QXTemporaryFile.h"

#include "JSON/JSONWriter.h"

#include "Platform/BundleInfo.h"
#include "Platform/NSISO8601DateFormatter.h"
#include "Platform/ReplaceFile.h"
#include "Platform/URLText.h"

#include <QtCore/QCoreApplication>

#include <algorithm>
#include <span>
#include <utility>

using namespace Quorvix;
using namespace Qt::StringLiterals;

namespace {

using Headers = std::optional<StoredHeaderFields>;

/// The half of an exchange that is being written.
enum class Side { Request, Response };

/// The value of the header with exactly this spelling.
std::optional<QString> exactHeader(const Headers &headers, const QString &name)
{
    return headers ? headers->exactValue(name) : std::nullopt;
}

/// The size of the body of a request or of a response, also of one that was removed; -1 if there is none.
qint64 bodySize(const auto &half)
{
    return half.body ? half.body->size() : half.discardedBodySize.value_or(-1);
}

/// The number of bytes of both bodies.
qsizetype bodiesSize(const QXRequestTrace &trace)
{
    const auto sizeOf = [](const std::optional<QByteArray> &body) {
        return body ? body->size() : 0;
    };
    return sizeOf(trace.body) + (trace.response ? sizeOf(trace.response->body) : 0);
}

/// Writes the parts of the document. Every object's keys are written in alphabetical order.
class ArchiveDocument
{
public:
    using Checkpoint = JSONWriter::Checkpoint;

    /// @p checkpoint is asked with the number of bytes of bodies that are written.
    explicit ArchiveDocument(JSONWriter &writer, Checkpoint checkpoint = {})
        : m_writer(writer), m_checkpoint(std::move(checkpoint))
    {
    }

    /// Stops in the middle if the checkpoint says so.
    void write(const QXArchiveWriter::Source &traces)
    {
        m_writer.beginObject();
        m_writer.key("log"_L1);
        m_writer.beginObject();
        writeCreator();
        m_writer.key("entries"_L1);
        m_writer.beginArray();
        while (const QXRequestTrace *trace = traces()) {
            if (m_checkpoint && !m_checkpoint(m_written))
                return;
            writeEntry(*trace);
        }
        m_writer.endArray();
        string("version"_L1, u"1.2");
        m_writer.endObject();
        m_writer.endObject();
    }

private:
    void string(QLatin1StringView key, QStringView value)
    {
        m_writer.key(key);
        m_writer.string(value);
    }

    void stringOrNull(QLatin1StringView key, const std::optional<QString> &value)
    {
        m_writer.key(key);
        if (value)
            m_writer.string(*value);
        else
            m_writer.null();
    }

    void integer(QLatin1StringView key, qint64 value)
    {
        m_writer.key(key);
        m_writer.integer(value);
    }

    void number(QLatin1StringView key, double value)
    {
        m_writer.key(key);
        m_writer.number(value);
    }

    void writeCreator()
    {
        m_writer.key("creator"_L1);
        m_writer.beginObject();
        string("name"_L1, QString::fromUtf8(BundleInfo::name));
        string("version"_L1, QString::fromUtf8(BundleInfo::shortVersion));
        m_writer.endObject();
    }

    void writeEntry(const QXExportedTrace &trace)
    {
        const double milliseconds = trace->duration.value_or(0) * 1000;
        m_writer.beginObject();
        writeCache(trace->response);
        writeRequest(*trace, trace.requestCookies());
        writeResponse(trace->response, trace.responseCookies());
        string("startedDateTime"_L1, NSISO8601DateFormatter::string(trace->date));
        number("time"_L1, milliseconds);
        m_writer.key("timings"_L1);
        m_writer.beginObject();
        integer("receive"_L1, 0);
        integer("send"_L1, 0);
        number("wait"_L1, milliseconds);
        m_writer.endObject();
        m_writer.endObject();
    }

    void writeCache(const std::optional<QXResponseTrace> &response)
    {
        m_writer.key("cache"_L1);
        m_writer.beginObject();
        if (response) {
            const QXCacheFacts facts(*response);
            m_writer.key("afterRequest"_L1);
            writeCacheState(facts.comment, facts.eTag, facts.expires, facts.lastAccess);
            m_writer.key("beforeRequest"_L1);
            writeCacheState({}, {}, {}, {});
        }
        m_writer.endObject();
    }

    void writeCacheState(const std::optional<QString> &comment, const std::optional<QString> &eTag,
                         const std::optional<QString> &expires, const std::optional<QString> &lastAccess)
    {
        m_writer.beginObject();
        stringOrNull("comment"_L1, comment);
        stringOrNull("eTag"_L1, eTag);
        stringOrNull("expires"_L1, expires);
        stringOrNull("hitCount"_L1, {});
        stringOrNull("lastAccess"_L1, lastAccess);
        m_writer.endObject();
    }

    void writeRequest(const QXRequestTrace &trace, const QList<QXHeaderCookie> &cookies)
    {
        m_writer.key("request"_L1);
        m_writer.beginObject();
        writeBodySize(trace);
        writeCookies(cookies);
        writeHeaders(trace.headers);
        string("method"_L1, sentMethod(trace.method));
        if (trace.body || trace.discardedBodySize) {
            m_writer.key("postData"_L1);
            writeBody(trace, Side::Request);
        }
        writeQuery(trace.url);
        string("url"_L1, trace.url ? absoluteString(*trace.url) : QString());
        m_writer.endObject();
    }

    void writeResponse(const std::optional<QXResponseTrace> &response, const QList<QXHeaderCookie> &cookies)
    {
        const Headers headers = response ? response->headers : std::nullopt;
        m_writer.key("response"_L1);
        m_writer.beginObject();
        if (response)
            writeBodySize(*response);
        else
            integer("bodySize"_L1, -1);
        m_writer.key("content"_L1);
        if (response && (response->body || response->discardedBodySize))
            writeBody(*response, Side::Response);
        else
            writeEmptyContent();
        writeCookies(cookies);
        writeHeaders(headers);
        string("redirectURL"_L1, {});
        integer("status"_L1, response ? response->statusCode : 0);
        string("statusText"_L1,
               response ? NSHTTPURLResponse::localizedStringForStatusCode(response->statusCode) : QString());
        m_writer.endObject();
    }

    // These two take the request or the response.

    void writeBodySize(const auto &half) { integer("bodySize"_L1, bodySize(half)); }

    /// A body that was removed has its size and a comment, but no text.
    void writeBody(const auto &half, Side side)
    {
        const bool isText = half.body && isValidUtf8(*half.body);
        const std::optional<QString> type = exactHeader(half.headers, u"Content-Type"_s);
        m_writer.beginObject();
        if (!half.body)
            string("comment"_L1, QXDisplayFormat::discardedBody(*half.discardedBodySize));
        else if (!isText)
            string("encoding"_L1, u"base64");
        string("mimeType"_L1, type ? QStringView(*type) : u"application/octet-stream");
        if (side == Side::Response)
            integer("size"_L1, bodySize(half));
        if (half.body)
            writeText(*half.body, isText);
        m_writer.endObject();
    }

    void writeText(const QByteArray &body, bool isText)
    {
        Checkpoint checkpoint;
        if (m_checkpoint)
            checkpoint = [this](qsizetype done) {
                return m_checkpoint(m_written + done);
            };
        m_writer.key("text"_L1);
        if (isText)
            m_writer.utf8(body, checkpoint);
        else
            m_writer.base64(body, checkpoint);
        m_written += body.size();
    }

    void writeEmptyContent()
    {
        m_writer.beginObject();
        string("mimeType"_L1, u"text/plain");
        integer("size"_L1, 0);
        m_writer.endObject();
    }

    /// Writes the headers and the two keys that always follow them.
    void writeHeaders(const Headers &headers)
    {
        m_writer.key("headers"_L1);
        m_writer.beginArray();
        if (headers) {
            headers->forEach([this](const QString &name, const QString &value) { writePair(name, value); });
        }
        m_writer.endArray();
        integer("headersSize"_L1, -1);
        string("httpVersion"_L1, u"HTTP/1.1");
    }

    void writeQuery(const std::optional<QUrl> &url)
    {
        m_writer.key("queryString"_L1);
        m_writer.beginArray();
        const QString query = url ? url->query(QUrl::FullyEncoded) : QString();
        if (!query.isEmpty()) {
            for (const QStringView item : QStringView(query).split(u'&')) {
                const qsizetype equals = item.indexOf(u'=');
                const qsizetype nameSize = equals < 0 ? item.size() : equals;
                writePair(percentDecoded(item.first(nameSize)),
                          equals < 0 ? QString() : percentDecoded(item.sliced(equals + 1)));
            }
        }
        m_writer.endArray();
    }

    void writeCookies(const QList<QXHeaderCookie> &cookies)
    {
        m_writer.key("cookies"_L1);
        m_writer.beginArray();
        for (const QXHeaderCookie &cookie : cookies)
            writePair(cookie.name, cookie.value);
        m_writer.endArray();
    }

    void writePair(QStringView name, QStringView value)
    {
        m_writer.beginObject();
        string("name"_L1, name);
        string("value"_L1, value);
        m_writer.endObject();
    }

    JSONWriter &m_writer;
    const Checkpoint m_checkpoint;
    qsizetype m_written = 0;
};

std::optional<NSError> writeDocument(const QXArchiveWriter::Source &traces, QIODevice &device,
                                     const QXTaskProgress *progress, const JSONWriter::Checkpoint &checkpoint)
{
    JSONWriter writer(device);
    ArchiveDocument(writer, checkpoint).write(traces);
    return isCancelled(progress) ? cancelledError() : writer.finish();
}

/// The last component of a URL's path, percent-decoded. A trailing slash is ignored; the root path gives an
/// empty text.
QString lastPathComponent(const QUrl &url)
{
    QString path = url.path(QUrl::FullyEncoded);
    while (path.endsWith(u'/'))
        path.chop(1);
    return percentDecoded(QStringView(path).sliced(path.lastIndexOf(u'/') + 1));
}

} // namespace

QByteArray QXArchiveWriter::archive(const Source &traces)
{
    JSONWriter writer;
    ArchiveDocument(writer).write(traces);
    return writer.takeBuffer();
}

std::optional<NSError> QXArchiveWriter::archive(const Source &traces, QIODevice &device,
                                                QXTaskProgress *progress)
{
    JSONWriter::Checkpoint checkpoint;
    if (progress)
        checkpoint = [progress](qsizetype) {
            return !progress->isCancelled();
        };
    auto error = writeDocument(traces, device, progress, checkpoint);
    if (!error)
        finish(progress);
    return error;
}

std::optional<NSError> QXArchiveWriter::write(const Source &traces, const QString &path,
                                              QXTaskProgress *progress)
{
    return replaceFile(path, [&](QIODevice &file) { return archive(traces, file, progress); });
}

QString QXArchiveWriter::exportFileName(const QXRequestTrace &trace,
                                        std::chrono::system_clock::time_point now)
{
    // The range of the clock is small enough that the seconds cannot overflow.
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(now.time_since_epoch()).count();
    return u"Quorvix-%1-%2-%3.har"_s.arg(sentMethod(trace.method),
                                         trace.url ? lastPathComponent(*trace.url) : u"request"_s,
                                         QString::number(seconds));
}

Result<QUrl> QXArchiveWriter::exportTrace(const QXRequestTrace &trace,
                                          std::chrono::system_clock::time_point now, QXTaskProgress *progress)
{
    // ".." is harmless inside a file name, but such a URL was probably made to escape the folder.
    if (trace.url && lastPathComponent(*trace.url) == ".."_L1)
        return NSError{NSCocoaErrorDomain, NSFileWriteInvalidFileNameError,
                       QCoreApplication::translate("Quorvix", "The file name is invalid.")};
    const std::span list(&trace, 1);
    JSONWriter::Checkpoint checkpoint;
    if (progress)
        checkpoint = [steps = QXTaskSteps(progress, bodiesSize(trace))](qsizetype done) mutable {
            return steps.goOn(done);
        };
    auto file = QXTemporaryFile::write(exportFileName(trace, now), [&](QIODevice &device) {
        return writeDocument(sourceOf(list), device, progress, checkpoint);
    });
    if (file)
        finish(progress);
    return file;
}

QString QXArchiveWriter::failureMessage(const NSError &error)
{
    const QString format = QCoreApplication::translate("Quorvix", "Failed to export HAR file: %@");
    return QString(format).replace("%@"_L1, error.localizedDescription);
}
