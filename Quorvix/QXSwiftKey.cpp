#include "Quorvix/QXSwiftKey.h"

#include "Quorvix/QXSwiftName.h"

#include <algorithm>
#include <utility>

namespace {

constexpr bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

constexpr bool isLower(char c)
{
    return c >= 'a' && c <= 'z';
}

constexpr bool isUpper(char c)
{
    return c >= 'A' && c <= 'Z';
}

constexpr bool isOfWord(char c)
{
    return isLower(c) || isUpper(c) || isDigit(c);
}

constexpr char caseBit = 'a' - 'A';

char upper(char c)
{
    return isLower(c) ? char(c - caseBit) : c;
}

char lower(char c)
{
    return isUpper(c) ? char(c + caseBit) : c;
}

/// Whether a character stands for itself in a string literal.
bool isPlain(char c)
{
    return c >= ' ' && c < '\x7F' && c != '"' && c != '\\';
}

/// Joins the words of a plain key and returns the end. Each word but the first begins in upper case.
char *joinWords(QByteArrayView key, char (*beginning)(char), char *out)
{
    bool isInWord = false;
    char (*first)(char) = beginning;
    for (const char c : key) {
        if (!isOfWord(c)) {
            isInWord = false;
            continue;
        }
        *out++ = isInWord ? c : std::exchange(first, upper)(c);
        isInWord = true;
    }
    return out;
}

/// Appends the name of a plain key with what it needs if it is empty or begins with a digit. Returns the
/// name.
QByteArrayView appendName(QXSwiftText &text, QByteArrayView key, char (*beginning)(char),
                          std::string_view ifEmpty, std::string_view beforeDigit)
{
    const auto first = std::find_if(key.begin(), key.end(), isOfWord);
    if (first == key.end()) {
        text.appendAscii(ifEmpty);
        return {};
    }
    if (isDigit(*first))
        text.appendAscii(beforeDigit);
    char *const begin = text.room(key.size());
    const qsizetype size = joinWords(key, beginning, begin) - begin;
    text.added(size);
    return {begin, size};
}

} // namespace

QXSwiftKey::QXSwiftKey(QByteArrayView key) noexcept
    : m_key(key), m_isPlain(std::all_of(key.begin(), key.end(), isPlain))
{
}

void QXSwiftKey::appendTypeName(QXSwiftText &text) const
{
    if (m_isPlain)
        appendName(text, m_key, upper, "ApiResponse", "Api");
    else
        text.appendText(QXSwiftName::typeName(QString::fromUtf8(m_key)));
}

bool QXSwiftKey::appendPropertyName(QXSwiftText &text) const
{
    if (!m_isPlain) {
        const QString key = QString::fromUtf8(m_key);
        const QString name = QXSwiftName::propertyName(key);
        text.appendText(name);
        return name != key;
    }
    const QXSwiftText::Mark mark = text.end();
    const QByteArrayView name = appendName(text, m_key, lower, "value", "value");
    // Most names are no keywords because of their end, as that of "item7".
    if (!name.isEmpty() && isLower(name.back()) && QXSwiftName::isKeyword(QLatin1StringView(name))) {
        text.truncate(mark);
        text.appendText(QXSwiftName::propertyName(QString::fromLatin1(m_key)));
    }
    const std::string_view written = text.from(mark).utf8;
    return QByteArrayView(written.data(), qsizetype(written.size())) != m_key;
}

void QXSwiftKey::appendLiteral(QXSwiftText &text) const
{
    if (!m_isPlain)
        return text.appendText(QXSwiftName::stringLiteral(QString::fromUtf8(m_key)));
    text.appendAscii('"');
    text.appendAscii({m_key.data(), size_t(m_key.size())});
    text.appendAscii('"');
}
