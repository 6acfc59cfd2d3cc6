#include "Text/QXTextBoundaries.h"

#include "Text/QXTextDocument.h"

#include <QtCore/QTextBoundaryFinder>

namespace {

/// How far to search for the boundary of a character, in UTF-16 units: longer than every character in use,
/// and short enough to be fast.
constexpr qsizetype searchDistance = 64;
constexpr qsizetype unitsPerByte = QXTextContent::unitsPerByte;

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

template<typename View>
qsizetype endOf(View text, qsizetype position, Kind kind)
{
    while (position < text.size() && kindOf(text[position]) == kind)
        ++position;
    return position;
}

template<typename View>
qsizetype startOf(View text, qsizetype position, Kind kind)
{
    while (position > 0 && kindOf(text[position - 1]) == kind)
        --position;
    return position;
}

template<typename View>
qsizetype nextWordIn(View text, const QXTextDocument &document, qsizetype position)
{
    const Kind kind = kindOf(text[position]);
    const qsizetype end =
        kind == Kind::LineEnd ? characterBoundary(document, position, true) : endOf(text, position, kind);
    return endOf(text, end, Kind::Space);
}

template<typename View>
qsizetype previousWordIn(View text, const QXTextDocument &document, qsizetype position)
{
    const qsizetype end = startOf(text, position, Kind::Space);
    if (end == 0)
        return 0;
    const Kind kind = kindOf(text[end - 1]);
    return kind == Kind::LineEnd ? characterBoundary(document, end, false) : startOf(text, end, kind);
}

template<typename View>
QXTextRange wordIn(View text, const QXTextDocument &document, qsizetype position)
{
    const bool atLineEnd = position >= text.size() || kindOf(text[position]) == Kind::LineEnd;
    if (atLineEnd && (position == 0 || kindOf(text[position - 1]) == Kind::LineEnd))
        return {position, position};
    const qsizetype unit = atLineEnd ? position - 1 : position;
    const Kind kind = kindOf(text[unit]);
    if (kind == Kind::Other) {
        const qsizetype start = characterBoundary(document, unit + 1, false);
        return {start, characterBoundary(document, start, true)};
    }
    return {startOf(text, unit, kind), endOf(text, unit, kind)};
}

template<typename View>
QXTextRange lineIn(View text, const QXTextDocument &document, qsizetype position)
{
    qsizetype start = qMin(position, text.size());
    while (start > 0 && text[start - 1] != u'\n' &&
           (text[start - 1] != u'\r' || (start < text.size() && text[start] == u'\n')))
        --start;
    qsizetype end = qMin(position, text.size());
    while (end < text.size() && kindOf(text[end]) != Kind::LineEnd)
        ++end;
    return {start, end < text.size() ? characterBoundary(document, end, true) : end};
}

} // namespace

qsizetype QXTextBoundaries::nextCharacter(const QXTextDocument &document, qsizetype position)
{
    return document.isHexadecimal() ? nextWord(document, position)
                                    : characterBoundary(document, position, true);
}

qsizetype QXTextBoundaries::previousCharacter(const QXTextDocument &document, qsizetype position)
{
    return document.isHexadecimal() ? previousWord(document, position)
                                    : characterBoundary(document, position, false);
}

qsizetype QXTextBoundaries::nextWord(const QXTextDocument &document, qsizetype position)
{
    if (position >= document.length())
        return position;
    if (document.isHexadecimal())
        return qMin((position / unitsPerByte + 1) * unitsPerByte, document.length());
    return document.content().visit([&](auto text) { return nextWordIn(text, document, position); });
}

qsizetype QXTextBoundaries::previousWord(const QXTextDocument &document, qsizetype position)
{
    if (position == 0)
        return 0;
    if (document.isHexadecimal())
        return (position - 1) / unitsPerByte * unitsPerByte;
    return document.content().visit([&](auto text) { return previousWordIn(text, document, position); });
}

QXTextRange QXTextBoundaries::wordAt(const QXTextDocument &document, qsizetype position)
{
    if (document.isHexadecimal()) {
        const qsizetype length = document.length();
        const qsizetype start = position / unitsPerByte * unitsPerByte;
        return {qMin(start, length), qMin(start + unitsPerByte - 1, length)};
    }
    return document.content().visit([&](auto text) { return wordIn(text, document, position); });
}

QXTextRange QXTextBoundaries::lineAt(const QXTextDocument &document, qsizetype position)
{
    if (document.isHexadecimal())
        return {0, document.length()};
    return document.content().visit([&](auto text) { return lineIn(text, document, position); });
}
