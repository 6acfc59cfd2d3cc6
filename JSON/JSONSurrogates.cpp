#include "JSON/JSONSurrogates.h"

#include <QtCore/QChar>

#include <algorithm>
#include <charconv>

namespace Quorvix {

namespace {

/// The length of an escape such as \ud83d.
constexpr qsizetype escapeSize = 6;

/// The code unit of the \u escape at @p at; 0 if there is none.
char16_t escapedUnit(QByteArrayView json, qsizetype at)
{
    if (json.size() - at < escapeSize || json[at] != '\\' || json[at + 1] != 'u')
        return 0;
    const char *const digits = json.data() + at + 2;
    const char *const end = json.data() + at + escapeSize;
    quint16 unit = 0;
    return std::from_chars(digits, end, unit, 16).ptr == end ? char16_t(unit) : u'\0';
}

} // namespace

std::optional<QByteArray> withLoneSurrogatesReplaced(QByteArrayView json)
{
    std::optional<QByteArray> replaced;
    for (qsizetype at = json.indexOf('\\'); at >= 0; at = json.indexOf('\\', at)) {
        const char16_t unit = escapedUnit(json, at);
        if (!QChar::isSurrogate(unit)) {
            at += 2; // also over an escaped backslash, which begins no other escape
        } else if (QChar::isHighSurrogate(unit) &&
                   QChar::isLowSurrogate(escapedUnit(json, at + escapeSize))) {
            at += 2 * escapeSize;
        } else {
            if (!replaced)
                replaced = json.toByteArray();
            std::copy_n("\\ufffd", escapeSize, replaced->data() + at);
            at += escapeSize;
        }
    }
    return replaced;
}

} // namespace Quorvix
