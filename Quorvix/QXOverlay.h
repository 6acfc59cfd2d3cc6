#pragma once

#include "Quorvix/QXOverlayPoint.h"

#include "Platform/NSNotificationCenter.h"

#include <QtCore/QObject>
#include <QtCore/QPointF>
#include <QtCore/QPointer>
#include <QtCore/QRectF>
#include <QtCore/QString>
#include <QtQml/qqmlregistration.h>

#include <memory>
#include <optional>

class QQmlEngine;
class QQuickItem;
class QQuickWindow;
class QXBreakpointWindow;
class QXLayer;
class QXSafeArea;

/// The floating button over the host's window, with the request list that it opens. Main thread only.
///
/// It lays itself over the active window of the host, or over a window of its own as long as there is none,
/// and claims no more of it than the button while the list is closed. It also puts up the breakpoint window.
class QXOverlay : public QObject
{
    Q_OBJECT
    Q_MOC_INCLUDE("Controls/QXSafeArea.h")
    QML_ELEMENT
    QML_UNCREATABLE("made by the client")
    /// The centre of the button in the layer's coordinates, in points.
    Q_PROPERTY(QPointF buttonCenter READ buttonCenter NOTIFY buttonMoved)
    /// The count on the badge; empty while it is hidden.
    Q_PROPERTY(QString badgeText READ badgeText NOTIFY badgeChanged)
    /// Whether the request list is to be on screen. It is still there while this is false and
    /// isShowingRequestList true: that is its way out.
    Q_PROPERTY(bool presentsRequestList READ presentsRequestList NOTIFY presentationChanged)
    Q_PROPERTY(bool isShowingRequestList READ isShowingRequestList NOTIFY presentationChanged)
    Q_PROPERTY(QXSafeArea *safeArea READ safeArea CONSTANT)

public:
    static constexpr QLatin1StringView dragPositionKey{"QXOverlayButtonPosition"};

    QXOverlay();
    ~QXOverlay() override;

    void setHidden(bool hidden);
    [[nodiscard]] bool isHidden() const;
    /// Lets go of the host, for good, once hidden: nothing that happens from now on is shown.
    void retire();

    [[nodiscard]] QPointF buttonCenter() const;
    [[nodiscard]] QRectF buttonFrame() const;
    [[nodiscard]] const QString &badgeText() const noexcept { return m_badgeText; }
    [[nodiscard]] bool presentsRequestList() const noexcept { return m_presentsRequestList; }
    [[nodiscard]] bool isShowingRequestList() const noexcept { return m_isShowingRequestList; }
    /// That of the window that the overlay lies over.
    [[nodiscard]] QXSafeArea *safeArea() const;

    /// Whether a touch at @p point, in the layer's coordinates, is for the overlay and not for the host.
    [[nodiscard]] bool hitTest(const QPointF &point) const;

    /// The window that the overlay lies over now.
    [[nodiscard]] QQuickWindow *window() const;
    [[nodiscard]] QXBreakpointWindow *breakpointWindow() const { return m_breakpointWindow.get(); }

    /// Opens the request list, or asks it to leave.
    Q_INVOKABLE void handleFloatingButtonTap();
    /// Moves the button by @p translation, within the safe area.
    Q_INVOKABLE void handleButtonPan(const QPointF &translation);
    /// Remembers where the button was released.
    Q_INVOKABLE void handleButtonPanEnd();
    /// Asks the request list to leave.
    Q_INVOKABLE void dismissRequestList();
    /// The request list has left the screen.
    Q_INVOKABLE void requestListDismissed();

Q_SIGNALS:
    void buttonMoved();
    void badgeChanged();
    void presentationChanged();

private:
    void handleRequestsChanged();
    void handleBreakpointChanged();
    void settle();
    void updateBadge();
    void updateMask();
    [[nodiscard]] QRectF safeRect() const;
    [[nodiscard]] QXOverlayPoint constraint() const;

    std::unique_ptr<QQmlEngine> m_engine;
    std::unique_ptr<QQuickWindow> m_fallbackWindow;
    std::unique_ptr<QXLayer> m_layer;
    QQuickItem *m_view = nullptr;
    std::unique_ptr<QXBreakpointWindow> m_breakpointWindow;
    QPointer<QQuickItem> m_previousFocus;
    /// Where the button was put; absent while it stands where it does by default.
    std::optional<QXOverlayPoint> m_constraint;
    QString m_badgeText;
    bool m_presentsRequestList = false;
    bool m_isShowingRequestList = false;
    bool m_badgeScheduled = false;
    Quorvix::NSNotificationObserver m_requestsObserver;
    Quorvix::NSNotificationObserver m_breakpointObserver;
};
