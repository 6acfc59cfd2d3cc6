#include "Quorvix/QXUploadTee.h"

#include "Quorvix/QXRequestRecorder.h"

#include <utility>

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

std::optional<QByteArray> QXUploadTee::takeCopy()
{
    m_isKeeping = false;
    return m_isDiscarded ? std::nullopt : std::optional(std::exchange(m_copy, {}));
}

std::optional<qsizetype> QXUploadTee::discardedSize() const
{
    return m_isDiscarded ? std::optional(m_seen) : std::nullopt;
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
    const qint64 known = m_start + m_seen - m_position;
    if (known >= 0 && known < size) {
        m_seen += size - known;
        if (m_isKeeping)
            m_copy.append(data + known, size - known);
        const auto budget = QXRequestRecorder::shared().bodyBudget();
        if (m_isKeeping && budget && m_seen > *budget) {
            m_isKeeping = false;
            m_isDiscarded = true;
            m_copy = {};
        }
    }
    m_position += size;
}
