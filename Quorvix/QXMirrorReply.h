#pragma once

#include <QtCore/QPointer>
#include <QtNetwork/QNetworkReply>

/// A reply that says about itself what another one says, the inner one, whenever it is told to look: state,
/// address, headers, attributes, TLS. In the inner reply's thread only.
class QXMirrorReply : public QNetworkReply
{
    Q_OBJECT

public:
    ~QXMirrorReply() override;

    void ignoreSslErrors() override;
    [[nodiscard]] bool isSequential() const override;
    bool waitForReadyRead(int milliseconds) override;

protected:
    explicit QXMirrorReply(QNetworkReply *inner, QObject *parent);

    void sslConfigurationImplementation(QSslConfiguration &configuration) const override;
    void setSslConfigurationImplementation(const QSslConfiguration &configuration) override;
    void ignoreSslErrorsImplementation(const QList<QSslError> &errors) override;

    /// Null after it was deleted by someone else.
    [[nodiscard]] QNetworkReply *inner() const { return m_inner; }
    /// Whether Qt made the inner reply, not the host: then its attributes are known.
    [[nodiscard]] bool isOfQt() const { return m_isOfQt; }
    /// Whether Qt decompresses the body of the response.
    [[nodiscard]] bool isCompressed() const { return m_isCompressed; }
    /// Whether the host ended the exchange: Qt reports a time-out with the same error.
    [[nodiscard]] bool isCancelled() const { return m_isCancelled; }
    void setCancelled() { m_isCancelled = true; }

    /// Copies what the inner reply says about itself: its error and whether it has finished, its address, its
    /// headers and attributes, and whether it is open.
    void mirrorState();
    void mirrorAddress();
    void mirrorResponse();
    void mirrorOpening();

private:
    void mirrorHeaders(const QNetworkReply &from);

    QPointer<QNetworkReply> m_inner;
    const bool m_isOfQt;
    bool m_isCompressed = false;
    bool m_isCancelled = false;
};
