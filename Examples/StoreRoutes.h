#pragma once

#include "Examples/StoreCatalogue.h"

#include <httplib.h>

#include <mutex>

/// The routes of the store at /api/v1 and /images: catalogue, session, profile, cart. The table at DemoServer
/// lists their answers.
class StoreRoutes final
{
public:
    /// Adds the routes to @p server, which must be stopped before this object is destroyed.
    explicit StoreRoutes(httplib::Server &server);
    StoreRoutes(const StoreRoutes &) = delete;
    StoreRoutes &operator=(const StoreRoutes &) = delete;

private:
    using Request = httplib::Request;
    using Response = httplib::Response;

    void listProducts(const Request &request, Response &response) const;
    void showProduct(const Request &request, Response &response) const;
    void showPicture(const Request &request, Response &response) const;
    static void openSession(const Request &request, Response &response);
    static void closeSession(const Request &request, Response &response);
    static void showProfile(const Request &request, Response &response);
    void showCart(const Request &request, Response &response);
    void addToCart(const Request &request, Response &response);
    void removeFromCart(const Request &request, Response &response);

    const StoreCatalogue m_catalogue;
    std::mutex m_mutex;
    QJsonArray m_lines;
};
