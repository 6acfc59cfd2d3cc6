#include "Examples/StoreClient.h"

#include <QtCore/QDateTime>
#include <QtCore/QLocale>

using namespace Quorvix;

namespace {

const QLocale &english()
{
    static const QLocale locale(QLocale::English);
    return locale;
}

StoreProfile readProfile(const QJsonObject &json)
{
    const QString name = json.value(QStringLiteral("name")).toString();
    const QJsonValue address = json.value(QStringLiteral("addresses")).toArray().first();
    const auto since =
        QDateTime::fromString(json.value(QStringLiteral("memberSince")).toString(), Qt::ISODate);
    QString initials;
    for (const QString &part : name.split(u' ', Qt::SkipEmptyParts))
        initials += part.front();
    return {name,
            initials,
            json.value(QStringLiteral("email")).toString(),
            english().toString(since.date(), QStringLiteral("MMMM yyyy")),
            address[QStringLiteral("street")].toString() + QStringLiteral(", ") +
                address[QStringLiteral("city")].toString(),
            english().toString(json.value(QStringLiteral("points")).toInt())};
}

} // namespace

StoreClient::StoreClient(const QUrl &base, QObject *parent)
    : QObject(parent), m_api(base), m_diagnostics(m_api)
{
}

void StoreClient::loadProducts(const QString &query)
{
    URLRequest request = m_api.request(QStringLiteral("/api/v1/products"));
    if (!query.isEmpty())
        request.url = m_api
                          .request(QStringLiteral("/api/v1/products?q=") +
                                   QString::fromLatin1(QUrl::toPercentEncoding(query)))
                          .url;
    if (query == m_shownQuery && m_entityTags.contains(query))
        request.setValue(m_entityTags.value(query), QStringLiteral("If-None-Match"));
    m_shownQuery = query;
    call(request, [this, query](const StoreReply &reply) {
        if (query != m_shownQuery || reply.status == 304)
            return;
        if (!reply.succeeded()) {
            Q_EMIT noticed(reply.problem());
            return;
        }
        m_entityTags.insert(query, reply.entityTag);
        m_products.setProducts(reply.json.value(QStringLiteral("items")).toArray());
    });
}

void StoreClient::openProduct(const QString &id)
{
    const Product *known = m_products.find(id);
    if (!known)
        known = m_cart.find(id);
    m_product = known ? *known : Product();
    m_product.id = id;
    Q_EMIT productChanged();
    call(m_api.request(QStringLiteral("/api/v1/products/") + id), [this, id](const StoreReply &reply) {
        if (id != m_product.id || !reply.succeeded())
            return;
        m_product = Product::fromJson(reply.json);
        Q_EMIT productChanged();
    });
}

void StoreClient::loadCart()
{
    call(m_api.request(QStringLiteral("/api/v1/cart")), [this](const StoreReply &reply) { showCart(reply); });
}

void StoreClient::addToCart(const QString &id)
{
    const QJsonObject body{{QStringLiteral("productId"), id}, {QStringLiteral("quantity"), 1}};
    call(m_api.jsonRequest(QStringLiteral("/api/v1/cart"), QStringLiteral("POST"), body),
         [this](const StoreReply &reply) {
             showCart(reply);
             if (reply.succeeded())
                 Q_EMIT noticed(QStringLiteral("Added to your cart"));
         });
}

void StoreClient::removeFromCart(const QString &id)
{
    call(m_api.request(QStringLiteral("/api/v1/cart/") + id, QStringLiteral("DELETE")),
         [this](const StoreReply &reply) {
             if (!reply.succeeded())
                 Q_EMIT noticed(reply.problem());
             loadCart();
         });
}

void StoreClient::signIn(const QString &email, const QString &password)
{
    setSignInError(QString());
    call(m_api.formRequest(QStringLiteral("/api/v1/session"),
                           {{QStringLiteral("email"), email}, {QStringLiteral("password"), password}}),
         [this](const StoreReply &reply) {
             if (!reply.succeeded())
                 return setSignInError(reply.problem());
             m_api.setToken(reply.json.value(QStringLiteral("token")).toString());
             loadProfile();
         });
}

void StoreClient::signOut()
{
    call(m_api.request(QStringLiteral("/api/v1/session"), QStringLiteral("DELETE")),
         [](const StoreReply &) {});
    m_api.setToken(QString());
    m_profile = StoreProfile();
    Q_EMIT profileChanged();
}

void StoreClient::call(const URLRequest &request, StoreApi::Done done)
{
    ++m_pending;
    Q_EMIT busyChanged();
    m_api.send(request, [this, done = std::move(done)](const StoreReply &reply) {
        --m_pending;
        done(reply);
        Q_EMIT busyChanged();
    });
}

void StoreClient::loadProfile()
{
    call(m_api.request(QStringLiteral("/api/v1/profile")), [this](const StoreReply &reply) {
        if (!reply.succeeded())
            return setSignInError(reply.problem());
        m_profile = readProfile(reply.json);
        Q_EMIT profileChanged();
    });
}

void StoreClient::showCart(const StoreReply &reply)
{
    if (!reply.succeeded()) {
        Q_EMIT noticed(reply.problem());
        return;
    }
    m_cart.setLines(reply.json.value(QStringLiteral("lines")).toArray());
    m_cartCount = reply.json.value(QStringLiteral("count")).toInt();
    m_cartTotal = Product::formatPrice(reply.json.value(QStringLiteral("total")).toObject());
    Q_EMIT cartChanged();
}

void StoreClient::setSignInError(const QString &error)
{
    m_signInError = error;
    Q_EMIT signInErrorChanged();
}
