#include "Examples/StoreRoutes.h"

#include "Examples/HttpAnswer.h"
#include "Examples/SessionToken.h"

#include <QtCore/QCryptographicHash>

namespace {

using Handler = httplib::Server::Handler;

constexpr int maximumPageSize = 50;
constexpr QLatin1StringView password{"open sesame"};

/// Sets the ETag of @p body. When the client has this body already, sets 304 and returns true (RFC 9110,
/// 13.1.2).
bool isKnown(const httplib::Request &request, httplib::Response &response, const QByteArray &body)
{
    const QByteArray digest = QCryptographicHash::hash(body, QCryptographicHash::Sha1).toHex().left(16);
    const std::string tag = '"' + digest.toStdString() + '"';
    response.set_header("ETag", tag);
    if (request.get_header_value("If-None-Match") != tag)
        return false;
    response.status = 304;
    return true;
}

QString firstMatch(const httplib::Request &request)
{
    return QString::fromStdString(request.matches[1]);
}

QString productIdOf(const QJsonValue &line)
{
    return line[QStringLiteral("product")][QStringLiteral("id")].toString();
}

QJsonObject describeCart(const QJsonArray &lines)
{
    int total = 0;
    int count = 0;
    for (const QJsonValue line : lines) {
        const int quantity = line[QStringLiteral("quantity")].toInt();
        count += quantity;
        total += quantity *
                 line[QStringLiteral("product")][QStringLiteral("price")][QStringLiteral("amount")].toInt();
    }
    return {{QStringLiteral("lines"), lines},
            {QStringLiteral("count"), count},
            {QStringLiteral("total"), QJsonObject{{QStringLiteral("amount"), total},
                                                  {QStringLiteral("currency"), QStringLiteral("EUR")}}}};
}

} // namespace

StoreRoutes::StoreRoutes(httplib::Server &server)
{
    const auto call = [this](auto member) -> Handler {
        return [this, member](const Request &request, Response &response) {
            (this->*member)(request, response);
        };
    };
    server.Get("/api/v1/products", call(&StoreRoutes::listProducts));
    server.Get(R"(/api/v1/products/([\w-]+))", call(&StoreRoutes::showProduct));
    server.Get(R"(/images/([\w-]+)\.png)", call(&StoreRoutes::showPicture));
    server.Post("/api/v1/session", openSession);
    server.Delete("/api/v1/session", closeSession);
    server.Get("/api/v1/profile", showProfile);
    server.Get("/api/v1/cart", call(&StoreRoutes::showCart));
    server.Post("/api/v1/cart", call(&StoreRoutes::addToCart));
    server.Delete(R"(/api/v1/cart/([\w-]+))", call(&StoreRoutes::removeFromCart));
}

void StoreRoutes::listProducts(const Request &request, Response &response) const
{
    const QString query = HttpAnswer::parameter(request, "q");
    const int page = std::max(1, HttpAnswer::number(request, "page", 1));
    const int size = std::clamp(HttpAnswer::number(request, "pageSize", 20), 1, maximumPageSize);
    const QJsonArray found = m_catalogue.search(query);
    QJsonArray items;
    const qint64 first = qint64(page - 1) * size;
    for (qint64 i = first; i < std::min<qint64>(first + size, found.size()); ++i)
        items.append(found.at(i));
    const bool isLast = first + size >= found.size();
    const QJsonObject answer{{QStringLiteral("items"), items},
                             {QStringLiteral("page"), page},
                             {QStringLiteral("pageSize"), size},
                             {QStringLiteral("total"), found.size()},
                             {QStringLiteral("nextPage"), isLast ? QJsonValue() : QJsonValue(page + 1)}};
    response.set_header("Cache-Control", "no-cache");
    if (!isKnown(request, response, QJsonDocument(answer).toJson(QJsonDocument::Compact)))
        HttpAnswer::json(response, QJsonDocument(answer));
}

void StoreRoutes::showProduct(const Request &request, Response &response) const
{
    const QJsonObject product = m_catalogue.product(firstMatch(request));
    if (product.isEmpty())
        return HttpAnswer::problem(response, 404, QStringLiteral("No such product"), firstMatch(request));
    HttpAnswer::json(response, QJsonDocument(product));
}

void StoreRoutes::showPicture(const Request &request, Response &response) const
{
    const QByteArray picture = m_catalogue.picture(firstMatch(request));
    if (picture.isEmpty())
        return HttpAnswer::problem(response, 404, QStringLiteral("No such picture"), firstMatch(request));
    response.set_header("Cache-Control", "public, max-age=86400, immutable");
    if (!isKnown(request, response, picture))
        HttpAnswer::bytes(response, picture, "image/png");
}

void StoreRoutes::openSession(const Request &request, Response &response)
{
    const QString email = HttpAnswer::parameter(request, "email");
    if (email.isEmpty() || HttpAnswer::parameter(request, "password") != password) {
        response.set_header("WWW-Authenticate", "Bearer realm=\"store\", error=\"invalid_token\"");
        return HttpAnswer::problem(
            response, 401, QStringLiteral("Sign-in failed"),
            QStringLiteral("The email address and the password do not belong together."));
    }
    const QByteArray token = SessionToken::sign(email);
    const QByteArray id = QCryptographicHash::hash(token, QCryptographicHash::Sha256).toHex().left(32);
    response.set_header("Set-Cookie", "session=" + id.toStdString() + "; Path=/; HttpOnly; SameSite=Lax");
    response.set_header("Set-Cookie", "locale=en-IE; Path=/; Max-Age=31536000");
    HttpAnswer::json(response, QJsonDocument(QJsonObject{
                                   {QStringLiteral("token"), QString::fromLatin1(token)},
                                   {QStringLiteral("tokenType"), QStringLiteral("Bearer")},
                                   {QStringLiteral("expiresIn"), 3600},
                               }));
}

void StoreRoutes::closeSession(const Request &, Response &response)
{
    response.set_header("Set-Cookie", "session=; Path=/; Max-Age=0");
    response.status = 204;
}

void StoreRoutes::showProfile(const Request &request, Response &response)
{
    const QByteArray authorization = QByteArray::fromStdString(request.get_header_value("Authorization"));
    const auto email =
        authorization.startsWith("Bearer ") ? SessionToken::verify(authorization.mid(7)) : std::nullopt;
    if (!email) {
        response.set_header("WWW-Authenticate", "Bearer realm=\"store\"");
        return HttpAnswer::problem(response, 401, QStringLiteral("Not signed in"),
                                   QStringLiteral("This needs a valid token."));
    }
    const QJsonObject address{{QStringLiteral("street"), QStringLiteral("14 Harbour Row")},
                              {QStringLiteral("city"), QStringLiteral("Galway")},
                              {QStringLiteral("postcode"), QStringLiteral("H91 E2K3")},
                              {QStringLiteral("location"), QJsonArray{53.2707, -9.0568}}};
    HttpAnswer::json(response, QJsonDocument(QJsonObject{
                                   {QStringLiteral("email"), *email},
                                   {QStringLiteral("name"), QStringLiteral("Maeve Brennan")},
                                   {QStringLiteral("memberSince"), QStringLiteral("2021-04-18T09:30:00Z")},
                                   {QStringLiteral("points"), 1280},
                                   {QStringLiteral("newsletter"), true},
                                   {QStringLiteral("phone"), QJsonValue::Null},
                                   {QStringLiteral("addresses"), QJsonArray{address}},
                               }));
}

void StoreRoutes::showCart(const Request &, Response &response)
{
    const std::scoped_lock lock(m_mutex);
    HttpAnswer::json(response, QJsonDocument(describeCart(m_lines)));
}

void StoreRoutes::addToCart(const Request &request, Response &response)
{
    const auto body = QJsonDocument::fromJson(QByteArray::fromStdString(request.body)).object();
    const QString id = body.value(QStringLiteral("productId")).toString();
    if (id.isEmpty())
        return HttpAnswer::problem(response, 400, QStringLiteral("Not understood"),
                                   QStringLiteral("Expected JSON with a productId."));
    const QJsonObject product = m_catalogue.product(id);
    if (product.isEmpty())
        return HttpAnswer::problem(response, 404, QStringLiteral("No such product"), id);

    const std::scoped_lock lock(m_mutex);
    const auto known = std::find_if(m_lines.begin(), m_lines.end(),
                                    [&](const QJsonValue &line) { return productIdOf(line) == id; });
    const int before =
        known == m_lines.end() ? 0 : known->toObject().value(QStringLiteral("quantity")).toInt();
    const QJsonObject line{{QStringLiteral("product"), product}, {QStringLiteral("quantity"), before + 1}};
    if (known == m_lines.end())
        m_lines.append(line);
    else
        *known = line;
    response.set_header("Location", "/api/v1/cart/" + id.toStdString());
    HttpAnswer::json(response, QJsonDocument(describeCart(m_lines)), 201);
}

void StoreRoutes::removeFromCart(const Request &request, Response &response)
{
    const QString id = firstMatch(request);
    const std::scoped_lock lock(m_mutex);
    for (qsizetype i = 0; i < m_lines.size(); ++i) {
        if (productIdOf(m_lines.at(i)) == id) {
            m_lines.removeAt(i);
            response.status = 204;
            return;
        }
    }
    HttpAnswer::problem(response, 404, QStringLiteral("Not in the cart"), id);
}
