#pragma once

#include "Quorvix/QXHostWindow.h"
#include "Quorvix/QXOverlayPoint.h"

#include "Controls/QXFocusMemory.h"

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
class QXBreakpointWindow;
class QXFloatingButton;
class QXLayer;
class QXSafeArea;

/// The floating button over the host's window, with the request list that it opens. Main thread only.
///
/// The overlay covers a window of the host, or one of our own (see QXHostWindow). While the list is closed,
/// it takes input only at the button. It also shows the breakpoint window. When the host deletes the
/// overlay's items, the overlay makes them again. Its screens may be in a framed window instead. The button
/// needs no QML engine; the first screen makes one.
class QXOverlay : public QObject
{
    Q_OBJECT
    Q_MOC_INCLUDE("Controls/QXSafeArea.h")
    QML_ELEMENT
    QML_UNCREATABLE("made by the client")
    /// Whether the host's window is visible below what is transparent here. Constant for a view: another
    /// window has its own view.
    Q_PROPERTY(bool isTranslucent READ isTranslucent CONSTANT)
    /// Whether the request list is open or opening. While this is false and isShowingRequestList is true,
    /// the list is closing.
    Q_PROPERTY(bool presentsRequestList READ presentsRequestList NOTIFY presentationChanged)
    Q_PROPERTY(bool isShowingRequestList READ isShowingRequestList NOTIFY presentationChanged)
    /// Whether the screens are in a framed window of their own, and only the button is over the host's
    /// window.
    Q_PROPERTY(bool isFramed READ isFramed NOTIFY presentationChanged)
    /// Whether the breakpoint window covers what is in the window of the screens.
    Q_PROPERTY(bool isCovered READ isCovered NOTIFY coveredChanged)

public:
    static constexpr QLatin1StringView dragPositionKey{"QXOverlayButtonPosition"};

    explicit QXOverlay(QXPresentation presentation = QXPresentation::panel);
    ~QXOverlay() override;

    void setHidden(bool hidden);
    [[nodiscard]] bool isHidden() const noexcept { return m_isHidden; }
    /// Sets where screens open from now on. Those that are open stay.
    void setPresentation(QXPresentation presentation) { m_host.setPresentation(presentation); }
    /// Disconnects the overlay from the host before it is deleted: it no longer reacts to changes. The
    /// caller must hide the overlay first.
    void shutDown();

    /// The centre of the button in the layer's coordinates, in points.
    [[nodiscard]] QPointF buttonCenter() const;
    [[nodiscard]] QRectF buttonFrame() const;
    /// The text of the badge; empty while the badge is hidden.
    [[nodiscard]] const QString &badgeText() const noexcept { return m_badgeText; }
    [[nodiscard]] bool isTranslucent() const noexcept { return m_isTranslucent; }
    [[nodiscard]] bool presentsRequestList() const noexcept { return m_presentsRequestList; }
    [[nodiscard]] bool isShowingRequestList() const noexcept { return m_isShowingRequestList; }
    [[nodiscard]] bool isFramed() const { return m_host.isFramed(); }
    [[nodiscard]] bool isCovered() const noexcept { return m_breakpointWindow != nullptr; }
    /// The safe area of the button's window. Null while there is no layer.
    [[nodiscard]] QXSafeArea *safeArea() const;

    /// Whether a touch at @p point, in the layer's coordinates, is for the overlay and not for the host.
    [[nodiscard]] bool hitTest(const QPointF &point) const;

    /// The window that the overlay currently covers. Null while there is none.
    [[nodiscard]] QQuickWindow *window() const { return m_host.window(); }
    /// The window of the screens: the same one, or a framed one. Null while there is none.
    [[nodiscard]] QQuickWindow *screenWindow() const { return m_host.screenWindow(); }
    [[nodiscard]] QXBreakpointWindow *breakpointWindow() const { return m_breakpointWindow.get(); }

    /// Opens or closes the request list.
    void handleFloatingButtonTap();
    /// Moves the button by @p translation, within the safe area.
    void handleButtonPan(const QPointF &translation);
    /// Saves the position of the button in the settings.
    void handleButtonPanEnd();
    /// Starts to close the request list.
    Q_INVOKABLE void dismissRequestList();
    /// Called by the view when the user has caught the list on its way: from now on it opens or closes.
    Q_INVOKABLE void turnRequestList(bool presents);
    /// Called by the view when the animation of the request list ends. If the list was closing, it is now
    /// closed.
    Q_INVOKABLE void requestListDismissed();

Q_SIGNALS:
    void buttonMoved();
    void presentationChanged();
    void coveredChanged();

private:
    void handleRequestsChanged();
    void handleBreakpointChanged();
    void showBreakpointWindow();
    void coverWindow();
    void coverFrame();
    void updateWindows();
    [[nodiscard]] QXLayer *makeLayer(QQuickWindow &window);
    QQuickItem *makeView(QXLayer &layer, bool isFramed);
    void makeButton();
    void makeButtonParts();
    void makeButtonView();
    void prepare();
    [[nodiscard]] QQmlEngine &engine();
    void dropLayer(QPointer<QXLayer> &layer);
    void updateBadge();
    void updateMask();
    void placeButton();
    void updateFloat();
    void updateButton();
    [[nodiscard]] QRectF contentRect() const;
    [[nodiscard]] QRectF safeRect() const;
    [[nodiscard]] QXOverlayPoint constraint() const;

    /// Made for the first screen.
    std::unique_ptr<QQmlEngine> m_engine;
    QXHostWindow m_host;
    /// The layer in the current window, a child of this object. Null when the host has deleted it.
    QPointer<QXLayer> m_layer;
    /// In the layer.
    QPointer<QXFloatingButton> m_button;
    /// The view in the layer; null until the list opens there for the first time.
    QPointer<QQuickItem> m_view;
    /// The layer in the framed window, a child of this object, while a screen is open there.
    QPointer<QXLayer> m_frameLayer;
    std::unique_ptr<QXBreakpointWindow> m_breakpointWindow;
    QXFocusMemory m_previousFocus;
    /// The position that the user has chosen for the button; absent while it is at the default position.
    std::optional<QXOverlayPoint> m_constraint;
    QString m_badgeText;
    bool m_isTranslucent = true;
    bool m_presentsRequestList = false;
    bool m_isShowingRequestList = false;
    bool m_isHidden = false;
    /// Whether a response is held for which there is no window that the user can reach.
    bool m_breakpointAwaitsWindow = false;
    bool m_badgeScheduled = false;
    Quorvix::NSNotificationObserver m_requestsObserver;
    Quorvix::NSNotificationObserver m_breakpointObserver;
};
