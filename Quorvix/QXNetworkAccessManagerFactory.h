#pragma once

#include "Quorvix/QuorvixGlobal.h"

#include <QtQml/QQmlNetworkAccessManagerFactory>

#ifdef QUORVIX_NOOP
#include <QtNetwork/QNetworkAccessManager>
#endif

class QQmlEngine;

/// Makes managers whose requests are captured for a QML engine: those of XMLHttpRequest, Image, FontLoader
/// and everything else that loads from the network.
class QUORVIX_EXPORT QXNetworkAccessManagerFactory final : public QQmlNetworkAccessManagerFactory
{
public:
    /// Gives @p engine a factory, which wraps the one that it has and lives as long as the engine. Called
    /// before the engine loads anything; what it has loaded by then is not captured. In the engine's thread.
    static void install(QQmlEngine &engine);

    /// If @p wrapped is given, its managers do the work. It must outlive this factory.
    explicit QXNetworkAccessManagerFactory(QQmlNetworkAccessManagerFactory *wrapped = nullptr);

    /// Called by the engine in each thread that loads something.
    QNetworkAccessManager *create(QObject *parent) override;

private:
    QQmlNetworkAccessManagerFactory *m_wrapped;
};

#ifdef QUORVIX_NOOP
// Without the inspector these are inline, so that only a host that has QML needs Qt Qml.

inline void QXNetworkAccessManagerFactory::install(QQmlEngine &) {}

inline QXNetworkAccessManagerFactory::QXNetworkAccessManagerFactory(QQmlNetworkAccessManagerFactory *wrapped)
    : m_wrapped(wrapped)
{
}

inline QNetworkAccessManager *QXNetworkAccessManagerFactory::create(QObject *parent)
{
    return m_wrapped ? m_wrapped->create(parent) : new QNetworkAccessManager(parent);
}
#endif
