#include "Text/QXTextCommand.h"

#include <QtGui/QKeyEvent>

namespace {

using Kind = QXTextCommand::Kind;
using Target = QXTextMove::Target;

struct Row
{
    QKeySequence::StandardKey key = QKeySequence::UnknownKey;
    Kind kind = Kind::Insert;
    Target target = Target::NextCharacter;
};

constexpr Row rows[] = {
    {QKeySequence::Undo, Kind::Undo},
    {QKeySequence::Redo, Kind::Redo},
    {QKeySequence::Cut, Kind::Cut},
    {QKeySequence::Paste, Kind::Paste},
    {QKeySequence::Delete, Kind::Delete, Target::NextCharacter},
    {QKeySequence::DeleteEndOfWord, Kind::Delete, Target::NextWord},
    {QKeySequence::DeleteStartOfWord, Kind::Delete, Target::PreviousWord},
    {QKeySequence::DeleteEndOfLine, Kind::Delete, Target::RowEnd},
};

QString typedBy(const QKeyEvent &event)
{
    // Some platforms report AltGr as Control and Alt together.
    const Qt::KeyboardModifiers modifiers = event.modifiers();
    const bool isAltGr = modifiers & Qt::ControlModifier && modifiers & Qt::AltModifier;
    if (modifiers & Qt::MetaModifier || (modifiers & Qt::ControlModifier && !isAltGr))
        return {};
    if (event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter)
        return QString(u'\n');
    const QString text = event.text();
    const bool isText = !text.isEmpty() && (text[0].isPrint() || text[0].isSurrogate() ||
                                            text[0].category() == QChar::Other_Format);
    return isText ? text : QString();
}

} // namespace

std::optional<QXTextCommand> QXTextCommand::of(const QKeyEvent &event)
{
    for (const Row &row : rows) {
        if (event.matches(row.key))
            return QXTextCommand{row.kind, row.target, {}};
    }
    if (event.key() == Qt::Key_Backspace && !(event.modifiers() & ~Qt::ShiftModifier))
        return QXTextCommand{Kind::Delete, Target::PreviousCharacter, {}};
    if (const QString text = typedBy(event); !text.isEmpty())
        return QXTextCommand{Kind::Insert, Target::NextCharacter, text};
    return std::nullopt;
}
