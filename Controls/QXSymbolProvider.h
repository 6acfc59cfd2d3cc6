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

    /// Draws a symbol in one colour. Returns an empty image when there is no symbol of this name. A size that
    /// is empty, in pixels, is that of the drawing.
    [[nodiscard]] static QImage image(const QString &name, const QColor &color, const QSize &requestedSize);

    /// An empty image when there is no symbol of this name.
    [[nodiscard]] QImage requestImage(const QString &id, QSize *size, const QSize &requestedSize) override;
};
