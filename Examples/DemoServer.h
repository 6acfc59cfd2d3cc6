#pragma once

#include <QtCore/QUrl>

#include <memory>

/// The store's HTTP server: it listens on the loopback interface, on a port that the system chooses.
///
/// | Method and path                        | Answer |
/// |----------------------------------------|---------------------------------------------------------------------|
/// | GET /api/v1/products?q=&page=&pageSize=| 200 a page of the catalogue with an ETag; 304 on If-None-Match
/// | | GET /api/v1/products/{id}              | 200 one product; 404 | | GET /images/{name}.png | 200 a
/// product's picture, cacheable; 404                             | | POST /api/v1/session                   |
/// form email, password: 200 a signed token and two cookies; 401       | | DELETE /api/v1/session | 204, and
/// the cookies expire                                         | | GET /api/v1/profile                    |
/// 200 with the token as Bearer; 401                                   | | GET, POST, DELETE
/// /api/v1/cart[/{id}]  | 200 the cart; 201 after adding {"productId":}; 204; 404, 400        | | GET
/// /api/v1/articles                   | 200 JSON compressed with gzip                                       |
/// | GET /api/v1/export                     | 200 JSON of 10 MB | | GET /binary?size=                      |
/// 200 that many bytes, no two runs of which are alike                 | | GET /redirect/{n} | n times 302,
/// then 200                                               | | GET /redirect-loop                     | 302 to
/// itself                                                       | | any /moved/{301, 302, 303, 307, 308}   |
/// that status, to /echo                                               | | any /status/{code} | that status,
/// with a problem report from 400 on (RFC 9457)           | | GET /slow?ms=                          | 200
/// after that long                                                 | | GET /drop | the connection closes
/// before a response                             | | GET /drop-midway                       | the connection
/// closes in the middle of the body                     | | GET /set-cookies                       | 200 with
/// two Set-Cookie headers                                     | | any /echo                              |
/// 200 JSON: what arrived, as method, path, headers, body (Base64)     |
///
/// Whatever else is asked for answers 404. The password that opens a session is "open sesame", for any
/// address.
class DemoServer final
{
public:
    DemoServer();
    /// Stops.
    ~DemoServer();
    DemoServer(const DemoServer &) = delete;
    DemoServer &operator=(const DemoServer &) = delete;

    /// Accepts connections from now on, in threads of its own; false when no port could be opened.
    /// A server is started once.
    [[nodiscard]] bool start();
    /// Breaks the connections that are open and returns when no request is being answered any more.
    void stop();

    /// 0 before start().
    [[nodiscard]] quint16 port() const noexcept { return m_port; }
    /// An absolute URL on this server for a path with or without a query.
    [[nodiscard]] QUrl url(const QString &pathAndQuery = QStringLiteral("/")) const;

private:
    struct Private;
    std::unique_ptr<Private> m_private;
    quint16 m_port = 0;
};
