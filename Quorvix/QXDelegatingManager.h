#pragma once

#include "Platform/PlatformGlobal.h"

#include <QtNetwork/QNetworkAccessManager>

/// A manager whose requests are captured and made by another manager, of a class that is known only to the
/// host. In the thread of that manager only.
class QUORVIX_INTERNAL_EXPORT QXDelegatingManager final : public QNetworkAccessManager
{
    Q_OBJECT

public:
    /// Takes ownership of @p host.
    QXDelegatingManager(QNetworkAccessManager *host, QObject *parent);
    ~QXDelegatingManager() override;

protected:
    QNetworkReply *createRequest(Operation operation, const QNetworkRequest &request,
                                 QIODevice *body) override;

private:
    QNetworkAccessManager *m_host;
};
