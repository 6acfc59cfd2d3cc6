#pragma once

#include "Quorvix/QXApiTreeField.h"
#include "Quorvix/QXSwiftNames.h"
#include "Quorvix/QXTaskSteps.h"

#include "Platform/Result.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

class QXSwiftKey;

/// Writes Swift types that decode the JSON text of a tree: one struct per object, and a struct around a root
/// that is not an object. The first element of an array determines the element type.
///
/// Each call of source() uses an object of its own.
class QXSwiftModelGenerator final
{
public:
    /// Returns the source without a final line break. A type comes after the types that it uses.
    ///
    /// @p rootName is the name of the outermost type and must be an identifier from QXSwiftName. Fails with
    /// QXExportError::swiftModelNotGenerated if too many types need the same name, or if the source would
    /// exceed maximumSize, and with NSUserCancelledError if the task is cancelled. The current stage of
    /// @p progress covers the work. Recursive; a tree is no deeper than JSONReader::maximumDepth. Any thread.
    static Quorvix::Result<QString> source(const QXApiTreeField &root, const QString &rootName,
                                           QXTaskProgress *progress = nullptr);
    /// The same source in UTF-8, in which it is written.
    static Quorvix::Result<QByteArray> utf8Source(const QXApiTreeField &root, const QString &rootName,
                                                  QXTaskProgress *progress = nullptr);

    /// The maximum size of the source and its names, in characters. A type's name contains the names of all
    /// enclosing types. So without a limit, the source of a deeply nested text could be hundreds of times
    /// larger than the text.
    static constexpr qsizetype maximumSize = qsizetype(64) << 20;

private:
    using Part = QXSwiftText::Part;

    QXSwiftModelGenerator(QXTaskSteps steps, qsizetype nodeCount)
        : m_text(expectedSize(nodeCount)), m_properties(expectedSize(nodeCount)),
          m_cases(expectedSize(nodeCount)), m_steps(steps)
    {
    }
    /// A node makes a line or two, but those of most elements of an array make none.
    static constexpr qsizetype expectedSize(qsizetype nodeCount)
    {
        constexpr qsizetype lines = 128;
        return std::min(nodeCount, maximumSize / lines) * lines;
    }

    void addRoot(const QXApiTreeField &root);
    Part addType(const QXApiTreeField &object);
    void addProperty(const QXApiTreeField &member, Part enclosingName);
    void addText(Part name, Part properties, Part cases);

    void appendMemberType(const QXApiTreeField &member, const QXSwiftKey &key, Part enclosingName);
    void appendElementType(const QXApiTreeField &array, Part proposedName);
    void proposeElementName(const QXApiTreeField &array, Part proposedName);

    Part reserveName();
    void checkSize();
    bool areOfOneKind(QXApiTreeField::Children nodes);
    /// Whether the rest of the work is skipped.
    [[nodiscard]] bool isOver() const noexcept { return m_isLimitReached || m_isCancelled; }

    /// The source of the finished types. Each ends with a line break.
    QXSwiftText m_text;
    /// The lines of the unfinished types; those of the innermost type come last.
    QXSwiftText m_properties;
    QXSwiftText m_cases;
    /// The name that the next type gets if no other type has it.
    QXSwiftText m_proposed;
    QXSwiftNames m_names;
    /// The total length of all names so far. The names of unfinished types are not in the source yet.
    qsizetype m_nameSize = 0;
    bool m_needsFallback = false;
    bool m_isLimitReached = false;
    QXTaskSteps m_steps;
    qsizetype m_done = 0;
    bool m_isCancelled = false;
};
