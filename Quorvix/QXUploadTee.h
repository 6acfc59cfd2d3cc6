#pragma once

#include <QtCore/QIODevice>
#include <QtCore/QPointer>

#include <optional>

/// Hands the bytes of an upload on to Qt and keeps a copy of them, unless they alone exceed the budget of the
/// recorder. It behaves like the host's device: random access or sequential, of the same size. In the thread
/// of that device only.
class QXUploadTee final : public QIODevice
{
    Q_OBJECT

public:
    /// Reads from @p source, which must be open, from its current position on.
    explicit QXUploadTee(QIODevice *source);

    /// What was read so far: the whole body when the upload has ended. Absent if it was not kept. Nothing is
    /// kept after that.
    [[nodiscard]] std::optional<QByteArray> takeCopy();
    /// How many bytes were read so far of a body that was not kept; absent if it was.
    [[nodiscard]] std::optional<qsizetype> discardedSize() const;

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
    /// How many bytes of the body were read, each counted once.
    qsizetype m_seen = 0;
    bool m_isKeeping = true;
    bool m_isDiscarded = false;
    /// Where the copy begins in a device with random access.
    qint64 m_start = 0;
    /// Where the source is: redirects and authentication read the same bytes again.
    qint64 m_position = 0;
};
