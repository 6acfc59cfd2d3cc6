#include "Quorvix/QXSwiftModelExport.h"

#include "Quorvix/QXApiTreeParser.h"
#include "Quorvix/QXExportError.h"
#include "Quorvix/QXSwiftModelGenerator.h"
#include "Quorvix/QXSwiftName.h"
#include "Quorvix/QXTemporaryFile.h"

using namespace Quorvix;

namespace {

/// The response body or else the request body; empty if both are empty or absent.
QByteArray payloadOf(const QXRequestTrace &trace)
{
    const QByteArray responseBody =
        trace.response ? trace.response->body.value_or(QByteArray()) : QByteArray();
    return responseBody.isEmpty() ? trace.body.value_or(QByteArray()) : responseBody;
}

} // namespace

Result<QUrl> QXSwiftModelExport::exportTrace(const QXExportedTrace &exported)
{
    const QXRequestTrace &trace = *exported;
    const QByteArray payload = payloadOf(trace);
    if (payload.isEmpty())
        return makeError(QXExportError::missingPayload);
    const auto fields = QXApiTreeParser::parse(QByteArrayView(payload));
    if (!fields)
        return makeError(QXExportError::payloadNotParsed);

    // The path stays percent-encoded, so that an escaped slash does not end a segment.
    const QString path = trace.url ? trace.url->path(QUrl::FullyEncoded) : QString();
    const QString name = QXSwiftName::rootTypeName(path);
    const Result<QString> source = QXSwiftModelGenerator::source(*fields.value().front(), name);
    if (!source)
        return source.error();
    const auto file = QXTemporaryFile::writeText(QXSwiftName::fileName(name), source.value().toUtf8());
    return file ? file : makeError(QXExportError::swiftModelFileNotCreated);
}
