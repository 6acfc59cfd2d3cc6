#pragma once

#include "Platform/PlatformGlobal.h"

#include <QtCore/QPointer>
#include <QtNetwork/QNetworkAccessManager>

/// A manager whose requests are captured and made by another manager, of a class that is known only to the
/// host. In the thread of that manager only.
class QUORVIX_INTERNAL_EXPORT QXDelegatingManager final : public QNetworkAccessManager
{
    Q_OBJECT

public:
    /// Takes ownership of @p host where Qt does: if it is a child of @p parent, or if there is no parent.
    QXDelegatingManager(QNetworkAccessManager *host, QObject *parent);
    ~QXDelegatingManager() override;

protected:
    QNetworkReply *createRequest(Operation operation, const QNetworkRequest &request,
                                 QIODevice *body) override;

private:
    QPointer<QNetworkAccessManager> m_host;
};
