#include "Quorvix/QXUnfoldedValues.h"

#include "Quorvix/QXApiTreeField.h"

namespace {

/// The length of a value that one text item shows, in UTF-16 units.
constexpr qsizetype longestValueInOneItem = 3000;

} // namespace

QXTextContent QXUnfoldedValues::valueOf(const QXApiTreeField &field)
{
    return QXTextContent(field.summary().value_or(QString()));
}

QString QXUnfoldedValues::text(const QXApiTreeField &field) const
{
    const auto value = m_values.find(&field);
    return value == m_values.cend() ? QString() : value->second.text;
}

QXTextDocument *QXUnfoldedValues::document(const QXApiTreeField &field) const
{
    const auto value = m_values.find(&field);
    return value == m_values.cend() ? nullptr : value->second.document;
}

void QXUnfoldedValues::insert(const QXApiTreeField &field, const QXTextContent &value)
{
    Value &inserted = m_values[&field];
    if (value.length() > longestValueInOneItem)
        inserted.document = new QXTextDocument(value, m_owner);
    else
        inserted.text = value.text();
}

void QXUnfoldedValues::remove(const QXApiTreeField &field)
{
    const auto removed = m_values.extract(&field);
    if (!removed.empty() && removed.mapped().document)
        removed.mapped().document->deleteLater();
}

void QXUnfoldedValues::clear()
{
    while (!m_values.empty())
        remove(*m_values.cbegin()->first);
}
