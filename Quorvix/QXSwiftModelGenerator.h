#pragma once

#include "Quorvix/QXApiTreeField.h"
#include "Quorvix/QXTaskSteps.h"

#include "Platform/Result.h"

#include <QtCore/QString>
#include <QtCore/QStringView>

#include <string_view>
#include <unordered_map>

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

    /// The maximum size of the source and its names, in characters. A type's name contains the names of all
    /// enclosing types. So without a limit, the source of a deeply nested text could be hundreds of times
    /// larger than the text.
    static constexpr qsizetype maximumSize = qsizetype(64) << 20;

private:
    /// The source of one key: the indented "let firstName: ", and the line of its coding key if it needs
    /// one.
    struct Property
    {
        QString declaration;
        QString codingCase;
    };

    /// qHash() was twenty times slower for names of this length, and QHash computes it again when the table
    /// grows.
    struct NameHash
    {
        size_t operator()(const QString &name) const noexcept
        {
            return std::hash<std::u16string_view>()({QStringView(name).utf16(), size_t(name.size())});
        }
    };

    explicit QXSwiftModelGenerator(QXTaskSteps steps) : m_steps(steps) {}

    void addRoot(const QXApiTreeField &root, const QString &rootName);
    QString addType(const QXApiTreeField &object, const QString &proposedName);
    void addProperty(const QXApiTreeField &member, const QString &enclosingName);
    const Property &propertyFor(const QXApiTreeField &member);
    void addText(QStringView name, QStringView properties, QStringView cases);

    QString memberType(const QXApiTreeField &member, const QString &enclosingName);
    QString elementType(const QXApiTreeField &array, QStringView proposedName);

    QString reserveName(const QString &proposedName);
    void checkSize();
    bool areOfOneKind(QXApiTreeField::Children nodes);
    /// Whether the rest of the work is skipped.
    [[nodiscard]] bool isOver() const noexcept { return m_isLimitReached || m_isCancelled; }

    /// The source of the finished types. Each ends with a line break.
    QString m_text;
    /// The lines of the unfinished types; those of the innermost type come last.
    QString m_properties;
    QString m_cases;
    /// The used names, each with the first suffix that may still be free.
    std::unordered_map<QString, int, NameHash> m_nextSuffixes;
    /// The properties by member name. This is a cache, because the keys of records repeat. The tree owns the
    /// names.
    std::unordered_map<std::string_view, Property> m_propertiesOfKeys;
    /// The total length of all names so far. The names of unfinished types are not in the source yet.
    qsizetype m_nameSize = 0;
    bool m_needsFallback = false;
    bool m_isLimitReached = false;
    QXTaskSteps m_steps;
    qsizetype m_done = 0;
    bool m_isCancelled = false;
};
