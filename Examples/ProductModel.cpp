#include "Examples/ProductModel.h"

#include <algorithm>

int ProductModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_lines.size());
}

QVariant ProductModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const Line &line = m_lines.at(index.row());
    switch (role) {
    case ProductRole:
        return QVariant::fromValue(line.product);
    case QuantityRole:
        return line.quantity;
    default:
        return {};
    }
}

QHash<int, QByteArray> ProductModel::roleNames() const
{
    return {{ProductRole, "product"}, {QuantityRole, "quantity"}};
}

const Product *ProductModel::find(const QString &id) const
{
    const auto line = std::find_if(m_lines.begin(), m_lines.end(),
                                   [&](const Line &candidate) { return candidate.product.id == id; });
    return line == m_lines.end() ? nullptr : &line->product;
}

void ProductModel::setProducts(const QJsonArray &products)
{
    QList<Line> lines;
    for (const QJsonValue product : products)
        lines.append({Product::fromJson(product.toObject())});
    reset(std::move(lines));
}

void ProductModel::setLines(const QJsonArray &cartLines)
{
    QList<Line> lines;
    for (const QJsonValue line : cartLines)
        lines.append({Product::fromJson(line[QStringLiteral("product")].toObject()),
                      line[QStringLiteral("quantity")].toInt()});
    reset(std::move(lines));
}

void ProductModel::reset(QList<Line> lines)
{
    beginResetModel();
    m_lines = std::move(lines);
    endResetModel();
    Q_EMIT countChanged();
}
