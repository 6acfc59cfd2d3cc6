#pragma once

#include "Platform/PlatformGlobal.h"

#include <QtCore/QByteArray>
#include <QtCore/QUrl>
#include <QtNetwork/QNetworkAccessManager>
#include <QtNetwork/QNetworkRequest>

#include <memory>
#include <optional>

class QXUploadTee;

/// Captures the requests of a host's own network access manager. For a manager without a class of its own use
/// QXNetworkAccessManager; to capture another class as it is use QXCapturing.
///
/// A class that cannot be wrapped calls capture() in its createRequest(), in place of the call that makes the
/// reply:
/// @code
/// return QXNetworkCapture::capture(this, op, request, body, [&](QIODevice *upload) {
///     return QNetworkAccessManager::createRequest(op, request, upload);
/// });
/// @endcode
class QUORVIX_CORE_EXPORT QXNetworkCapture final
{
public:
    /// The kind of a request.
    using Operation = QNetworkAccessManager::Operation;

    /// Makes a reply with @p send and returns the one that the host gets: it behaves like that reply, and the
    /// inspector sees the exchange. @p send must use the device that it is called with, which is null if
    /// there is no body. A URL that is not captured gets the reply of @p send itself, and so does a request
    /// that @p send has captured already. In the manager's thread.
    template<typename Send>
    [[nodiscard]] static QNetworkReply *capture(QNetworkAccessManager *manager, Operation operation,
                                                const QNetworkRequest &request, QIODevice *body, Send &&send)
    {
        if (!isCaptured(request.url()))
            return send(body);
        QXNetworkCapture capture(manager, operation, request, body);
        return capture.wrap(send(capture.upload()));
    }

    /// Makes authenticationRequired() of a manager name the reply that the host knows. capture() does it, but
    /// too late for slots that were connected before the first request: those see the reply of Qt. Called in
    /// the constructor of a manager, before anything is connected. In the manager's thread.
    static void attach(QNetworkAccessManager *manager);
    /// Whether attach() was called for @p manager: its requests are captured. In the manager's thread.
    [[nodiscard]] static bool isAttached(const QNetworkAccessManager *manager);

    /// Whether to capture requests that need no server, too: file:, qrc:, data: and the like. Off by default;
    /// they have no HTTP response, so that only the request and its duration are recorded. Any thread.
    static void setIncludesLocalUrls(bool includes);

private:
    QXNetworkCapture(QNetworkAccessManager *manager, Operation operation, const QNetworkRequest &request,
                     QIODevice *body);
    ~QXNetworkCapture();
    Q_DISABLE_COPY_MOVE(QXNetworkCapture)

    [[nodiscard]] static bool isCaptured(const QUrl &url);
    /// The device from which the reply has to upload.
    [[nodiscard]] QIODevice *upload() const;
    [[nodiscard]] QNetworkReply *wrap(QNetworkReply *inner);

    QNetworkAccessManager *m_manager;
    QIODevice *m_upload;
    QString m_method;
    /// The body, if it is known before it is sent.
    std::optional<QByteArray> m_body;
    std::unique_ptr<QXUploadTee> m_tee;
    bool m_isHeld;
};

/// A manager of the host's class @p Base whose requests are captured: `QXCapturing<TheirManager> manager;`.
/// Its constructors are those of Base.
template<typename Base>
class QXCapturing : public Base
{
public:
    using Base::Base;

protected:
    /// Captures the reply that Base makes.
    QNetworkReply *createRequest(QNetworkAccessManager::Operation operation, const QNetworkRequest &request,
                                 QIODevice *body) override
    {
        return QXNetworkCapture::capture(this, operation, request, body, [&](QIODevice *upload) {
            return Base::createRequest(operation, request, upload);
        });
    }

private:
    struct Attachment
    {
        explicit Attachment(QXCapturing *manager) { QXNetworkCapture::attach(manager); }
    };
    Attachment m_attachment{this};
};
