#include "Quorvix/QXNetworkAccessManager.h"

QXNetworkAccessManager::QXNetworkAccessManager(QObject *parent) : QNetworkAccessManager(parent) {}

QXNetworkAccessManager::~QXNetworkAccessManager() = default;

QNetworkReply *QXNetworkAccessManager::createRequest(Operation operation, const QNetworkRequest &request,
                                                     QIODevice *body)
{
    return QNetworkAccessManager::createRequest(operation, request, body);
}
