#include "Platform/UploadDevice.h"

#include <algorithm>
#include <cstring>

namespace Quorvix {

UploadDevice::UploadDevice(QByteArray body) : m_body(std::move(body))
{
    open(ReadOnly | Unbuffered);
}

qint64 UploadDevice::readData(char *data, qint64 maxSize)
{
    m_isTouched = true;
    const qint64 count = std::min(maxSize, size() - pos());
    if (count > 0)
        std::memcpy(data, m_body.constData() + pos(), std::size_t(count));
    return std::max<qint64>(count, 0);
}

qint64 UploadDevice::writeData(const char * /*data*/, qint64 /*maxSize*/)
{
    return -1;
}

} // namespace Quorvix
