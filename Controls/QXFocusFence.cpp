#include "Controls/QXFocusFence.h"

#include <QtGui/QKeyEvent>
#include <QtQuick/QQuickWindow>

namespace {

bool isTab(const QKeyEvent &event)
{
    return (event.key() == Qt::Key_Tab || event.key() == Qt::Key_Backtab) &&
           !(event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
}

} // namespace

QXFocusFence::QXFocusFence(QQuickItem *parent) : QQuickItem(parent) {}

QXFocusFence::~QXFocusFence()
{
    if (m_watched)
        m_watched->removeEventFilter(this);
}

void QXFocusFence::itemChange(ItemChange change, const ItemChangeData &value)
{
    if (change == ItemSceneChange && value.window != m_watched) {
        if (m_watched)
            m_watched->removeEventFilter(this);
        m_watched = value.window;
        // The filter has to see the key before the items do, because each item would handle it.
        if (m_watched)
            m_watched->installEventFilter(this);
    }
    QQuickItem::itemChange(change, value);
}

bool QXFocusFence::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress && isEnabled() && isVisible()) {
        const auto &key = static_cast<const QKeyEvent &>(*event);
        QQuickItem *const focused = m_watched ? m_watched->activeFocusItem() : nullptr;
        if (isTab(key) && isInside(focused)) {
            moveFocus(*focused, key.key() == Qt::Key_Tab && !(key.modifiers() & Qt::ShiftModifier));
            return true;
        }
    }
    return QQuickItem::eventFilter(watched, event);
}

bool QXFocusFence::isInside(const QQuickItem *item) const
{
    return item && parentItem() && (item == parentItem() || parentItem()->isAncestorOf(item));
}

void QXFocusFence::moveFocus(QQuickItem &from, bool forwards)
{
    QQuickItem *item = &from;
    do
        item = item->nextItemInFocusChain(forwards);
    while (item && item != &from && !isInside(item));
    if (item && item != &from)
        item->forceActiveFocus(forwards ? Qt::TabFocusReason : Qt::BacktabFocusReason);
}
