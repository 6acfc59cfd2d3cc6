#pragma once

#include <QtCore/QByteArrayView>

#include <memory>
#include <span>

namespace Quorvix {

/// One content coding that is being undone, piece by piece. The coded data has at least one byte.
class ContentCoding
{
public:
    enum class Step {
        /// All input is taken and all output is written.
        Taken,
        /// The output is full, and there may be more.
        Full,
        /// The data breaks the rules of the coding.
        Broken,
        /// The decoder needs more memory than there is.
        OutOfMemory,
    };

    /// Whether there is a decoder for the coding with this name in any case.
    [[nodiscard]] static bool isKnown(QByteArrayView name);
    /// A decoder; null when the coding is not known.
    [[nodiscard]] static std::unique_ptr<ContentCoding> create(QByteArrayView name);
    virtual ~ContentCoding();
    Q_DISABLE_COPY_MOVE(ContentCoding)

    /// Takes bytes from the beginning of @p input, and shortens both by what it has taken and written.
    [[nodiscard]] virtual Step decode(QByteArrayView &input, std::span<char> &output) = 0;
    /// Whether the data may end here.
    [[nodiscard]] virtual bool isComplete() const = 0;

protected:
    ContentCoding();
};

} // namespace Quorvix
