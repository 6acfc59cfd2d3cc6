#include "Controls/QXFocusFence.h"

#include "Controls/QXKeyFilter.h"

QXFocusFence::QXFocusFence(QQuickItem *parent) : QQuickItem(parent) {}

QXFocusFence::~QXFocusFence()
{
    if (m_filter)
        m_filter->remove(*this);
}

void QXFocusFence::itemChange(ItemChange change, const ItemChangeData &value)
{
    if (change == ItemSceneChange) {
        if (m_filter)
            m_filter->remove(*this);
        m_filter = value.window ? &QXKeyFilter::of(*value.window) : nullptr;
        if (m_filter)
            m_filter->add(*this);
    }
    QQuickItem::itemChange(change, value);
}

bool QXFocusFence::isInside(const QQuickItem *item) const
{
    return item && parentItem() && (item == parentItem() || parentItem()->isAncestorOf(item));
}

void QXFocusFence::moveFocus(QQuickItem &from, bool forwards)
{
    // When no control inside takes the focus, the chain of controls may not return to the item.
    const QQuickItem *const first = from.nextItemInFocusChain(forwards);
    QQuickItem *item = from.nextItemInFocusChain(forwards);
    while (item && item != &from && !isInside(item)) {
        item = item->nextItemInFocusChain(forwards);
        if (item == first)
            return;
    }
    if (item && item != &from)
        item->forceActiveFocus(forwards ? Qt::TabFocusReason : Qt::BacktabFocusReason);
}
