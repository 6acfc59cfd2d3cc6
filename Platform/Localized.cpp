#include "Platform/Localized.h"

#include <QtCore/QCoreApplication>

namespace Quorvix {

QString localized(const char *text)
{
    return QCoreApplication::translate("Quorvix", text);
}

} // namespace Quorvix
