#include "Quorvix/QXHeaderCookies.h"

#include <algorithm>

using namespace Quorvix;
using namespace Qt::StringLiterals;

namespace {

/// The value of the header with exactly this name; empty if there is none.
QString exactValue(const std::optional<StoredHeaderFields> &headers, const QString &name)
{
    return headers ? headers->value(name) : QString();
}

/// Splits at the first "=". Adds nothing unless there is text on both sides.
void addCookie(QList<QXHeaderCookie> &cookies, QStringView cookie)
{
    const qsizetype equals = cookie.indexOf(u'=');
    if (equals > 0 && equals < cookie.size() - 1)
        cookies.append({cookie.first(equals).toString(), cookie.sliced(equals + 1).toString()});
}

QStringView withoutBlanksAround(QStringView text)
{
    const auto isBlank = [](QChar c) {
        return c == u' ' || c == u'\t';
    };
    while (!text.isEmpty() && isBlank(text.front()))
        text = text.sliced(1);
    while (!text.isEmpty() && isBlank(text.back()))
        text.chop(1);
    return text;
}

bool isLineBreak(QChar c)
{
    const char16_t unit = c.unicode();
    return (unit >= u'\n' && unit <= u'\r') || unit == 0x85 || unit == QChar::LineSeparator ||
           unit == QChar::ParagraphSeparator;
}

QStringView takeLine(QStringView &text)
{
    const auto lineBreak = std::find_if(text.begin(), text.end(), isLineBreak);
    const QStringView line = text.first(lineBreak - text.begin());
    text = text.sliced(std::min(line.size() + 1, text.size()));
    return line;
}

} // namespace

QList<QXHeaderCookie> requestCookies(const std::optional<StoredHeaderFields> &headers)
{
    QList<QXHeaderCookie> cookies;
    const QString header = exactValue(headers, u"Cookie"_s);
    for (const QStringView piece : QStringView(header).split(u';'))
        addCookie(cookies, withoutBlanksAround(piece));
    return cookies;
}

QList<QXHeaderCookie> responseCookies(const std::optional<StoredHeaderFields> &headers)
{
    QList<QXHeaderCookie> cookies;
    const QString header = exactValue(headers, u"Set-Cookie"_s);
    QStringView rest = header;
    while (!rest.isEmpty()) {
        const QStringView line = takeLine(rest);
        const qsizetype attributes = line.indexOf(u';');
        addCookie(cookies, attributes < 0 ? line : line.first(attributes));
    }
    return cookies;
}
