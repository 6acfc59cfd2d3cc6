#pragma once

#include <QtCore/QtGlobal>

class QXTextDocument;

/// A part of a text: from the start position up to the end position, which is not included.
struct QXTextRange
{
    qsizetype start = 0;
    qsizetype end = 0;
};

/// Finds where characters, words and lines begin and end. Main thread only.
namespace QXTextBoundaries {

/// The position after the character at @p position. A character is what the user sees as one (a grapheme).
/// In hexadecimal, one byte.
[[nodiscard]] qsizetype nextCharacter(const QXTextDocument &document, qsizetype position);
[[nodiscard]] qsizetype previousCharacter(const QXTextDocument &document, qsizetype position);

/// The start of the word after the next white space.
[[nodiscard]] qsizetype nextWord(const QXTextDocument &document, qsizetype position);
[[nodiscard]] qsizetype previousWord(const QXTextDocument &document, qsizetype position);

/// The word at @p position: a run of letters, digits and underscores, a run of white space, or one other
/// character. In hexadecimal, one byte.
[[nodiscard]] QXTextRange wordAt(const QXTextDocument &document, qsizetype position);
/// The line at @p position with its line end. Bytes have no lines, so the result is the whole document.
[[nodiscard]] QXTextRange lineAt(const QXTextDocument &document, qsizetype position);

} // namespace QXTextBoundaries
