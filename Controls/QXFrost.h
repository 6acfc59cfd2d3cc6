#pragma once

#include <QtCore/QPointer>
#include <QtQuick/QQuickItem>

/// A round pane: the largest disc in the item, filled with the picture of a texture provider. Main thread
/// only.
///
/// The picture is rendered small and stretched over the pane, which blurs it like frosted glass.
class QXFrost : public QQuickItem
{
    Q_OBJECT
    QML_ELEMENT
    /// The texture provider whose picture the pane shows. Without a source or a picture nothing is drawn.
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
