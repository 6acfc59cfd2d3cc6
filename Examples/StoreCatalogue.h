#pragma once

#include <QtCore/QHash>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>

/// What the store sells. Immutable after construction; read by many threads.
class StoreCatalogue final
{
public:
    /// Draws the pictures, which takes a moment.
    StoreCatalogue();

    /// All products in the order of the shop window, as the interface describes them.
    [[nodiscard]] const QJsonArray &products() const noexcept { return m_products; }
    /// The products whose name, maker or category contains @p query, ignoring case.
    [[nodiscard]] QJsonArray search(const QString &query) const;
    /// An empty object when there is none.
    [[nodiscard]] QJsonObject product(const QString &id) const;
    /// A picture as PNG; empty when there is none.
    [[nodiscard]] QByteArray picture(const QString &name) const { return m_pictures.value(name); }

private:
    QJsonArray m_products;
    QHash<QString, QByteArray> m_pictures;
};
