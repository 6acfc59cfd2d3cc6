#include "Quorvix/QXNetworkAccessManagerFactory.h"

#include "Quorvix/QXDelegatingManager.h"
#include "Quorvix/QXNetworkAccessManager.h"
#include "Quorvix/QXNetworkCapture.h"

#include <QtQml/QQmlEngine>

QXNetworkAccessManagerFactory::QXNetworkAccessManagerFactory(QQmlNetworkAccessManagerFactory *wrapped)
    : m_wrapped(wrapped)
{
}

void QXNetworkAccessManagerFactory::install(QQmlEngine &engine)
{
    auto *const current = engine.networkAccessManagerFactory();
    if (dynamic_cast<QXNetworkAccessManagerFactory *>(current))
        return;
    auto *const factory = new QXNetworkAccessManagerFactory(current);
    engine.setNetworkAccessManagerFactory(factory);
    // Threads of the engine use the factory until the engine's destructor has ended them.
    QObject::connect(&engine, &QObject::destroyed, [factory] { delete factory; });
}

QNetworkAccessManager *QXNetworkAccessManagerFactory::create(QObject *parent)
{
    if (!m_wrapped)
        return new QXNetworkAccessManager(parent);
    QNetworkAccessManager *const host = m_wrapped->create(parent);
    if (!host || QXNetworkCapture::isAttached(host))
        return host;
    return new QXDelegatingManager(host, parent);
}
