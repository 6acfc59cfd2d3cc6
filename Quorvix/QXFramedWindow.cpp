#include "Quorvix/QXFramedWindow.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QEvent>
#include <QtCore/QSettings>
#include <QtGui/QScreen>

#include <utility>

namespace {

constexpr QSize firstSize(480, 800);
constexpr QSize smallestSize(320, 400);
/// The room that the title and the frame take on the screen.
constexpr QSize frameSize(16, 48);

QSize startSize(const QScreen *screen)
{
    const QSize saved = QSettings().value(QXFramedWindow::sizeKey).toSize();
    const QSize wanted = saved.isValid() ? saved : firstSize;
    return screen ? wanted.boundedTo(screen->availableSize() - frameSize) : wanted;
}

} // namespace

QXFramedWindow::QXFramedWindow()
{
    setTitle(QCoreApplication::translate("Quorvix", "Network Trace"));
    setFlags(Qt::Window);
    setTransientParent(&m_none);
}

QXFramedWindow::~QXFramedWindow()
{
    setTransientParent(nullptr);
}

void QXFramedWindow::belongTo(QWindow *window)
{
    QWindow *const parent = window ? window : &m_none;
    if (parent == transientParent())
        return;
    if (QWindow *const previous = transientParent())
        disconnect(previous, nullptr, this, nullptr);
    setTransientParent(parent);
    connect(parent, &QObject::destroyed, this, &QXFramedWindow::placeLost);
}

void QXFramedWindow::setHidden(bool hidden)
{
    if (std::exchange(m_isHidden, hidden) == hidden && isVisible() != hidden)
        return;
    // An event that comes after the window was closed makes Qt draw it again, although it is not shown. A
    // Wayland compositor ends the connection if such a surface becomes a window.
    if (!hidden && !isVisible())
        destroy();
    if (!hidden && !handle()) {
        if (transientParent() != &m_none)
            setScreen(transientParent()->screen());
        const QSize size = startSize(screen());
        setMinimumSize(smallestSize.boundedTo(size));
        resize(size);
    }
    setVisible(!hidden);
}

bool QXFramedWindow::event(QEvent *event)
{
    switch (event->type()) {
    case QEvent::Hide:
        if (windowStates() == Qt::WindowNoState)
            QSettings().setValue(sizeKey, size());
        Q_EMIT placeLost();
        break;
    case QEvent::WindowBlocked:
        Q_EMIT placeLost();
        break;
    default:
        break;
    }
    return QQuickWindow::event(event);
}
