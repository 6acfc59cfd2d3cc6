#include "Quorvix/QXEncodedCandidate.h"

#include "Quorvix/QXBase64.h"
#include "Quorvix/QXJWTPieces.h"
#include "Quorvix/QXTaskSteps.h"
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

/// A shorter text never counts as encoded.
constexpr int minimumLength = 12;

enum CharacterSet : quint8 {
    ParameterName = 1,
    JWT = 2, // the characters of the pieces, and the dots between them
    Wrapper = 4,
    Separator = 8,      // white space, "," and ";"
    MaybeSeparator = 16 // first byte of white space beyond ASCII
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

/// The length counts characters as a person sees them, without white space. Counting bytes gives the same
/// result: only ASCII can be decoded, and no two ASCII letters, digits or signs combine to one character
/// (UAX #29).
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

/// Whether a Base64 text can also be a media type (RFC 6838): two names with a slash between them.
bool isMediaType(QByteArrayView base64) noexcept
{
    const qsizetype slash = base64.indexOf('/');
    return slash > 0 && slash < base64.size() - 1 && !base64.sliced(slash + 1).contains('/') &&
           !base64.contains('=') && !base64.contains('_');
}

/// Whether the text is a JSON Web Token. The caller has removed white space at both ends.
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

/// After the white space in "Bearer <token>" is removed, the text often looks like a token with a
/// meaningless header. So a header that contains white space must also be JSON (RFC 7519, section 7.2).
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

/// Removes the first piece and the separators before it from @p rest, and returns the piece. Empty at the
/// end.
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

/// The text after the first "base64,"; empty if there is none.
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
    Search(QByteArray *decoded, QXTaskSteps steps) : m_decoded(decoded), m_steps(steps) {}

    Found findInWholeText(QByteArrayView text)
    {
        const Found found = candidate(text);
        return found && found->kind == Kind::JWT && hasMangledHeader(found->text) ? Found() : found;
    }

    /// The content of the first data URL. A line break does not end it, because mail programs wrap data
    /// URLs.
    Found findInDataUrl(QByteArrayView text)
    {
        QByteArrayView content = afterDataMarker(text);
        return candidate(takePiece(content, LineBreaks::Join));
    }

    Found findInWords(QByteArrayView text)
    {
        const qsizetype size = text.size();
        while (!text.isEmpty() && m_steps.goOn(size - text.size())) {
            const QByteArrayView word = takePiece(text, LineBreaks::Separate);
            if (const Found found = word.size() < minimumLength ? Found() : findInWord(withoutWrappers(word)))
                return found;
        }
        return std::nullopt;
    }

private:
    /// Checks a piece that may contain white space anywhere.
    Found candidate(QByteArrayView piece)
    {
        const QByteArrayView text = QXWhiteSpace::trimmed(piece);
        return isLongEnough(text) ? encoded(text) : std::nullopt;
    }

    Found findInWord(QByteArrayView word)
    {
        if (const Found found = word.size() < minimumLength ? Found() : encoded(word))
            return found;
        const qsizetype equals = word.indexOf('=');
        const bool hasValue = equals >= 0 && word.size() - (equals + 1) >= minimumLength;
        return hasValue && consistsOf(word.first(equals), ParameterName) ? encoded(word.sliced(equals + 1))
                                                                         : std::nullopt;
    }

    /// A token contains dots, which Base64 never does. So at most one of the two formats matches, and their
    /// order does not matter.
    Found encoded(QByteArrayView text)
    {
        if (QXBase64::decode(text, Skipped, m_decoded))
            return isMediaType(text) ? Found() : QXEncodedCandidate{text, Kind::Base64};
        return isJWT(text) ? QXEncodedCandidate{text, Kind::JWT} : Found();
    }

    QByteArray *const m_decoded;
    QXTaskSteps m_steps;
};

} // namespace

std::optional<QXEncodedCandidate> QXEncodedCandidate::find(QByteArrayView utf8, QByteArray *decoded,
                                                           QXTaskProgress *progress)
{
    const QByteArrayView text = QXWhiteSpace::trimmed(UTF8Text::withoutByteOrderMark(utf8));
    if (text.size() < minimumLength)
        return std::nullopt;
    Search search(decoded, QXTaskSteps(progress, text.size()));
    if (const Found found = search.findInWholeText(text))
        return found;
    if (isCancelled(progress))
        return std::nullopt;
    if (const Found found = search.findInDataUrl(text))
        return found;
    return search.findInWords(text);
}
