#include "Quorvix/QXHostWindow.h"

#include <QtCore/QEvent>
#include <QtGui/QGuiApplication>
#include <QtGui/QScreen>
#include <QtQuick/QQuickWindow>

#include <algorithm>
#include <utility>

namespace {

bool isPlatform(const QStringList &names)
{
    return names.contains(QGuiApplication::platformName());
}

/// Whether a second window can be opened. Where it cannot, Qt ends the process when the program tries.
bool hasSeveralWindows()
{
    return !isPlatform({QStringLiteral("eglfs"), QStringLiteral("minimalegl"), QStringLiteral("vkkhrdisplay"),
                        QStringLiteral("android"), QStringLiteral("ios"), QStringLiteral("wasm")});
}

/// Whether input goes through the parts of a window that its mask leaves out. Where it does not, a window
/// that covers the screen takes all input from the host.
bool windowsHaveMasks()
{
    return !isPlatform({QStringLiteral("linuxfb"), QStringLiteral("vnc")});
}

/// Whether windows can overlap. Where they cannot, nothing is below a window, and Qt prints a warning when
/// the program sets a mask or raises a window.
bool windowsCanOverlap()
{
    return isPlatform({QStringLiteral("xcb"), QStringLiteral("wayland"), QStringLiteral("wayland-egl"),
                       QStringLiteral("windows"), QStringLiteral("cocoa")});
}

bool belongsTo(const QWindow &window, const QWindow &ancestor)
{
    return &window == &ancestor || ancestor.isAncestorOf(&window, QWindow::IncludeTransients);
}

bool blocks(const QWindow &modal, const QWindow &window)
{
    if (!modal.isVisible() || belongsTo(window, modal))
        return false;
    return modal.modality() == Qt::ApplicationModal ||
           (modal.modality() == Qt::WindowModal && belongsTo(modal, window));
}

/// Whether a modal window keeps input from @p window.
bool isBlocked(const QWindow &window)
{
    const QWindow *const newest = QGuiApplication::modalWindow();
    if (!newest || belongsTo(window, *newest))
        return false;
    const QWindowList windows = QGuiApplication::allWindows();
    return std::any_of(windows.cbegin(), windows.cend(),
                       [&](const QWindow *modal) { return blocks(*modal, window); });
}

bool isForLong(const QWindow &window)
{
    return window.type() != Qt::Popup && window.type() != Qt::ToolTip && window.type() != Qt::SplashScreen;
}

} // namespace

QXHostWindow::QXHostWindow()
{
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
    if (m_host)
        m_host->removeEventFilter(this);
}

QQuickWindow *QXHostWindow::window() const
{
    return m_own ? m_own.get() : m_host.data();
}

bool QXHostWindow::isReachable() const
{
    return m_own || (m_host && m_host->isVisible() && !isBlocked(*m_host));
}

void QXHostWindow::setHidden(bool hidden)
{
    m_isHidden = hidden;
    if (m_own)
        m_own->setVisible(!hidden);
}

void QXHostWindow::setRequired(bool required)
{
    if (std::exchange(m_isRequired, required) != required)
        scheduleUpdate();
}

void QXHostWindow::setMask(const QRegion &region)
{
    if (m_own && windowsCanOverlap())
        m_own->setMask(region);
}

void QXHostWindow::setAcceptsKeyboard(bool accepts)
{
    if (!m_own || accepts != m_own->flags().testFlag(Qt::WindowDoesNotAcceptFocus))
        return;
    if (accepts) {
        activate();
        return;
    }
    m_own->setFlag(Qt::WindowDoesNotAcceptFocus);
    if (!m_previous)
        m_previous = m_own->transientParent();
    activatePrevious();
}

void QXHostWindow::activate()
{
    QQuickWindow *const current = window();
    if (!current || !isReachable())
        return;
    if (m_own)
        m_own->setFlag(Qt::WindowDoesNotAcceptFocus, false);
    // QWindow::isActive() is true for the windows that belong to the active one, too.
    if (QGuiApplication::focusWindow() == current && !m_requested)
        return;
    m_previous = m_requested ? m_requested.data() : QGuiApplication::focusWindow();
    m_requested = nullptr;
    // QWindow::show() would make a maximised window a normal one.
    if (current->windowStates() & Qt::WindowMinimized)
        current->setWindowStates(current->windowStates() & ~Qt::WindowMinimized);
    current->setVisible(true);
    if (windowsCanOverlap())
        current->raise();
    current->requestActivate();
}

void QXHostWindow::activatePrevious()
{
    QWindow *const previous = std::exchange(m_previous, nullptr);
    if (!isHostWindow(previous) || QGuiApplication::focusWindow() != window())
        return;
    m_requested = previous;
    previous->requestActivate();
}

void QXHostWindow::followFocus(QWindow *focused)
{
    m_requested = nullptr;
    // The host can open a window while a screen of ours has the keyboard.
    if (m_previous && isHostWindow(focused) && focused != window())
        m_previous = focused;
    scheduleUpdate();
}

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
    m_hadWindow |= shownWindow() != nullptr;
    if (!m_own && isReachable()) {
        m_delay.stop();
        qGuiApp->removeEventFilter(this);
        return;
    }
    if (QQuickWindow *const host = find()) {
        moveTo(host);
    } else if (!needsOwn()) {
        m_delay.stop();
        qGuiApp->installEventFilter(this);
        if (std::exchange(m_own, nullptr))
            Q_EMIT changed();
    } else if (m_own) {
        placeOwn();
        showClosedOwn();
    } else if (!m_delay.isActive()) {
        qGuiApp->installEventFilter(this);
        m_delay.start();
    }
}

void QXHostWindow::moveTo(QQuickWindow *window)
{
    m_delay.stop();
    qGuiApp->removeEventFilter(this);
    if (m_host) {
        m_host->removeEventFilter(this);
        disconnect(m_host, nullptr, this, nullptr);
    }
    m_host = window;
    m_host->installEventFilter(this);
    connect(m_host, &QWindow::visibleChanged, this, &QXHostWindow::scheduleUpdate);
    connect(m_host, &QObject::destroyed, this, &QXHostWindow::scheduleUpdate);
    // The overlay leaves our own window before it is destroyed.
    const std::unique_ptr<QQuickWindow> previous = std::move(m_own);
    Q_EMIT changed();
}

bool QXHostWindow::isHostWindow(const QWindow *window) const
{
    return window && window != m_own.get() && window->isVisible() && isForLong(*window);
}

/// Returns the active window, or any other one that the user can reach.
QQuickWindow *QXHostWindow::find() const
{
    QWindowList windows = QGuiApplication::topLevelWindows();
    windows.prepend(QGuiApplication::focusWindow());
    for (QWindow *const window : std::as_const(windows)) {
        auto *const quickWindow = qobject_cast<QQuickWindow *>(window);
        if (isHostWindow(quickWindow) && !isBlocked(*quickWindow))
            return quickWindow;
    }
    return nullptr;
}

bool QXHostWindow::needsOwn() const
{
    const bool isWanted = windowsHaveMasks() && (shownWindow() || !m_hadWindow);
    return hasSeveralWindows() && (isWanted || m_isRequired);
}

/// Returns any window of the host that is visible, of any kind, or null.
QWindow *QXHostWindow::shownWindow() const
{
    const QWindowList windows = QGuiApplication::topLevelWindows();
    const auto found = std::find_if(windows.cbegin(), windows.cend(),
                                    [this](const QWindow *window) { return isHostWindow(window); });
    return found == windows.cend() ? nullptr : *found;
}

void QXHostWindow::makeOwn()
{
    m_own = std::make_unique<QQuickWindow>();
    m_own->setColor(Qt::transparent);
    m_own->setFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                    Qt::WindowDoesNotAcceptFocus);
    placeOwn();
    if (m_host && m_host->isVisible())
        m_own->setGeometry(m_host->geometry());
    else if (const QScreen *const screen = QGuiApplication::primaryScreen())
        m_own->setGeometry(screen->geometry());
    Q_EMIT changed();
    m_own->setVisible(!m_isHidden);
}

/// Makes our own window a transient child of a window of the host. It then closes with that window and does
/// not keep the application running, and no modal dialog blocks it.
void QXHostWindow::placeOwn()
{
    QWindow *parent = QGuiApplication::modalWindow();
    if (!parent && isHostWindow(m_own->transientParent()))
        return;
    if (!parent && isHostWindow(QGuiApplication::focusWindow()))
        parent = QGuiApplication::focusWindow();
    if (!parent)
        parent = shownWindow();
    if (!parent || parent == m_own->transientParent())
        return;
    // A host can have made our window the parent of its own. Qt does not end when it looks for the first
    // window of a circle.
    for (QWindow *window = parent; window; window = window->transientParent()) {
        if (window->transientParent() == m_own.get())
            window->setTransientParent(m_own->transientParent());
    }
    m_own->setTransientParent(parent);
}

/// Shows our own window again after the user has closed it like any other window.
void QXHostWindow::showClosedOwn()
{
    if (m_isHidden || m_own->isVisible())
        return;
    Q_EMIT closed();
    m_own->setVisible(true);
}
