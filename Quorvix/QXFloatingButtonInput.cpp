// How the floating button answers to pointers and keys.

#include "Quorvix/QXButtonPart.h"
#include "Quorvix/QXFloatingButton.h"

#include <QtGui/QGuiApplication>
#include <QtGui/QKeyEvent>
#include <QtGui/QMouseEvent>
#include <QtGui/QStyleHints>
#include <QtGui/QTouchEvent>
#include <QtQuick/QQuickWindow>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr qreal pressedScale = 0.94;
constexpr int scaleDuration = 250;

/// Whether the focus came by a key, so that the user looks for it.
bool isVisualReason(Qt::FocusReason reason)
{
    return reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason ||
           reason == Qt::ShortcutFocusReason;
}

} // namespace

void QXFloatingButton::setPressed(bool isPressed)
{
    if (std::exchange(m_isPressed, isPressed) == isPressed)
        return;
    m_face->update();
    if (!m_isTranslucent || !window())
        return;
    if (isPressed)
        m_appearance.refresh();
    m_firstScale = m_content->scale();
    m_sincePressed.start();
    disconnect(m_frames);
    m_frames = connect(window(), &QQuickWindow::afterAnimating, this, &QXFloatingButton::animate);
    window()->update();
}

/// Called before each frame. A QAnimation would keep the window's animation driver busy beyond the window.
void QXFloatingButton::animate()
{
    const qreal progress =
        m_appearance.isMotionReduced() ? 1 : std::min(1.0, qreal(m_sincePressed.elapsed()) / scaleDuration);
    const qreal eased = 1 - std::pow(1 - progress, 3);
    m_content->setScale(std::lerp(m_firstScale, m_isPressed ? pressedScale : 1.0, eased));
    if (progress < 1)
        window()->update();
    else
        disconnect(m_frames);
}

void QXFloatingButton::hoverEnterEvent(QHoverEvent *event)
{
    event->accept();
    Q_EMIT approached();
}

void QXFloatingButton::press(const QPointF &scenePoint)
{
    Q_EMIT approached();
    m_origin = scenePoint;
    m_way = {};
    m_isDragged = false;
    setPressed(true);
}

void QXFloatingButton::move(const QPointF &scenePoint)
{
    if (!m_origin)
        return;
    const QPointF way = scenePoint - *m_origin;
    const int threshold = QGuiApplication::styleHints()->startDragDistance();
    if (!m_isDragged && std::abs(way.x()) <= threshold && std::abs(way.y()) <= threshold)
        return;
    // A drag does not count as a click.
    m_isDragged = true;
    setPressed(false);
    Q_EMIT dragged(way - std::exchange(m_way, way));
}

void QXFloatingButton::release()
{
    const bool isClick = m_origin && !m_isDragged;
    cancel();
    if (isClick)
        Q_EMIT clicked();
}

void QXFloatingButton::cancel()
{
    m_origin.reset();
    m_touchPoint = -1;
    setPressed(false);
    if (std::exchange(m_isDragged, false))
        Q_EMIT dropped();
}

void QXFloatingButton::mousePressEvent(QMouseEvent *event)
{
    press(event->scenePosition());
}

void QXFloatingButton::mouseDoubleClickEvent(QMouseEvent *event)
{
    press(event->scenePosition());
}

void QXFloatingButton::mouseMoveEvent(QMouseEvent *event)
{
    move(event->scenePosition());
}

void QXFloatingButton::mouseReleaseEvent(QMouseEvent *event)
{
    move(event->scenePosition());
    release();
}

void QXFloatingButton::mouseUngrabEvent()
{
    cancel();
}

/// Follows the first finger; the others are none of this button.
void QXFloatingButton::touchEvent(QTouchEvent *event)
{
    for (const QEventPoint &point : event->points()) {
        const bool isFirst = point.state() == QEventPoint::Pressed && m_touchPoint < 0;
        if (isFirst) {
            m_touchPoint = point.id();
            press(point.scenePosition());
        } else if (point.id() == m_touchPoint) {
            move(point.scenePosition());
            if (point.state() == QEventPoint::Released)
                release();
        }
    }
    if (event->type() == QEvent::TouchCancel)
        cancel();
}

void QXFloatingButton::touchUngrabEvent()
{
    cancel();
}

void QXFloatingButton::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Space:
    case Qt::Key_Select:
        if (!event->isAutoRepeat())
            setPressed(true);
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        Q_EMIT clicked();
        break;
    default:
        event->ignore();
    }
}

void QXFloatingButton::keyReleaseEvent(QKeyEvent *event)
{
    const bool isPressKey = event->key() == Qt::Key_Space || event->key() == Qt::Key_Select;
    if (!isPressKey) {
        event->ignore();
    } else if (!event->isAutoRepeat() && m_isPressed && !m_origin) {
        setPressed(false);
        Q_EMIT clicked();
    }
}

void QXFloatingButton::focusInEvent(QFocusEvent *event)
{
    QQuickItem::focusInEvent(event);
    m_ring->setVisible(isVisualReason(event->reason()));
}

void QXFloatingButton::focusOutEvent(QFocusEvent *event)
{
    QQuickItem::focusOutEvent(event);
    m_ring->setVisible(false);
    if (!m_origin)
        setPressed(false);
}
