#pragma once

#include <QtQuick/QQuickImageProvider>

/// Draws the inspector's symbols for QML: `image://symbol/<name>?color=<colour>`, in black without a colour.
///
/// A symbol is rendered at exactly the requested size, in pixels, so it is sharp at any scale. QML caches the
/// images. Any thread.
class QXSymbolProvider final : public QQuickImageProvider
{
public:
    QXSymbolProvider();

    /// An empty image when there is no symbol of this name.
    [[nodiscard]] QImage requestImage(const QString &id, QSize *size, const QSize &requestedSize) override;
};
