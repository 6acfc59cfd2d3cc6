#include "Examples/StoreCatalogue.h"

#include "Examples/ProductPicture.h"

#include <QtCore/QBuffer>
#include <QtGui/QImage>

#include <algorithm>

namespace {

using Kind = ProductPicture::Kind;

struct Product
{
    const char *id;
    const char *name;
    const char *maker;
    const char *category;
    int cents;
    double rating;
    int reviews;
    int stock;
    const char *badge;
    Kind kind;
    QRgb colour;
    QRgb accent;
    const char *tint;
    const char *darkTint;
    const char *description;
};

constexpr Product assortment[] = {
    {"fjord-vase", "Fjord Vase", "Atelier Norr", "Vases", 6900, 4.8, 214, 12, "New", Kind::Vase, 0xffc8694a,
     0xffe8b49c, "#F3E3D7", "#3A2B23",
     "Thrown by hand from coarse stoneware and left unglazed on the outside."},
    {"halo-lamp", "Halo Table Lamp", "Studio Lumen", "Lighting", 14900, 4.9, 381, 5, "Bestseller", Kind::Lamp,
     0xffe9c46a, 0xff5b6b5d, "#F5ECD3", "#38321F",
     "A warm, dimmable light under a spun shade, on a solid foot."},
    {"alder-chair", "Alder Chair", "Fold & Sons", "Seating", 22900, 4.6, 97, 8, "", Kind::Chair, 0xffa9744f,
     0xffdcbf9f, "#EFE6DA", "#322A22",
     "Steam-bent alder with a seat woven from paper cord. Made to be repaired."},
    {"tide-mug", "Tide Mug", "Clay Collective", "Tableware", 2400, 4.7, 642, 40, "", Kind::Mug, 0xff5f8a94,
     0xffd7e5e6, "#E0EAEA", "#22302F",
     "Reactive glaze, so no two are alike. Holds 350 ml and keeps it warm."},
    {"moss-planter", "Moss Planter", "Atelier Norr", "Plants", 3800, 4.4, 158, 21, "", Kind::Planter,
     0xffd9d2c3, 0xff5d7f5a, "#E4EBDD", "#273023",
     "A drained pot with a saucer that hides under its rim. Plant included."},
    {"dune-clock", "Dune Wall Clock", "Hour House", "Clocks", 8900, 4.5, 73, 3, "Few left", Kind::Clock,
     0xfff7f1e6, 0xff8d5a3b, "#EDE2D2", "#352C21",
     "A silent movement behind a face of pressed sand. One AA cell a year."},
    {"ember-pendant", "Ember Pendant", "Studio Lumen", "Lighting", 17900, 4.8, 126, 9, "", Kind::Pendant,
     0xffb4533c, 0xfff4d58d, "#F6E1D8", "#3B2721",
     "An enamelled steel shade that throws its light down and a glow up."},
    {"kiln-bowl", "Kiln Serving Bowl", "Clay Collective", "Tableware", 5200, 4.9, 290, 16, "-20 %",
     Kind::Bowl, 0xff43546b, 0xffb9c6d6, "#DFE4EC", "#242A35",
     "Wide enough for a salad for six, and safe in oven and dishwasher."},
    {"slate-vase", "Slate Bottle Vase", "Atelier Norr", "Vases", 7400, 4.3, 51, 7, "", Kind::Bottle,
     0xff596066, 0xffa9b0b5, "#E3E5E6", "#292B2D",
     "A slender neck for a single stem, glazed the grey of wet slate."},
    {"birch-stool", "Birch Stool", "Fold & Sons", "Seating", 9900, 4.7, 183, 14, "", Kind::Stool, 0xffd8b384,
     0xffb98f5f, "#F2E8D8", "#352D20", "Three legs, one seat, no screws. Stacks five high and seats anyone."},
};

QString text(const char *utf8)
{
    return QString::fromUtf8(utf8);
}

QJsonObject describe(const Product &product)
{
    const QJsonObject price{{QStringLiteral("amount"), product.cents},
                            {QStringLiteral("currency"), QStringLiteral("EUR")}};
    const QJsonObject rating{{QStringLiteral("average"), product.rating},
                             {QStringLiteral("count"), product.reviews}};
    const QString badge = text(product.badge);
    return {{QStringLiteral("id"), text(product.id)},
            {QStringLiteral("name"), text(product.name)},
            {QStringLiteral("maker"), text(product.maker)},
            {QStringLiteral("category"), text(product.category)},
            {QStringLiteral("description"), text(product.description)},
            {QStringLiteral("price"), price},
            {QStringLiteral("rating"), rating},
            {QStringLiteral("stock"), product.stock},
            {QStringLiteral("badge"), badge.isEmpty() ? QJsonValue() : QJsonValue(badge)},
            {QStringLiteral("image"), QStringLiteral("/images/%1.png").arg(text(product.id))},
            {QStringLiteral("tint"), text(product.tint)},
            {QStringLiteral("darkTint"), text(product.darkTint)}};
}

QByteArray png(const QImage &image)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return buffer.data();
}

} // namespace

StoreCatalogue::StoreCatalogue()
{
    for (const Product &product : assortment) {
        m_products.append(describe(product));
        m_pictures.insert(text(product.id),
                          png(ProductPicture::draw(product.kind, product.colour, product.accent)));
    }
}

QJsonArray StoreCatalogue::search(const QString &query) const
{
    static const QStringList searched{QStringLiteral("name"), QStringLiteral("maker"),
                                      QStringLiteral("category")};
    QJsonArray found;
    for (const QJsonValue product : m_products) {
        const bool matches = std::any_of(searched.begin(), searched.end(), [&](const QString &field) {
            return product[field].toString().contains(query, Qt::CaseInsensitive);
        });
        if (matches)
            found.append(product);
    }
    return found;
}

QJsonObject StoreCatalogue::product(const QString &id) const
{
    for (const QJsonValue product : m_products) {
        if (product[QStringLiteral("id")].toString() == id)
            return product.toObject();
    }
    return {};
}
