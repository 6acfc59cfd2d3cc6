#pragma once

#include "Quorvix/QuorvixGlobal.h"

#include <QtQml/QQmlNetworkAccessManagerFactory>

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
