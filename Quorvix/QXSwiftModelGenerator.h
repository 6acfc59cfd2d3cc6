#pragma once

#include "Quorvix/QXApiTreeField.h"

#include "Platform/Result.h"

#include <QtCore/QString>
#include <QtCore/QStringView>

#include <string_view>
#include <unordered_map>

/// Writes Swift types that decode the JSON text that a tree was made from: a struct per object, and one
/// around a root that is none. An array is told by its first element.
///
/// An object of one run, which only source() sees.
class QXSwiftModelGenerator final
{
public:
    /// The source, inner types before those that use them, without a final line break.
    ///
    /// @p rootName is the outermost type's and has to be an identifier, as QXSwiftName makes them. Fails with
    /// QXExportError::swiftModelNotGenerated when more types want one name than names can be made, or when
    /// the source would exceed maximumSize. Recursive; a tree is no deeper than JSONReader::maximumDepth.
    /// Any thread.
    static Quorvix::Result<QString> source(const QXApiTreeField &root, const QString &rootName);

    /// Characters of a source and its names. A type's name holds those of all types around it, so that a deep
    /// text could make a source hundreds of times its size.
    static constexpr qsizetype maximumSize = qsizetype(64) << 20;

private:
    /// What a key looks like in source: "    let firstName: ", and the line of its coding key, if it needs
    /// one.
    struct Property
    {
        QString declaration;
        QString codingCase;
    };

    /// qHash() took twenty times as long for names of this length, and rehashes as it grows.
    struct NameHash
    {
        size_t operator()(const QString &name) const noexcept
        {
            return std::hash<std::u16string_view>()({QStringView(name).utf16(), size_t(name.size())});
        }
    };

    QXSwiftModelGenerator() = default;

    void addRoot(const QXApiTreeField &root, const QString &rootName);
    QString addType(const QXApiTreeField &object, const QString &proposedName);
    void addProperty(const QXApiTreeField &member, const QString &enclosingName);
    const Property &propertyFor(const QXApiTreeField &member);
    void addText(QStringView name, QStringView properties, QStringView cases);

    QString memberType(const QXApiTreeField &member, const QString &enclosingName);
    QString elementType(const QXApiTreeField &array, QStringView proposedName);

    QString takeName(const QString &proposedName);
    void checkSize();

    /// The finished types, each with a line break at its end.
    QString m_text;
    /// Lines of the types that are begun, the innermost type's last.
    QString m_properties;
    QString m_cases;
    /// The used names, each with the first suffix that is not known to be taken for it.
    std::unordered_map<QString, int, NameHash> m_nextSuffixes;
    /// By the names of members as the tree keeps them: records repeat theirs.
    std::unordered_map<std::string_view, Property> m_propertiesOfKeys;
    /// Characters of the names so far: those of open types are in no text yet.
    qsizetype m_nameSize = 0;
    bool m_needsFallback = false;
    bool m_isExhausted = false;
};
