#pragma once

#include "Platform/PlatformGlobal.h"
#include "Platform/Result.h"

#include <QtCore/QString>
#include <QtCore/QUrl>

#include <optional>

struct QXRequestTrace;

/// Makes the file with which a mock server answers a captured request.
///
/// The rules look at the segments of the URL's path, which is taken with its percent escapes decoded: a mock
/// is named as people read the path, and an escaped slash parts segments as any other. A path whose escapes
/// do not stand for UTF-8 stays as it is. Identifiers are those of QXPathSegment. Stateless; any thread.
class QUORVIX_INTERNAL_EXPORT QXApiMockGenerator
{
public:
    /// "/api/v1/users/{id}_GET" for a GET of .../api/v1/users/42.
    [[nodiscard]] static QString endpointName(const QUrl &url, const QString &method);

    /// "/api/v1/users/42(\?.*)?$", a regular expression for this path with any query. Identifiers stay as
    /// they were captured, and nothing is escaped: the file is meant to be edited.
    [[nodiscard]] static QString urlPattern(const QUrl &url);

    /// "mocks/custom/users/v1/users_{id}_GET.json": resource, version ("v" and digits), and what follows the
    /// version. Absent without a version or a resource behind it.
    ///
    /// Whatever the URL holds stands in it, ".." and backslashes included, and so does the method.
    [[nodiscard]] static std::optional<QString> relativeFilePath(const QUrl &url, const QString &method);

    /// Writes the definition to the temporary directory and returns its file URL.
    ///
    /// Fails with an error of QXExportError, nothing having been written: missingRequestURL,
    /// missingRequestMethod, missingResponseBody, responseBodyNotJSON (any JSON value will do, a scalar too;
    /// an empty body is none), unmappableRequestPath, mockFileNotCreated. The last one is also what a path or
    /// a method gets that would lead to another folder than the resource's.
    static Quorvix::Result<QUrl> exportMock(const QXRequestTrace &trace);
};
