#include "Platform/ShortText.h"

#include <QtCore/QTextBoundaryFinder>

namespace {

/// The length of context that is enough to find the boundary of a usual character.
constexpr qsizetype context = 32;

enum class Side { Before, After };

/// The boundary of a character at @p position, or the nearest one on a side of it. A character that is longer
/// than the context is cut between two code points.
qsizetype boundary(QStringView text, qsizetype position, Side side)
{
    const qsizetype start = qMax<qsizetype>(0, position - context);
    const QStringView part = text.sliced(start, qMin(2 * context, text.size() - start));
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, part, nullptr, 0);
    finder.setPosition(position - start);
    if (finder.isAtBoundary())
        return position;
    const bool isBefore = side == Side::Before;
    const qsizetype found = isBefore ? finder.toPreviousBoundary() : finder.toNextBoundary();
    if (found > 0 && found < part.size())
        return start + found;
    if (!text[position].isLowSurrogate())
        return position;
    return isBefore ? position - 1 : position + 1;
}

/// Whether a word begins at a position of a name, which is not the first one.
bool beginsWord(const QString &name, qsizetype position)
{
    const QChar before = name[position - 1];
    const QChar here = name[position];
    if (!here.isUpper())
        return here.isLetterOrNumber() && (before.isPunct() || before.isSymbol() || before.isSpace());
    // The last upper-case letter of several is the first one of a word, as in "HTTPServer".
    const bool isLast = position + 1 < name.size() && name[position + 1].isLower();
    return !before.isUpper() || isLast;
}

} // namespace

QString Quorvix::ShortText::beginning(const QString &text, qsizetype longest)
{
    return text.size() <= longest ? text : text.left(boundary(text, longest, Side::Before)) + u'…';
}

QString Quorvix::ShortText::ends(const QString &text, qsizetype longest)
{
    if (text.size() <= longest)
        return text;
    return text.left(boundary(text, longest / 2, Side::Before)) + u'…' +
           text.mid(boundary(text, text.size() - longest / 2, Side::After));
}

QStringList Quorvix::ShortText::wordsOfName(const QString &name)
{
    QStringList words;
    qsizetype start = 0;
    for (qsizetype position = 1; position < name.size(); ++position) {
        if (!beginsWord(name, position))
            continue;
        words.append(name.sliced(start, position - start));
        start = position;
    }
    words.append(name.sliced(start));
    return words;
}
