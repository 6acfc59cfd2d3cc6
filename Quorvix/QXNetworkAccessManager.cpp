#include "Quorvix/QXNetworkAccessManager.h"

#include "Quorvix/QXNetworkCapture.h"

QXNetworkAccessManager::QXNetworkAccessManager(QObject *parent) : QNetworkAccessManager(parent)
{
    QXNetworkCapture::attach(this);
}

QXNetworkAccessManager::~QXNetworkAccessManager() = default;

QNetworkReply *QXNetworkAccessManager::createRequest(Operation operation, const QNetworkRequest &request,
                                                     QIODevice *body)
{
    return QXNetworkCapture::capture(this, operation, request, body, [&](QIODevice *upload) {
        return QNetworkAccessManager::createRequest(operation, request, upload);
    });
}
