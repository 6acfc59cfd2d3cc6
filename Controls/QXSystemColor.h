#pragma once

#include <QtCore/QObject>
#include <QtQml/qqmlregistration.h>

/// The named colours of the system; the theme defines a light and a dark shade of each.
namespace QXSystemColor {
Q_NAMESPACE
QML_ELEMENT

enum Value { Clear, Gray, Green, Yellow, Orange, Red };
Q_ENUM_NS(Value)

} // namespace QXSystemColor
