#include "Quorvix/QXApiValueKind.h"

#include <QtCore/QCoreApplication>

namespace {

const char *nameOf(QXApiValueKind kind)
{
    switch (kind) {
    case QXApiValueKind::object:
        return "Object";
    case QXApiValueKind::array:
        return "Array";
    case QXApiValueKind::string:
        return "String";
    case QXApiValueKind::number:
        return "Number";
    case QXApiValueKind::boolean:
        return "Bool";
    case QXApiValueKind::null:
        break;
    }
    return "Null";
}

} // namespace

QString displayName(QXApiValueKind kind)
{
    return QCoreApplication::translate("Quorvix", nameOf(kind));
}
