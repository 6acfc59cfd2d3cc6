#pragma once

#include "Quorvix/QXExchange.h"
#include "Quorvix/QXMirrorReply.h"
#include "Quorvix/QXReplyBody.h"
#include "Quorvix/QXUploadTee.h"

#include <atomic>
#include <memory>
#include <optional>

/// The reply that a host gets from a captured manager. It behaves like the reply that Qt has made, the inner
/// one: it has the same state, emits the same signals in the same order, and delivers the same bytes. What
/// the host reads is kept for the inspector.
///
/// Bytes are taken from the inner reply as they arrive, and the host and the inspector share them. If the
/// host limits the read buffer, or the body is compressed, then bytes are taken from the inner reply only
/// when the host reads them. A body that alone exceeds the budget of the recorder is kept no longer than the
/// host needs it.
class QXNetworkReply : public QXMirrorReply
{
    Q_OBJECT

public:
    /// What a request consists of, beside the reply.
    struct Source
    {
        /// The method as it is sent.
        QString method;
        /// The body of the request. A body that is read from a device is known only later.
        std::optional<QByteArray> body;
        /// Copies the body from the host's device; null if there is none.
        std::unique_ptr<QXUploadTee> tee;
    };

    /// Takes ownership of @p inner, which may still be a child of its manager.
    QXNetworkReply(QNetworkReply *inner, Source source, QObject *parent);
    ~QXNetworkReply() override;

    /// The reply that wraps @p inner; null if there is none. Any thread.
    [[nodiscard]] static QXNetworkReply *outerOf(const QNetworkReply *inner);
    /// Makes the running exchange with this identifier report what has arrived so far, soon, in its own
    /// thread. Returns whether there is one. Any thread.
    static bool refresh(const QString &id);

    /// The identifier of the exchange, which never changes. Any thread.
    [[nodiscard]] const QString &exchangeId() const { return m_exchange.id(); }

    bool open(OpenMode mode) override;
    void abort() override;
    void close() override;
    void setReadBufferSize(qint64 size) override;

    [[nodiscard]] qint64 size() const override;
    bool seek(qint64 position) override;
    [[nodiscard]] qint64 bytesAvailable() const override;
    [[nodiscard]] bool canReadLine() const override;

    bool eventFilter(QObject *watched, QEvent *event) override;

protected:
    void connectNotify(const QMetaMethod &signal) override;
    qint64 readData(char *data, qint64 maxSize) override;

    // What the inner reply has emitted.
    virtual void innerMetaDataChanged();
    virtual void innerReadyRead();
    virtual void innerDownloadProgress(qint64 received, qint64 total);
    virtual void innerErrorOccurred(QNetworkReply::NetworkError error);
    virtual void innerAboutToClose();
    virtual void innerReadChannelFinished();
    virtual void innerFinished();
    virtual void innerDeleteLater();

    /// Whether the response is kept as a whole until the user releases it.
    [[nodiscard]] virtual bool holdsResponse() const { return false; }
    /// The size in bytes of the largest body that is kept while it arrives; absent if there is no limit.
    [[nodiscard]] std::optional<qsizetype> bodyLimit() const;

    /// Takes all bytes that the inner reply has.
    void drain();
    /// Reports the result to the inspector, once. If @p deliver is given, it is called on the main thread
    /// with the result, which the user may have edited at a breakpoint before.
    void complete(const Quorvix::DataTaskCompletionHandler &deliver = nullptr);
    /// Replaces the bytes that the host reads from now on.
    void setBody(const QByteArray &body);

private:
    void connectInner();
    void connectTls();
    void noteCancelling();
    /// Whether bytes are taken from the inner reply only when the host reads them.
    [[nodiscard]] bool readsThrough() const;
    void loseUnread();
    void reportProgress();
    void innerRedirected(const QUrl &url);
    [[nodiscard]] bool isUndecodable() const;
    [[nodiscard]] bool isCutShort() const;
    [[nodiscard]] std::optional<Quorvix::NSError> transportError() const;

    const QNetworkReply *const m_innerKey;
    Source m_source;
    QXExchange m_exchange;
    QXReplyBody m_body;
    bool m_isComplete = false;
    /// Whether the headers and attributes are those of the last response.
    bool m_hasResponse = false;
    bool m_isTlsConnected = false;
    bool m_isRedirected = false;
    /// The signals that are only passed on because the host has connected to them, one bit for each.
    std::atomic<unsigned> m_wantedSignals = 0;
};
