#include "Quorvix/QXPathSegment.h"

#include <algorithm>

namespace {

bool isHexDigitOrHyphen(QChar c)
{
    return QXPathSegment::isDigit(c) || (c >= u'a' && c <= u'f') || (c >= u'A' && c <= u'F') || c == u'-';
}

} // namespace

bool QXPathSegment::isDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

bool QXPathSegment::isNumber(QStringView segment)
{
    return !segment.isEmpty() && std::all_of(segment.begin(), segment.end(), isDigit);
}

bool QXPathSegment::isIdentifier(QStringView segment)
{
    constexpr qsizetype shortestHash = 16;
    return isNumber(segment) || (segment.size() >= shortestHash &&
                                 std::all_of(segment.begin(), segment.end(), isHexDigitOrHyphen));
}
