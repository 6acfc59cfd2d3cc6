#pragma once

#include <QtCore/QUrl>
#include <QtQuick/QQuickAsyncImageProvider>

/// Loads the pictures of "image://store/<path>" from the store, through the shared URL session.
class StoreImages final : public QQuickAsyncImageProvider
{
public:
    explicit StoreImages(const QUrl &base) : m_base(base) {}

    QQuickImageResponse *requestImageResponse(const QString &path, const QSize &requestedSize) override;

private:
    const QUrl m_base;
};
