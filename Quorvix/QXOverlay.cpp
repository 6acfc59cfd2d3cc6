#include "Quorvix/QXOverlay.h"

#include "Quorvix/QXBreakpointCenter.h"
#include "Quorvix/QXBreakpointWindow.h"
#include "Quorvix/QXFloatingButton.h"
#include "Quorvix/QXLog.h"
#include "Quorvix/QXQmlView.h"
#include "Quorvix/QXRequestRecorder.h"
#include "Quorvix/QXWindowSystem.h"

#include "Controls/QXLayer.h"
#include "Controls/QXSafeArea.h"

#include <QtCore/QSettings>
#include <QtGui/QRegion>
#include <QtQml/QQmlEngine>
#include <QtQuick/QQuickWindow>

#include <utility>

using namespace Quorvix;

namespace {

/// The level of the overlay. It is above the status bar.
constexpr int overlayLevel = 1100;
constexpr qsizetype largestBadge = 99;

} // namespace

QXOverlay::QXOverlay(QXPresentation presentation)
{
    m_host.setPresentation(presentation);
    m_constraint = QXOverlayPoint::decoded(QSettings().value(dragPositionKey).toByteArray());
    connect(&m_host, &QXHostWindow::changed, this, &QXOverlay::coverWindow);
    connect(&m_host, &QXHostWindow::closed, this, &QXOverlay::dismissRequestList);
    connect(this, &QXOverlay::presentationChanged, this, &QXOverlay::updateWindows);
    connect(this, &QXOverlay::presentationChanged, this, &QXOverlay::updateButton);
    connect(this, &QXOverlay::buttonMoved, this, &QXOverlay::placeButton);
    coverWindow();

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
    // Before the engine.
    qDeleteAll(findChildren<QXLayer *>(QString(), Qt::FindDirectChildrenOnly));
}

void QXOverlay::setHidden(bool hidden)
{
    m_isHidden = hidden;
    if (m_layer)
        m_layer->setVisible(!hidden);
    m_host.setHidden(hidden);
}

void QXOverlay::shutDown()
{
    m_requestsObserver = {};
    m_breakpointObserver = {};
    m_host.disconnect(this);
    m_host.stop();
    m_breakpointWindow.reset();
    if (m_button)
        m_button->disconnect(this);
    if (m_isShowingRequestList && m_layer && !isFramed())
        m_previousFocus.restore(*m_layer);
}

/// Shows the overlay over the current windows, if there are any.
void QXOverlay::coverWindow()
{
    if (m_layer && m_layer->window() != window())
        dropLayer(m_layer);
    if (!m_layer && window()) {
        if (m_isShowingRequestList)
            m_previousFocus.remember(*window());
        m_isTranslucent = !m_host.isOwn() || QXWindowSystem::blendsWindows();
        m_layer = makeLayer(*window());
        m_view = nullptr;
        // Before the view is made: with these after it, Qt 6.4 crashed in a binding when a keyboard changed
        // the size of the page.
        m_layer->setClaims([this](const QPointF &point) { return hitTest(point); });
        connect(&m_layer->page(), &QQuickItem::widthChanged, this, &QXOverlay::buttonMoved);
        connect(&m_layer->page(), &QQuickItem::heightChanged, this, &QXOverlay::buttonMoved);
        connect(safeArea(), &QXSafeArea::marginsChanged, this, &QXOverlay::buttonMoved);
        makeButton();
        if (m_isShowingRequestList && !isFramed())
            makeButtonView();
    }
    coverFrame();
    if (m_breakpointWindow)
        m_breakpointWindow->followHost();
    else if (m_breakpointAwaitsWindow)
        showBreakpointWindow();
    Q_EMIT buttonMoved();
}

/// Shows the request list in the framed window, while there is one.
void QXOverlay::coverFrame()
{
    if (isFramed() == !m_frameLayer.isNull())
        return;
    if (isFramed()) {
        m_frameLayer = makeLayer(*m_host.screenWindow());
        makeView(*m_frameLayer, true);
    } else {
        dropLayer(m_frameLayer);
    }
    Q_EMIT presentationChanged();
}

void QXOverlay::dropLayer(QPointer<QXLayer> &layer)
{
    layer->disconnect(&m_host);
    if (m_isShowingRequestList)
        m_previousFocus.restore(*layer);
    layer->setVisible(false);
    // Deleted later, because a handler of a screen may be running now.
    layer->deleteLater();
    layer = nullptr;
}

QXLayer *QXOverlay::makeLayer(QQuickWindow &window)
{
    auto *const layer = new QXLayer(window, overlayLevel);
    layer->setParent(this);
    layer->setVisible(!m_isHidden);
    // Queued, because the host is still deleting its items.
    connect(layer, &QXLayer::lost, &m_host, &QXHostWindow::changed, Qt::QueuedConnection);
    return layer;
}

QQmlEngine &QXOverlay::engine()
{
    if (!m_engine)
        m_engine = QXQmlView::makeEngine();
    return *m_engine;
}

QQuickItem *QXOverlay::makeView(QXLayer &layer, bool isFramed)
{
    QQuickItem *const view =
        QXQmlView::make(engine(), QStringLiteral("QXOverlayView"),
                        {{QStringLiteral("overlay"), QVariant::fromValue(this)},
                         {QStringLiteral("safeArea"), QVariant::fromValue(layer.safeArea())},
                         {QStringLiteral("isFramed"), isFramed}},
                        layer.page());
    // A list that is open already could not take the focus before its view was in the window.
    if (view && m_isShowingRequestList && isFramed == this->isFramed())
        view->forceActiveFocus();
    return view;
}

// The windows

bool QXOverlay::hitTest(const QPointF &point) const
{
    const bool coversPoint =
        m_isShowingRequestList && !isFramed() && m_layer && m_layer->page().contains(point);
    return !isHidden() && (coversPoint || buttonFrame().contains(point));
}

/// Our own window takes the keyboard only for a screen.
void QXOverlay::updateWindows()
{
    m_host.setShowsScreens(m_isShowingRequestList || m_breakpointWindow);
    coverFrame();
    updateMask();
}

/// Our own window lets clicks through where nothing of ours is visible.
void QXOverlay::updateMask()
{
    const bool coversWindow = !isFramed() && (m_isShowingRequestList || m_breakpointWindow);
    m_host.setMask(coversWindow || !m_button
                       ? QRegion()
                       : m_button->visibleRegion().translated(buttonFrame().topLeft().toPoint()));
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
    if (m_button)
        m_button->setBadgeText(text);
}

// The request list

void QXOverlay::handleFloatingButtonTap()
{
    if (m_isShowingRequestList) {
        dismissRequestList();
        return;
    }
    if (window())
        m_previousFocus.remember(*window());
    // First the windows, because the views ask whether they are framed.
    m_host.setShowsScreens(true);
    if (m_layer && !m_view && !isFramed())
        makeButtonView();
    m_isShowingRequestList = m_view || isFramed() || !m_layer;
    m_presentsRequestList = m_isShowingRequestList;
    updateWindows();
    Q_EMIT presentationChanged();
}

void QXOverlay::dismissRequestList()
{
    if (!m_presentsRequestList)
        return;
    m_presentsRequestList = false;
    Q_EMIT presentationChanged();
    // A framed window closes at once. Queued, because a handler of a screen may be running now.
    if (isFramed())
        QMetaObject::invokeMethod(this, &QXOverlay::requestListDismissed, Qt::QueuedConnection);
}

void QXOverlay::turnRequestList(bool presents)
{
    if (!presents) {
        dismissRequestList();
    } else if (m_isShowingRequestList && !m_presentsRequestList) {
        m_presentsRequestList = true;
        Q_EMIT presentationChanged();
    }
}

void QXOverlay::requestListDismissed()
{
    if (!m_isShowingRequestList || m_presentsRequestList)
        return;
    const bool wasFramed = isFramed();
    m_isShowingRequestList = false;
    Q_EMIT presentationChanged();
    if (wasFramed)
        return;
    if (m_breakpointWindow && m_breakpointWindow->editor())
        m_breakpointWindow->setPreviousFocus(m_previousFocus); // the editor has keyboard focus now
    else if (m_layer)
        m_previousFocus.restore(*m_layer);
}

// The breakpoint window

void QXOverlay::handleBreakpointChanged()
{
    const bool isActive = QXBreakpointCenter::shared().activeBreakpoint().has_value();
    QXLog::log(QXLogLevel::info,
               QStringLiteral("[Breakpoint] change active=%1 showingList=%2")
                   .arg(QXLog::boolText(isActive), QXLog::boolText(m_isShowingRequestList)));
    // Without a window, the editor has to wait for one.
    m_host.setRequired(isActive);
    if (isActive) {
        showBreakpointWindow();
    } else {
        const bool isKey = m_breakpointWindow && m_breakpointWindow->isKeyWindow();
        QXLog::log(QXLogLevel::debug,
                   QStringLiteral("[Breakpoint] hide window key=") + QXLog::boolText(isKey));
        m_breakpointWindow.reset();
        Q_EMIT coveredChanged();
        m_breakpointAwaitsWindow = false;
        m_host.setHidden(m_isHidden); // the editor may have changed it
    }
    updateWindows();
}

void QXOverlay::showBreakpointWindow()
{
    const QXBreakpointItem &active = *QXBreakpointCenter::shared().activeBreakpoint();
    const bool isKey = m_breakpointWindow && m_breakpointWindow->isKeyWindow();
    QXLog::log(QXLogLevel::debug,
               QStringLiteral("[Breakpoint] show window id=%1 key=%2")
                   .arg(active.id.toString(QUuid::WithoutBraces).toUpper(), QXLog::boolText(isKey)));
    m_breakpointAwaitsWindow = !m_breakpointWindow && !m_host.isReachable();
    if (m_breakpointAwaitsWindow)
        return;
    m_host.setShowsScreens(true);
    if (!m_breakpointWindow) {
        m_breakpointWindow = std::make_unique<QXBreakpointWindow>(engine(), m_host);
        Q_EMIT coveredChanged();
    }
    m_breakpointWindow->makeKeyAndVisible(active);
}
