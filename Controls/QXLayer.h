#pragma once

#include <QtCore/QPointer>
#include <QtQuick/QQuickItem>

#include <functional>

class QQuickWindow;
class QXSafeArea;

/// Shows items over the whole content of a window, above its popups and dialogs. Main thread only.
///
/// The layer itself has no size: it does not count in the childrenRect of the content, so a window of that
/// size can shrink. Its page covers the content. Pointer events that the layer does not claim go to the
/// content beneath; those that it claims reach no item and no pointer handler beneath. A host can delete
/// every item in its window, the layer too: refer to it by QPointer.
class QXLayer final : public QQuickItem
{
    Q_OBJECT

public:
    using Claims = std::function<bool(const QPointF &)>;

    /// Covers the content of @p window. Layers of a higher level cover those of a lower one.
    ///
    /// A layer stays with its window. Qt Quick loses track of the keyboard focus when items with the focus
    /// move from one window to another, so another window needs another layer.
    QXLayer(QQuickWindow &window, int level);
    ~QXLayer() override;

    /// The parent of what the layer shows. It is as large as the content, but ends above an on-screen
    /// keyboard: a keyboard in the host's scene lies beneath the layer, and must be visible and in reach.
    [[nodiscard]] QQuickItem &page() const { return *m_page; }

    /// Sets which points, in the page's coordinates, the layer claims. By default it claims all points.
    void setClaims(Claims claims) { m_claims = std::move(claims); }

    /// The safe area of the window. It is updated before the page changes its size.
    [[nodiscard]] QXSafeArea *safeArea() const { return m_safeArea; }

    [[nodiscard]] bool contains(const QPointF &point) const override;

Q_SIGNALS:
    /// Emitted when the layer is no longer in its window: the host has deleted or removed it, or the window
    /// is being destroyed.
    void lost();

protected:
    void itemChange(ItemChange change, const ItemChangeData &value) override;

private:
    void fit();

    Claims m_claims;
    QXSafeArea *const m_safeArea;
    QQuickItem *const m_page;
    QPointer<QQuickWindow> m_window;
    QPointer<QQuickItem> m_content;
};
