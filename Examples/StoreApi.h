#pragma once

#include <Quorvix/Platform/NSError.h>
#include <Quorvix/Platform/URLRequest.h>

#include <QtCore/QJsonObject>
#include <QtCore/QObject>

#include <functional>

/// What came of a call.
struct StoreReply
{
    /// 0 without a response.
    int status = 0;
    QByteArray body;
    /// The body as a JSON object; empty when it is something else.
    QJsonObject json;
    /// Empty when the response names none.
    QString entityTag;
    std::optional<Quorvix::NSError> error;
    std::chrono::milliseconds time{};

    [[nodiscard]] bool succeeded() const { return !error && status >= 200 && status < 300; }
    /// A sentence for people about what went wrong.
    [[nodiscard]] QString problem() const;
};

/// The store's HTTP interface, called through the shared URL session. Main thread only.
class StoreApi final : public QObject
{
    Q_OBJECT

public:
    using Done = std::function<void(const StoreReply &)>;

    explicit StoreApi(const QUrl &base, QObject *parent = nullptr);

    /// Goes with every request from now on; empty: none does.
    void setToken(const QString &token) { m_token = token; }

    /// An absolute URL stays as it is.
    [[nodiscard]] Quorvix::URLRequest request(const QString &pathAndQuery,
                                              const QString &method = QStringLiteral("GET")) const;
    [[nodiscard]] Quorvix::URLRequest jsonRequest(const QString &path, const QString &method,
                                                  const QJsonObject &body) const;
    [[nodiscard]] Quorvix::URLRequest formRequest(const QString &path,
                                                  const QList<QPair<QString, QString>> &fields) const;

    /// Calls @p done on the main thread, unless this object is gone by then.
    void send(const Quorvix::URLRequest &request, Done done);

private:
    const QUrl m_base;
    QString m_token;
};
