#pragma once

#include "Quorvix/QXExportedTrace.h"

#include "Platform/PlatformGlobal.h"
#include "Platform/Result.h"

#include <QtCore/QString>
#include <QtCore/QUrl>

#include <optional>

class QXTaskProgress;

/// Makes the file that a mock server uses to answer a captured request.
///
/// The rules look at the segments of the URL's path after its percent escapes are decoded. So a mock has the
/// name that people see in the path, and an escaped slash separates segments like any other slash. A path
/// whose escapes are not valid UTF-8 is not decoded. QXPathSegment decides what an identifier is. Stateless;
/// any thread.
class QUORVIX_INTERNAL_EXPORT QXApiMockGenerator
{
public:
    /// "/api/v1/users/{id}_GET" for a GET of .../api/v1/users/42.
    [[nodiscard]] static QString endpointName(const QUrl &url, const QString &method);

    /// "/api/v1/users/42(\?.*)?$", a regular expression for this path with any query. Identifiers stay as
    /// captured, and nothing is escaped, because users edit the file.
    [[nodiscard]] static QString urlPattern(const QUrl &url);

    /// "mocks/custom/users/v1/users_{id}_GET.json": the resource, the version ("v" and digits), and the
    /// segments after the version. Absent if the path has no version, or no resource after it.
    ///
    /// The result is not sanitised: ".." and backslashes in the URL or in the method appear in it.
    [[nodiscard]] static std::optional<QString> relativeFilePath(const QUrl &url, const QString &method);

    /// Writes the definition to the temporary directory and returns its file URL.
    ///
    /// Fails with an error of QXExportError and writes nothing: missingRequestURL, missingRequestMethod,
    /// missingResponseBody, responseBodyNotJSON (any JSON value is accepted, also a scalar; an empty body is
    /// not JSON), unmappableRequestPath, mockFileNotCreated. The last error is also reported when the path
    /// or the method would lead to a folder other than the resource's folder. If the task is cancelled, it
    /// fails with NSCocoaErrorDomain / NSUserCancelledError.
    static Quorvix::Result<QUrl> exportMock(const QXExportedTrace &exported,
                                            QXTaskProgress *progress = nullptr);
};
