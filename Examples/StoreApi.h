#pragma once

#include <Quorvix/Platform/NSError.h>
#include <Quorvix/Platform/URLRequest.h>

#include <QtCore/QJsonObject>
#include <QtCore/QObject>

#include <functional>

/// The result of a call.
struct StoreReply
{
    /// The status code; 0 when there is no response.
    int status = 0;
    QByteArray body;
    /// The body as a JSON object; empty when it is something else.
    QJsonObject json;
    /// The ETag; empty when the response has none.
    QString entityTag;
    std::optional<Quorvix::NSError> error;
    std::chrono::milliseconds time{};

    [[nodiscard]] bool succeeded() const { return !error && status >= 200 && status < 300; }
    /// A sentence for people that describes the failure.
    [[nodiscard]] QString problem() const;
};

/// The store's HTTP interface, called through the shared URL session. Main thread only.
class StoreApi final : public QObject
{
    Q_OBJECT

public:
    using Done = std::function<void(const StoreReply &)>;

    explicit StoreApi(const QUrl &base, QObject *parent = nullptr);

    /// Sets the token that later requests carry; with an empty one they carry none.
    void setToken(const QString &token) { m_token = token; }

    /// A request for a path on the store's server, or for an absolute URL.
    [[nodiscard]] Quorvix::URLRequest request(const QString &pathAndQuery,
                                              const QString &method = QStringLiteral("GET")) const;
    [[nodiscard]] Quorvix::URLRequest jsonRequest(const QString &path, const QString &method,
                                                  const QJsonObject &body) const;
    [[nodiscard]] Quorvix::URLRequest formRequest(const QString &path,
                                                  const QList<QPair<QString, QString>> &fields) const;

    /// Calls @p done on the main thread, unless this object is destroyed before.
    void send(const Quorvix::URLRequest &request, Done done);

private:
    const QUrl m_base;
    QString m_token;
};
