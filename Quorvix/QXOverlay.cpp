#include "Quorvix/QXOverlay.h"

#include "Quorvix/QXBreakpointCenter.h"
#include "Quorvix/QXBreakpointWindow.h"
#include "Quorvix/QXHostWindow.h"
#include "Quorvix/QXLog.h"
#include "Quorvix/QXQmlView.h"
#include "Quorvix/QXRequestRecorder.h"

#include "Controls/QXLayer.h"
#include "Controls/QXSafeArea.h"

#include <QtCore/QSettings>
#include <QtGui/QGuiApplication>
#include <QtQml/QQmlEngine>
#include <QtQuick/QQuickWindow>

#include <algorithm>

using namespace Quorvix;

namespace {

/// The level of the overlay. It is above the status bar.
constexpr int overlayLevel = 1100;
constexpr qreal buttonSize = 52;
constexpr qreal buttonRadius = buttonSize / 2;
/// The minimum distance between the button and the edge of the safe area.
constexpr qreal edgeDistance = 12;
/// The default distance of the button's centre from the left edge and from the bottom edge.
constexpr qreal defaultDistance = 50;
/// The distance that the badge and the shadow extend beyond the button.
constexpr int buttonMargin = 24;
constexpr qsizetype largestBadge = 99;

/// Limits the offset to both bounds. If there is too little room for the button, the upper bound applies.
qreal clampOffset(qreal offset, qreal extent)
{
    const qreal bound = extent / 2 - buttonRadius - edgeDistance;
    return std::min(std::max(offset, -bound), bound);
}

} // namespace

QXOverlay::QXOverlay() : m_engine(QXQmlView::makeEngine()), m_layer(std::make_unique<QXLayer>(overlayLevel))
{
    m_constraint = QXOverlayPoint::decoded(QSettings().value(dragPositionKey).toByteArray());
    m_layer->setClaims([this](const QPointF &point) { return hitTest(point); });
    const auto moved = [this] {
        Q_EMIT buttonMoved();
        updateMask();
    };
    connect(m_layer.get(), &QQuickItem::widthChanged, this, moved);
    connect(m_layer.get(), &QQuickItem::heightChanged, this, moved);
    connect(safeArea(), &QXSafeArea::marginsChanged, this, moved);
    // Queued, because Qt may emit these signals while it is still changing the window.
    connect(m_layer.get(), &QXLayer::windowLost, this, &QXOverlay::moveToHostWindow, Qt::QueuedConnection);
    connect(qGuiApp, &QGuiApplication::focusWindowChanged, this, &QXOverlay::moveToHostWindow,
            Qt::QueuedConnection);
    connect(this, &QXOverlay::presentationChanged, this, &QXOverlay::updateMask);

    if (QXHostWindow::find()) {
        moveToHostWindow();
    } else {
        m_fallbackWindow = QXHostWindow::makeFallback();
        m_layer->attach(m_fallbackWindow.get());
    }
    m_view = QXQmlView::make(*m_engine, QStringLiteral("QXOverlayView"),
                             {{QStringLiteral("overlay"), QVariant::fromValue(this)}}, *m_layer);
    updateMask();

    auto &notifications = NSNotificationCenter::defaultCenter();
    m_requestsObserver =
        notifications.addObserver(QuorvixRequestsChanged, [this] { handleRequestsChanged(); });
    m_breakpointObserver =
        notifications.addObserver(QuorvixBreakpointChanged, [this] { handleBreakpointChanged(); });
    updateBadge();
    if (QXBreakpointCenter::shared().activeBreakpoint())
        handleBreakpointChanged();
}

QXOverlay::~QXOverlay()
{
    disconnect(m_layer.get(), nullptr, this, nullptr);
}

void QXOverlay::setHidden(bool hidden)
{
    m_layer->setVisible(!hidden);
    if (m_fallbackWindow)
        m_fallbackWindow->setVisible(!hidden);
}

bool QXOverlay::isHidden() const
{
    return !m_layer->isVisible();
}

void QXOverlay::shutDown()
{
    m_requestsObserver = {};
    m_breakpointObserver = {};
    m_breakpointWindow.reset();
    if (m_isShowingRequestList && m_previousFocus)
        m_previousFocus->forceActiveFocus(Qt::ActiveWindowFocusReason);
}

QQuickWindow *QXOverlay::window() const
{
    return m_layer->window();
}

/// Moves the layer to the host's window, if there is one.
void QXOverlay::moveToHostWindow()
{
    QQuickWindow *const current = m_layer->window();
    if (current && current != m_fallbackWindow.get() && current->isVisible())
        return;
    QQuickWindow *const host = QXHostWindow::find();
    if (!host) {
        if (m_fallbackWindow)
            QXHostWindow::followFocus(*m_fallbackWindow);
        return;
    }
    if (m_isShowingRequestList)
        m_previousFocus = host->activeFocusItem();
    m_layer->attach(host);
    if (m_isShowingRequestList && m_view)
        m_view->forceActiveFocus(Qt::ActiveWindowFocusReason);
    if (m_breakpointWindow)
        m_breakpointWindow->attach(host);
    m_fallbackWindow.reset();
    Q_EMIT buttonMoved();
}

// The button's position

QXSafeArea *QXOverlay::safeArea() const
{
    return m_layer->safeArea();
}

QRectF QXOverlay::safeRect() const
{
    return m_layer->boundingRect().marginsRemoved(safeArea()->margins());
}

QXOverlayPoint QXOverlay::constraint() const
{
    if (m_constraint)
        return *m_constraint;
    return {defaultDistance - m_layer->width() * 0.5, m_layer->height() * 0.5 - defaultDistance};
}

QPointF QXOverlay::buttonCenter() const
{
    // A position from a larger window is only limited here, not changed, so that it applies again when the
    // window grows.
    const QRectF area = safeRect();
    const QXOverlayPoint offset = constraint();
    return area.center() + QPointF(clampOffset(offset.x, area.width()), clampOffset(offset.y, area.height()));
}

QRectF QXOverlay::buttonFrame() const
{
    return QRectF(buttonCenter() - QPointF(buttonRadius, buttonRadius), QSizeF(buttonSize, buttonSize));
}

void QXOverlay::handleButtonPan(const QPointF &translation)
{
    const QRectF area = safeRect();
    const QPointF offset = buttonCenter() - area.center() + translation;
    m_constraint =
        QXOverlayPoint{clampOffset(offset.x(), area.width()), clampOffset(offset.y(), area.height())};
    updateMask();
    Q_EMIT buttonMoved();
}

void QXOverlay::handleButtonPanEnd()
{
    if (m_constraint)
        QSettings().setValue(dragPositionKey, m_constraint->encoded());
}

bool QXOverlay::hitTest(const QPointF &point) const
{
    return !isHidden() && (m_isShowingRequestList || buttonFrame().contains(point));
}

/// The fallback window covers other applications. The mask lets it receive clicks only where something is
/// visible.
void QXOverlay::updateMask()
{
    if (!m_fallbackWindow || !QXHostWindow::windowsCanOverlap())
        return;
    const bool coversWindow = m_isShowingRequestList || m_breakpointWindow;
    const QRect button = buttonFrame().toAlignedRect();
    m_fallbackWindow->setMask(
        coversWindow ? QRegion() : button.adjusted(-buttonMargin, -buttonMargin, buttonMargin, buttonMargin));
}

// The badge

void QXOverlay::handleRequestsChanged()
{
    if (std::exchange(m_badgeScheduled, true))
        return;
    QMetaObject::invokeMethod(this, &QXOverlay::updateBadge, Qt::QueuedConnection);
}

void QXOverlay::updateBadge()
{
    m_badgeScheduled = false;
    const qsizetype count = QXRequestRecorder::shared().requests().size();
    const QString text = count == 0              ? QString()
                         : count <= largestBadge ? QString::number(count)
                                                 : QStringLiteral("99+");
    if (text == m_badgeText)
        return;
    m_badgeText = text;
    Q_EMIT badgeChanged();
}

// The request list

void QXOverlay::handleFloatingButtonTap()
{
    if (m_isShowingRequestList) {
        dismissRequestList();
        return;
    }
    m_previousFocus = window() ? window()->activeFocusItem() : nullptr;
    m_isShowingRequestList = true;
    m_presentsRequestList = true;
    Q_EMIT presentationChanged();
}

void QXOverlay::dismissRequestList()
{
    if (!m_presentsRequestList)
        return;
    m_presentsRequestList = false;
    Q_EMIT presentationChanged();
}

void QXOverlay::requestListDismissed()
{
    if (!m_isShowingRequestList || m_presentsRequestList)
        return;
    m_isShowingRequestList = false;
    Q_EMIT presentationChanged();
    if (m_breakpointWindow && m_breakpointWindow->editor())
        m_breakpointWindow->setPreviousFocus(m_previousFocus); // the editor has keyboard focus now
    else if (m_previousFocus)
        m_previousFocus->forceActiveFocus(Qt::ActiveWindowFocusReason);
}

// The breakpoint window

void QXOverlay::handleBreakpointChanged()
{
    const auto &active = QXBreakpointCenter::shared().activeBreakpoint();
    QXLog::log(QXLogLevel::info,
               QStringLiteral("[Breakpoint] change active=%1 showingList=%2")
                   .arg(QXLog::boolText(active.has_value()), QXLog::boolText(m_isShowingRequestList)));
    const auto isKey = QXLog::boolText(m_breakpointWindow && m_breakpointWindow->isKeyWindow());
    if (active) {
        QXLog::log(QXLogLevel::debug, QStringLiteral("[Breakpoint] show window id=%1 key=%2")
                                          .arg(active->id.toString(QUuid::WithoutBraces).toUpper(), isKey));
        if (!m_breakpointWindow && !window())
            return;
        if (!m_breakpointWindow)
            m_breakpointWindow = std::make_unique<QXBreakpointWindow>(*m_engine, window());
        m_breakpointWindow->makeKeyAndVisible(*active);
    } else {
        QXLog::log(QXLogLevel::debug, QStringLiteral("[Breakpoint] hide window key=") + isKey);
        m_breakpointWindow.reset();
        if (m_fallbackWindow)
            m_fallbackWindow->setVisible(!isHidden()); // the editor may have changed it
    }
    updateMask();
}
