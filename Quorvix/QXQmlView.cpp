#include "Quorvix/QXQmlView.h"

#include "Quorvix/QXLog.h"

#include "Text/QXTextModule.h"

#include "Controls/QXControlsModule.h"
#include "Controls/QXQmlModule.h"
#include "Controls/QXSymbolProvider.h"

#include "Platform/FreedMemory.h"
#include "Platform/NSNotificationCenter.h"

#include <QtQml/QQmlComponent>
#include <QtQml/QQmlEngine>
#include <QtQuick/QQuickItem>

QX_QML_MODULE(linkQXScreensModule, Quorvix_Screens, QuorvixScreens)

namespace {

/// The smallest size of a screen. In a smaller window, which cannot be used anyway, a part of it is visible:
/// parts side by side would get negative sizes.
constexpr QSizeF smallestSize(240, 100);

/// Makes an engine release the values of closed screens, which would else wait for its next collection: it
/// knows nothing of the sizes of our values.
class Collector final : public QObject
{
public:
    explicit Collector(QQmlEngine &engine)
        : QObject(&engine), m_observer(Quorvix::NSNotificationCenter::defaultCenter().addObserver(
                                Quorvix::FreedMemory::willReturn, [&engine] { engine.collectGarbage(); }))
    {
    }

private:
    const Quorvix::NSNotificationObserver m_observer;
};

void fill(QQuickItem &item, QQuickItem &parent)
{
    item.setParentItem(&parent);
    const auto fit = [&item, &parent] {
        item.setSize(parent.size().expandedTo(smallestSize));
    };
    QObject::connect(&parent, &QQuickItem::widthChanged, &item, fit);
    QObject::connect(&parent, &QQuickItem::heightChanged, &item, fit);
    fit();
}

} // namespace

std::unique_ptr<QQmlEngine> QXQmlView::makeEngine()
{
    linkQXControlsModule();
    linkQXTextModule();
    linkQXScreensModule();
    auto engine = std::make_unique<QQmlEngine>();
    engine->addImportPath(QStringLiteral("qrc:/qt/qml"));
    engine->addImageProvider(QStringLiteral("symbol"), new QXSymbolProvider);
    // Errors in a screen go to the inspector's log if it is enabled, and never to the standard error output.
    engine->setOutputWarningsToStandardError(false);
    new Collector(*engine);
    QObject::connect(engine.get(), &QQmlEngine::warnings, [](const QList<QQmlError> &warnings) {
        for (const QQmlError &warning : warnings)
            QXLog::log(QXLogLevel::error, QStringLiteral("[Screen] ") + warning.toString());
    });
    return engine;
}

QQuickItem *QXQmlView::make(QQmlEngine &engine, const QString &name, const QVariantMap &properties,
                            QQuickItem &parent)
{
    QQmlComponent component(&engine, QUrl(QStringLiteral("qrc:/qt/qml/Quorvix/Screens/%1.qml").arg(name)));
    std::unique_ptr<QObject> object(component.createWithInitialProperties(properties));
    auto *const item = qobject_cast<QQuickItem *>(object.get());
    if (!item) {
        QXLog::log(QXLogLevel::error, QStringLiteral("[Screen] ") + component.errorString());
        return nullptr;
    }
    object.release()->setParent(&parent);
    fill(*item, parent);
    return item;
}
