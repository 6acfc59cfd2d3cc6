#pragma once

#include "Platform/PlatformGlobal.h"
#include "Platform/Result.h"

#include <QtCore/QByteArray>
#include <QtCore/QUrl>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <ranges>

class QIODevice;
class QXTaskProgress;
struct QXRequestTrace;

/// Writes exchanges as an HTTP Archive (HAR 1.2): pretty-printed JSON, keys in alphabetical order.
///
/// The writer streams: it holds neither the document nor a body as a tree. Missing fields of a trace never
/// cause an error. Values that QXRedaction keeps secret are replaced. Stateless; any thread, if no other
/// thread changes the traces.
///
/// A function that gets a @p progress can be cancelled from another thread. It then fails with
/// NSCocoaErrorDomain / NSUserCancelledError and leaves no file. Only exportTrace() knows how far it is; the
/// others do not know how many traces their source gives, and report the end only.
///
/// A program whose environment has QUORVIX_HAR=path captures its sessions, too, and writes an archive of
/// QXRequestRecorder::shared() to that file at its end: when the application object is destroyed, or when its
/// thread calls exit() or returns from main(). "%p" in the path is replaced by the process identifier. A
/// failure goes to the inspector's log only.
class QUORVIX_CORE_EXPORT QXArchiveWriter
{
public:
    /// Returns the next trace, or null after the last one.
    using Source = std::function<const QXRequestTrace *()>;

    /// Makes a source from a range of traces or of pointers to traces. The range must outlive the source,
    /// except a temporary one, which the source keeps.
    template<std::ranges::input_range Range>
    [[nodiscard]] static Source sourceOf(Range &&traces);

    /// Returns the whole document. Only memory limits its size; to write a file, use the overload with a
    /// device.
    [[nodiscard]] static QByteArray archive(const Source &traces);
    /// Writes the document to @p device. Fails with the device's own error.
    [[nodiscard]] static std::optional<Quorvix::NSError> archive(const Source &traces, QIODevice &device,
                                                                 QXTaskProgress *progress = nullptr);

    /// Writes the document to the file at @p path, which replaces an existing file when it is complete. On
    /// an error that file stays as it is. A new file can be read by its owner only, because exchanges contain
    /// credentials; an existing one of this user's keeps its permissions. A device or pipe is written to. A
    /// relative path is relative to the working directory, and folders are not created.
    ///
    /// Fails with NSCocoaErrorDomain: NSFileWriteNoPermissionError if the file cannot be created, or if a
    /// link, device or pipe of another user is there; NSFileWriteUnknownError if it cannot be written. Any
    /// thread.
    [[nodiscard]] static std::optional<Quorvix::NSError> write(const Source &traces, const QString &path,
                                                               QXTaskProgress *progress = nullptr);

    /// "Quorvix-GET-42-1700000000.har" for a GET of .../users/42. The decoded path component is not
    /// sanitised, so the result may not be a valid file name.
    [[nodiscard]] static QString exportFileName(const QXRequestTrace &trace,
                                                std::chrono::system_clock::time_point now);
    /// Writes an archive with this one exchange to the process's temporary directory and returns its file
    /// URL. In a temporary directory that users share, the file is in a folder that only this user can open.
    static Quorvix::Result<QUrl> exportTrace(const QXRequestTrace &trace,
                                             std::chrono::system_clock::time_point now,
                                             QXTaskProgress *progress = nullptr);

    /// The message for the user when an export fails.
    [[nodiscard]] static QString failureMessage(const Quorvix::NSError &error);
};

template<std::ranges::input_range Range>
QXArchiveWriter::Source QXArchiveWriter::sourceOf(Range &&traces)
{
    if constexpr (!std::is_lvalue_reference_v<Range>) {
        auto kept = std::make_shared<Range>(std::forward<Range>(traces));
        return [kept, source = sourceOf(*kept)] {
            return source();
        };
    } else {
        return [at = std::ranges::begin(traces), end = std::ranges::end(traces)]() mutable {
            const QXRequestTrace *trace = nullptr;
            if (at != end) {
                if constexpr (std::is_pointer_v<std::ranges::range_value_t<Range>>)
                    trace = *at;
                else
                    trace = &*at;
                ++at;
            }
            return trace;
        };
    }
}
