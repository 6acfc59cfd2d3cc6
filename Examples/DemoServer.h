#pragma once

#include <QtCore/QUrl>

#include <memory>

/// The store's HTTP server: it listens on the loopback interface, on a port that the system chooses
/// unless one is wanted.
///
/// | Method | Path                                | Answer                                               |
/// |--------|-------------------------------------|------------------------------------------------------|
/// | GET    | /api/v1/products?q=&page=&pageSize= | 200 a page of the catalogue, with an ETag; 304       |
/// | GET    | /api/v1/products/{id}               | 200 one product; 404                                 |
/// | GET    | /images/{id}.png                    | 200 a product's picture, cacheable; 304; 404         |
/// | POST   | /api/v1/session                     | 200 a signed token and two cookies; 401              |
/// | DELETE | /api/v1/session                     | 204, and the session's cookie expires                |
/// | GET    | /api/v1/profile                     | 200 with the token as Bearer; 401                    |
/// | GET    | /api/v1/cart                        | 200 the cart                                         |
/// | POST   | /api/v1/cart                        | 201 the cart with {"productId":} added; 400; 404     |
/// | DELETE | /api/v1/cart/{id}                   | 204; 404                                             |
/// | GET    | /api/v1/articles                    | 200 JSON compressed with gzip                        |
/// | GET    | /api/v1/export                      | 200 JSON of 10 MB                                    |
/// | GET    | /binary?size=                       | 200 that many random bytes, 64 MB at most            |
/// | GET    | /set-cookies                        | 200 with two Set-Cookie headers                      |
/// | GET    | /redirect/{n}                       | 302 n times, then 200                                |
/// | GET    | /redirect-loop                      | 302 to itself                                        |
/// | any    | /moved/{301, 302, 303, 307, 308}    | that status, to /echo                                |
/// | any    | /status/{200 to 599}                | that status; a problem report (RFC 9457) from 400 on |
/// | GET    | /slow?ms=                           | 200 after that long, 15 s at most                    |
/// | GET    | /drop                               | no response: the connection closes                   |
/// | GET    | /drop-midway                        | 200, and the connection closes within the body       |
/// | any    | /echo                               | 200 what arrived, as JSON; the body in Base64        |
///
/// The session takes a form with an email address and a password, which is "open sesame" for any address.
/// "any" is GET, POST, PUT, PATCH, DELETE and OPTIONS. Every other request gets 404.
class DemoServer final
{
public:
    DemoServer();
    /// Stops the server.
    ~DemoServer();
    DemoServer(const DemoServer &) = delete;
    DemoServer &operator=(const DemoServer &) = delete;

    /// Starts to accept connections, in threads of its own; false when no port could be opened. A server can
    /// be started only once. Its port is another one than @p wanted when that is 0 or not free.
    [[nodiscard]] bool start(quint16 wanted = 0);
    /// Breaks all open connections and returns when no handler is running any more.
    void stop();

    /// The port of the server; 0 before start().
    [[nodiscard]] quint16 port() const noexcept { return m_port; }
    /// An absolute URL on this server for a path with or without a query.
    [[nodiscard]] QUrl url(const QString &pathAndQuery = QStringLiteral("/")) const;

private:
    struct Private;
    std::unique_ptr<Private> m_private;
    quint16 m_port = 0;
};
