#include "Quorvix/QXSwiftModelExport.h"

#include "Quorvix/QXApiTreeParser.h"
#include "Quorvix/QXExportError.h"
#include "Quorvix/QXRequestTrace.h"
#include "Quorvix/QXSwiftModelGenerator.h"
#include "Quorvix/QXSwiftName.h"
#include "Quorvix/QXTemporaryFile.h"

using namespace Quorvix;

namespace {

/// Empty when there is none.
QByteArray payloadOf(const QXRequestTrace &trace)
{
    const QByteArray answered = trace.response ? trace.response->body.value_or(QByteArray()) : QByteArray();
    return answered.isEmpty() ? trace.body.value_or(QByteArray()) : answered;
}

} // namespace

Result<QUrl> QXSwiftModelExport::exportTrace(const QXRequestTrace &trace)
{
    const QByteArray payload = payloadOf(trace);
    if (payload.isEmpty())
        return makeError(QXExportError::missingPayload);
    const auto fields = QXApiTreeParser::parse(QByteArrayView(payload));
    if (!fields)
        return makeError(QXExportError::payloadNotParsed);

    // Still encoded, so that a slash within a segment does not end it.
    const QString path = trace.url ? trace.url->path(QUrl::FullyEncoded) : QString();
    const QString name = QXSwiftName::rootTypeName(path);
    const Result<QString> source = QXSwiftModelGenerator::source(*fields.value().front(), name);
    if (!source)
        return source.error();
    const auto file = QXTemporaryFile::writeText(QXSwiftName::fileName(name), source.value().toUtf8());
    return file ? file : makeError(QXExportError::swiftModelFileNotCreated);
}
