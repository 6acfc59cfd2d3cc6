#include "Quorvix/QXCurlCommandBuilder.h"

#include "Quorvix/QXDisplayFormat.h"
#include "Quorvix/QXExportError.h"
#include "Quorvix/QXTaskSteps.h"

#include "JSON/JSONWriter.h"

#include "Platform/URLText.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QStringDecoder>

#include <algorithm>

using namespace Quorvix;
using namespace Qt::StringLiterals;

namespace {

constexpr QStringView lineBreak = u" \\\n";
constexpr QStringView beforeText = u"  --data-raw '";
constexpr QStringView beforeBase64 = u"  --data-binary \"$(printf '%s' '";
constexpr QStringView afterBase64 = u"' | (base64 --decode 2>/dev/null || base64 -D))\"";

/// The number of bytes that are converted at once. It is divisible by three, so that only the last chunk has
/// Base64 padding.
constexpr qsizetype chunkSize = 12'288;

bool isReplaced(QChar c)
{
    return c == u'\'' || c == u'\r';
}

/// Appends the text as it must be written between single quotes. The caller must not split a text between a
/// carriage return and its line feed.
void appendQuoted(QString &command, QStringView text)
{
    while (!text.isEmpty()) {
        const auto replaced = std::find_if(text.begin(), text.end(), isReplaced);
        command += text.first(replaced - text.begin());
        text = text.sliced(replaced - text.begin());
        if (text.startsWith(u'\'')) {
            command += u"'\\''";
            text = text.sliced(1);
        } else if (text.startsWith(u'\r')) {
            command += u'\n';
            text = text.sliced(text.startsWith(u"\r\n") ? 2 : 1);
        }
    }
}

/// curl sends a request for each number in a range such as "[1-3]", and refuses other brackets. Only the
/// address of a host is between brackets for it, too. QUrl has encoded the braces and backslashes.
QString urlText(const QUrl &url)
{
    const QString text = absoluteString(url);
    const qsizetype head = url.toEncoded(QUrl::RemovePath | QUrl::RemoveQuery | QUrl::RemoveFragment).size();
    return text.first(head) + text.sliced(head).replace(u'[', u"%5B"_s).replace(u']', u"%5D"_s);
}

/// Whether every shell reads the method as one word, as it is.
bool isPlainWord(QStringView method)
{
    return !method.isEmpty() && std::all_of(method.begin(), method.end(), [](QChar c) {
        return (c >= u'0' && c <= u'9') || (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z') ||
               c == u'-' || c == u'_' || c == u'.';
    });
}

void appendMethod(QString &command, const QString &method)
{
    if (isPlainWord(method)) {
        command += method;
        return;
    }
    command += u'\'';
    appendQuoted(command, method);
    command += u'\'';
}

void appendHeaders(QString &command, const HTTPHeaderFields &headers)
{
    for (auto it = headers.cbegin(); it != headers.cend(); ++it) {
        command += lineBreak;
        command += u"  -H '";
        appendQuoted(command, it.key() + ": "_L1 + it.value());
        command += u'\'';
    }
}

/// The maximum size of the quoted text for this UTF-8, in UTF-16 code units.
qsizetype maximumQuotedSize(QByteArrayView utf8)
{
    qsizetype units = 0;
    for (const char c : utf8) {
        const auto byte = uchar(c);
        units += qsizetype((byte & 0xC0) != 0x80) + qsizetype(byte >= 0xF0) + 3 * qsizetype(byte == '\'');
    }
    return units;
}

void appendText(QString &command, QByteArrayView utf8, QXTaskProgress *progress)
{
    const qsizetype total = utf8.size();
    QXTaskSteps steps(progress, total);
    command.reserve(command.size() + beforeText.size() + maximumQuotedSize(utf8) + 1);
    command += beforeText;
    // A byte order mark is part of the body, so the decoder must not remove it.
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom);
    while (!utf8.isEmpty() && steps.goOn(total - utf8.size())) {
        qsizetype size = std::min(chunkSize, utf8.size());
        if (size < utf8.size() && utf8[size - 1] == '\r' && utf8[size] == '\n')
            ++size;
        const QString chunk = decoder(utf8.first(size));
        appendQuoted(command, chunk);
        utf8 = utf8.sliced(size);
    }
    command += u'\'';
}

void appendBase64(QString &command, QByteArrayView bytes, QXTaskProgress *progress)
{
    const qsizetype total = bytes.size();
    QXTaskSteps steps(progress, total);
    command.reserve(command.size() + beforeBase64.size() + (bytes.size() + 2) / 3 * 4 + afterBase64.size());
    command += beforeBase64;
    while (!bytes.isEmpty() && steps.goOn(total - bytes.size())) {
        const QByteArrayView chunk = bytes.first(std::min(chunkSize, bytes.size()));
        command += QLatin1StringView(QByteArray::fromRawData(chunk.data(), chunk.size()).toBase64());
        bytes = bytes.sliced(chunk.size());
    }
    command += afterBase64;
}

void appendBody(QString &command, const QByteArray &body, QXTaskProgress *progress)
{
    command += lineBreak;
    if (isValidUtf8(body))
        appendText(command, body, progress);
    else
        appendBase64(command, body, progress);
}

/// A comment of the shell, in the last line: the command itself stays as it is without a body.
void appendDiscardedBody(QString &command, qsizetype size)
{
    const QString note = QCoreApplication::translate("Quorvix", "Request Body") + ": "_L1 +
                         QXDisplayFormat::discardedBody(size);
    command += u"\n# "_s + note.simplified(); // a translation may contain line breaks
}

} // namespace

Result<QString> QXCurlCommandBuilder::build(const QXExportedTrace &exported, QXTaskProgress *progress)
{
    const QXRequestTrace &trace = *exported;
    const QString url = trace.url ? urlText(*trace.url) : QString();
    if (url.isEmpty())
        return makeError(QXExportError::missingRequestURL);

    QString command = u"curl -X "_s;
    appendMethod(command, sentMethod(trace.method));
    command += u" '";
    appendQuoted(command, url);
    command += u'\'';
    if (trace.headers)
        appendHeaders(command, *trace.headers);
    if (trace.body)
        appendBody(command, *trace.body, progress);
    else if (trace.discardedBodySize)
        appendDiscardedBody(command, *trace.discardedBodySize);
    if (isCancelled(progress))
        return cancelledError();
    finish(progress);
    return command;
}
