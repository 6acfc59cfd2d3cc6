#include "Quorvix/QXArchiveWriter.h"

#include "Quorvix/QXTemporaryFile.h"

#include "Platform/BundleInfo.h"
#include "Platform/ReplaceFile.h"
#include "Platform/WriteAll.h"

using namespace Quorvix;
using namespace Qt::StringLiterals;

// Each archive is valid and empty, whatever the source would give: a program without the inspector tells
// nothing.

namespace {

constexpr char emptyArchive[] = R"({
  "log" : {
    "creator" : {
      "name" : "%1",
      "version" : "%2"
    },
    "entries" : [],
    "version" : "1.2"
  }
})";

} // namespace

QByteArray QXArchiveWriter::archive(const Source &)
{
    return QString::fromLatin1(emptyArchive)
        .arg(QLatin1StringView(BundleInfo::name), QLatin1StringView(BundleInfo::shortVersion))
        .toUtf8();
}

std::optional<NSError> QXArchiveWriter::archive(const Source &traces, QIODevice &device, QXTaskProgress *)
{
    return writeAll(device, archive(traces));
}

std::optional<NSError> QXArchiveWriter::write(const Source &, const QString &path, QXTaskProgress *)
{
    return replaceFile(path, [](QIODevice &file) { return archive({}, file); });
}

QString QXArchiveWriter::exportFileName(const QXRequestTrace &, std::chrono::system_clock::time_point)
{
    return u"Quorvix.har"_s;
}

Result<QUrl> QXArchiveWriter::exportTrace(const QXRequestTrace &trace,
                                          std::chrono::system_clock::time_point now, QXTaskProgress *)
{
    return QXTemporaryFile::write(exportFileName(trace, now),
                                  [](QIODevice &file) { return archive({}, file); });
}

QString QXArchiveWriter::failureMessage(const NSError &error)
{
    return error.localizedDescription;
}
