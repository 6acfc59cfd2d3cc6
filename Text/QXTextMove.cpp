#include "Text/QXTextMove.h"

#include <QtGui/QKeyEvent>
#include <QtGui/QKeySequence>

namespace {

using Target = QXTextMove::Target;

struct Keys
{
    QKeySequence::StandardKey move;
    QKeySequence::StandardKey select;
    Target target;
};

constexpr Keys keys[] = {
    {QKeySequence::MoveToNextChar, QKeySequence::SelectNextChar, Target::NextCharacter},
    {QKeySequence::MoveToPreviousChar, QKeySequence::SelectPreviousChar, Target::PreviousCharacter},
    {QKeySequence::MoveToNextWord, QKeySequence::SelectNextWord, Target::NextWord},
    {QKeySequence::MoveToPreviousWord, QKeySequence::SelectPreviousWord, Target::PreviousWord},
    {QKeySequence::MoveToNextLine, QKeySequence::SelectNextLine, Target::NextRow},
    {QKeySequence::MoveToPreviousLine, QKeySequence::SelectPreviousLine, Target::PreviousRow},
    {QKeySequence::MoveToNextPage, QKeySequence::SelectNextPage, Target::NextPage},
    {QKeySequence::MoveToPreviousPage, QKeySequence::SelectPreviousPage, Target::PreviousPage},
    {QKeySequence::MoveToStartOfLine, QKeySequence::SelectStartOfLine, Target::RowStart},
    {QKeySequence::MoveToEndOfLine, QKeySequence::SelectEndOfLine, Target::RowEnd},
    {QKeySequence::MoveToStartOfDocument, QKeySequence::SelectStartOfDocument, Target::Start},
    {QKeySequence::MoveToEndOfDocument, QKeySequence::SelectEndOfDocument, Target::End},
};

} // namespace

std::optional<QXTextMove> QXTextMove::of(const QKeyEvent &event)
{
    for (const Keys &row : keys) {
        if (event.matches(row.move))
            return QXTextMove{row.target, false};
        if (event.matches(row.select))
            return QXTextMove{row.target, true};
    }
    return std::nullopt;
}

bool QXTextMove::isVertical() const
{
    return target == Target::NextRow || target == Target::PreviousRow || target == Target::NextPage ||
           target == Target::PreviousPage;
}
