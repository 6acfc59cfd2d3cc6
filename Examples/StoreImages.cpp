#include "Examples/StoreImages.h"

#include <Quorvix/Platform/NSURLSession.h>

#include <QtGui/QImage>

#include <mutex>

using namespace Quorvix;

namespace {

/// Connects a completion handler, on any thread, with the response, which may already be destroyed.
template<typename Response>
struct Link
{
    std::mutex mutex;
    Response *response = nullptr;
};

class PictureResponse final : public QQuickImageResponse
{
public:
    PictureResponse(const QUrl &url, const QSize &requestedSize)
    {
        m_link->response = this;
        auto finish = [link = m_link, requestedSize](const std::optional<QByteArray> &data, const auto &,
                                                     const std::optional<NSError> &error) {
            QImage image = QImage::fromData(data.value_or(QByteArray()));
            if (!image.isNull() && requestedSize.isValid())
                image = image.scaled(requestedSize, Qt::KeepAspectRatio, Qt::SmoothTransformation);
            const std::scoped_lock lock(link->mutex);
            if (link->response)
                link->response->finish(image, error);
        };
        NSURLSession::shared().dataTaskWithRequest(URLRequest(url), std::move(finish))->resume();
    }

    ~PictureResponse() override
    {
        const std::scoped_lock lock(m_link->mutex);
        m_link->response = nullptr;
    }

    QQuickTextureFactory *textureFactory() const override
    {
        return QQuickTextureFactory::textureFactoryForImage(m_image);
    }

    QString errorString() const override { return m_error; }

private:
    void finish(const QImage &image, const std::optional<NSError> &error)
    {
        m_image = image;
        if (error)
            m_error = error->localizedDescription;
        else if (image.isNull())
            m_error = QStringLiteral("Not a picture");
        QMetaObject::invokeMethod(this, &QQuickImageResponse::finished, Qt::QueuedConnection);
    }

    std::shared_ptr<Link<PictureResponse>> m_link = std::make_shared<Link<PictureResponse>>();
    QImage m_image;
    QString m_error;
};

} // namespace

QQuickImageResponse *StoreImages::requestImageResponse(const QString &path, const QSize &requestedSize)
{
    return new PictureResponse(m_base.resolved(QUrl(u'/' + path)), requestedSize);
}
