#pragma once

#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtCore/QPointF>
#include <QtCore/QSet>

class QKeyEvent;
class QPointerEvent;
class QQuickItem;
class QQuickWindow;

/// Gives the keys of a fenced screen to its items alone, and hides the on-screen keyboard after a tap beside
/// the item with keyboard focus. Main thread only.
///
/// A window has one filter, which its fences share; see QXFocusFence. While the item with keyboard focus is
/// behind a fence, the filter delivers the keys that isForScreens() names. They go from that item up to the
/// fence's parent, and no further: no shortcut, item, or key handler of the host's window gets them. A key
/// that was pressed behind a fence stays away from the host until it is released, even if the screen closes
/// in the meantime.
class QXKeyFilter final : public QObject
{
    Q_OBJECT

public:
    /// The filter of @p window, which owns it. It is made on the first call.
    [[nodiscard]] static QXKeyFilter &of(QQuickWindow &window);

    /// Whether a key is for a fenced screen: every key that a screen, a field or a menu uses, or that a
    /// person who sees only that screen could mean for it.
    ///
    /// The host keeps keys whose effect is visible above the screen: quitting, full screen, function keys
    /// from F11 on, and the keys of the machine such as volume and power. It also keeps a letter, a digit or
    /// a function key with two modifiers, such as Ctrl+Shift+I, unless that is a standard key: hosts use such
    /// keys to show and hide their tools.
    [[nodiscard]] static bool isForScreens(const QKeyEvent &event);

    void add(const QQuickItem &fence);
    /// Removes a fence. The filter deletes itself after the last fence and the last held key.
    void remove(const QQuickItem &fence);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    explicit QXKeyFilter(QQuickWindow &window);

    /// The parent of the innermost fence in effect around an item, or null.
    [[nodiscard]] QQuickItem *fencedAround(QQuickItem *item) const;
    [[nodiscard]] bool overrideShortcut(QKeyEvent &event);
    [[nodiscard]] bool press(QKeyEvent &event);
    [[nodiscard]] bool release(QKeyEvent &event);
    void handlePointer(const QPointerEvent &event);
    void hideKeyboardBeside(const QPointF &point);
    void deleteIfIdle();

    QQuickWindow &m_window;
    QList<const QQuickItem *> m_fences;
    /// The keys that were pressed behind a fence and are still down.
    QSet<quint64> m_held;
    /// Where a finger or a button went down; in the window's coordinates.
    QPointF m_pressed;
};
