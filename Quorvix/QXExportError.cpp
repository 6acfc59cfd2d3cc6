#include "Quorvix/QXExportError.h"

#include <QtCore/QCoreApplication>

using namespace Quorvix;
using namespace Qt::StringLiterals;

namespace {

const char *sentenceFor(QXExportError reason)
{
    switch (reason) {
    case QXExportError::missingRequestURL:
        return "Missing request URL.";
    case QXExportError::missingRequestMethod:
        return "Missing request method.";
    case QXExportError::missingResponseBody:
        return "No response body available to generate a mock.";
    case QXExportError::responseBodyNotJSON:
        return "Response body is not valid JSON.";
    case QXExportError::unmappableRequestPath:
        return "Unable to map request path to mock server pattern.";
    case QXExportError::mockFileNotCreated:
        return "Failed to create mock file.";
    case QXExportError::missingPayload:
        return "No JSON payload available to generate a model.";
    case QXExportError::payloadNotParsed:
        return "Failed to parse JSON payload.";
    case QXExportError::swiftModelNotGenerated:
        return "Unable to generate Swift model.";
    case QXExportError::swiftModelFileNotCreated:
        return "Failed to create Swift model file.";
    }
    return "";
}

} // namespace

NSError makeError(QXExportError reason)
{
    return {u"QXExportError"_s, int(reason), QCoreApplication::translate("Quorvix", sentenceFor(reason))};
}
