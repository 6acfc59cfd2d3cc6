#include "Controls/QXPullArea.h"

#include <QtGui/QGuiApplication>
#include <QtGui/QMouseEvent>
#include <QtGui/QStyleHints>
#include <QtGui/QTouchEvent>

#include <cmath>
#include <utility>

namespace {

bool isFlickable(const QQuickItem &item)
{
    return item.inherits("QQuickFlickable");
}

bool isInteractive(const QQuickItem &item)
{
    return isFlickable(item) && item.property("interactive").toBool();
}

} // namespace

QXPullArea::QXPullArea(QQuickItem *parent) : QQuickItem(parent)
{
    setFiltersChildMouseEvents(true);
    setAcceptedMouseButtons(Qt::LeftButton);
    setAcceptTouchEvents(true);
}

void QXPullArea::setSpring(QXSpring *spring)
{
    if (std::exchange(m_spring, spring) != spring)
        Q_EMIT springChanged();
}

bool QXPullArea::childMouseEventFilter(QQuickItem *child, QEvent *event)
{
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseMove:
    case QEvent::MouseButtonRelease:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
        return handle(child, static_cast<QPointerEvent &>(*event));
    default:
        return QQuickItem::childMouseEventFilter(child, event);
    }
}

bool QXPullArea::handle(QQuickItem *item, QPointerEvent &event)
{
    const bool isTouch = event.type() == QEvent::TouchBegin || event.type() == QEvent::TouchUpdate ||
                         event.type() == QEvent::TouchEnd;
    for (const QEventPoint &point : event.points()) {
        const QPointF place = point.scenePosition();
        if (point.state() == QEventPoint::Pressed) {
            if (m_isPulling)
                continue; // another finger
            m_pointId = isTouch ? point.id() : -1;
            m_from = place;
            m_isDown = true;
            m_hasScrolled = false;
        } else if (!m_isDown || (isTouch && point.id() != m_pointId)) {
            continue;
        } else if (point.state() == QEventPoint::Released) {
            const bool wasPulling = m_isPulling;
            end();
            return wasPulling;
        } else if (m_isPulling) {
            m_spring->follow(place.y());
        } else if (event.points().size() == 1 && begins(item, place, isTouch)) {
            grab(item);
            // Without a jump: from where it was recognised, or from where the content came to its beginning.
            m_spring->hold(m_hasScrolled ? m_from.y() : place.y());
            m_spring->follow(place.y());
        }
    }
    return m_isPulling;
}

bool QXPullArea::begins(QQuickItem *item, const QPointF &place, bool isTouch)
{
    if (!m_spring || m_spring->isMoving())
        return false;
    const bool isKept = isTouch ? item->keepTouchGrab() : item->keepMouseGrab();
    if (isKept && item != this && !isFlickable(*item))
        return false;
    for (const QQuickItem *each = item; each && each != this; each = each->parentItem()) {
        // A pull would scroll it.
        if (isInteractive(*each) && !each->property("atYBeginning").toBool()) {
            m_from = place;
            m_hasScrolled = true;
            return false;
        }
    }
    const QPointF way = place - m_from;
    const int threshold = m_hasScrolled ? 0 : QGuiApplication::styleHints()->startDragDistance();
    return way.y() > threshold && way.y() > std::abs(way.x());
}

void QXPullArea::grab(QQuickItem *item)
{
    m_isPulling = true;
    // A row that is swiped does not take the pointer back.
    setKeepMouseGrab(true);
    setKeepTouchGrab(true);
    // A Flickable takes it back, even if it is kept, when it has scrolled before.
    for (; item && item != this; item = item->parentItem()) {
        if (isInteractive(*item)) {
            m_stopped.append(item);
            item->setProperty("interactive", false);
        }
    }
    if (m_pointId >= 0)
        grabTouchPoints({m_pointId});
    else
        grabMouse();
}

void QXPullArea::end()
{
    m_isDown = false;
    m_pointId = -1;
    if (!std::exchange(m_isPulling, false))
        return;
    setKeepMouseGrab(false);
    setKeepTouchGrab(false);
    for (const QPointer<QQuickItem> &item : std::exchange(m_stopped, {})) {
        if (item)
            item->setProperty("interactive", true);
    }
    // A finger that has scrolled fast to the beginning does not mean to throw the view away.
    if (m_spring)
        m_spring->release(!m_hasScrolled);
}

void QXPullArea::mousePressEvent(QMouseEvent *event)
{
    handle(this, *event);
}

void QXPullArea::mouseMoveEvent(QMouseEvent *event)
{
    handle(this, *event);
}

void QXPullArea::mouseReleaseEvent(QMouseEvent *event)
{
    handle(this, *event);
}

void QXPullArea::mouseUngrabEvent()
{
    end();
}

void QXPullArea::touchEvent(QTouchEvent *event)
{
    if (event->type() == QEvent::TouchCancel)
        end();
    else
        handle(this, *event);
    event->accept();
}

void QXPullArea::touchUngrabEvent()
{
    end();
}
