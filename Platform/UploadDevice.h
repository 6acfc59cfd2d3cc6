#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QIODevice>

namespace Quorvix {

/// The body of a request, which knows whether Qt has begun to send it. In the loading thread only.
class UploadDevice final : public QIODevice
{
    Q_OBJECT

public:
    explicit UploadDevice(QByteArray body);

    /// Whether a byte has been read. Qt writes a request's headers just before it reads the body.
    [[nodiscard]] bool isTouched() const noexcept { return m_isTouched; }
    [[nodiscard]] qint64 size() const override { return m_body.size(); }

protected:
    qint64 readData(char *data, qint64 maxSize) override;
    qint64 writeData(const char *data, qint64 maxSize) override;

private:
    const QByteArray m_body;
    bool m_isTouched = false;
};

} // namespace Quorvix
