#include "Quorvix/QXNetworkAccessManagerFactory.h"

#include <QtQml/QQmlEngineExtensionPlugin>

/// The plugin of the installed module Quorvix. An engine loads it in a program that does not link the
/// inspector, for example in Qt's tool `qml`. In other programs the engine finds the module in the library.
class QXQmlLoadedPlugin final : public QQmlEngineExtensionPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QQmlEngineExtensionInterface_iid)

public:
    void initializeEngine(QQmlEngine *engine, const char *) override
    {
        QXNetworkAccessManagerFactory::install(*engine);
    }
};

#include "QXQmlLoadedPlugin.moc"
