#include "Platform/ContentDecoder.h"

#include "Platform/ContentCoding.h"

#include <QtCore/QIODevice>

#include <algorithm>
#include <limits>
#include <new>

namespace Quorvix {

namespace {

using Step = ContentCoding::Step;
/// The next bytes of the coded data; none at its end.
using Source = std::function<QByteArrayView()>;

/// The codings in the order in which they were applied, without "identity", which changes nothing.
QList<QByteArray> codingsIn(const QByteArray &contentEncoding)
{
    QList<QByteArray> codings = contentEncoding.split(',');
    for (QByteArray &coding : codings)
        coding = coding.trimmed();
    codings.removeIf([](const QByteArray &coding) {
        return coding.isEmpty() || coding.compare("identity", Qt::CaseInsensitive) == 0;
    });
    return codings;
}

Result<QByteArray> failure(NSURLErrorCode code)
{
    return makeURLError(code);
}

/// A body that grows up to a limit. Memory that is reserved and not written yet costs nothing.
class Output final
{
public:
    Output(qint64 maximumSize, qsizetype expectedSize)
        // One more byte tells that there is more. The other half of the address space is for the rest.
        : m_limit(static_cast<qsizetype>(
              std::clamp<qint64>(maximumSize, 0, std::numeric_limits<qsizetype>::max() / 2) + 1)),
          m_expectedSize(expectedSize)
    {
    }

    /// Room for the next bytes: not much of it, so that the caller can look around between two pieces.
    std::span<char> room()
    {
        constexpr qsizetype piece = 262'144;
        if (m_size == m_bytes.size()) {
            const qsizetype size = std::min(m_limit, std::max(m_expectedSize, 2 * m_size));
            m_bytes.reserve(size);
            m_bytes.resize(size);
        }
        return {m_bytes.data() + m_size, static_cast<size_t>(std::min(piece, m_bytes.size() - m_size))};
    }

    void add(qsizetype written) { m_size += written; }
    [[nodiscard]] bool isTooLong() const { return m_size == m_limit; }

    QByteArray take()
    {
        m_bytes.truncate(m_size);
        m_bytes.squeeze();
        return std::move(m_bytes);
    }

private:
    const qsizetype m_limit;
    const qsizetype m_expectedSize;
    QByteArray m_bytes;
    qsizetype m_size = 0;
};

Result<QByteArray> undo(ContentCoding &coding, const Source &next, Output output,
                        const std::function<bool()> &isCancelled)
{
    bool isEmpty = true;
    for (QByteArrayView input = next(); !input.isEmpty(); input = next()) {
        isEmpty = false;
        auto step = Step::Taken;
        do {
            if (isCancelled())
                return failure(NSURLErrorCancelled);
            const std::span<char> room = output.room();
            std::span<char> rest = room;
            step = coding.decode(input, rest);
            output.add(static_cast<qsizetype>(room.size() - rest.size()));
            if (step == Step::Broken)
                return failure(NSURLErrorCannotDecodeRawData);
            if (step == Step::OutOfMemory)
                return failure(NSURLErrorCannotDecodeContentData);
            if (output.isTooLong())
                return failure(NSURLErrorDataLengthExceedsMaximum);
        } while (step == Step::Full || !input.isEmpty());
    }
    if (!isEmpty && !coding.isComplete())
        return failure(NSURLErrorCannotDecodeRawData);
    return output.take();
}

Result<QByteArray> undoAll(QIODevice &coded, QList<QByteArray> codings, qint64 maximumSize,
                           const std::function<bool()> &isCancelled)
{
    static constexpr qsizetype pieceSize = 65'536;
    constexpr qsizetype usualRatio = 4;
    const auto expectedFor = [](qint64 codedSize) {
        return static_cast<qsizetype>(std::clamp<qint64>(codedSize * usualRatio, 4096, 67'108'864));
    };
    QByteArray piece(pieceSize, Qt::Uninitialized);
    // A full piece, because a coding may need more than the first byte to know its format.
    Source next = [&]() -> QByteArrayView {
        qsizetype size = 0;
        for (qint64 read = 1; read > 0 && size < pieceSize; size += std::max<qint64>(0, read))
            read = coded.read(piece.data() + size, pieceSize - size);
        return {piece.constData(), size};
    };
    QByteArray body;
    qint64 size = coded.bytesAvailable();
    while (!codings.isEmpty()) {
        const auto coding = ContentCoding::create(codings.takeLast());
        auto undone = undo(*coding, next, Output(maximumSize, expectedFor(size)), isCancelled);
        if (!undone)
            return undone;
        body = std::move(undone).value();
        size = body.size();
        // In pieces, too: a decoder may take much that becomes nothing before the caller can look around.
        next = [rest = QByteArrayView(body)]() mutable -> QByteArrayView {
            const QByteArrayView first = rest.first(std::min(rest.size(), pieceSize));
            rest = rest.sliced(first.size());
            return first;
        };
    }
    return body;
}

} // namespace

bool ContentDecoder::canDecode(const QByteArray &contentEncoding)
{
    const QList<QByteArray> codings = codingsIn(contentEncoding);
    return !codings.isEmpty() && std::ranges::all_of(codings, &ContentCoding::isKnown);
}

Result<QByteArray> ContentDecoder::decode(QIODevice &coded, const QByteArray &contentEncoding,
                                          qint64 maximumSize, const std::function<bool()> &isCancelled)
{
    // Each coding costs a decoder, and may multiply the size by a thousand.
    constexpr qsizetype mostCodings = 5;
    QList<QByteArray> codings = codingsIn(contentEncoding);
    if (codings.size() > mostCodings)
        return failure(NSURLErrorCannotDecodeContentData);
    try {
        return undoAll(coded, std::move(codings), maximumSize, isCancelled);
    } catch (const std::bad_alloc &) {
        return failure(NSURLErrorDataLengthExceedsMaximum);
    }
}

} // namespace Quorvix
