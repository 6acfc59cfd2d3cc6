#include "Examples/Product.h"

#include <QtCore/QLocale>

Product Product::fromJson(const QJsonObject &json)
{
    const auto text = [&json](QLatin1StringView key) {
        return json.value(key).toString();
    };
    const QJsonObject rating = json.value(QStringLiteral("rating")).toObject();
    const int stock = json.value(QStringLiteral("stock")).toInt();
    Product product;
    product.id = text(QLatin1StringView("id"));
    product.name = text(QLatin1StringView("name"));
    product.maker = text(QLatin1StringView("maker"));
    product.category = text(QLatin1StringView("category"));
    product.about = text(QLatin1StringView("description"));
    product.price = formatPrice(json.value(QStringLiteral("price")).toObject());
    product.rating =
        QLocale(QLocale::English).toString(rating.value(QStringLiteral("average")).toDouble(), 'f', 1);
    product.reviews = QStringLiteral("%1 reviews").arg(rating.value(QStringLiteral("count")).toInt());
    product.stock = stock < 10 ? QStringLiteral("Only %1 left").arg(stock) : QStringLiteral("In stock");
    product.badge = text(QLatin1StringView("badge"));
    product.picture = QStringLiteral("image://store") + text(QLatin1StringView("image"));
    product.tint = QColor(text(QLatin1StringView("tint")));
    product.darkTint = QColor(text(QLatin1StringView("darkTint")));
    return product;
}

QString Product::formatPrice(const QJsonObject &price)
{
    const double amount = price.value(QStringLiteral("amount")).toDouble() / 100;
    return QLocale(QLocale::English, QLocale::Ireland).toCurrencyString(amount, QStringLiteral("€"));
}
