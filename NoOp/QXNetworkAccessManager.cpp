#include "Quorvix/QXNetworkAccessManager.h"

QXNetworkAccessManager::QXNetworkAccessManager(QObject *parent) : QNetworkAccessManager(parent) {}

QXNetworkAccessManager::~QXNetworkAccessManager() = default;

QNetworkReply *QXNetworkAccessManager::createRequest(Operation operation, const QNetworkRequest &request,
                                                     QIODevice *body)
{
    return QNetworkAccessManager::createRequest(operation, request, body);
}

// In this object, so that only a program that uses the class contains it.
#include "Quorvix/moc_QXNetworkAccessManager.cpp" // NOLINT(bugprone-suspicious-include)
