#pragma once

#include <QtCore/QString>
#include <QtCore/QVariantMap>

#include <memory>

class QQmlEngine;
class QQuickItem;

/// Makes the inspector's screens from their QML files. Main thread only.
namespace QXQmlView {

/// An engine that knows the inspector's module and symbols, apart from any engine of the host.
[[nodiscard]] std::unique_ptr<QQmlEngine> makeEngine();

/// The screen of this name, filling @p parent and owned by it; null when its file cannot be loaded, which the
/// log tells.
[[nodiscard]] QQuickItem *make(QQmlEngine &engine, const QString &name, const QVariantMap &properties,
                               QQuickItem &parent);

} // namespace QXQmlView
