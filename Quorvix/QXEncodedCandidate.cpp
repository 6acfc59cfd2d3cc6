#include "Quorvix/QXEncodedCandidate.h"

#include "Quorvix/QXBase64.h"
#include "Quorvix/QXJWTPieces.h"
#include "Quorvix/QXWhiteSpace.h"

#include "JSON/JSONReader.h"

#include "Platform/UTF8Text.h"

#include <QtCore/QByteArray>

#include <algorithm>
#include <array>
#include <string_view>

using namespace Quorvix;

namespace {

using Kind = QXEncodedCandidate::Kind;
using Found = std::optional<QXEncodedCandidate>;
using enum QXBase64::WhiteSpace;

/// What is shorter is never taken for encoded.
constexpr int minimumLength = 12;

enum CharacterSet : quint8 {
    ParameterName = 1,
    JWT = 2, // the pieces and the dots between them
    Wrapper = 4,
    Separator = 8,      // white space, "," and ";"
    MaybeSeparator = 16 // may begin white space beyond ASCII
};

constexpr std::array<quint8, 256> sets = [] {
    std::array<quint8, 256> table{};
    const auto add = [&](std::string_view characters, int set) {
        for (const char c : characters)
            table[uchar(c)] |= quint8(set);
    };
    add("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_", ParameterName | JWT);
    add("=.", JWT);
    add("\"'<>[](){}", Wrapper);
    add(" \t\n\v\f\r,;", Separator);
    add("\xC2\xE1\xE2\xE3", MaybeSeparator);
    return table;
}();

bool isIn(char c, int set) noexcept
{
    return (sets[uchar(c)] & set) != 0;
}

bool consistsOf(QByteArrayView text, CharacterSet set) noexcept
{
    return std::all_of(text.begin(), text.end(), [=](char c) { return isIn(c, set); });
}

QByteArrayView withoutWrappers(QByteArrayView text) noexcept
{
    while (!text.isEmpty() && isIn(text.front(), Wrapper))
        text = text.sliced(1);
    while (!text.isEmpty() && isIn(text.back(), Wrapper))
        text.chop(1);
    return text;
}

/// Lengths are meant in characters as a person counts them, white space not included. Bytes will do: only
/// ASCII decodes, and of its letters, digits and signs no two ever join into one character (UAX #29).
bool isLongEnough(QByteArrayView text) noexcept
{
    int length = 0;
    while (length < minimumLength && !text.isEmpty()) {
        const qsizetype size = QXWhiteSpace::sizeAtStart(text);
        length += size == 0;
        text = text.sliced(std::max<qsizetype>(size, 1));
    }
    return length == minimumLength;
}

/// Whether a text that is Base64 may as well be a media type (RFC 6838): two names with a slash between.
bool isMediaType(QByteArrayView base64) noexcept
{
    const qsizetype slash = base64.indexOf('/');
    return slash > 0 && slash < base64.size() - 1 && !base64.sliced(slash + 1).contains('/') &&
           !base64.contains('=') && !base64.contains('_');
}

/// For a text with no white space around it.
bool isJWT(QByteArrayView text)
{
    for (qsizetype i = 0; i < text.size();) {
        const qsizetype size = isIn(text[i], JWT) ? 1 : QXWhiteSpace::sizeAtStart(text.sliced(i));
        if (size == 0)
            return false;
        i += size;
    }
    const auto pieces = QXJWTPieces<QByteArrayView>::split(text);
    if (!pieces || pieces->header.isEmpty() || QXWhiteSpace::trimmed(pieces->body).isEmpty() ||
        pieces->signature.isEmpty())
        return false;
    return QXBase64::decode(pieces->header, Skipped) && QXBase64::decode(pieces->body, Skipped);
}

/// "Bearer" and a token, closed up, often are a token with a header of nonsense. A header that white space
/// runs through has to prove that it is one: by being JSON (RFC 7519, section 7.2).
bool hasMangledHeader(QByteArrayView jwt)
{
    const QByteArrayView header = QXWhiteSpace::trimmed(jwt.first(jwt.indexOf('.')));
    if (consistsOf(header, JWT))
        return false;
    QByteArray bytes;
    return !QXBase64::decode(header, Skipped, &bytes) ||
           !JSONReader::parse(bytes, JSONReader::TopLevel::Container);
}

enum class LineBreaks { Separate, Join };

qsizetype separatorSize(QByteArrayView text, LineBreaks lineBreaks) noexcept
{
    if (text.front() == ',' || text.front() == ';')
        return 1;
    if (lineBreaks == LineBreaks::Join && QXWhiteSpace::lineBreakSizeAtStart(text) > 0)
        return 0;
    return QXWhiteSpace::sizeAtStart(text);
}

/// Takes the first piece off @p rest, and the separators before it. Empty at the end.
QByteArrayView takePiece(QByteArrayView &rest, LineBreaks lineBreaks) noexcept
{
    qsizetype start = 0;
    while (start < rest.size()) {
        const qsizetype size = separatorSize(rest.sliced(start), lineBreaks);
        if (size == 0)
            break;
        start += size;
    }
    qsizetype end = start;
    while (end < rest.size() &&
           (!isIn(rest[end], Separator | MaybeSeparator) || separatorSize(rest.sliced(end), lineBreaks) == 0))
        ++end;
    const QByteArrayView piece = rest.sliced(start, end - start);
    rest = rest.sliced(end);
    return piece;
}

/// What follows the first "base64,"; empty when there is none.
QByteArrayView afterDataMarker(QByteArrayView text) noexcept
{
    const std::string_view view(text.data(), size_t(text.size()));
    constexpr std::string_view head("base6");
    constexpr std::string_view tail("4,");
    for (size_t at = view.find(tail, head.size()); at != view.npos; at = view.find(tail, at + 1)) {
        if (qstrnicmp(view.data() + at - head.size(), head.data(), head.size()) == 0)
            return text.sliced(qsizetype(at) + qsizetype(tail.size()));
    }
    return {};
}

class Search
{
public:
    explicit Search(QByteArray *decoded) : m_decoded(decoded) {}

    Found wholeText(QByteArrayView text)
    {
        const Found found = candidate(text);
        return found && found->kind == Kind::JWT && hasMangledHeader(found->text) ? Found() : found;
    }

    /// A line break does not end the content of a data URL, which mail programs wrap.
    Found dataUrl(QByteArrayView text)
    {
        QByteArrayView content = afterDataMarker(text);
        return candidate(takePiece(content, LineBreaks::Join));
    }

    Found words(QByteArrayView text)
    {
        while (!text.isEmpty()) {
            const QByteArrayView word = takePiece(text, LineBreaks::Separate);
            if (const Found found = word.size() < minimumLength ? Found() : inWord(withoutWrappers(word)))
                return found;
        }
        return std::nullopt;
    }

private:
    /// What may have white space anywhere.
    Found candidate(QByteArrayView piece)
    {
        const QByteArrayView text = QXWhiteSpace::trimmed(piece);
        return isLongEnough(text) ? encoded(text) : std::nullopt;
    }

    Found inWord(QByteArrayView word)
    {
        if (const Found found = word.size() < minimumLength ? Found() : encoded(word))
            return found;
        const qsizetype equals = word.indexOf('=');
        const bool hasValue = equals >= 0 && word.size() - (equals + 1) >= minimumLength;
        return hasValue && consistsOf(word.first(equals), ParameterName) ? encoded(word.sliced(equals + 1))
                                                                         : std::nullopt;
    }

    /// What is encoded has a dot or is Base64, so at most one of the two applies, and neither is ever tried
    /// in place of the other.
    Found encoded(QByteArrayView text)
    {
        if (QXBase64::decode(text, Skipped, m_decoded))
            return isMediaType(text) ? Found() : QXEncodedCandidate{text, Kind::Base64};
        return isJWT(text) ? QXEncodedCandidate{text, Kind::JWT} : Found();
    }

    QByteArray *const m_decoded;
};

} // namespace

std::optional<QXEncodedCandidate> QXEncodedCandidate::find(QByteArrayView utf8, QByteArray *decoded)
{
    const QByteArrayView text = QXWhiteSpace::trimmed(UTF8Text::withoutByteOrderMark(utf8));
    if (text.size() < minimumLength)
        return std::nullopt;
    Search search(decoded);
    if (const Found found = search.wholeText(text))
        return found;
    if (const Found found = search.dataUrl(text))
        return found;
    return search.words(text);
}
