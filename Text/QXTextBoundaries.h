#pragma once

#include <QtCore/QtGlobal>

class QXTextDocument;

/// A part of a text: from one position to before another.
struct QXTextRange
{
    qsizetype start = 0;
    qsizetype end = 0;
};

/// Finds where characters, words and lines begin and end. Main thread only.
namespace QXTextBoundaries {

/// The position after the character (as a person sees it) that begins at @p position.
[[nodiscard]] qsizetype nextCharacter(const QXTextDocument &document, qsizetype position);
[[nodiscard]] qsizetype previousCharacter(const QXTextDocument &document, qsizetype position);

/// Where the word after the next white space begins.
[[nodiscard]] qsizetype nextWord(const QXTextDocument &document, qsizetype position);
[[nodiscard]] qsizetype previousWord(const QXTextDocument &document, qsizetype position);

/// Letters, digits and underscores in a row, or white space in a row, or one other character. A byte in
/// hexadecimal.
[[nodiscard]] QXTextRange wordAt(const QXTextDocument &document, qsizetype position);
/// A line with the end that it has. A byte's row has no lines: all of it.
[[nodiscard]] QXTextRange lineAt(const QXTextDocument &document, qsizetype position);

} // namespace QXTextBoundaries
