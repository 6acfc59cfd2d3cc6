#include "Controls/QXSymbolProvider.h"

#include <QtCore/QUrl>
#include <QtCore/QUrlQuery>
#include <QtGui/QPainter>
#include <QtSvg/QSvgRenderer>

#include <algorithm>

namespace {

/// The largest size, in pixels. No symbol is shown larger, and a wrong size must not use the host's memory.
constexpr int largestSize = 1024;

QSize pixelSize(const QSize &requested, const QSize &natural)
{
    const QSize size(requested.width() > 0 ? requested.width() : natural.width(),
                     requested.height() > 0 ? requested.height() : natural.height());
    return {std::clamp(size.width(), 1, largestSize), std::clamp(size.height(), 1, largestSize)};
}

} // namespace

/// In the global namespace, as the macro requires.
static void linkSymbols()
{
    Q_INIT_RESOURCE(quorvix_symbols);
}

QXSymbolProvider::QXSymbolProvider() : QQuickImageProvider(QQuickImageProvider::Image) {}

QImage QXSymbolProvider::image(const QString &name, const QColor &color, const QSize &requestedSize)
{
    linkSymbols();
    QSvgRenderer renderer(QStringLiteral(":/qt/qml/Quorvix/Controls/symbols/%1.svg").arg(name));
    if (!renderer.isValid())
        return {};
    QImage image(pixelSize(requestedSize, renderer.defaultSize()), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    renderer.setAspectRatioMode(Qt::KeepAspectRatio);
    renderer.render(&painter, QRectF(image.rect()));
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), color);
    return image;
}

QImage QXSymbolProvider::requestImage(const QString &id, QSize *size, const QSize &requestedSize)
{
    const QString name = id.section(u'?', 0, 0);
    const QString colorText =
        QUrlQuery(id.section(u'?', 1)).queryItemValue(QStringLiteral("color"), QUrl::FullyDecoded);
    const QColor color = QColor::isValidColorName(colorText) ? QColor(colorText) : QColor(Qt::black);
    QImage symbol = image(name, color, requestedSize);
    if (size && !symbol.isNull())
        *size = symbol.size();
    return symbol;
}
