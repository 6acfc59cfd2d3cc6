#include "Quorvix/QXExportError.h"

#include "Platform/Localized.h"

#include <iterator>

using namespace Quorvix;
using namespace Qt::StringLiterals;

namespace {

/// In the order of the enumerators.
constexpr const char *messages[] = {
    QT_TRANSLATE_NOOP("Quorvix", "Missing request URL."),
    QT_TRANSLATE_NOOP("Quorvix", "Missing request method."),
    QT_TRANSLATE_NOOP("Quorvix", "No response body available to generate a mock."),
    QT_TRANSLATE_NOOP("Quorvix", "Response body is not valid JSON."),
    QT_TRANSLATE_NOOP("Quorvix", "Unable to map request path to mock server pattern."),
    QT_TRANSLATE_NOOP("Quorvix", "Failed to create mock file."),
    QT_TRANSLATE_NOOP("Quorvix", "No JSON payload available to generate a model."),
    QT_TRANSLATE_NOOP("Quorvix", "Failed to parse JSON payload."),
    QT_TRANSLATE_NOOP("Quorvix", "Unable to generate Swift model."),
    QT_TRANSLATE_NOOP("Quorvix", "Failed to create Swift model file."),
};
static_assert(std::size(messages) == size_t(QXExportError::swiftModelFileNotCreated) + 1);

} // namespace

NSError makeError(QXExportError reason)
{
    return {u"QXExportError"_s, int(reason), localized(messages[size_t(reason)])};
}
