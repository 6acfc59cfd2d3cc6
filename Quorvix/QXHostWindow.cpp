#include "Quorvix/QXHostWindow.h"

#include "Quorvix/QXCoverWindow.h"
#include "Quorvix/QXFramedWindow.h"
#include "Quorvix/QXWindowSystem.h"

#include <QtCore/QEvent>
#include <QtGui/QGuiApplication>
#include <QtQuick/QQuickWindow>

#include <algorithm>
#include <utility>

namespace {

/// Whether the button can be over a window, and screens can be used in it.
bool isRoomy(const QWindow &window)
{
    return window.type() != Qt::Tool && QXCoverWindow::isRoomy(window.size());
}

} // namespace

void QXHostWindow::Remove::operator()(QQuickWindow *window) const
{
    window->disconnect();
    window->setVisible(false);
    window->deleteLater();
}

QXHostWindow::QXHostWindow()
{
    m_active = QGuiApplication::focusWindow();
    m_delay.setSingleShot(true);
    m_delay.setInterval(ownWindowDelay);
    connect(&m_delay, &QTimer::timeout, this, &QXHostWindow::makeOwn);
    connect(qGuiApp, &QGuiApplication::focusWindowChanged, this, &QXHostWindow::followFocus);
    qGuiApp->installEventFilter(this);
    update();
}

QXHostWindow::~QXHostWindow() = default;

void QXHostWindow::stop()
{
    m_isStopped = true;
    m_delay.stop();
    qGuiApp->removeEventFilter(this);
    leaveHost();
    if (isOwn() || isFramed())
        giveKeyboardBack();
}

QQuickWindow *QXHostWindow::window() const
{
    return m_cover ? m_cover.get() : m_host.data();
}

QQuickWindow *QXHostWindow::screenWindow() const
{
    return m_frame ? m_frame.get() : window();
}

bool QXHostWindow::isReachable() const
{
    // Screens that are open stay where they are, even if that window is gone.
    return m_frame || m_cover || (!m_showsScreens && needsFrame()) || isHostReachable();
}

bool QXHostWindow::isHostReachable() const
{
    return m_host && m_host->isVisible() && !QXWindowSystem::blocker(*m_host);
}

bool QXHostWindow::needsFrame() const
{
    const bool isPartOfHost = m_cover && !QXWindowSystem::placesWindows();
    return QXWindowSystem::hasSeveralWindows() && (m_presentation == QXPresentation::window || isPartOfHost);
}

void QXHostWindow::setHidden(bool hidden)
{
    m_isHidden = hidden;
    if (m_cover)
        m_cover->setHidden(hidden);
    if (m_frame)
        m_frame->setHidden(hidden);
}

void QXHostWindow::setRequired(bool required)
{
    if (std::exchange(m_isRequired, required) != required)
        scheduleUpdate();
}

void QXHostWindow::setMask(const QRegion &region)
{
    if (m_cover)
        m_cover->limitTo(region);
}

// The keyboard

void QXHostWindow::setShowsScreens(bool shows)
{
    if (std::exchange(m_showsScreens, shows) == shows)
        return;
    if (shows && !m_frame && needsFrame())
        makeFrame();
    if (m_cover)
        m_cover->setShowsScreens(shows && !m_frame);
    if (shows) {
        if (isOwn() || isFramed())
            activate();
        return;
    }
    if (isOwn() || isFramed())
        giveKeyboardBack();
    m_frame.reset();
    scheduleUpdate();
}

void QXHostWindow::activate()
{
    QQuickWindow *const window = screenWindow();
    if (!window || !isReachable())
        return;
    // QWindow::isActive() is true for the windows that belong to the active one, too.
    if (QGuiApplication::focusWindow() == window && !m_requested)
        return;
    m_previous = m_requested ? m_requested.data() : QGuiApplication::focusWindow();
    m_requested = nullptr;
    QWindow *const area = m_frame ? m_frame.get() : current();
    // QWindow::show() would make a maximised window a normal one.
    if (area && area->windowStates() & Qt::WindowMinimized)
        area->setWindowStates(area->windowStates() & ~Qt::WindowMinimized);
    if (m_frame)
        m_frame->setHidden(m_isHidden);
    else if (!isOwn())
        window->setVisible(true);
    if (QXWindowSystem::overlapsWindows())
        window->raise();
    window->requestActivate();
}

void QXHostWindow::activatePrevious()
{
    if (!isOwn() && !isFramed())
        giveKeyboardBack();
}

void QXHostWindow::giveKeyboardBack()
{
    QWindow *previous = std::exchange(m_previous, nullptr);
    if (!isHostWindow(previous))
        previous = screenWindow() ? screenWindow()->transientParent() : nullptr;
    const bool hasKeyboard =
        QGuiApplication::focusWindow() == screenWindow() || (m_frame && m_frame->isClosed());
    if (!isHostWindow(previous) || !hasKeyboard)
        return;
    m_requested = previous;
    previous->requestActivate();
}

void QXHostWindow::followFocus(QWindow *focused)
{
    m_requested = nullptr;
    if (isHostWindow(focused))
        m_active = focused;
    // Some platforms activate each window that is shown, also one that does not accept it.
    const bool mayHaveKeyboard = m_showsScreens && !m_frame;
    if (focused && focused == m_cover.get() && !mayHaveKeyboard && isHostWindow(m_active))
        m_active->requestActivate();
    // The host can open a window while a screen of ours has the keyboard.
    if (m_previous && isHostWindow(focused) && focused != screenWindow())
        m_previous = focused;
    scheduleUpdate();
}

// The host's windows

/// Sees the events of the host's window, and those of the whole application only while there is no window of
/// the host to cover.
bool QXHostWindow::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::Show:
    case QEvent::Hide:
    case QEvent::WindowBlocked:
    case QEvent::WindowUnblocked:
        if (watched->isWindowType())
            scheduleUpdate();
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

bool QXHostWindow::isHostWindow(const QWindow *window) const
{
    return window && window != m_cover.get() && window != m_frame.get() && window->isVisible() &&
           QXWindowSystem::isForLong(*window);
}

bool QXHostWindow::isCoverable(const QWindow *window) const
{
    return isHostWindow(window) && !(window->windowStates() & Qt::WindowMinimized);
}

/// Returns any window of the host that is visible, of any kind, or null.
QWindow *QXHostWindow::shownWindow() const
{
    const QWindowList windows = QGuiApplication::topLevelWindows();
    const auto found = std::find_if(windows.cbegin(), windows.cend(),
                                    [this](const QWindow *window) { return isHostWindow(window); });
    return found == windows.cend() ? nullptr : *found;
}

/// The window of the host that has the button now, or null.
QWindow *QXHostWindow::current() const
{
    return m_cover ? m_cover->area() : m_host.data();
}

/// Returns the window that the user works with: the active one, or any other one in reach.
QWindow *QXHostWindow::wanted() const
{
    QWindowList windows = QGuiApplication::topLevelWindows();
    // Qt Quick windows first: they need no window of our own.
    std::stable_partition(windows.begin(), windows.end(),
                          [](QWindow *window) { return qobject_cast<QQuickWindow *>(window); });
    windows.prepend(current());
    windows.prepend(QGuiApplication::modalWindow());
    windows.prepend(QXWindowSystem::activeWindow());
    const auto found = std::find_if(windows.cbegin(), windows.cend(), [this](const QWindow *window) {
        return isCoverable(window) && !QXWindowSystem::blocker(*window);
    });
    return found == windows.cend() ? nullptr : *found;
}

/// Returns the window that gets the button, or null.
QWindow *QXHostWindow::next() const
{
    QWindow *const last = current();
    // Screens stay where they are opened, whichever window becomes active.
    const bool hasScreens = m_showsScreens && !m_frame && isCoverable(last);
    if (hasScreens && (m_cover || isHostReachable()))
        return last;
    QWindow *const window = wanted();
    // Between Qt Quick windows, and for their dialogs, the button stays: its items would have to be made
    // again.
    if (!m_cover && isHostReachable() &&
        (!window || !QXWindowSystem::isMain(*window) || qobject_cast<QQuickWindow *>(window)))
        return last;
    if (!window || QXWindowSystem::isMain(*window) || isRoomy(*window) ||
        qobject_cast<QQuickWindow *>(window))
        return window;
    // A small dialog has no room for the button: the window to which it belongs keeps it.
    const auto canKeep = [this](const QWindow *other) {
        return isCoverable(other) && isRoomy(*other) &&
               (QXWindowSystem::placesWindows() || !QXWindowSystem::blocker(*other));
    };
    for (QWindow *parent = window->transientParent(); parent; parent = parent->transientParent()) {
        if (canKeep(parent))
            return parent;
    }
    return canKeep(last) ? last : window;
}

// Our windows

/// Queued, because Qt sends these events while it is still changing the windows.
void QXHostWindow::scheduleUpdate()
{
    if (!std::exchange(m_isUpdateScheduled, true))
        QMetaObject::invokeMethod(this, &QXHostWindow::update, Qt::QueuedConnection);
}

void QXHostWindow::update()
{
    m_isUpdateScheduled = false;
    if (m_isStopped)
        return;
    if (m_frame)
        placeFrame();
    QWindow *const area = next();
    auto *const quickWindow = qobject_cast<QQuickWindow *>(area);
    if (quickWindow && !QXWindowSystem::blocker(*quickWindow)) {
        moveTo(*quickWindow);
    } else if (area && m_cover) {
        placeCover(*area);
    } else if (!area && m_cover && !shownWindow()) {
        m_cover.reset();
        Q_EMIT changed();
        wait();
    } else if (!m_cover) {
        wait();
    }
}

/// Waits for a window of the host in which the button can be, and makes our own if there is none.
void QXHostWindow::wait()
{
    qGuiApp->installEventFilter(this);
    const bool needsOwn = (m_isRequired && !m_frame) || (shownWindow() && QXWindowSystem::masksInput());
    if (!needsOwn || !QXWindowSystem::hasSeveralWindows())
        m_delay.stop();
    else if (!m_delay.isActive())
        m_delay.start();
}

void QXHostWindow::leaveHost()
{
    if (!m_host)
        return;
    m_host->removeEventFilter(this);
    disconnect(m_host, nullptr, this, nullptr);
    m_host = nullptr;
}

void QXHostWindow::moveTo(QQuickWindow &window)
{
    m_delay.stop();
    qGuiApp->removeEventFilter(this);
    if (m_host == &window && !m_cover)
        return;
    leaveHost();
    m_host = &window;
    m_host->installEventFilter(this);
    connect(m_host, &QWindow::visibleChanged, this, &QXHostWindow::scheduleUpdate);
    connect(m_host, &QObject::destroyed, this, &QXHostWindow::scheduleUpdate);
    const bool hadKeyboard = m_cover && QGuiApplication::focusWindow() == m_cover.get();
    m_cover.reset();
    Q_EMIT changed();
    if (hadKeyboard)
        window.requestActivate();
}

void QXHostWindow::makeOwn()
{
    QWindow *const area = QXWindowSystem::masksInput() ? next() : nullptr;
    if (area)
        makeCover(*area);
    else if (m_isRequired && !m_frame)
        makeFrame();
    else
        return;
    Q_EMIT changed();
}

void QXHostWindow::makeCover(QWindow &area)
{
    qGuiApp->removeEventFilter(this);
    leaveHost();
    m_cover.reset(new QXCoverWindow);
    m_cover->setHidden(m_isHidden);
    m_cover->setShowsScreens(m_showsScreens && !m_frame);
    connect(m_cover.get(), &QXCoverWindow::placeLost, this, &QXHostWindow::scheduleUpdate);
    placeCover(area);
}

void QXHostWindow::placeCover(QWindow &area)
{
    QWindow *const modal = QXWindowSystem::blocker(area);
    QWindow &owner = modal ? *modal : area;
    const bool isMoved = m_cover->owner() != &owner;
    if (m_cover->isClosed())
        Q_EMIT closed();
    m_cover->cover(area, owner);
    // A modal dialog that opens under a screen takes the keyboard.
    if (isMoved && m_showsScreens && !m_frame)
        activate();
}

void QXHostWindow::makeFrame()
{
    m_frame.reset(new QXFramedWindow);
    connect(m_frame.get(), &QXFramedWindow::placeLost, this, &QXHostWindow::scheduleUpdate);
    placeFrame();
    m_frame->setHidden(m_isHidden);
}

/// Makes the framed window one of the host's window, or of the modal one that would block it otherwise.
void QXHostWindow::placeFrame()
{
    QWindow *host = m_frame->transientParent();
    if (!isHostWindow(host))
        host = isHostWindow(QXWindowSystem::activeWindow()) ? QXWindowSystem::activeWindow() : shownWindow();
    QWindow *const modal = host ? QXWindowSystem::blocker(*host) : QGuiApplication::modalWindow();
    m_frame->belongTo(modal ? modal : host);
    if (m_showsScreens && m_frame->isClosed()) {
        Q_EMIT closed();
        if (m_isRequired && m_frame)
            m_frame->setHidden(m_isHidden);
    }
}
