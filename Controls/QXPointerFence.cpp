#include "Controls/QXPointerFence.h"

#include <QtGui/QPointerEvent>
#include <QtGui/QPointingDevice>
#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickWindow>

#include <algorithm>
#include <utility>

namespace {

bool hasHandlers(const QQuickItem &item)
{
    const auto &children = item.children();
    return std::any_of(children.cbegin(), children.cend(),
                       [](const QObject *child) { return child->inherits("QQuickPointerHandler"); });
}

} // namespace

QXPointerFence::QXPointerFence(QQuickWindow &window, QQuickItem &layer) : QObject(&layer), m_layer(layer)
{
    window.installEventFilter(this);
}

QXPointerFence::~QXPointerFence()
{
    lower();
}

bool QXPointerFence::eventFilter(QObject *, QEvent *event)
{
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::TabletPress:
    case QEvent::TouchBegin:
        press(static_cast<const QPointerEvent &>(*event));
        break;
    case QEvent::TouchUpdate:
        // Another finger may go down.
        if (static_cast<const QPointerEvent *>(event)->isBeginEvent())
            press(static_cast<const QPointerEvent &>(*event));
        break;
    case QEvent::NativeGesture:
        press(static_cast<const QPointerEvent &>(*event));
        lowerLater();
        break;
    case QEvent::MouseButtonRelease:
    case QEvent::TabletRelease:
    case QEvent::TouchEnd:
    case QEvent::TouchCancel:
        lowerLater();
        break;
    default:
        break;
    }
    return false;
}

void QXPointerFence::press(const QPointerEvent &event)
{
    m_isReleased = false;
    lower();
    if (isOnLayer(event))
        raise();
}

/// Whether the layer claims all points that go down.
bool QXPointerFence::isOnLayer(const QPointerEvent &event) const
{
    if (!m_layer.isVisible() || !m_layer.isEnabled())
        return false;
    const auto &points = event.points();
    const bool isTouch = event.device()->type() == QInputDevice::DeviceType::TouchScreen;
    return std::all_of(points.cbegin(), points.cend(), [&](const QEventPoint &point) {
        const bool wasDown = isTouch && point.state() != QEventPoint::Pressed;
        return wasDown || m_layer.contains(m_layer.mapFromScene(point.scenePosition()));
    });
}

void QXPointerFence::raise()
{
    QQuickItem *const content = m_layer.parentItem();
    if (!content)
        return;
    mask(*content);
    const auto items = content->childItems();
    for (QQuickItem *const item : items) {
        if (item->z() < m_layer.z())
            maskTree(*item);
    }
}

void QXPointerFence::lower()
{
    for (const auto &[item, mask] : std::exchange(m_masked, {})) {
        if (item && item->containmentMask() == this)
            item->setContainmentMask(mask);
    }
}

/// After the event has been delivered, because a release goes to handlers, too.
void QXPointerFence::lowerLater()
{
    m_isReleased = true;
    if (m_masked.empty())
        return;
    const auto lowerReleased = [this] {
        if (m_isReleased)
            lower();
    };
    QMetaObject::invokeMethod(this, lowerReleased, Qt::QueuedConnection);
}

void QXPointerFence::mask(QQuickItem &item)
{
    QObject *const mask = item.containmentMask();
    // Another layer's fence masks it already.
    if (!hasHandlers(item) || qobject_cast<QXPointerFence *>(mask))
        return;
    m_masked.push_back({&item, mask});
    item.setContainmentMask(this);
}

void QXPointerFence::maskTree(QQuickItem &item)
{
    // Neither do such items get presses, nor do theirs.
    if (!item.isVisible() || !item.isEnabled())
        return;
    mask(item);
    const auto children = item.childItems();
    for (QQuickItem *const child : children)
        maskTree(*child);
}
