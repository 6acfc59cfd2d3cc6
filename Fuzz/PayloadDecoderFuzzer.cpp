// Checks that the decoder decodes exactly the texts that it offers to decode.

#include "FuzzCheck.h"

#include "Quorvix/QXPayloadDecoder.h"

#include "JSON/JSONWriter.h"

#include "Platform/UTF8Text.h"

#include <algorithm>

using namespace Quorvix;

namespace {

bool haveSameContent(const QXDecodedPayload &a, const QXDecodedPayload &b)
{
    const auto isSame = [](const QXDecodedSection &x, const QXDecodedSection &y) {
        return x.title == y.title && x.content == y.content;
    };
    return a.title == b.title &&
           std::equal(a.sections.cbegin(), a.sections.cend(), b.sections.cbegin(), b.sections.cend(), isSame);
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArrayView bytes = view(data, size);
    const auto candidate = QXPayloadDecoder::findEncodedCandidate(bytes);
    const auto payload = QXPayloadDecoder::decodePayload(bytes);
    check(candidate.has_value() == payload.has_value(), "what is offered can be decoded");
    check(candidate.has_value() == QXPayloadDecoder::hasEncodedCandidate(bytes), "asking is finding");
    static_cast<void>(QXPayloadDecoder::decodeJWT(bytes));
    static_cast<void>(QXPayloadDecoder::makeSection(bytes.toByteArray()));

    if (payload) {
        check(candidate->size() >= 12, "nothing short is decoded");
        check(payload->sections.size() == 1 || payload->sections.size() == 3,
              "one section, or a token's three");
        const auto again = QXPayloadDecoder::decodePayload(QByteArrayView(*candidate));
        check(again && haveSameContent(*again, *payload), "the candidate decodes to the same");
    }
    if (isValidUtf8(bytes)) {
        // Keeps a byte order mark, because the decoder has to remove it.
        const QString text = UTF8Text::replacing(bytes);
        const auto fromText = QXPayloadDecoder::decodePayload(text);
        check(fromText.has_value() == payload.has_value(), "text is read like its bytes");
        check(!payload || haveSameContent(*fromText, *payload), "text decodes like its bytes");
    }
    return 0;
}
