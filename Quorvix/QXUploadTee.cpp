#include "Quorvix/QXUploadTee.h"

QXUploadTee::QXUploadTee(QIODevice *source) : m_source(source)
{
    connect(source, &QIODevice::readyRead, this, &QIODevice::readyRead);
    connect(source, &QIODevice::readChannelFinished, this, &QIODevice::readChannelFinished);
    connect(source, &QIODevice::aboutToClose, this, &QIODevice::close);
    open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    if (!source->isSequential()) {
        m_start = m_position = source->pos();
        QIODevice::seek(m_start);
    }
}

bool QXUploadTee::isSequential() const
{
    return !m_source || m_source->isSequential();
}

qint64 QXUploadTee::size() const
{
    return m_source ? m_source->size() : 0;
}

bool QXUploadTee::atEnd() const
{
    return !m_source || m_source->atEnd();
}

qint64 QXUploadTee::bytesAvailable() const
{
    return m_source ? m_source->bytesAvailable() : 0;
}

bool QXUploadTee::seek(qint64 position)
{
    if (!m_source || !m_source->seek(position))
        return false;
    m_position = position;
    return QIODevice::seek(position);
}

bool QXUploadTee::reset()
{
    if (!m_source || !m_source->reset())
        return false;
    m_position = 0;
    return isSequential() || QIODevice::seek(0);
}

qint64 QXUploadTee::readData(char *data, qint64 maxSize)
{
    const qint64 size = m_source ? m_source->read(data, maxSize) : -1;
    if (size > 0)
        keep(data, size);
    return size;
}

qint64 QXUploadTee::writeData(const char *, qint64)
{
    return -1;
}

void QXUploadTee::keep(const char *data, qint64 size)
{
    const qint64 kept = m_start + m_copy.size() - m_position;
    if (kept >= 0 && kept < size)
        m_copy.append(data + kept, size - kept);
    m_position += size;
}
