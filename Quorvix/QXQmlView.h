#pragma once

#include <QtCore/QString>
#include <QtCore/QVariantMap>

#include <memory>

class QQmlEngine;
class QQuickItem;

/// Makes the inspector's screens from their QML files. Main thread only.
namespace QXQmlView {

/// Makes an engine that knows the modules and symbols of the inspector. It is independent of the host's
/// engines.
[[nodiscard]] std::unique_ptr<QQmlEngine> makeEngine();

/// Makes the screen of this name as a child of @p parent that fills it. Returns null if its file cannot be
/// loaded; the reason is written to the log.
[[nodiscard]] QQuickItem *make(QQmlEngine &engine, const QString &name, const QVariantMap &properties,
                               QQuickItem &parent);

} // namespace QXQmlView
