#include "Controls/QXFrost.h"

#include <QtQuick/QSGGeometryNode>
#include <QtQuick/QSGTextureMaterial>
#include <QtQuick/QSGTextureProvider>

#include <algorithm>
#include <cmath>
#include <memory>
#include <numbers>
#include <utility>

namespace {

/// The disc is drawn as a polygon. At the size of a button so many corners look round.
constexpr int cornerCount = 64;

/// Draws the disc. Render thread only.
class DiscNode final : public QObject, public QSGGeometryNode
{
public:
    explicit DiscNode(QSGTextureProvider &provider)
        : m_geometry(QSGGeometry::defaultAttributes_TexturedPoint2D(), cornerCount), m_provider(&provider)
    {
        m_geometry.setDrawingMode(QSGGeometry::DrawTriangleStrip);
        m_material.setFiltering(QSGTexture::Linear);
        setGeometry(&m_geometry);
        setMaterial(&m_material);
        setFlag(UsePreprocess);
        adoptTexture();
        connect(&provider, &QSGTextureProvider::textureChanged, this, &DiscNode::adoptTexture);
        connect(&provider, &QObject::destroyed, this, &DiscNode::adoptTexture);
    }

    [[nodiscard]] const QSGTextureProvider *provider() const { return m_provider; }

    void setRect(const QRectF &rect);

    [[nodiscard]] bool isSubtreeBlocked() const override { return m_isBlocked; }
    void preprocess() override;

private:
    void adoptTexture();

    QSGGeometry m_geometry;
    QSGTextureMaterial m_material;
    QPointer<QSGTextureProvider> m_provider;
    /// Whether the texture does not exist any more.
    bool m_isBlocked = false;
};

void DiscNode::setRect(const QRectF &rect)
{
    const qreal radius = std::min(rect.width(), rect.height()) / 2;
    QSGGeometry::TexturedPoint2D *const points = m_geometry.vertexDataAsTexturedPoint2D();
    for (int i = 0; i < cornerCount; ++i) {
        // A triangle strip alternates between the two sides: first, last, second, last but one, ...
        const int corner = i % 2 == 0 ? i / 2 : cornerCount - 1 - i / 2;
        const qreal angle = 2 * std::numbers::pi * corner / cornerCount;
        const QPointF point = rect.center() + radius * QPointF(std::cos(angle), std::sin(angle));
        points[i].set(float(point.x()), float(point.y()), float((point.x() - rect.x()) / rect.width()),
                      float((point.y() - rect.y()) / rect.height()));
    }
    markDirty(DirtyGeometry);
}

void DiscNode::preprocess()
{
    // The source is not on screen, so nothing else updates its texture.
    auto *const texture = m_provider ? qobject_cast<QSGDynamicTexture *>(m_provider->texture()) : nullptr;
    if (texture && texture->updateTexture())
        markDirty(DirtyMaterial);
}

void DiscNode::adoptTexture()
{
    QSGTexture *const texture = m_provider ? m_provider->texture() : nullptr;
    if (texture && texture != m_material.texture()) {
        m_material.setTexture(texture);
        markDirty(DirtyMaterial);
    }
    if (std::exchange(m_isBlocked, !texture) != m_isBlocked)
        markDirty(DirtySubtreeBlocked);
}

} // namespace

QXFrost::QXFrost(QQuickItem *parent) : QQuickItem(parent)
{
    setFlag(ItemHasContents);
}

QXFrost::~QXFrost() = default;

void QXFrost::setSource(QQuickItem *source)
{
    if (m_source == source)
        return;
    if (m_source)
        disconnect(m_source, nullptr, this, nullptr);
    m_source = source;
    if (m_source)
        connect(m_source, &QObject::destroyed, this, &QQuickItem::update);
    update();
    Q_EMIT sourceChanged();
}

void QXFrost::geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry)
{
    QQuickItem::geometryChange(newGeometry, oldGeometry);
    update();
}

QSGNode *QXFrost::updatePaintNode(QSGNode *node, UpdatePaintNodeData *)
{
    std::unique_ptr<DiscNode> disc(static_cast<DiscNode *>(node));
    QSGTextureProvider *const provider =
        m_source && m_source->window() == window() && m_source->isTextureProvider()
            ? m_source->textureProvider()
            : nullptr;
    if (!provider || boundingRect().isEmpty())
        return nullptr;
    if (!provider->texture()) {
        const auto once = Qt::ConnectionType(Qt::AutoConnection | Qt::SingleShotConnection);
        connect(provider, &QSGTextureProvider::textureChanged, this, &QQuickItem::update, once);
        return nullptr;
    }
    if (!disc || disc->provider() != provider)
        disc = std::make_unique<DiscNode>(*provider);
    disc->setRect(boundingRect());
    return disc.release();
}
