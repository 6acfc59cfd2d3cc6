#include "JSON/JSONWideNumbers.h"

#include "Platform/LargeMemory.h"

#include <QtCore/QLocale>

#include <algorithm>
#include <charconv>
#include <limits>
#include <string_view>

namespace Quorvix {

namespace {

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool isPartOfNumber(char c)
{
    return isDigit(c) || c == '.' || c == 'e' || c == 'E' || c == '+' || c == '-';
}

/// Whether this character can stand directly before or after a value.
bool isBetweenValues(char c)
{
    constexpr std::string_view characters = " \t\n\r[]{},:";
    return characters.find(c) != characters.npos;
}

/// The end of the string that opens at @p quote.
const char *afterString(const char *quote, const char *end)
{
    const char *at = quote + 1;
    while (at < end && *at != '"')
        at += *at == '\\' ? 2 : 1;
    return std::min(at + 1, end);
}

const char *afterDigits(const char *at, const char *end)
{
    return std::find_if_not(at, end, isDigit);
}

/// A run of characters that can occur in a number.
class Token
{
public:
    Token(const char *first, const char *last) : m_first(first), m_last(last) { readGrammar(); }

    /// Whether the token is a number in the grammar of JSON.
    [[nodiscard]] bool isNumber() const { return m_isNumber; }

    /// Whether the token is a number that no machine type holds.
    [[nodiscard]] bool isWide() const
    {
        if (!m_isNumber)
            return false;
        if (m_isInteger)
            return m_last - m_first > digitsOfUInt64 + 1 ||
                   (m_last - m_first > digitsOfInt64 && !fits<qint64>() && !fits<quint64>());
        // Most numbers need no conversion to see that they are in range.
        if (m_last - m_first <= shortNumber && m_last - m_exponent <= shortExponent)
            return false;
        // A number that is too small for a double is out of range, too, but then 0 is the nearest double, as
        // for a parser.
        double value = 0;
        return std::from_chars(m_first, m_last, value).ec == std::errc::result_out_of_range &&
               nearestDouble(view()) != 0;
    }

    [[nodiscard]] QByteArrayView view() const { return {m_first, m_last}; }

private:
    void readGrammar()
    {
        const char *at = m_first + (*m_first == '-' ? 1 : 0);
        const char *const integer = at;
        at = afterDigits(at, m_last);
        if (at == integer || (*integer == '0' && at - integer > 1))
            return;
        m_isInteger = at == m_last;
        m_exponent = m_last;
        if (at != m_last && *at == '.') {
            const char *const fraction = ++at;
            at = afterDigits(at, m_last);
            if (at == fraction)
                return;
        }
        if (at != m_last && (*at == 'e' || *at == 'E')) {
            ++at;
            if (at != m_last && (*at == '+' || *at == '-'))
                ++at;
            m_exponent = at;
            at = afterDigits(at, m_last);
            if (at == m_exponent)
                return;
        }
        m_isNumber = at == m_last;
    }

    template<typename Integer>
    [[nodiscard]] bool fits() const
    {
        Integer value;
        return std::from_chars(m_first, m_last, value).ec == std::errc();
    }

    /// Any integer of this length fits into 64 bits; none fits with two digits more.
    static constexpr std::ptrdiff_t digitsOfInt64 = std::numeric_limits<qint64>::digits10;
    static constexpr std::ptrdiff_t digitsOfUInt64 = std::numeric_limits<quint64>::digits10;
    /// A number of this length with an exponent of this length is in the range of a double.
    static constexpr std::ptrdiff_t shortNumber = 200;
    static constexpr std::ptrdiff_t shortExponent = 2;

    const char *m_first;
    const char *m_last;
    /// The digits of the exponent; the end if there are none.
    const char *m_exponent = nullptr;
    bool m_isNumber = false;
    bool m_isInteger = false;
};

/// A double, because a parser reads an integer into another form.
constexpr QByteArrayView placeholder("0.0");

/// Memory that is not used costs nothing.
void reserve(QByteArray &bytes, qsizetype size)
{
    bytes.reserve(size);
    LargeMemory::requestLargePages(bytes.data(), size_t(bytes.capacity()));
}

} // namespace

JSONWideNumbers JSONWideNumbers::replacedIn(QByteArrayView original)
{
    JSONWideNumbers wide;
    reserve(wide.text, original.size());
    reserve(wide.digits, original.size());
    // A wide integer takes twenty digits and a comma.
    wide.numbers.reserve(size_t(original.size() / 21));
    LargeMemory::requestLargePages(wide.numbers.data(), wide.numbers.capacity() * sizeof wide.numbers[0]);
    const char *copied = original.cbegin();
    const char *at = original.cbegin();
    const char *const end = original.cend();
    for (size_t ordinal = 0; at < end;) {
        if (*at == '"') {
            at = afterString(at, end);
            continue;
        }
        const char *const first = at++;
        if (!isDigit(*first) && *first != '-')
            continue;
        at = std::find_if_not(at, end, isPartOfNumber);
        const Token token(first, at);
        if (first == original.cbegin() || isBetweenValues(first[-1]))
            wide.hasMalformedNumber |= !token.isNumber() || (at != end && !isBetweenValues(*at));
        if (token.isWide()) {
            wide.text.append(copied, first - copied).append(placeholder);
            copied = at;
            wide.digits.append(token.view());
            wide.numbers.push_back({ordinal, size_t(wide.digits.size())});
        }
        ++ordinal;
    }
    wide.text.append(copied, end - copied);
    return wide;
}

double nearestDouble(QByteArrayView digits)
{
    using Limits = std::numeric_limits<double>;
    double nearest = 0;
    if (std::from_chars(digits.cbegin(), digits.cend(), nearest).ec == std::errc())
        return nearest;
    // QLocale gives infinity for a number that is too large; QByteArrayView::toDouble() would give 0.
    const double value = QLocale::c().toDouble(QLatin1StringView(digits.data(), digits.size()));
    return std::clamp(value, Limits::lowest(), Limits::max());
}

} // namespace Quorvix
