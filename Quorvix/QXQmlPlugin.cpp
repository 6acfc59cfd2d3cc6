#include "Quorvix/QXQmlPlugin.h"

#include "Quorvix/QXNetworkAccessManagerFactory.h"

#include <QtQml/QQmlEngineExtensionPlugin>
#include <QtQml/qqml.h>
#include <QtQml/qqmlmoduleregistration.h>

namespace {

/// A module without types must say that it exists.
const QQmlModuleRegistration captureModule("Quorvix.Capture",
                                           [] { qmlRegisterModule("Quorvix.Capture", 1, 0); });

} // namespace

/// Captures what an engine loads that imports the module Quorvix, and with it Quorvix.Capture. The engine
/// calls it before it makes the first object of the file with the import: images of that file load in a
/// thread that asks for its network access manager only once.
class QXQmlCapturePlugin final : public QQmlEngineExtensionPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QQmlEngineExtensionInterface_iid)

public:
    void initializeEngine(QQmlEngine *engine, const char *) override
    {
        QXNetworkAccessManagerFactory::install(*engine);
    }
};

/// Does nothing. Qt identifies the only plugin of a module by the URI, and then initializes a static plugin
/// for the first engine of the process only. It initializes each of several plugins for every engine. A
/// module with types cannot have several plugins, because each of them would register all types.
class QXQmlSecondPlugin final : public QQmlEngineExtensionPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QQmlEngineExtensionInterface_iid)
};

void qml_register_types_Quorvix();

// The library imports its own plugins, because an application that is written in QML has no code to do so.
Q_IMPORT_PLUGIN(QXQmlCapturePlugin)
Q_IMPORT_PLUGIN(QXQmlSecondPlugin)

void quorvix_link_qml_module()
{
    Q_INIT_RESOURCE(quorvix_qmldir);
    [[maybe_unused]] volatile const auto registration = &qml_register_types_Quorvix;
}

#include "QXQmlPlugin.moc"
