#pragma once

#include <QtCore/QPointer>
#include <QtQuick/QQuickItem>

#include <functional>

class QQuickWindow;
class QXSafeArea;

/// An item over the whole content of a window, above its popups and dialogs. Main thread only.
///
/// What it does not claim falls through to the content beneath. When its window goes, it detaches and says
/// so.
class QXLayer final : public QQuickItem
{
    Q_OBJECT

public:
    using Claims = std::function<bool(const QPointF &)>;

    /// Layers of a higher level cover those of a lower one.
    explicit QXLayer(int level);
    ~QXLayer() override;

    /// Lays itself over the content of @p window.
    void attach(QQuickWindow *window);

    /// Which points, in its own coordinates, are the layer's. Without a rule it claims them all.
    void setClaims(Claims claims) { m_claims = std::move(claims); }

    /// That of the window, brought up to date before the layer takes another size.
    [[nodiscard]] QXSafeArea *safeArea() const { return m_safeArea; }

    [[nodiscard]] bool contains(const QPointF &point) const override;

Q_SIGNALS:
    /// The window that it is attached to is hidden, or no more.
    void windowLost();

private:
    void fit();

    Claims m_claims;
    QXSafeArea *const m_safeArea;
    QPointer<QQuickWindow> m_window;
    QPointer<QQuickItem> m_content;
};
