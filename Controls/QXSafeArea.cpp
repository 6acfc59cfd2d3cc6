#include "Controls/QXSafeArea.h"

#include <QtGui/QGuiApplication>
#include <QtGui/QInputMethod>
#include <QtGui/QScreen>
#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickWindow>

#include <utility>

namespace {

QMarginsF marginsOf(const QWindow &window)
{
    // Only a window that fills the screen lies beneath the bars; the platform places other windows beside
    // them.
    const QScreen *const screen = window.screen();
    if (!screen || window.size() != screen->size())
        return {};
    const QRect whole = screen->geometry();
    const QRect available = screen->availableGeometry();
    return {std::max(0.0, qreal(available.left() - whole.left())),
            std::max(0.0, qreal(available.top() - whole.top())),
            std::max(0.0, qreal(whole.right() - available.right())),
            std::max(0.0, qreal(whole.bottom() - available.bottom()))};
}

/// The height at the bottom of @p window that the on-screen keyboard covers.
qreal keyboardOf(const QQuickWindow &window)
{
    const QInputMethod &method = *QGuiApplication::inputMethod();
    const QRectF keyboard = method.keyboardRectangle();
    // The keyboard belongs to the window that has the focus, and may cover other windows.
    const QWindow *const focused = QGuiApplication::focusWindow();
    if (!focused || !method.isVisible() || keyboard.isEmpty())
        return 0;
    const QRectF content(QPointF(), window.contentItem()->size());
    const QPointF origin = window.mapFromGlobal(focused->mapToGlobal(keyboard.topLeft()));
    const QRectF covered = content & QRectF(origin, keyboard.size());
    // A floating keyboard in the upper half leaves no room above it; the user can move it.
    if (covered.isEmpty() || covered.center().y() < content.center().y())
        return 0;
    return content.bottom() - covered.top();
}

} // namespace

QXSafeArea::QXSafeArea(QObject *parent) : QObject(parent)
{
    const QInputMethod *const method = QGuiApplication::inputMethod();
    connect(method, &QInputMethod::keyboardRectangleChanged, this, &QXSafeArea::scheduleKeyboard);
    connect(method, &QInputMethod::visibleChanged, this, &QXSafeArea::scheduleKeyboard);
    connect(qGuiApp, &QGuiApplication::focusWindowChanged, this, &QXSafeArea::scheduleKeyboard);
}

void QXSafeArea::setMargins(const QMarginsF &margins)
{
    if (m_margins == margins)
        return;
    m_margins = margins;
    Q_EMIT marginsChanged();
}

void QXSafeArea::setFloat(qreal top, qreal bottom)
{
    if (m_floatTop == top && m_floatBottom == bottom)
        return;
    m_floatTop = top;
    m_floatBottom = bottom;
    Q_EMIT floatChanged();
}

void QXSafeArea::measure(QQuickWindow &window)
{
    if (m_window != &window) {
        if (m_window)
            m_window->removeEventFilter(this);
        m_window = &window;
        m_window->installEventFilter(this);
        m_isPressed = false;
    }
    setMargins(marginsOf(window));
    measureKeyboard();
}

void QXSafeArea::scheduleKeyboard()
{
    // The rectangle of a keyboard can change several times while the keyboard lays itself out, and a screen
    // that reacts to it tells the keyboard of its cursor.
    if (std::exchange(m_isKeyboardScheduled, true))
        return;
    QMetaObject::invokeMethod(this, &QXSafeArea::measureKeyboard, Qt::QueuedConnection);
}

void QXSafeArea::measureKeyboard()
{
    m_isKeyboardScheduled = false;
    const qreal keyboard = m_window ? keyboardOf(*m_window) : 0;
    if (m_keyboard == keyboard || (m_isPressed && keyboard < m_keyboard))
        return;
    m_keyboard = keyboard;
    Q_EMIT keyboardChanged();
    Q_EMIT marginsChanged();
}

bool QXSafeArea::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::TouchBegin:
        m_isPressed = true;
        break;
    case QEvent::MouseButtonRelease:
    case QEvent::TouchEnd:
    case QEvent::TouchCancel:
    case QEvent::FocusOut:
        m_isPressed = false;
        scheduleKeyboard();
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}
