#pragma once

#include <QtCore/QObject>
#include <QtCore/QPointF>
#include <QtCore/QPointer>

#include <vector>

class QPointerEvent;
class QQuickItem;
class QQuickWindow;

/// Keeps the pointers that go down on a layer from the pointer handlers of the items beneath. Main thread
/// only.
///
/// Qt Quick gives a press that an item has accepted to the handlers of all items beneath, too. A DragHandler
/// there takes the pointer over when it moves, and our list does not scroll. So from the press until the
/// release, the items beneath that have handlers contain no point.
class QXPointerFence final : public QObject
{
    Q_OBJECT

public:
    /// @p layer, a QXLayer, which is in @p window, owns the fence.
    QXPointerFence(QQuickWindow &window, QQuickItem &layer);
    ~QXPointerFence() override;

    bool eventFilter(QObject *watched, QEvent *event) override;

    /// Makes this object the mask of items that contain nothing.
    Q_INVOKABLE bool contains(const QPointF &) const { return false; }

private:
    struct Masked
    {
        QPointer<QQuickItem> item;
        /// The mask that it had before.
        QPointer<QObject> mask;
    };

    [[nodiscard]] bool isOnLayer(const QPointerEvent &event) const;
    void press(const QPointerEvent &event);
    void raise();
    void lower();
    void lowerLater();
    void mask(QQuickItem &item);
    void maskTree(QQuickItem &item);

    QQuickItem &m_layer;
    std::vector<Masked> m_masked;
    bool m_isReleased = false;
};
