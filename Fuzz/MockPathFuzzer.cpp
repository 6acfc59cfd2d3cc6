// Checks that exported files stay in their folder and can be read again, whatever the path and the method of
// a request are.

#include "FuzzCheck.h"
#include "FuzzFolder.h"
#include "FuzzParts.h"

#include "Quorvix/QXApiMockDefinition.h"
#include "Quorvix/QXApiMockGenerator.h"
#include "Quorvix/QXArchiveWriter.h"
#include "Quorvix/QXPathSegment.h"
#include "Quorvix/QXRequestTrace.h"
#include "Quorvix/QXSwiftModelExport.h"

#include <QtCore/QRegularExpression>

using namespace Quorvix;
using namespace Qt::StringLiterals;

namespace {

void checkSegment(const QString &segment)
{
    static const QRegularExpression number(u"\\A[0-9]+\\z"_s);
    static const QRegularExpression hash(u"\\A[0-9a-fA-F-]{16,}\\z"_s);
    const bool isNumber = number.match(segment).hasMatch();
    check(QXPathSegment::isNumber(segment) == isNumber, "a number is digits");
    check(QXPathSegment::isIdentifier(segment) == (isNumber || hash.match(segment).hasMatch()),
          "an identifier is a number or a hash");
}

/// Checks what an export has left in the temporary folder, and returns the only file's content.
QByteArray writtenBy(const Result<QUrl> &result, const QString &relativePath)
{
    const auto files = FuzzFolder::instance().takeFiles();
    if (!result) {
        check(files.empty(), "a failure leaves no file");
        return {};
    }
    check(files.size() == 1 && files.begin()->first == relativePath, "one file is written, at its own place");
    check(result.value().toLocalFile() == FuzzFolder::instance().path(relativePath), "its URL is told");
    return files.begin()->second;
}

void checkMock(const QXRequestTrace &trace)
{
    const auto file = QXApiMockGenerator::exportMock(trace);
    const auto path = QXApiMockGenerator::relativeFilePath(*trace.url, *trace.method);
    check(path || !file, "a file has a path");
    const QByteArray content = writtenBy(file, u"Quorvix/"_s + path.value_or(QString()));
    if (!file)
        return;
    check(path->startsWith("mocks/custom/"_L1) && path->count(u'/') == 4,
          "the folders are a resource and a version");
    const auto definition = QXApiMockDefinition::decode(content);
    check(bool(definition), "a definition can be read");
    check(definition.value().encode() == content, "it is read as it was written");
    check(definition.value().request.url.endsWith("(\\?.*)?$"_L1), "a query may follow the path");
    check(definition.value().responses.keys() == QStringList(u"success"_s), "there is one response");
}

void checkArchive(const QXRequestTrace &trace)
{
    const std::chrono::system_clock::time_point now(std::chrono::seconds(1'700'000'000));
    const auto file = QXArchiveWriter::exportTrace(trace, now);
    writtenBy(file, QXArchiveWriter::exportFileName(trace, now));
}

void checkModel(const QXRequestTrace &trace)
{
    const auto file = QXSwiftModelExport::exportTrace(trace);
    check(bool(file), "every path gives a model a name");
    writtenBy(file, u"Quorvix/"_s + file.value().fileName());
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzFolder::instance();
    FuzzParts parts(view(data, size));
    URLRequest request(QUrl::fromEncoded(parts.take()));
    request.httpMethod = QString::fromUtf8(parts.take());
    QXRequestTrace trace(u"id"_s, request);
    for (const QString &segment : QString::fromUtf8(parts.takeRest()).split(u'/'))
        checkSegment(segment);
    trace.response =
        QXResponseTrace(NSHTTPURLResponse(request.url, 200, u"HTTP/1.1"_s, {}), "[{\"a\":1}]"_ba);
    checkMock(trace);
    checkArchive(trace);
    checkModel(trace);
    return 0;
}
