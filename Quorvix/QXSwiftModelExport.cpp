#include "Quorvix/QXSwiftModelExport.h"

#include "Quorvix/QXApiTree.h"
#include "Quorvix/QXExportError.h"
#include "Quorvix/QXSwiftModelGenerator.h"
#include "Quorvix/QXSwiftName.h"
#include "Quorvix/QXTaskSteps.h"
#include "Quorvix/QXTemporaryFile.h"

#include "JSON/JSONReader.h"

using namespace Quorvix;

namespace {

/// The shares of the time: to read the text, to build its tree, to write the source.
constexpr double readingShare = 0.4;
constexpr double treeShare = 0.55;

/// The response body or else the request body; empty if both are empty or absent.
QByteArray payloadOf(const QXRequestTrace &trace)
{
    const QByteArray responseBody =
        trace.response ? trace.response->body.value_or(QByteArray()) : QByteArray();
    return responseBody.isEmpty() ? trace.body.value_or(QByteArray()) : responseBody;
}

} // namespace

Result<QUrl> QXSwiftModelExport::exportTrace(const QXExportedTrace &exported, QXTaskProgress *progress)
{
    const QXRequestTrace &trace = *exported;
    const QByteArray payload = payloadOf(trace);
    if (payload.isEmpty())
        return makeError(QXExportError::missingPayload);
    if (!beginStage(progress, readingShare))
        return cancelledError();
    std::shared_ptr<QXApiTreeField> root;
    if (auto document = JSONReader::parse(payload); !document) {
        return makeError(QXExportError::payloadNotParsed);
    } else if (beginStage(progress, readingShare + treeShare)) {
        const QXTaskSteps steps(progress, document.value().size());
        root = QXApiTree::make(std::move(document).value(), steps);
    }
    if (!root || !beginStage(progress, 1))
        return cancelledError();

    // The path stays percent-encoded, so that an escaped slash does not end a segment.
    const QString path = trace.url ? trace.url->path(QUrl::FullyEncoded) : QString();
    const QString name = QXSwiftName::rootTypeName(path);
    const Result<QByteArray> source = QXSwiftModelGenerator::utf8Source(*root, name, progress);
    if (!source)
        return source.error();
    if (isCancelled(progress))
        return cancelledError();
    const auto file = QXTemporaryFile::writeText(QXSwiftName::fileName(name), source.value());
    return file ? file : makeError(QXExportError::swiftModelFileNotCreated);
}
