#pragma once

#include "Platform/PlatformGlobal.h"
#include "Platform/Result.h"

#include <QtCore/QByteArray>
#include <QtCore/QUrl>

#include <chrono>
#include <functional>
#include <optional>
#include <ranges>

class QIODevice;
struct QXRequestTrace;

/// Writes exchanges as an HTTP Archive (HAR 1.2): pretty-printed JSON, keys in alphabetical order.
///
/// Writes as it reads; neither the document nor any body is held as a tree. Nothing that a trace lacks makes
/// it fail. Stateless; any thread, with traces that no other thread changes.
class QUORVIX_CORE_EXPORT QXArchiveWriter
{
public:
    /// Yields one trace after the other, and null after the last.
    using Source = std::function<const QXRequestTrace *()>;

    /// A source of the traces, or pointers to traces, in a range, which has to outlive it.
    template<std::ranges::input_range Range>
    [[nodiscard]] static Source sourceOf(Range &traces);

    /// The whole document. Its size is limited by memory only; a file is better written straight to its
    /// device.
    [[nodiscard]] static QByteArray archive(const Source &traces);
    /// Streams the document. Fails with the device's own error.
    [[nodiscard]] static std::optional<Quorvix::NSError> archive(const Source &traces, QIODevice &device);

    /// "Quorvix-GET-42-1700000000.har" for a GET of .../users/42. The path component stands there
    /// undecorated, as the URL's path has it when decoded, so the name may be one that no file can have.
    [[nodiscard]] static QString exportFileName(const QXRequestTrace &trace,
                                                std::chrono::system_clock::time_point now);
    /// Writes an archive of this one exchange to the process's temporary directory and returns its file URL.
    static Quorvix::Result<QUrl> exportTrace(const QXRequestTrace &trace,
                                             std::chrono::system_clock::time_point now);

    /// What the user is told when an export failed.
    [[nodiscard]] static QString failureMessage(const Quorvix::NSError &error);
};

template<std::ranges::input_range Range>
QXArchiveWriter::Source QXArchiveWriter::sourceOf(Range &traces)
{
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
