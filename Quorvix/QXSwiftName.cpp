#include "Quorvix/QXSwiftName.h"

#include "Quorvix/QXPathSegment.h"

#include "Platform/CodePoint.h"
#include "Platform/URLText.h"

#include <QtCore/QByteArray>

#include <algorithm>
#include <array>

using namespace Quorvix;
using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1StringView response = "Response"_L1;

enum class LetterCase { Upper, Lower };

bool isLetter(char32_t codePoint)
{
    // This is the only Unicode letter that a Swift identifier cannot contain.
    constexpr char32_t verticalTilde = 0x2E2F;
    // Unicode counts the numbers that look like letters as alphabetic; the ideographic zero is one of them.
    return (QChar::isLetter(codePoint) && codePoint != verticalTilde) ||
           QChar::category(codePoint) == QChar::Number_Letter;
}

/// Returns the end of the word that begins at @p start. Combining marks belong to the character before them;
/// most vowels of Devanagari are marks.
qsizetype endOfWord(QStringView key, qsizetype start)
{
    for (qsizetype at = start; at < key.size();) {
        const char32_t codePoint = codePointAt(key, at);
        const bool belongs =
            isLetter(codePoint) || QChar::isDigit(codePoint) || (at > start && QChar::isMark(codePoint));
        if (!belongs)
            return at;
        at += unitCount(codePoint);
    }
    return key.size();
}

/// Appends one letter in the given case. The result can have up to three characters, all of them letters or
/// marks: "ß" becomes "SS".
void appendInCase(QString &name, QStringView letter, LetterCase letterCase)
{
    const QChar first = letter[0];
    if (first.unicode() < 0x80)
        name += letterCase == LetterCase::Upper ? first.toUpper() : first.toLower();
    else
        name += letterCase == LetterCase::Upper ? letter.toString().toUpper() : letter.toString().toLower();
}

/// Joins the words of a key. @p letterCase is the case of the first letter; each later word begins with an
/// upper-case letter.
QString joinedWords(QStringView key, LetterCase letterCase)
{
    QString name;
    name.reserve(key.size());
    for (qsizetype at = 0; at < key.size();) {
        const qsizetype end = endOfWord(key, at);
        const qsizetype first = unitCount(codePointAt(key, at));
        if (end > at) {
            appendInCase(name, key.sliced(at, first), name.isEmpty() ? letterCase : LetterCase::Upper);
            name += key.sliced(at + first, end - at - first);
        }
        at = std::max(end, at + first);
    }
    return name;
}

bool beginsWithDigit(QStringView name)
{
    return QChar::isDigit(codePointAt(name, 0));
}

/// The words that cannot be a property name: the keywords of declarations, statements, expressions and types
/// in "The Swift Programming Language", Language Reference, Lexical Structure, "Keywords and Punctuation".
/// The list omits "Any", "Self" and "_", because a property name never begins with an upper-case letter or
/// an underscore.
constexpr auto keywords = std::to_array<QLatin1StringView>({
    "as"_L1,          "associatedtype"_L1,
    "await"_L1,       "borrowing"_L1,
    "break"_L1,       "case"_L1,
    "catch"_L1,       "class"_L1,
    "consuming"_L1,   "continue"_L1,
    "default"_L1,     "defer"_L1,
    "deinit"_L1,      "do"_L1,
    "else"_L1,        "enum"_L1,
    "extension"_L1,   "fallthrough"_L1,
    "false"_L1,       "fileprivate"_L1,
    "for"_L1,         "func"_L1,
    "guard"_L1,       "if"_L1,
    "import"_L1,      "in"_L1,
    "init"_L1,        "inout"_L1,
    "internal"_L1,    "is"_L1,
    "let"_L1,         "nil"_L1,
    "nonisolated"_L1, "open"_L1,
    "operator"_L1,    "precedencegroup"_L1,
    "private"_L1,     "protocol"_L1,
    "public"_L1,      "repeat"_L1,
    "rethrows"_L1,    "return"_L1,
    "self"_L1,        "static"_L1,
    "struct"_L1,      "subscript"_L1,
    "super"_L1,       "switch"_L1,
    "throw"_L1,       "throws"_L1,
    "true"_L1,        "try"_L1,
    "typealias"_L1,   "var"_L1,
    "where"_L1,       "while"_L1,
});

static_assert(std::ranges::is_sorted(keywords, std::less(), [](QLatin1StringView word) {
    return std::string_view(word.data(), size_t(word.size()));
}));

constexpr qsizetype longestKeyword =
    std::ranges::max(keywords, {}, [](QLatin1StringView word) { return word.size(); }).size();

/// Whether a name is a keyword. Most names are too long or have an upper-case letter or a digit.
template<typename Name>
bool isAmongKeywords(Name name)
{
    return name.size() <= longestKeyword &&
           std::binary_search(keywords.begin(), keywords.end(), name,
                              [](const auto &a, const auto &b) { return a.compare(b) < 0; });
}

/// Whether a reader cannot see the code point or a compiler may reject it: controls, line separators,
/// characters that change the writing direction, and unassigned code points.
bool isInvisible(char32_t codePoint)
{
    switch (QChar::category(codePoint)) {
    case QChar::Other_Control:
    case QChar::Other_Format:
    case QChar::Other_NotAssigned:
    case QChar::Other_PrivateUse:
    case QChar::Other_Surrogate:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return true;
    default:
        return false;
    }
}

QString escaped(char32_t codePoint)
{
    switch (codePoint) {
    case U'"':
        return u"\\\""_s;
    case U'\\':
        return u"\\\\"_s;
    case U'\n':
        return u"\\n"_s;
    case U'\r':
        return u"\\r"_s;
    case U'\t':
        return u"\\t"_s;
    case U'\0':
        return u"\\0"_s;
    default:
        return u"\\u{"_s + QString::number(codePoint, 16).toUpper() + u'}';
    }
}

/// Whether the segment is a version: "v1", "V2.1", "v1beta2".
bool isVersion(QStringView segment)
{
    if (segment.size() < 2 || segment[0].toLower() != u'v' || !QXPathSegment::isDigit(segment[1]))
        return false;
    QString letters;
    for (const QChar c : segment.sliced(1)) {
        if (!QXPathSegment::isDigit(c) && c != u'.')
            letters += c.toLower();
    }
    return letters.isEmpty() || letters == "alpha"_L1 || letters == "beta"_L1 || letters == "rc"_L1;
}

bool hasLetter(QStringView segment)
{
    for (qsizetype at = 0; at < segment.size();) {
        const char32_t codePoint = codePointAt(segment, at);
        if (isLetter(codePoint))
            return true;
        at += unitCount(codePoint);
    }
    return false;
}

} // namespace

QString QXSwiftName::typeName(QStringView key)
{
    const QString name = joinedWords(key, LetterCase::Upper);
    if (name.isEmpty())
        return u"ApiResponse"_s;
    return beginsWithDigit(name) ? u"Api"_s + name : name;
}

QString QXSwiftName::propertyName(QStringView key)
{
    const QString name = joinedWords(key, LetterCase::Lower);
    if (name.isEmpty())
        return u"value"_s;
    if (beginsWithDigit(name))
        return u"value"_s + name;
    return isAmongKeywords(QStringView(name)) ? u'`' + name + u'`' : name;
}

bool QXSwiftName::isKeyword(QLatin1StringView name)
{
    return isAmongKeywords(name);
}

std::optional<QString> QXSwiftName::suffix(int index)
{
    constexpr int letterCount = 26;
    if (index >= suffixCount)
        return std::nullopt;
    const QChar last(u'A' + index % letterCount);
    return index < letterCount ? QString(last) : QChar(u'A' + index / letterCount - 1) + QString(last);
}

QString QXSwiftName::stringLiteral(QStringView text)
{
    QString literal(1, u'"');
    for (qsizetype at = 0; at < text.size();) {
        const char32_t codePoint = codePointAt(text, at);
        const qsizetype count = unitCount(codePoint);
        if (codePoint == U'"' || codePoint == U'\\' || isInvisible(codePoint))
            literal += escaped(codePoint);
        else
            literal += text.sliced(at, count);
        at += count;
    }
    return literal + u'"';
}

QString QXSwiftName::rootTypeName(QStringView requestPath)
{
    while (!requestPath.isEmpty()) {
        const qsizetype slash = requestPath.lastIndexOf(u'/');
        QString segment = percentDecoded(requestPath.sliced(slash + 1));
        requestPath.truncate(std::max(slash, qsizetype(0)));
        if (segment.endsWith(".json"_L1, Qt::CaseInsensitive))
            segment.chop(5);
        if (!hasLetter(segment) || isVersion(segment) || QXPathSegment::isIdentifier(segment))
            continue;
        // The name "Response" is skipped: without its ending nothing would be left to name nested types
        // after.
        const QString name = typeName(segment);
        if (name != response)
            return name.endsWith(response) ? name : name + response;
    }
    return u"ApiResponse"_s;
}

QString QXSwiftName::fileName(QStringView rootTypeName)
{
    constexpr QLatin1StringView extension = ".swift"_L1;
    constexpr qsizetype longestStem = 255 - extension.size();
    QByteArray stem = rootTypeName.toUtf8();
    if (stem.size() > longestStem) {
        // The name must not be cut in the middle of a character.
        qsizetype size = longestStem;
        while ((uchar(stem[size]) & 0xC0) == 0x80)
            --size;
        stem.truncate(size);
    }
    return QString::fromUtf8(stem) + extension;
}
