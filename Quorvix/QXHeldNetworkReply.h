#pragma once

#include "Quorvix/QXNetworkReply.h"

/// A reply that matches a breakpoint rule: the host sees nothing of the response before the user releases it,
/// and then sees it as the user has edited it, as if the server had sent that.
///
/// What Qt asks the host on the way is not held, because there would be no response without an answer:
/// sslErrors(), redirected() with its answer redirectAllowed(), and the signals of the request itself such as
/// uploadProgress().
class QXHeldNetworkReply final : public QXNetworkReply
{
    Q_OBJECT

public:
    QXHeldNetworkReply(QNetworkReply *inner, Source source, QObject *parent);
    ~QXHeldNetworkReply() override;

    void abort() override;
    void close() override;
    [[nodiscard]] qint64 bytesAvailable() const override;
    [[nodiscard]] bool canReadLine() const override;

protected:
    qint64 readData(char *data, qint64 maxSize) override;
    void innerMetaDataChanged() override;
    void innerReadyRead() override;
    void innerDownloadProgress(qint64 received, qint64 total) override;
    void innerErrorOccurred(QNetworkReply::NetworkError error) override;
    void innerAboutToClose() override;
    void innerReadChannelFinished() override;
    void innerFinished() override;
    void innerDeleteLater() override;
    [[nodiscard]] bool holdsResponse() const override { return true; }

private:
    struct Link;
    struct Failure
    {
        NetworkError error;
        QString text;
    };
    enum class Stage {
        Running,
        /// The response is complete and waits for the user.
        Waiting,
        /// The host gets the response.
        Delivering,
        Ended,
    };

    void release(const std::optional<QByteArray> &data, const Quorvix::NSURLResponsePtr &response);
    /// Returns the error that the response means.
    Failure takeEdits(const Quorvix::NSURLResponsePtr &response);
    void emitResponse(const Failure &failure);
    void cancel();
    void finish(qint64 size);

    /// How the main thread reaches this reply.
    std::shared_ptr<Link> m_link;
    bool m_isHeld = true;
    Stage m_stage = Stage::Running;
    /// Whether the inner reply is to be deleted, which waits for the end.
    bool m_isToBeDeleted = false;
};
