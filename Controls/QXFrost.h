#pragma once

#include <QtCore/QPointer>
#include <QtQuick/QQuickItem>

/// A round pane: the largest disc in the item, filled with the picture of a texture provider. Main thread
/// only.
///
/// Drawn small and stretched over the pane, the picture is seen as through frosted glass.
class QXFrost : public QQuickItem
{
    Q_OBJECT
    QML_ELEMENT
    /// Whose picture it shows; without one, or as long as that has none, nothing is drawn.
    Q_PROPERTY(QQuickItem *source READ source WRITE setSource NOTIFY sourceChanged)

public:
    explicit QXFrost(QQuickItem *parent = nullptr);
    ~QXFrost() override;

    [[nodiscard]] QQuickItem *source() const { return m_source; }
    void setSource(QQuickItem *source);

Q_SIGNALS:
    void sourceChanged();

protected:
    void geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry) override;
    QSGNode *updatePaintNode(QSGNode *node, UpdatePaintNodeData *data) override;

private:
    QPointer<QQuickItem> m_source;
};
