#include "Quorvix/QXApiMockGenerator.h"

#include "Quorvix/QXApiMockDefinition.h"
#include "Quorvix/QXExportError.h"
#include "Quorvix/QXPathSegment.h"
#include "Quorvix/QXTaskSteps.h"
#include "Quorvix/QXTemporaryFile.h"

#include "JSON/JSONWriter.h"

#include "Platform/URLText.h"

#include <QtCore/QStringList>

#include <algorithm>

using namespace Quorvix;
using namespace Qt::StringLiterals;

namespace {

/// The share of the time that it takes to read the body, which is one step; the rest writes the file.
constexpr double readingShare = 0.4;

constexpr QStringView placeholder = u"{id}";

bool isVersion(QStringView segment)
{
    return segment.startsWith(u'v') && QXPathSegment::isNumber(segment.sliced(1));
}

QStringList segmentsOf(const QUrl &url)
{
    return percentDecoded(url.path(QUrl::FullyEncoded)).split(u'/', Qt::SkipEmptyParts);
}

QStringList withPlaceholders(QStringList segments)
{
    for (QString &segment : segments) {
        if (QXPathSegment::isIdentifier(segment))
            segment = placeholder.toString();
    }
    return segments;
}

/// Whether the file stays in the resource's folder. Path segments cannot contain a slash, but the method
/// can. QXTemporaryFile rejects the other unsafe names.
bool isInResourceFolder(QStringView path)
{
    return path.count(u'/') == 4;
}

QXApiMockDefinition definitionFor(const QXRequestTrace &trace, const JSONDocument &body)
{
    const QXApiMockResponse response{trace.response->statusCode, QXApiMockAnyEncodable(body), true};
    return {QXApiMockGenerator::endpointName(*trace.url, *trace.method),
            {QXApiMockGenerator::urlPattern(*trace.url), *trace.method},
            {{u"success"_s, response}}};
}

} // namespace

QString QXApiMockGenerator::endpointName(const QUrl &url, const QString &method)
{
    return u'/' + withPlaceholders(segmentsOf(url)).join(u'/') + u'_' + method;
}

QString QXApiMockGenerator::urlPattern(const QUrl &url)
{
    QStringList segments = segmentsOf(url);
    std::replace(segments.begin(), segments.end(), placeholder.toString(), u"[^/]+"_s);
    return u'/' + segments.join(u'/') + u"(\\?.*)?$"_s;
}

std::optional<QString> QXApiMockGenerator::relativeFilePath(const QUrl &url, const QString &method)
{
    const QStringList segments = segmentsOf(url);
    const auto version = std::find_if(segments.cbegin(), segments.cend(), isVersion);
    if (version == segments.cend() || version + 1 == segments.cend())
        return std::nullopt;
    const QStringList rest(version + 1, segments.cend());
    return u"mocks/custom/"_s + rest.first() + u'/' + *version + u'/' + withPlaceholders(rest).join(u'_') +
           u'_' + method + u".json"_s;
}

Result<QUrl> QXApiMockGenerator::exportMock(const QXExportedTrace &exported, QXTaskProgress *progress)
{
    const QXRequestTrace &trace = *exported;
    if (!trace.url)
        return makeError(QXExportError::missingRequestURL);
    if (!trace.method)
        return makeError(QXExportError::missingRequestMethod);
    if (!trace.response || !trace.response->body)
        return makeError(QXExportError::missingResponseBody);
    if (!beginStage(progress, readingShare))
        return cancelledError();
    const auto body = JSONReader::parse(*trace.response->body, JSONReader::TopLevel::AnyValue);
    if (!body)
        return makeError(QXExportError::responseBodyNotJSON);
    const auto path = relativeFilePath(*trace.url, *trace.method);
    if (!path)
        return makeError(QXExportError::unmappableRequestPath);

    if (!isInResourceFolder(*path))
        return makeError(QXExportError::mockFileNotCreated);
    if (!beginStage(progress, 1))
        return cancelledError();
    const QXApiMockDefinition definition = definitionFor(trace, body.value());
    auto file = QXTemporaryFile::writeText(
        *path, [&](QIODevice &device) { return definition.encode(device, progress); });
    // A task that is cancelled after its file is complete has a result.
    if (!file && isCancelled(progress))
        return cancelledError();
    finish(progress);
    return file ? std::move(file) : makeError(QXExportError::mockFileNotCreated);
}
