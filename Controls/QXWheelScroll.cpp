#include "Controls/QXWheelScroll.h"

#include <QtGui/QGuiApplication>
#include <QtGui/QStyleHints>
#include <QtGui/QWheelEvent>

#include <cmath>
#include <utility>

namespace {

constexpr int duration = 120;  // milliseconds
constexpr qreal oneStep = 120; // eighths of a degree

} // namespace

QXWheelScroll::QXWheelScroll(QObject *parent) : QObject(parent)
{
    m_animation.setStartValue(0.0);
    m_animation.setEndValue(1.0);
    m_animation.setDuration(duration);
    m_animation.setEasingCurve(QEasingCurve::OutCubic);
    // Queued, because an animation that begins lets all others advance, and it may begin while the content
    // moves.
    connect(&m_animation, &QVariantAnimation::valueChanged, this, &QXWheelScroll::advance,
            Qt::QueuedConnection);
}

void QXWheelScroll::setFlickable(QQuickItem *flickable)
{
    if (m_flickable == flickable)
        return;
    if (m_flickable)
        m_flickable->removeEventFilter(this);
    m_flickable = flickable;
    if (m_flickable)
        m_flickable->installEventFilter(this);
    Q_EMIT flickableChanged();
}

bool QXWheelScroll::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Wheel && scroll(static_cast<QWheelEvent &>(*event))) {
        event->accept();
        return true;
    }
    // A press stops the content where it is, as it does during a flick. A key moves it from there.
    if (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::KeyPress)
        stop();
    return QObject::eventFilter(watched, event);
}

void QXWheelScroll::stop()
{
    m_animation.stop();
    setMoving(false);
}

void QXWheelScroll::setMoving(bool isMoving)
{
    if (std::exchange(m_isMoving, isMoving) != isMoving)
        Q_EMIT isMovingChanged();
}

bool QXWheelScroll::scroll(const QWheelEvent &event)
{
    const bool hasPixels = event.phase() != Qt::NoScrollPhase && !event.pixelDelta().isNull();
    const qreal steps = event.angleDelta().y() / oneStep;
    if (hasPixels || steps == 0 || !m_flickable->property("interactive").toBool())
        return false;
    // Otherwise steps that follow each other faster than frames would begin again and again, and move
    // nothing.
    advance();
    const qreal y = get("contentY");
    const qreal pending = m_isMoving ? m_start + m_distance - m_reached : 0;
    const qreal wanted = pending - steps * QGuiApplication::styleHints()->wheelScrollLines() * m_lineHeight;
    const qreal distance = bounded(y + wanted) - y;
    if (qAbs(distance) < 0.5)
        return false;
    m_animation.stop();
    QMetaObject::invokeMethod(m_flickable, "cancelFlick");
    m_start = m_reached = y;
    m_distance = distance;
    setMoving(true);
    if (m_animates)
        m_animation.start();
    else
        moveTo(1);
    return true;
}

void QXWheelScroll::advance()
{
    if (m_flickable && m_isMoving)
        moveTo(m_animation.currentValue().toReal());
}

void QXWheelScroll::moveTo(qreal part)
{
    // The content may move meanwhile, as when a row is added above.
    m_start += get("contentY") - m_reached;
    // Rows and texts are sharp on whole pixels only.
    m_reached = bounded(part < 1 ? m_start + m_distance * part : std::round(m_start + m_distance));
    m_flickable->setProperty("contentY", m_reached);
    if (part == 1)
        setMoving(false);
}

qreal QXWheelScroll::bounded(qreal y) const
{
    const qreal top = get("originY") - get("topMargin");
    const qreal bottom = get("originY") + get("contentHeight") + get("bottomMargin") - m_flickable->height();
    return qBound(top, y, qMax(top, bottom));
}
