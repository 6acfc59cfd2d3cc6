#pragma once

#include "Platform/PlatformGlobal.h"

#include <QtNetwork/QNetworkAccessManager>

/// A network access manager whose requests are captured. It takes the place of a QNetworkAccessManager and
/// behaves like it in every other respect: replies, signals, cookies, caches, authentication, TLS.
///
/// A program may have any number of them, each in any thread; the rules of QNetworkAccessManager about
/// threads hold. What a host's own class needs is in QXNetworkCapture.h.
class QUORVIX_CORE_EXPORT QXNetworkAccessManager : public QNetworkAccessManager
{
    Q_OBJECT

public:
    /// Makes a manager that captures from its first request on, in the thread in which it is made.
    explicit QXNetworkAccessManager(QObject *parent = nullptr);
    ~QXNetworkAccessManager() override;

protected:
    /// Makes a reply and captures its exchange.
    QNetworkReply *createRequest(Operation operation, const QNetworkRequest &request,
                                 QIODevice *body = nullptr) override;
};
