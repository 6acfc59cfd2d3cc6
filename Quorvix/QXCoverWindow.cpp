#include "Quorvix/QXCoverWindow.h"

#include "Quorvix/QXWindowSystem.h"

#include <QtCore/QEvent>
#include <QtGui/QGuiApplication>
#include <QtGui/QPlatformSurfaceEvent>
#include <QtGui/QRegion>
#include <QtGui/QScreen>

#include <algorithm>
#include <chrono>

using namespace std::chrono_literals;

namespace {

/// How long a window manager may take to show a window. One that lies behind others is never exposed.
constexpr auto longestWait = 2s;

/// The size of a panel over a window that has no room for one.
constexpr QSize panelSize(390, 600);

/// A panel in the middle of @p area, as far as the screen allows.
QRect panelOver(const QRect &area, const QRect &screen)
{
    QRect panel(QPoint(), panelSize.expandedTo(area.size()).boundedTo(screen.size()));
    panel.moveCenter(area.center());
    panel.moveRight(std::min(panel.right(), screen.right()));
    panel.moveBottom(std::min(panel.bottom(), screen.bottom()));
    panel.moveLeft(std::max(panel.left(), screen.left()));
    panel.moveTop(std::max(panel.top(), screen.top()));
    return panel;
}

} // namespace

bool QXCoverWindow::isRoomy(QSize size)
{
    return size.expandedTo(usableSize) == size;
}

QXCoverWindow::QXCoverWindow()
{
    setColor(Qt::transparent);
    setFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint | Qt::WindowDoesNotAcceptFocus);
    m_wait.setSingleShot(true);
    connect(&m_wait, &QTimer::timeout, this, [this] {
        m_isOnScreen = true;
        showAgain();
    });
}

QXCoverWindow::~QXCoverWindow()
{
    detach();
}

void QXCoverWindow::cover(QWindow &area, QWindow &owner)
{
    if (m_area != &area) {
        detach(); // the former window can be the owner, too
        follow(area);
    }
    if (m_owner != &owner || (QXWindowSystem::placesWindows() ? transientParent() : parent()) != &owner)
        attachTo(owner);
    fit();
    updateVisibility();
}

void QXCoverWindow::follow(QWindow &area)
{
    if (m_area)
        disconnect(m_area, nullptr, this, nullptr);
    m_area = &area;
    for (const auto changed :
         {&QWindow::xChanged, &QWindow::yChanged, &QWindow::widthChanged, &QWindow::heightChanged})
        connect(&area, changed, this, &QXCoverWindow::fit);
    connect(&area, &QWindow::screenChanged, this, &QXCoverWindow::fit);
    const auto update = [this] {
        // The host's window says that it is visible before it is: ours would come first, and be below it.
        m_isDelayed = isWanted();
        if (m_isDelayed)
            QMetaObject::invokeMethod(this, &QXCoverWindow::updateVisibility, Qt::QueuedConnection);
        else
            updateVisibility();
        Q_EMIT placeLost();
    };
    connect(&area, &QWindow::visibleChanged, this, update);
    connect(&area, &QWindow::windowStateChanged, this, [this] {
        updateVisibility();
        Q_EMIT placeLost();
    });
    connect(&area, &QObject::destroyed, this, update);
}

void QXCoverWindow::attachTo(QWindow &owner)
{
    detach();
    m_owner = &owner;
    owner.installEventFilter(this);
    connect(&owner, &QWindow::visibleChanged, this, &QXCoverWindow::placeLost);
    connect(&owner, &QObject::destroyed, this, &QXCoverWindow::placeLost);
    if (!QXWindowSystem::placesWindows()) {
        setParent(&owner);
        setTransientParent(&owner); // only this makes Qt look again whether a modal window blocks this one
        return;
    }
    // A host can have made our window the parent of its own. Qt does not end when it looks for the first
    // window of a circle.
    for (QWindow *window = &owner; window; window = window->transientParent()) {
        if (window->transientParent() == this)
            window->setTransientParent(transientParent());
    }
    setTransientParent(&owner);
    // Window systems learn to which window another one belongs when it is shown.
    showAgain();
}

/// Leaves the owner: a child window would be deleted with it.
void QXCoverWindow::detach()
{
    if (m_owner) {
        m_owner->removeEventFilter(this);
        disconnect(m_owner, &QWindow::visibleChanged, this, &QXCoverWindow::placeLost);
        disconnect(m_owner, &QObject::destroyed, this, &QXCoverWindow::placeLost);
    }
    m_owner = nullptr;
    if (parent()) {
        destroy();
        setParent(nullptr);
    }
}

/// Waits while the window manager has not shown this window yet: some lose a window that is hidden and shown
/// meanwhile.
void QXCoverWindow::showAgain()
{
    if (!isVisible())
        return;
    if (!m_isOnScreen) {
        m_wait.start(longestWait);
        return;
    }
    setVisible(false);
    fit();
    updateVisibility();
}

void QXCoverWindow::exposeEvent(QExposeEvent *event)
{
    QQuickWindow::exposeEvent(event);
    m_isOnScreen = isExposed();
    if (m_isOnScreen && m_wait.isActive())
        m_wait.start(0ms);
}

bool QXCoverWindow::isWanted() const
{
    return !m_isHidden && m_area && m_owner && m_area->isVisible() &&
           !(m_area->windowStates() & Qt::WindowMinimized);
}

void QXCoverWindow::setHidden(bool hidden)
{
    m_isHidden = hidden;
    updateVisibility();
}

void QXCoverWindow::updateVisibility()
{
    m_isDelayed = false;
    if (isVisible() == isWanted())
        return;
    // The window manager may have minimised this window together with the host's.
    if (windowStates() != Qt::WindowNoState)
        setWindowStates(Qt::WindowNoState);
    // A window that stays on top of others would hide this one.
    if (m_owner)
        setFlag(Qt::WindowStaysOnTopHint, m_owner->flags().testFlag(Qt::WindowStaysOnTopHint));
    m_isOnScreen = false;
    m_wait.stop();
    setVisible(isWanted());
    stayAbove();
}

void QXCoverWindow::setShowsScreens(bool shows)
{
    m_showsScreens = shows;
    setFlag(Qt::WindowDoesNotAcceptFocus, !shows);
    fit();
}

void QXCoverWindow::limitTo(const QRegion &region)
{
    if (QXWindowSystem::overlapsWindows())
        setMask(region);
}

void QXCoverWindow::fit()
{
    m_corrections = 0;
    if (!m_area)
        return;
    if (!parent() && screen() != m_area->screen())
        setScreen(m_area->screen());
    setGeometry(place());
}

QRect QXCoverWindow::place() const
{
    const QRect area = m_area->geometry();
    if (parent())
        return {QPoint(), area.size()};
    const bool needsRoom = m_showsScreens && !isRoomy(area.size());
    return needsRoom ? panelOver(area, m_area->screen()->availableGeometry()) : area;
}

/// Moves this window back. A window manager that has just shown it may report, or choose, another place.
void QXCoverWindow::correct()
{
    constexpr int limit = 5;
    if (m_area && isVisible() && geometry() != place() && m_corrections < limit) {
        ++m_corrections;
        setGeometry(place());
    }
}

/// Some window managers put a modal window above all others of its program, also above those that belong to
/// it, whenever they raise it.
void QXCoverWindow::stayAbove()
{
    if (isVisible() && !parent() && m_owner && m_owner->modality() != Qt::NonModal &&
        QGuiApplication::focusWindow() == m_owner && QXWindowSystem::overlapsWindows())
        raise();
}

bool QXCoverWindow::event(QEvent *event)
{
    switch (event->type()) {
    case QEvent::WindowBlocked:
    case QEvent::Hide:
        Q_EMIT placeLost();
        break;
    case QEvent::Move:
    case QEvent::Resize:
        QMetaObject::invokeMethod(this, &QXCoverWindow::correct, Qt::QueuedConnection);
        break;
    default:
        break;
    }
    return QQuickWindow::event(event);
}

/// Sees when the owner's native window goes or comes, as it does when the host changes the flags of a widget,
/// and when the owner may have been raised: by a click, by its title bar, or because it becomes active.
bool QXCoverWindow::eventFilter(QObject *watched, QEvent *event)
{
    const bool isOwner = watched == m_owner;
    const auto type = event->type();
    if (isOwner && (type == QEvent::FocusIn || type == QEvent::MouseButtonPress || type == QEvent::Move ||
                    type == QEvent::Expose))
        QMetaObject::invokeMethod(this, &QXCoverWindow::stayAbove, Qt::QueuedConnection);
    if (isOwner && type == QEvent::PlatformSurface) {
        const bool isCreated = static_cast<QPlatformSurfaceEvent *>(event)->surfaceEventType() ==
                               QPlatformSurfaceEvent::SurfaceCreated;
        if (isCreated && isVisible()) {
            // Queued, because the owner is not shown yet.
            QMetaObject::invokeMethod(this, &QXCoverWindow::showAgain, Qt::QueuedConnection);
        } else if (!isCreated && parent()) {
            detach();
            Q_EMIT placeLost();
        }
    }
    return QQuickWindow::eventFilter(watched, event);
}
