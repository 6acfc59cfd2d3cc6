#include "Platform/NSByteCountFormatter.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QLocale>

#include <algorithm>
#include <cmath>

namespace Quorvix {

namespace {

QString number(double value)
{
    const bool isWhole = value == std::floor(value);
    return QLocale().toString(value, 'f', isWhole ? 0 : 1);
}

} // namespace

QString NSByteCountFormatter::string(qint64 byteCount)
{
    const double kilobytes = byteCount > 0 ? std::max(1.0, std::round(double(byteCount) / 1e3)) : 0;
    if (kilobytes < 1000)
        return QCoreApplication::translate("Quorvix", "%1 KB").arg(number(kilobytes));
    return QCoreApplication::translate("Quorvix", "%1 MB")
        .arg(number(std::round(double(byteCount) / 1e5) / 10));
}

} // namespace Quorvix
