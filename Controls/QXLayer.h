#pragma once

#include <QtCore/QPointer>
#include <QtQuick/QQuickItem>

#include <functional>

class QQuickWindow;
class QXSafeArea;

/// An item over the whole content of a window, above its popups and dialogs. Main thread only.
///
/// Pointer events that the layer does not claim go to the content beneath. When its window is hidden or
/// destroyed, the layer detaches and emits windowLost().
class QXLayer final : public QQuickItem
{
    Q_OBJECT

public:
    using Claims = std::function<bool(const QPointF &)>;

    /// Layers of a higher level cover those of a lower one.
    explicit QXLayer(int level);
    ~QXLayer() override;

    /// Covers the content of @p window.
    void attach(QQuickWindow *window);

    /// Sets which points, in the layer's coordinates, the layer claims. By default it claims all points.
    void setClaims(Claims claims) { m_claims = std::move(claims); }

    /// The safe area of the window. It is updated before the layer changes its size.
    [[nodiscard]] QXSafeArea *safeArea() const { return m_safeArea; }

    [[nodiscard]] bool contains(const QPointF &point) const override;

Q_SIGNALS:
    /// Emitted when the window of the layer is hidden or destroyed.
    void windowLost();

private:
    void fit();

    Claims m_claims;
    QXSafeArea *const m_safeArea;
    QPointer<QQuickWindow> m_window;
    QPointer<QQuickItem> m_content;
};
