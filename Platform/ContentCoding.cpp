#include "Platform/ContentCoding.h"

#include <brotli/decode.h>
#include <zlib.h>
#include <zstd.h>
#include <zstd_errors.h>

#include <algorithm>
#include <limits>

namespace Quorvix {

namespace {

using Step = ContentCoding::Step;

/// The codings gzip and deflate, for which zlib has one decoder.
class Inflating final : public ContentCoding
{
public:
    enum class Label { GZip, Deflate };

    explicit Inflating(Label label) : m_label(label) {}
    ~Inflating() override
    {
        if (m_isOpen)
            inflateEnd(&m_stream);
    }
    Q_DISABLE_COPY_MOVE(Inflating)

    [[nodiscard]] Step decode(QByteArrayView &input, std::span<char> &output) override;
    [[nodiscard]] bool isComplete() const override { return m_isComplete; }

private:
    [[nodiscard]] Step open(QByteArrayView beginning);

    const Label m_label;
    z_stream m_stream{};
    bool m_isOpen = false;
    bool m_isGZip = false;
    bool m_isComplete = false;
};

/// Chooses the format by the first bytes, because servers mix them up: "deflate" should be the format of
/// zlib, and is often raw, and either label is found on the format of the other.
Step Inflating::open(QByteArrayView beginning)
{
    constexpr int gzipFormat = 16;
    const auto first = static_cast<uchar>(beginning[0]);
    const auto second = beginning.size() > 1 ? static_cast<uchar>(beginning[1]) : 0;
    m_isGZip = first == 0x1F;
    // RFC 1950, 2.2. A raw block that begins like this has bits in its padding.
    const bool isZlib = (first & 0x8F) == Z_DEFLATED && (first * 256 + second) % 31 == 0;
    if (!m_isGZip && !isZlib && m_label == Label::GZip)
        return Step::Broken;
    const int format = m_isGZip ? MAX_WBITS + gzipFormat : isZlib ? MAX_WBITS : -MAX_WBITS;
    m_isOpen = inflateInit2(&m_stream, format) == Z_OK;
    return m_isOpen ? Step::Taken : Step::OutOfMemory;
}

Step Inflating::decode(QByteArrayView &input, std::span<char> &output)
{
    constexpr qsizetype most = std::numeric_limits<uInt>::max();
    if (!m_isOpen) {
        if (const Step opened = open(input); opened != Step::Taken)
            return opened;
    }
    while (!input.isEmpty() || !m_isComplete) {
        if (m_isComplete) {
            // A body in the format of gzip may have several members (RFC 1952, 2.2).
            if (!m_isGZip || inflateReset(&m_stream) != Z_OK)
                return Step::Broken;
            m_isComplete = false;
        }
        m_stream.next_in = reinterpret_cast<Bytef *>(const_cast<char *>(input.data()));
        m_stream.avail_in = static_cast<uInt>(std::min(input.size(), most));
        m_stream.next_out = reinterpret_cast<Bytef *>(output.data());
        m_stream.avail_out = static_cast<uInt>(std::min(static_cast<qsizetype>(output.size()), most));
        const int outcome = inflate(&m_stream, Z_NO_FLUSH);
        input = input.sliced(reinterpret_cast<char *>(m_stream.next_in) - input.data());
        output = output.subspan(reinterpret_cast<char *>(m_stream.next_out) - output.data());
        m_isComplete = outcome == Z_STREAM_END;
        if (outcome == Z_MEM_ERROR)
            return Step::OutOfMemory;
        // Z_BUF_ERROR: nothing was left to do.
        if (outcome != Z_OK && outcome != Z_STREAM_END && outcome != Z_BUF_ERROR)
            return Step::Broken;
        if (output.empty())
            return m_isComplete && input.isEmpty() ? Step::Taken : Step::Full;
        if (input.isEmpty())
            break;
    }
    return Step::Taken;
}

/// The coding br (RFC 7932).
class Brotli final : public ContentCoding
{
public:
    [[nodiscard]] Step decode(QByteArrayView &input, std::span<char> &output) override
    {
        if (!m_decoder)
            return Step::OutOfMemory;
        if (m_isComplete)
            return input.isEmpty() ? Step::Taken : Step::Broken;
        size_t inputSize = static_cast<size_t>(input.size());
        size_t outputSize = output.size();
        const auto *nextInput = reinterpret_cast<const uint8_t *>(input.data());
        auto *nextOutput = reinterpret_cast<uint8_t *>(output.data());
        const auto outcome = BrotliDecoderDecompressStream(m_decoder.get(), &inputSize, &nextInput,
                                                           &outputSize, &nextOutput, nullptr);
        input = input.last(static_cast<qsizetype>(inputSize));
        output = output.last(outputSize);
        switch (outcome) {
        case BROTLI_DECODER_RESULT_SUCCESS:
            m_isComplete = true;
            return input.isEmpty() ? Step::Taken : Step::Broken;
        case BROTLI_DECODER_RESULT_NEEDS_MORE_INPUT:
            return Step::Taken;
        case BROTLI_DECODER_RESULT_NEEDS_MORE_OUTPUT:
            return Step::Full;
        case BROTLI_DECODER_RESULT_ERROR:
            break;
        }
        const BrotliDecoderErrorCode error = BrotliDecoderGetErrorCode(m_decoder.get());
        return error <= BROTLI_DECODER_ERROR_ALLOC_CONTEXT_MODES && error > BROTLI_DECODER_ERROR_UNREACHABLE
                   ? Step::OutOfMemory
                   : Step::Broken;
    }
    [[nodiscard]] bool isComplete() const override { return m_isComplete; }

private:
    struct Destroy
    {
        void operator()(BrotliDecoderState *decoder) const { BrotliDecoderDestroyInstance(decoder); }
    };

    std::unique_ptr<BrotliDecoderState, Destroy> m_decoder{
        BrotliDecoderCreateInstance(nullptr, nullptr, nullptr)};
    bool m_isComplete = false;
};

/// The coding zstd (RFC 8878), which may have several frames.
class Zstandard final : public ContentCoding
{
public:
    [[nodiscard]] Step decode(QByteArrayView &input, std::span<char> &output) override
    {
        if (!m_decoder)
            return Step::OutOfMemory;
        ZSTD_inBuffer in{input.data(), static_cast<size_t>(input.size()), 0};
        ZSTD_outBuffer out{output.data(), output.size(), 0};
        do {
            const size_t outcome = ZSTD_decompressStream(m_decoder.get(), &out, &in);
            if (ZSTD_isError(outcome))
                return ZSTD_getErrorCode(outcome) == ZSTD_error_memory_allocation ? Step::OutOfMemory
                                                                                  : Step::Broken;
            m_isComplete = outcome == 0;
        } while (in.pos < in.size && out.pos < out.size);
        input = input.sliced(static_cast<qsizetype>(in.pos));
        output = output.subspan(out.pos);
        return output.empty() && !(m_isComplete && input.isEmpty()) ? Step::Full : Step::Taken;
    }
    [[nodiscard]] bool isComplete() const override { return m_isComplete; }

private:
    struct Destroy
    {
        void operator()(ZSTD_DStream *decoder) const { ZSTD_freeDStream(decoder); }
    };

    std::unique_ptr<ZSTD_DStream, Destroy> m_decoder{ZSTD_createDStream()};
    bool m_isComplete = false;
};

struct Known
{
    QByteArrayView name;
    std::unique_ptr<ContentCoding> (*create)() = nullptr;
};

constexpr Known knownCodings[] = {
    {"gzip",
     [] {
         return std::unique_ptr<ContentCoding>(new Inflating(Inflating::Label::GZip));
     }},
    {"x-gzip",
     [] {
         return std::unique_ptr<ContentCoding>(new Inflating(Inflating::Label::GZip));
     }},
    {"deflate",
     [] {
         return std::unique_ptr<ContentCoding>(new Inflating(Inflating::Label::Deflate));
     }},
    {"br",
     [] {
         return std::unique_ptr<ContentCoding>(new Brotli);
     }},
    {"zstd",
     [] {
         return std::unique_ptr<ContentCoding>(new Zstandard);
     }},
};

const Known *find(QByteArrayView name)
{
    const auto *const found = std::ranges::find_if(knownCodings, [name](const Known &known) {
        return known.name.compare(name, Qt::CaseInsensitive) == 0;
    });
    return found == std::end(knownCodings) ? nullptr : found;
}

} // namespace

ContentCoding::ContentCoding() = default;
ContentCoding::~ContentCoding() = default;

bool ContentCoding::isKnown(QByteArrayView name)
{
    return find(name) != nullptr;
}

std::unique_ptr<ContentCoding> ContentCoding::create(QByteArrayView name)
{
    const Known *const known = find(name);
    return known ? known->create() : nullptr;
}

} // namespace Quorvix
