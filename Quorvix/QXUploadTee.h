#pragma once

#include <QtCore/QIODevice>
#include <QtCore/QPointer>

#include <utility>

/// Hands the bytes of an upload on to Qt and keeps a copy of them. It behaves like the host's device: random
/// access or sequential, of the same size. In the thread of that device only.
class QXUploadTee final : public QIODevice
{
    Q_OBJECT

public:
    /// Reads from @p source, which must be open, from its current position on.
    explicit QXUploadTee(QIODevice *source);

    /// What was read so far: the whole body when the upload has ended. Nothing is kept after that.
    [[nodiscard]] QByteArray takeCopy() { return std::exchange(m_copy, {}); }

    [[nodiscard]] bool isSequential() const override;
    [[nodiscard]] qint64 size() const override;
    [[nodiscard]] bool atEnd() const override;
    [[nodiscard]] qint64 bytesAvailable() const override;
    bool seek(qint64 position) override;
    bool reset() override;

protected:
    qint64 readData(char *data, qint64 maxSize) override;
    qint64 writeData(const char *data, qint64 maxSize) override;

private:
    void keep(const char *data, qint64 size);

    QPointer<QIODevice> m_source;
    QByteArray m_copy;
    /// Where the copy begins in a device with random access.
    qint64 m_start = 0;
    /// Where the source is: redirects and authentication read the same bytes again.
    qint64 m_position = 0;
};
