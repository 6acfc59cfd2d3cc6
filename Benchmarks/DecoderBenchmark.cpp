// Finds and decodes encoded parts in bodies of 10 MB; for comparison, the time that Qt takes only to decode.

#include "Quorvix/QXPayloadDecoder.h"

#include "Benchmarks/Contest.h"
#include "Benchmarks/Report.h"
#include "Benchmarks/Samples.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <algorithm>

using Contest::require;
using Samples::binaryBytes;

namespace {

constexpr qsizetype bodySize = 10'000'000;
constexpr int mailColumns = 76;

QByteArray plainText(qsizetype size)
{
    const QByteArray sentence("Some text that a person would read, of a usual length.\n");
    return sentence.repeated(size / sentence.size() + 1).first(size);
}

/// Records as a server sends them, without any encoded part.
QByteArray jsonText(qsizetype size)
{
    QByteArray text = "[";
    for (int i = 0; text.size() < size; ++i) {
        const QByteArray number = QByteArray::number(i);
        text += i == 0 ? "" : ",\n";
        text += R"({"id":)" + number + R"(,"title":"The title of item )" + number +
                R"(","link":"https://api.example.com/v1/items/)" + number +
                R"(?sort=name","summary":"Some text that a person would read.","on":true})";
    }
    return text + "]";
}

QByteArray wrapped(const QByteArray &text)
{
    QByteArray lines;
    lines.reserve(text.size() + text.size() / mailColumns * 2 + 2);
    for (qsizetype i = 0; i < text.size(); i += mailColumns)
        lines +=
            QByteArrayView(text).sliced(i, std::min<qsizetype>(mailColumns, text.size() - i)).toByteArray() +
            "\r\n";
    return lines;
}

void compare(const char *what, const char *peerName, const std::function<void()> &ours,
             const std::function<void()> &peer, const char *goal = nullptr,
             std::optional<double> goalAdvantage = {})
{
    const std::vector<double> times = Contest::medians({{what, ours}, {what, peer}});
    Report::add({.metric = what,
                 .place = "one thread",
                 .unit = "ms",
                 .ours = times[0],
                 .peer = Report::Other{peerName, times[1]},
                 .goal = goal,
                 .goalAdvantage = goalAdvantage});
}

void compareDecoding(const char *what, const QByteArray &text, const char *sectionTitle,
                     const char *goal = nullptr, std::optional<double> goalAdvantage = {})
{
    compare(
        what, "fromBase64 alone",
        [&] {
            const auto payload = QXPayloadDecoder::decodePayload(QByteArrayView(text));
            require(payload && payload->sections.first().title == QLatin1StringView(sectionTitle), what);
        },
        [&] { require(!QByteArray::fromBase64(text).isEmpty(), what); }, goal, goalAdvantage);
}

void compareSearch(const char *what, const QByteArray &text, bool isFound)
{
    compare(
        what, "fromBase64 alone",
        [&] { require(QXPayloadDecoder::hasEncodedCandidate(QByteArrayView(text)) == isFound, what); },
        [&] { require(!QByteArray::fromBase64(text).isEmpty(), what); });
}

} // namespace

int main()
{
    constexpr qsizetype decodedSize = bodySize / 4 * 3;
    const QByteArray binary = binaryBytes(decodedSize).toBase64();
    const QByteArray text = plainText(decodedSize).toBase64();
    const QByteArray json = jsonText(decodedSize).toBase64();

    std::printf("Texts of %.0f MB; median of %d turns\n", double(bodySize) / 1e6, Contest::rounds);
    compareDecoding("decode Base64 of binary data", binary, "Bytes");
    compareDecoding("decode Base64 of text", text, "Text");
    compareDecoding("decode Base64 of JSON", json, "JSON", "1.5 x the peer at most", 1 / 1.5);
    compareDecoding("decode Base64 of binary data, 76 columns", wrapped(binary), "Bytes");
    compareDecoding("decode Base64 of text, 76 columns", wrapped(text), "Text");
    compareDecoding("decode data URL of binary data", "data:image/png;base64," + binary, "Bytes");

    compareSearch("search in Base64", binary, true);
    compareSearch("search in Base64, 76 columns", wrapped(binary), true);
    compareSearch("search in JSON with nothing encoded", jsonText(bodySize), false);
    compareSearch("search in binary data", binaryBytes(bodySize), false);

    const QByteArray bytes = binaryBytes(bodySize);
    compare(
        "10 MB as hexadecimal text", "QByteArray::toHex",
        [&] { require(QXPayloadDecoder::hexString(bytes).size() > 0, "hex"); },
        [&] { require(QString::fromLatin1(bytes.toHex()).size() > 0, "hex"); });
    return 0;
}
