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

/// The place of the first separator between @p at and @p end; @p end if there is none.
qsizetype separatorIn(QByteArrayView text, qsizetype at, qsizetype end, LineBreaks lineBreaks) noexcept
{
    while (at < end &&
           (!isIn(text[at], Separator | MaybeSeparator) || separatorSize(text.sliced(at), lineBreaks) == 0))
        ++at;
    return at;
}

/// The number of bytes after which a search asks whether it goes on.
constexpr qsizetype searchedAtOnce = 1 << 16;

class Search
{
public:
    Search(QByteArray *decoded, QXTaskProgress *progress) : m_decoded(decoded), m_progress(progress) {}

    Found findInWholeText(QByteArrayView text)
    {
        m_isWholeText = true;
        const Found found = candidate(text);
        m_isWholeText = false;
        return found && found->kind == Kind::JWT && hasMangledHeader(found->text) ? Found() : found;
    }

    /// The content of the first data URL. A line break does not end it, because mail programs wrap data
    /// URLs.
    Found findInDataUrl(QByteArrayView text)
    {
        m_steps = QXTaskSteps(m_progress, text.size());
        QByteArrayView content = afterDataMarker(text);
        m_done = text.size() - content.size();
        return candidate(takePiece(content, LineBreaks::Join));
    }

    Found findInWords(QByteArrayView text)
    {
        m_steps = QXTaskSteps(m_progress, text.size());
        m_done = 0;
        while (!text.isEmpty() && !isCancelled(m_progress)) {
            const QByteArrayView word = takePiece(text, LineBreaks::Separate);
            if (const Found found = word.size() < minimumLength ? Found() : findInWord(withoutWrappers(word)))
                return found;
        }
        return std::nullopt;
    }

private:
    /// The text after the first "base64,"; empty if there is none.
    QByteArrayView afterDataMarker(QByteArrayView text)
    {
        const std::string_view view(text.data(), size_t(text.size()));
        constexpr std::string_view head("base6");
        constexpr std::string_view tail("4,");
        constexpr size_t windowSize = 1 << 20;
        for (size_t begin = head.size(); begin < view.size(); begin += windowSize) {
            if (!m_steps.goOn(qsizetype(begin)))
                return {};
            const std::string_view window = view.substr(0, begin + windowSize + tail.size() - 1);
            for (size_t at = window.find(tail, begin); at != view.npos; at = window.find(tail, at + 1)) {
                if (qstrnicmp(view.data() + at - head.size(), head.data(), head.size()) == 0)
                    return text.sliced(qsizetype(at) + qsizetype(tail.size()));
            }
        }
        return {};
    }

    /// Removes the first piece and the separators before it from @p rest, and returns the piece. Empty at the
    /// end.
    QByteArrayView takePiece(QByteArrayView &rest, LineBreaks lineBreaks)
    {
        qsizetype start = 0;
        while (start < rest.size()) {
            const qsizetype size = separatorSize(rest.sliced(start), lineBreaks);
            if (size == 0)
                break;
            start += size;
            if (!m_steps.goOn(m_done + start))
                return {};
        }
        qsizetype end = start;
        for (bool isFound = false; !isFound; isFound = isFound || end == rest.size()) {
            if (!m_steps.goOn(m_done + end))
                return {};
            const qsizetype limit = std::min(rest.size(), end + searchedAtOnce);
            end = separatorIn(rest, end, limit, lineBreaks);
            isFound = end < limit;
        }
        const QByteArrayView piece = rest.sliced(start, end - start);
        rest = rest.sliced(end);
        m_done += end;
        return piece;
    }

    /// For a part whose text is reported elsewhere.
    [[nodiscard]] QXTaskSteps asking() const { return QXTaskSteps(m_progress); }

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

    /// Whether the text is a JSON Web Token. The caller has removed white space at both ends.
    bool isJWT(QByteArrayView text)
    {
        QXTaskSteps steps = asking();
        for (qsizetype i = 0; i < text.size();) {
            const qsizetype size = isIn(text[i], JWT) ? 1 : QXWhiteSpace::sizeAtStart(text.sliced(i));
            if (size == 0 || !steps.goOn(i))
                return false;
            i += size;
        }
        const auto pieces = QXJWTPieces<QByteArrayView>::split(text);
        if (!pieces || pieces->header.isEmpty() || QXWhiteSpace::trimmed(pieces->body).isEmpty() ||
            pieces->signature.isEmpty())
            return false;
        return QXBase64::decode(pieces->header, Skipped, nullptr, asking()) &&
               QXBase64::decode(pieces->body, Skipped, nullptr, asking());
    }

    /// A token contains dots, which Base64 never does. So at most one of the two formats matches, and their
    /// order does not matter.
    Found encoded(QByteArrayView text)
    {
        if (QXBase64::decode(text, Skipped, m_decoded,
                             m_isWholeText ? QXTaskSteps(m_progress, text.size()) : asking()))
            return isMediaType(text) ? Found() : QXEncodedCandidate{text, Kind::Base64};
        return isJWT(text) ? QXEncodedCandidate{text, Kind::JWT} : Found();
    }

    QByteArray *const m_decoded;
    QXTaskProgress *const m_progress;
    QXTaskSteps m_steps;
    bool m_isWholeText = false;
    /// How much of the text comes before the rest in which a piece is searched.
    qsizetype m_done = 0;
};

} // namespace

std::optional<QXEncodedCandidate> QXEncodedCandidate::find(QByteArrayView utf8, QByteArray *decoded,
                                                           QXTaskProgress *progress, double end)
{
    const QByteArrayView text = QXWhiteSpace::trimmed(UTF8Text::withoutByteOrderMark(utf8));
    if (text.size() < minimumLength)
        return std::nullopt;
    Search search(decoded, progress);
    // The whole text is rejected at its first character that is not encoded, in most cases.
    if (!beginStage(progress, end * 0.4))
        return std::nullopt;
    if (const Found found = search.findInWholeText(text))
        return found;
    if (!beginStage(progress, end * 0.5))
        return std::nullopt;
    if (const Found found = search.findInDataUrl(text))
        return found;
    if (!beginStage(progress, end))
        return std::nullopt;
    return search.findInWords(text);
}
