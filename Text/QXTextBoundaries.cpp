#include "Text/QXTextBoundaries.h"

#include "Text/QXTextDocument.h"

#include <QtCore/QTextBoundaryFinder>

namespace {

/// How far to search for the boundary of a character, in UTF-16 units: longer than every character in use,
/// and short enough to be fast.
constexpr qsizetype searchDistance = 64;
constexpr qsizetype unitsPerByte = 3;

enum class Kind { Space, LineEnd, Word, Other };

Kind kindOf(QChar unit)
{
    if (unit == u'\n' || unit == u'\r')
        return Kind::LineEnd;
    if (unit.isSpace())
        return Kind::Space;
    // Half of a surrogate pair cannot be classified, so it counts as a letter. Only emoji lose by that, and
    // it does not matter there.
    if (unit.isLetterOrNumber() || unit.isMark() || unit.isSurrogate() || unit == u'_')
        return Kind::Word;
    return Kind::Other;
}

/// The nearest boundary of a character, forwards or backwards, found in a slice around the position.
qsizetype characterBoundary(const QXTextDocument &document, qsizetype position, bool forwards)
{
    const qsizetype start = qMax<qsizetype>(0, position - searchDistance);
    const QString slice = document.text(start, position - start + searchDistance);
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, slice);
    finder.setPosition(position - start);
    const qsizetype found = forwards ? finder.toNextBoundary() : finder.toPreviousBoundary();
    return found < 0 ? position : start + found;
}

qsizetype endOf(QStringView text, qsizetype position, Kind kind)
{
    while (position < text.size() && kindOf(text[position]) == kind)
        ++position;
    return position;
}

qsizetype startOf(QStringView text, qsizetype position, Kind kind)
{
    while (position > 0 && kindOf(text[position - 1]) == kind)
        --position;
    return position;
}

} // namespace

qsizetype QXTextBoundaries::nextCharacter(const QXTextDocument &document, qsizetype position)
{
    return characterBoundary(document, position, true);
}

qsizetype QXTextBoundaries::previousCharacter(const QXTextDocument &document, qsizetype position)
{
    return characterBoundary(document, position, false);
}

qsizetype QXTextBoundaries::nextWord(const QXTextDocument &document, qsizetype position)
{
    if (position >= document.length())
        return position;
    if (document.isHexadecimal())
        return qMin((position / unitsPerByte + 1) * unitsPerByte, document.length());
    const QStringView text = document.view();
    const Kind kind = kindOf(text[position]);
    const qsizetype end =
        kind == Kind::LineEnd ? nextCharacter(document, position) : endOf(text, position, kind);
    return endOf(text, end, Kind::Space);
}

qsizetype QXTextBoundaries::previousWord(const QXTextDocument &document, qsizetype position)
{
    if (position == 0)
        return 0;
    if (document.isHexadecimal())
        return (position - 1) / unitsPerByte * unitsPerByte;
    const QStringView text = document.view();
    const qsizetype end = startOf(text, position, Kind::Space);
    if (end == 0)
        return 0;
    const Kind kind = kindOf(text[end - 1]);
    return kind == Kind::LineEnd ? previousCharacter(document, end) : startOf(text, end, kind);
}

QXTextRange QXTextBoundaries::wordAt(const QXTextDocument &document, qsizetype position)
{
    const qsizetype length = document.length();
    if (document.isHexadecimal()) {
        const qsizetype start = position / unitsPerByte * unitsPerByte;
        return {qMin(start, length), qMin(start + unitsPerByte - 1, length)};
    }
    const QStringView text = document.view();
    const bool atLineEnd = position >= length || kindOf(text[position]) == Kind::LineEnd;
    if (atLineEnd && (position == 0 || kindOf(text[position - 1]) == Kind::LineEnd))
        return {position, position};
    const qsizetype unit = atLineEnd ? position - 1 : position;
    const Kind kind = kindOf(text[unit]);
    if (kind == Kind::Other) {
        const qsizetype start = previousCharacter(document, unit + 1);
        return {start, nextCharacter(document, start)};
    }
    return {startOf(text, unit, kind), endOf(text, unit, kind)};
}

QXTextRange QXTextBoundaries::lineAt(const QXTextDocument &document, qsizetype position)
{
    if (document.isHexadecimal())
        return {0, document.length()};
    const QStringView text = document.view();
    qsizetype start = qMin(position, text.size());
    while (start > 0 && text[start - 1] != u'\n' &&
           (text[start - 1] != u'\r' || (start < text.size() && text[start] == u'\n')))
        --start;
    qsizetype end = qMin(position, text.size());
    while (end < text.size() && kindOf(text[end]) != Kind::LineEnd)
        ++end;
    return {start, end < text.size() ? nextCharacter(document, end) : end};
}
