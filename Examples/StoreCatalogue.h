#pragma once

#include <QtCore/QHash>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>

/// The products of the store. Immutable after construction; any thread may read it.
class StoreCatalogue final
{
public:
    /// Draws the pictures, which takes a moment.
    StoreCatalogue();

    /// All products in the order of the catalogue, as JSON.
    [[nodiscard]] const QJsonArray &products() const noexcept { return m_products; }
    /// The products whose name, maker or category contains @p query, ignoring case.
    [[nodiscard]] QJsonArray search(const QString &query) const;
    /// The product with this id; an empty object when there is none.
    [[nodiscard]] QJsonObject product(const QString &id) const;
    /// A picture as PNG; empty when there is none.
    [[nodiscard]] QByteArray picture(const QString &name) const { return m_pictures.value(name); }

private:
    QJsonArray m_products;
    QHash<QString, QByteArray> m_pictures;
};
