#pragma once

#include "Examples/Product.h"

#include <QtCore/QAbstractListModel>
#include <QtCore/QJsonArray>

/// A list of products and their quantities: the catalogue, or the cart.
class ProductModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Belongs to the store client")
    Q_PROPERTY(int count READ count NOTIFY countChanged FINAL)

public:
    enum Role { ProductRole = Qt::UserRole, QuantityRole };

    using QAbstractListModel::QAbstractListModel;

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] int count() const { return rowCount(); }
    /// The product with this id; null when there is none.
    [[nodiscard]] const Product *find(const QString &id) const;

    /// Replaces the list by the products of the catalogue.
    void setProducts(const QJsonArray &products);
    /// Replaces the list by the lines of the cart.
    void setLines(const QJsonArray &lines);

Q_SIGNALS:
    void countChanged();

private:
    struct Line
    {
        Product product;
        int quantity = 1;
    };
    void reset(QList<Line> lines);

    QList<Line> m_lines;
};
