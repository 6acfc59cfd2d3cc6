#pragma once

#include "Text/QXTextDocument.h"

#include <QtCore/QString>

#include <unordered_map>

class QXApiTreeField;

/// The whole values of those rows of a log tree whose values are unfolded. Main thread only.
class QXUnfoldedValues final
{
public:
    /// The value of a node without children. A string is quoted. Any thread.
    [[nodiscard]] static QXTextContent valueOf(const QXApiTreeField &field);

    /// @p owner owns the documents.
    explicit QXUnfoldedValues(QObject *owner) : m_owner(owner) {}

    [[nodiscard]] bool contains(const QXApiTreeField &field) const { return m_values.contains(&field); }
    /// Empty for a node that is not unfolded, and for a value that has a document.
    [[nodiscard]] QString text(const QXApiTreeField &field) const;
    /// A value that is too long for a text item, or null.
    [[nodiscard]] QXTextDocument *document(const QXApiTreeField &field) const;

    void insert(const QXApiTreeField &field, const QXTextContent &value);
    /// Documents are deleted later, because rows still show them.
    void remove(const QXApiTreeField &field);
    void clear();

private:
    struct Value
    {
        QString text;
        QXTextDocument *document = nullptr;
    };

    QObject *m_owner;
    std::unordered_map<const QXApiTreeField *, Value> m_values;
};
